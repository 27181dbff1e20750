#include "devservice/SampleFarm.h"

#include "devservice/DefinitionsArchive.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QStringList>

namespace devservice {

const QString sampleAdminToken = QStringLiteral("admin-7c1e9a42d5");
const QString sampleUserToken = QStringLiteral("user-2b8d5f10e7");

namespace {

// Records name their owner by the username.
const QString adminName = QStringLiteral("thuha");
const QString userName = QStringLiteral("qminh");
constexpr int reportDays = 10;
constexpr int dayWithoutJobs = 6;
constexpr int minuteMs = 60 * 1000;

template <typename T>
const T& pick(QRandomGenerator& random, const QVector<T>& values)
{
    return values.at(random.bounded(values.size()));
}

QString digits(QRandomGenerator& random, int count)
{
    QString text;
    for (int i = 0; i < count; ++i) {
        text += QChar('0' + random.bounded(10));
    }
    return text;
}

QString hex(QRandomGenerator& random)
{
    return QStringLiteral("%1").arg(random.generate64(), 16, 16, QLatin1Char('0'));
}

QString base32(QRandomGenerator& random, int count)
{
    const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567");
    QString text;
    for (int i = 0; i < count; ++i) {
        text += letters.at(random.bounded(letters.size()));
    }
    return text;
}

QJsonArray makeDevices(int count)
{
    QRandomGenerator random(1);
    const QVector<QString> models = {QStringLiteral("VX-210"), QStringLiteral("VX-340"),
                                     QStringLiteral("KR-55"), QStringLiteral("LM-7 Lite"),
                                     QStringLiteral("TN-900")};
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    QJsonArray devices;
    for (int i = 0; i < count; ++i) {
        // Most asked for a job minutes ago; every eighth has been off for hours or days.
        const int minutes = i % 8 == 5 ? random.bounded(120, 5000) : random.bounded(0, 55);
        const QString label = QStringLiteral("Rack %1-%2")
                                  .arg(QChar('A' + (i / 20) % 26))
                                  .arg(i % 20 + 1, 2, 10, QLatin1Char('0'));
        devices.append(QJsonObject{
            {"android_id", hex(random)},
            {"model", pick(random, models)},
            {"status", i % 29 == 23 ? 2 : (i % 6 == 4 ? 0 : 1)},
            {"user_id", i % 5 == 3 ? userName : adminName},
            {"device_config",
             QJsonObject{{"connectivity_type", i % 4 == 2 ? 1 : 0}, {"device_label", label}}},
            {"last_getting_job_ts",
             static_cast<double>(now - qint64(minutes) * minuteMs - random.bounded(minuteMs))},
        });
    }
    return devices;
}

QJsonObject makeClone(QRandomGenerator& random, int number, const QJsonArray& devices)
{
    static const QVector<QString> firstNames = {
        QStringLiteral("Linh"), QStringLiteral("Minh"), QStringLiteral("Thảo"),  QStringLiteral("Huy"),
        QStringLiteral("Mai"),  QStringLiteral("Quân"), QStringLiteral("Hương"), QStringLiteral("Nam")};
    static const QVector<QString> lastNames = {QStringLiteral("Nguyễn"), QStringLiteral("Trần"),
                                               QStringLiteral("Lê"),     QStringLiteral("Phạm"),
                                               QStringLiteral("Hoàng"),  QStringLiteral("Vũ")};
    static const QVector<QString> profiles = {QStringLiteral("Warm up"), QStringLiteral("Daily growth"),
                                              QStringLiteral("Everything"), QString()};
    static const QVector<int> states = {1, 1, 1, 1, 1, 1, 1, 2, 4, 8};
    static const QVector<int> restrictions = {1, 1, 1, 1, 2, 4, 2 | 4, 8, 16, 2 | 4 | 8 | 16};

    const bool tiktok = number % 9 == 7;
    const int status = pick(random, states);
    const bool placed = status != 8 && !devices.isEmpty() && number % 17 != 11;
    const QString uid =
        (tiktok ? QStringLiteral("72") : QStringLiteral("1000")) + digits(random, tiktok ? 17 : 11);
    return QJsonObject{
        {"id", QStringLiteral("c-%1").arg(number + 1)},
        {"uid", uid},
        {"cookies", QStringLiteral("uid=%1; session=%2").arg(uid, hex(random))},
        {"device_id",
         placed ? devices.at(random.bounded(devices.size())).toObject().value("android_id") : QString()},
        {"email", QStringLiteral("%1@mail.example").arg(hex(random).left(10))},
        {"firstname", pick(random, firstNames)},
        {"lastname", pick(random, lastNames)},
        {"mail_password", base32(random, 10)},
        {"network", tiktok ? QStringLiteral("tiktok") : QStringLiteral("facebook")},
        {"password", base32(random, 12)},
        {"novery", number % 13 == 4},
        {"restriction", pick(random, restrictions)},
        {"secretkey", number % 3 == 0 ? QString() : base32(random, 32)},
        {"secure_flags", random.bounded(4)},
        {"status", status},
        {"user_id", number % 5 == 3 ? userName : adminName},
        {"farm_profile", pick(random, profiles)},
    };
}

QJsonArray makeClones(int count, const QJsonArray& devices)
{
    QRandomGenerator random(2);
    QJsonArray clones;
    for (int i = 0; i < count; ++i) {
        clones.append(makeClone(random, i, devices));
    }
    return clones;
}

QJsonObject makeReport(QRandomGenerator& random, const QJsonArray& devices)
{
    static const QStringList jobs = {
        QStringLiteral("facebook_follow_type_1"), QStringLiteral("facebook_page_like_type_1"),
        QStringLiteral("facebook_post_like_type_1"), QStringLiteral("tiktok_follow_type_1")};
    QJsonObject details;
    QJsonObject total;
    for (const QJsonValue device : devices) {
        if (random.bounded(10) == 0) {
            continue;
        }
        QJsonObject counts;
        for (const QString& job : jobs) {
            const int count = random.bounded(60);
            if (count > 0) {
                counts.insert(job, count);
                total.insert(job, total.value(job).toInt() + count);
            }
        }
        details.insert(device.toObject().value("android_id").toString(), counts);
    }
    return {{"total", total}, {"device_details", details}};
}

QJsonObject makeReports(const QJsonArray& devices)
{
    QRandomGenerator random(3);
    const QDate today = QDate::currentDate();
    QJsonObject reports;
    for (int day = 0; day < reportDays; ++day) {
        const QJsonArray active = day == dayWithoutJobs ? QJsonArray() : devices;
        reports.insert(today.addDays(-day).toString(QStringLiteral("yyyy-M-d")), makeReport(random, active));
    }
    return reports;
}

QHash<QString, QJsonObject> makeUsers()
{
    const QJsonObject warmUp = {{"facebook_feed", 80}, {"facebook_feed_like", 25}, {"facebook_watch", 60}};
    const QJsonObject growth = {{"facebook_feed", 60},
                                {"facebook_feed_like", 50},
                                {"facebook_watch_like", 40},
                                {"facebook_add_suggest_friend", 30},
                                {"facebook_confirm_friend", 70}};
    const QJsonObject everything = {
        {"facebook_feed", 90},
        {"facebook_feed_like", 60},
        {"facebook_watch", 80},
        {"facebook_watch_like", 50},
        {"facebook_add_suggest_friend", 35},
        {"facebook_confirm_friend", 75},
        {"facebook_post_status", 20},
        {"facebook_post_status_image", 15},
        {"facebook_add_avatar_frame", 5},
        {"facebook_react_story", 45},
        {"facebook_share_random_video", 10},
        {"facebook_share_create_profile_page", 0},
    };
    const QJsonObject admin = {
        {"token", sampleAdminToken},
        {"fullname", QStringLiteral("Trần Thu Hà")},
        {"user_type", 255},
        {"username", adminName},
        {"phonenumber", QStringLiteral("+84 55 501 0117")},
        {"farm_profiles",
         QJsonObject{{"Warm up", warmUp}, {"Daily growth", growth}, {"Everything", everything}}},
    };
    const QJsonObject user = {
        {"token", sampleUserToken},
        {"fullname", QStringLiteral("Lê Quang Minh")},
        {"user_type", 1},
        {"username", userName},
        {"phonenumber", QStringLiteral("+84 55 501 0142")},
        {"farm_profiles", QJsonObject{{"Warm up", warmUp}, {"Weekend", growth}}},
    };
    return {{sampleAdminToken, admin}, {sampleUserToken, user}};
}

} // namespace

Farm makeSampleFarm(int devices, int clones, int managerVersion, const QString& managerPath)
{
    Farm farm;
    farm.devices = makeDevices(devices);
    farm.clones = makeClones(clones, farm.devices);
    farm.globalConfig = {
        {"velstrand_dropbox_token", QStringLiteral("store-51c07e")},
        {"velstrand_android_app_version", QStringLiteral("112")},
        {"velstrand_android_app_path",
         QStringLiteral("https://files.velstrand.example/android/velstrand-112.apk")},
        {"facebook_app_version", QStringLiteral("431")},
        {"velstrand_manager_app_version", QString::number(managerVersion)},
        {"velstrand_manager_app_path", managerPath},
        {"velstrand_definition_version", QStringLiteral("27")},
    };
    farm.users = makeUsers();
    farm.reports = makeReports(farm.devices);
    farm.definitionsArchive = makeDefinitionsArchive("# Velstrand definitions 27\n"
                                                     "facebook_feed = //feed/item\n"
                                                     "facebook_watch = //watch/item\n");
    return farm;
}

} // namespace devservice
