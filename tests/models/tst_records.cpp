#include "models/CloneInfo.h"
#include "models/DeviceInfo.h"
#include "models/FarmActionConfig.h"
#include "models/FarmProfile.h"
#include "models/GlobalConfig.h"
#include "models/ListReader.h"
#include "models/ReportsByDate.h"
#include "models/UserInfo.h"
#include "tests/support/LogCapture.h"

#include <QJsonDocument>
#include <QMetaProperty>
#include <QPointer>
#include <QtTest>

namespace {

QJsonObject parse(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

// "name=value" of the properties in their order, which is the one that QML sees.
QString values(const QObject& object)
{
    QStringList list;
    for (int i = 1; i < object.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = object.metaObject()->property(i);
        list << property.name() + QString("=") + property.read(&object).toString();
    }
    return list.join(' ');
}

/// The snapshot with one record of these members.
SnapshotPtr readRecord(const QVariantMap& record, const RecordLayout& layout)
{
    const QJsonObject answer{{"success", true}, {"data", QJsonArray{QJsonObject::fromVariantMap(record)}}};
    const QByteArray bytes = QJsonDocument(answer).toJson();
    const auto none = std::make_shared<const Snapshot>();
    return readList({bytes.data(), std::size_t(bytes.size())}, layout, none, "t").difference->after;
}

QString names(const QList<QObject*>& list, const char* property = "profileName")
{
    QStringList texts;
    for (const QObject* object : list)
        texts << object->property(property).toString();
    return texts.join(' ');
}

} // namespace

/// The records: what QML binds to, how the service's JSON becomes it. The signed-in user's record.
class TestRecords : public QObject
{
    Q_OBJECT

private slots:
    void keys();
    void changeSignals();
    void ages();
    void globalConfig();
    void profile();
    void answers();
    void profilesAreReplacedWhole();
    void tempProfiles();
};

void TestRecords::keys()
{
    // Each text holds the name of its key.
    QVariantMap record = parse(R"({"novery":true,"restriction":1,"secure_flags":2,"status":3,
        "device_config":{"connectivity_type":1,"device_label":"shelf"}})")
                             .toVariantMap();
    record["last_getting_job_ts"] = QDateTime::currentMSecsSinceEpoch() - 3630 * 1000;
    const QStringList texts =
        QString("id uid cookies device_id email firstname lastname mail_password network password secretkey "
                "user_id farm_profile unknown selected filtered place android_id model")
            .split(' ');
    for (const QString& key : texts)
        record[key] = key;
    CloneInfo clone;
    const SnapshotPtr clones = readRecord(record, CloneInfo::layout());
    clone.assign(*clones->records[0]);
    QCOMPARE(values(clone),
             "id=id uid=uid cookies=cookies deviceId=device_id email=email firstName=firstname "
             "lastName=lastname mailPass=mail_password network=network password=password novery=true "
             "restriction=1 secretkey=secretkey secureFlags=2 status=3 userId=user_id selected=false "
             "filtered=true farmProfile=farm_profile place=0");
    const DeviceInfo::Surroundings surroundings{QDateTime::currentSecsSinceEpoch(), clones};
    DeviceInfo device(&surroundings);
    device.assign(*readRecord(record, DeviceInfo::layout())->records[0]);
    QCOMPARE(values(device), "androidId=android_id model=model status=3 userId=user_id deviceConfig= "
                             "selected=false lastGettingJobs=1 hours 0 minutes ago cloneCount=0 place=0");
    QCOMPARE(values(*device.deviceConfig()), "connectivityType=1 deviceLabel=shelf");
    QCOMPARE(device.deviceConfig()->toJson(), QJsonObject::fromVariantMap(record["device_config"].toMap()));
    QCOMPARE(values(UserInfo("t")),
             "token=t fullName= isValidated=false userType=0 userName= phoneNumber= farmProfiles=");
    QCOMPARE(values(FarmProfile("p")), "profileName=p farmActions= temp=false");
    QCOMPARE(values(FarmActionConfig("a")), "actionName=a enable=false randomPercent=0");
    QCOMPARE(values(ReportsByDate()), "date= data= details=");
}

void TestRecords::changeSignals()
{
    CloneInfo clone;
    UserInfo user("t");
    for (QObject* object : {static_cast<QObject*>(&clone), static_cast<QObject*>(&user)}) {
        const QMetaObject& meta = *object->metaObject();
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            if (!property.isWritable())
                continue;
            QVariant other = !property.read(object).toBool();
            other.convert(int(property.type()));
            QSignalSpy spy(object, property.notifySignal());
            QVERIFY(property.write(object, other) && property.write(object, other));
            QCOMPARE(property.read(object), other);
            QVERIFY2(spy.count() == 1, property.name());
        }
    }
}

void TestRecords::ages()
{
    constexpr qint64 now = 1700000000;
    const auto age = [](qint64 timestampMs) { return DeviceInfo::ageText(timestampMs, now); };
    QCOMPARE(age((now - 60) * 1000 + 999), "1 minutes ago"); // the milliseconds do not count
    QCOMPARE(age((now - 3599) * 1000), "59 minutes ago");
    QCOMPARE(age((now - 3600) * 1000), "1 hours 0 minutes ago");
    QCOMPARE(age((now - 90000) * 1000), "25 hours 0 minutes ago");
    QCOMPARE(age((now + 3725) * 1000), "-1 hours -2 minutes ago");
    QCOMPARE(age(-1), "-5124095103808 hours -12 minutes ago"); // before the epoch
}

