#include "devservice/SampleFarm.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QStringList>

#include <archive.h>
#include <archive_entry.h>

#include <memory>

namespace devservice {
namespace {

// Records name their owner by the username.
const QString adminName = "thuha";
const QString userName = "qminh";
constexpr int reportDays = 10;
constexpr int dayWithoutJobs = 6;
constexpr int minuteMs = 60 * 1000;
/// Agreed with the clients.
constexpr char definitionsPassword[] = "0417385926";
const QString base32 = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";

template <typename List>
auto pick(QRandomGenerator& random, const List& values)
{
    return values.at(random.bounded(values.size()));
}

QString characters(QRandomGenerator& random, const QString& alphabet, int count)
{
    QString text;
    for (int i = 0; i < count; ++i) {
        text += alphabet.at(random.bounded(alphabet.size()));
    }
    return text;
}

QString hex(QRandomGenerator& random)
{
    return QStringLiteral("%1").arg(random.generate64(), 16, 16, QLatin1Char('0'));
}

QJsonArray makeDevices(int count)
{
    QRandomGenerator random(1);
    const QStringList models{"VX-210", "VX-340", "KR-55", "LM-7 Lite", "TN-900"};
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

QJsonArray makeClones(int count, const QJsonArray& devices)
{
    const QStringList firstNames{"Linh", "Minh", "Thảo", "Huy", "Mai", "Quân", "Hương", "Nam"};
    const QStringList lastNames{"Nguyễn", "Trần", "Lê", "Phạm", "Hoàng", "Vũ"};
    const QStringList profiles{"Warm up", "Daily growth", "Everything", QString()};
    const QVector<int> states{1, 1, 1, 1, 1, 1, 1, 2, 4, 8};
    const QVector<int> restrictions{1, 1, 1, 1, 2, 4, 2 | 4, 8, 16, 2 | 4 | 8 | 16};
    QRandomGenerator random(2);
    QJsonArray clones;
    for (int i = 0; i < count; ++i) {
        const bool tiktok = i % 9 == 7;
        const int status = pick(random, states);
        const bool placed = status != 8 && !devices.isEmpty() && i % 17 != 11;
        const QString uid = (tiktok ? "72" : "1000") + characters(random, "0123456789", tiktok ? 17 : 11);
        clones.append(QJsonObject{
            {"id", QStringLiteral("c-%1").arg(i + 1)},
            {"uid", uid},
            {"cookies", QStringLiteral("uid=%1; session=%2").arg(uid, hex(random))},
            {"device_id",
             placed ? devices.at(random.bounded(devices.size())).toObject().value("android_id") : QString()},
            {"email", hex(random).left(10) + "@mail.example"},
            {"firstname", pick(random, firstNames)},
            {"lastname", pick(random, lastNames)},
            {"mail_password", characters(random, base32, 10)},
            {"network", tiktok ? "tiktok" : "facebook"},
            {"password", characters(random, base32, 12)},
            {"novery", i % 13 == 4},
            {"restriction", pick(random, restrictions)},
            {"secretkey", i % 3 == 0 ? QString() : characters(random, base32, 32)},
            {"secure_flags", random.bounded(4)},
            {"status", status},
            {"user_id", i % 5 == 3 ? userName : adminName},
            {"farm_profile", pick(random, profiles)},
        });
    }
    return clones;
}

QJsonObject makeReport(QRandomGenerator& random, const QJsonArray& devices)
{
    static const QStringList jobs = {"facebook_follow_type_1", "facebook_page_like_type_1",
                                     "facebook_post_like_type_1", "tiktok_follow_type_1"};
    QJsonObject details;
    QJsonObject total;
    for (const QJsonValue& device : devices) {
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
        reports.insert(today.addDays(-day).toString("yyyy-M-d"), makeReport(random, active));
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
        {"fullname", "Trần Thu Hà"},
        {"user_type", 255},
        {"username", adminName},
        {"phonenumber", "+84 55 501 0117"},
        {"farm_profiles",
         QJsonObject{{"Warm up", warmUp}, {"Daily growth", growth}, {"Everything", everything}}},
    };
    const QJsonObject user = {
        {"token", sampleUserToken},
        {"fullname", "Lê Quang Minh"},
        {"user_type", 1},
        {"username", userName},
        {"phonenumber", "+84 55 501 0142"},
        {"farm_profiles", QJsonObject{{"Warm up", warmUp}, {"Weekend", growth}}},
    };
    return {{sampleAdminToken, admin}, {sampleUserToken, user}};
}

/// A zip archive with one encrypted entry, "definitions.txt"; empty on failure.
QByteArray makeDefinitionsArchive(const QByteArray& content)
{
    const std::unique_ptr<archive, decltype(&archive_write_free)> writer(archive_write_new(),
                                                                         archive_write_free);
    const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                              archive_entry_free);
    archive_entry_set_pathname(entry.get(), "definitions.txt");
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_size(entry.get(), content.size());

    // More than enough for what the format adds.
    QByteArray result(content.size() + 4096, Qt::Uninitialized);
    std::size_t used = 0;
    archive* const zip = writer.get();
    const auto room = static_cast<std::size_t>(result.size());
    const bool ok = archive_write_set_format_zip(zip) == ARCHIVE_OK &&
                    archive_write_set_options(zip, "zip:encryption=traditional") == ARCHIVE_OK &&
                    archive_write_set_passphrase(zip, definitionsPassword) == ARCHIVE_OK &&
                    archive_write_set_bytes_in_last_block(zip, 1) == ARCHIVE_OK &&
                    archive_write_open_memory(zip, result.data(), room, &used) == ARCHIVE_OK &&
                    archive_write_header(zip, entry.get()) == ARCHIVE_OK &&
                    archive_write_data(zip, content.constData(), static_cast<std::size_t>(content.size())) ==
                        content.size() &&
                    archive_write_close(zip) == ARCHIVE_OK;
    return ok ? result.left(static_cast<int>(used)) : QByteArray();
}

} // namespace

Farm makeSampleFarm(int devices, int clones, int managerVersion, const QString& managerPath)
{
    Farm farm;
    farm.devices = makeDevices(devices);
    farm.clones = makeClones(clones, farm.devices);
    farm.globalConfig = {
        {"velstrand_dropbox_token", "store-51c07e"},
        {"velstrand_android_app_version", "112"},
        {"velstrand_android_app_path", "https://files.velstrand.example/android/velstrand-112.apk"},
        {"facebook_app_version", "431"},
        {"velstrand_manager_app_version", QString::number(managerVersion)},
        {"velstrand_manager_app_path", managerPath},
        {"velstrand_definition_version", "27"},
    };
    farm.users = makeUsers();
    farm.reports = makeReports(farm.devices);
    farm.definitionsArchive = makeDefinitionsArchive("# Velstrand definitions 27\n"
                                                     "facebook_feed = //feed/item\n"
                                                     "facebook_watch = //watch/item\n");
    return farm;
}

} // namespace devservice