void TestRecords::globalConfig()
{
    QJsonObject object = parse(R"({"velstrand_dropbox_token":"s","velstrand_android_app_version":"12",
        "velstrand_android_app_path":"https://x/a","facebook_app_version":"34","velstrand_manager_app_version":"19",
        "velstrand_manager_app_path":"https://x/m","velstrand_definition_version":"5"})");
    GlobalConfig config;
    config.fromJson(object);
    QCOMPARE(values(config), "vsAndroidAppVersion=12 vsAndroidAppPath=https://x/a facebookAppVersion=34 "
                             "vsManagerAppVersion=19 vsManagerAppPath=https://x/m vsDefinitionsVersion=5");
    QCOMPARE(config.toJson(), object);
    config.fromJson(parse(R"({"velstrand_manager_app_version":20,"facebook_app_version":null,"other":"x"})"));
    object["velstrand_manager_app_version"] = "20";
    object.remove("facebook_app_version");
    QCOMPARE(config.toJson(), object);
}

void TestRecords::profile()
{
    FarmProfile profile("p");
    QCOMPARE(profile.toJson(), parse(R"({"name":"p","farm_action_config":{}})"));
    profile.readActions(
        {{"unknown", 1}, {"facebook_watch", 0}, {"facebook_feed", "many"}, {"facebook_react_story", 250.0}});
    QCOMPARE(profile.toJson(), parse(R"({"name":"p","farm_action_config":
        {"facebook_feed":0,"facebook_react_story":250,"facebook_watch":0}})"));
    QCOMPARE(names(profile.farmActions(), "actionName").remove("facebook_"),
             "feed feed_like watch watch_like add_suggest_friend confirm_friend post_status "
             "post_status_image add_avatar_frame react_story share_random_video "
             "share_create_profile_page");
}

void TestRecords::answers()
{
    // What the record is then: token|validated|full name|type|user name|phone|profiles.
    const std::pair<QByteArray, QString> answers[] = {
        {R"({"token":"new","fullname":"N","user_type":255,"username":"n","phonenumber":"2",
            "farm_profiles":{"b":{},"a":{}}})",
         "new|true|N|255|n|2|a b"},
        {R"({"token":"old"})", "old|true|Old|3|olduser|111|Kept"},
        {R"({"token":"new","user_type":"255"})", "new|true|Old|0|olduser|111|Kept"},
        {R"({"token":"new","farm_profiles":{}})", "new|true|Old|3|olduser|111|"},
        {R"({"token":"new","farm_profiles":[{}]})", "new|true|Old|3|olduser|111|"},
        {R"({"token":"","fullname":"N","farm_profiles":{}})", "|false|Old|3|olduser|111|Kept"}};
    for (const auto& [answer, expected] : answers) {
        for (const bool validated : {false, true}) {
            UserInfo user("old");
            user.applyInfo(parse(R"({"token":"old","fullname":"Old","user_type":3,"username":"olduser",
                "phonenumber":"111","farm_profiles":{"Kept":{}}})"));
            user.setIsValidated(validated);
            QCOMPARE(user.applyInfo(parse(answer)), user.isValidated());
            QStringList seen;
            for (const char* name :
                 {"token", "isValidated", "fullName", "userType", "userName", "phoneNumber"})
                seen << user.property(name).toString();
            QCOMPARE((seen << names(user.farmProfiles())).join('|'), expected);
            user.setToken("");
            QVERIFY(!user.isValidated());
        }
    }
}

void TestRecords::profilesAreReplacedWhole()
{
    UserInfo user("t");
    user.applyInfo(parse(R"({"token":"t","farm_profiles":{"a":{"facebook_feed":5},"b":{}}})"));
    const QPointer<QObject> old = user.farmProfiles().first();
    QCOMPARE(static_cast<FarmProfile*>(old.data())->toJson()["farm_action_config"],
             QJsonObject({{"facebook_feed", 5}}));
    int announced = 0;
    connect(&user, &UserInfo::farmProfilesChanged, [&] {
        ++announced;
        QVERIFY(old && !user.farmProfiles().contains(old));
    });
    user.applyInfo(parse(R"({"token":"t","farm_profiles":{"a":{},"z":{}}})"));
    QCOMPARE(announced, 1);
    QCOMPARE(names(user.farmProfiles()), "a z");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(old);
    user.applyInfo(parse(R"({"token":"t","farm_profiles":{}})"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!old);
}

void TestRecords::tempProfiles()
{
    UserInfo user("t");
    user.applyInfo(parse(R"({"token":"t","farm_profiles":{"Profile-1":{}}})"));
    QSignalSpy announced(&user, &UserInfo::farmProfilesChanged);
    const LogCapture log;
    user.createTempProfile();
    user.createTempProfile();
    QCOMPARE(announced.count(), 2);
    QCOMPARE(names(user.farmProfiles()), "Profile-1 Profile-0 Profile-2");
    const auto* last = static_cast<FarmProfile*>(user.farmProfiles().last());
    QVERIFY(last->temp() && last->toJson()["farm_action_config"].toObject().isEmpty());
    QVERIFY(log.lines().value(1).startsWith("[D][ createTempProfile ]["));
    QVERIFY(log.lines().value(1).endsWith("] name;  \"Profile-2\""));
}

QTEST_GUILESS_MAIN(TestRecords)
#include "tst_records.moc"
