#include "models/AppModel.h"
#include "models/FarmActionConfig.h"
#include "models/FarmProfile.h"

#include <QJsonDocument>
#include <QMetaProperty>
#include <QtTest>

namespace {

QJsonObject parse(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

// The names of the properties, each with its type and, where it cannot be written, a "-".
QStringList properties(const QMetaObject& meta)
{
    QStringList list;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        list << QString::fromLatin1(property.typeName()) + ' ' + property.name() +
                    (property.isWritable() ? "" : " -");
    }
    return list;
}

QVariant anotherValue(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return !value.toBool();
    case QMetaType::Int:
        return value.toInt() + 7;
    case QMetaType::QVariantMap:
        return QVariantMap{{"job", 3}};
    default:
        return value.toString() + 'x';
    }
}

} // namespace

/// The records: what QML binds to, and how the service's JSON becomes it.
class TestRecords : public QObject
{
    Q_OBJECT

private slots:
    void properties_data();
    void properties();
    void anyValue_data();
    void anyValue();
    void keys();
    void ages_data();
    void ages();
    void device();
    void globalConfig();
    void profile();
};

void TestRecords::properties_data()
{
    QTest::addColumn<QObject*>("object");
    QTest::addColumn<QString>("expected");
    const auto row = [this](QObject* object, const char* expected) {
        object->setParent(this);
        QTest::newRow(object->metaObject()->className()) << object << QString(expected);
    };
    row(new DeviceInfo({}),
        "QString androidId|QString model|int status|QString userId|DeviceConfig* deviceConfig -|"
        "bool selected|QString lastGettingJobs|int cloneCount");
    row(new DeviceConfig, "int connectivityType|QString deviceLabel");
    row(new CloneInfo({}),
        "QString id|QString uid|QString cookies|QString deviceId|QString email|QString firstName|QString "
        "lastName|"
        "QString mailPass|QString network|QString password|bool novery|int restriction|QString secretkey|"
        "int secureFlags|int status|QString userId|bool selected|bool filtered|QString farmProfile|int place "
        "-");
    row(new GlobalConfig,
        "QString vsAndroidAppVersion|QString vsAndroidAppPath|QString facebookAppVersion|"
        "QString vsManagerAppVersion|QString vsManagerAppPath|QString vsDefinitionsVersion");
    row(new FarmProfile("p"), "QString profileName|QList<QObject*> farmActions -|bool temp");
    row(new FarmActionConfig("a"), "QString actionName|bool enable|int randomPercent");
    row(new UserInfo("t"), "QString token|QString fullName|bool isValidated|int userType|QString userName|"
                           "QString phoneNumber|QList<QObject*> farmProfiles -");
    row(new ReportsByDate, "QString date|QVariantMap data|QVariantMap details");
    row(new AppModel, "UserInfo* userInfo -|QList<QObject*> cachedUsers -|QList<QObject*> deviceList -|"
                      "QList<QObject*> cloneList -|QList<QObject*> reportList -|GlobalConfig* globalConfig -|"
                      "int totalFilteredClones -|QList<QObject*> filteredCloneList -");
}

void TestRecords::properties()
{
    QFETCH(QObject*, object);
    QFETCH(QString, expected);
    const QMetaObject& meta = *object->metaObject();
    QCOMPARE(::properties(meta).join('|'), expected);

    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (property.isConstant())
            continue;
        QCOMPARE(property.notifySignal().methodSignature(), QByteArray(property.name()) + "Changed()");
        if (!property.isWritable())
            continue;
        QSignalSpy spy(object, property.notifySignal());
        const QVariant value = anotherValue(property.read(object));
        QVERIFY(property.write(object, value));
        QCOMPARE(property.read(object), value);
        QVERIFY(property.write(object, value));
        QVERIFY2(spy.count() == 1, property.name());
    }
}

void TestRecords::anyValue_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("integer");
    QTest::addColumn<bool>("flag");
    const auto row = [](const char* json, const QString& text, int integer, bool flag) {
        QTest::newRow(json) << QByteArray(json) << text << integer << flag;
    };
    row("\"a\\u0000<b>\\n\"", QStringLiteral("a\0<b>\n"), 0, false);
    row("\"255\"", "255", 0, false);
    row("\"true\"", "true", 0, false);
    row("-0.0", "0", 0, false);
    row("1", "1", 1, false);
    row("2.75", "2.75", 2, false);
    row("2147483648", "2147483648", 0, false);
    row("-2147483649", "-2147483649", 0, false);
    row("9007199254740993", "9007199254740993", 0, false);
    row("1e20", "100000000000000000000", 0, false);
    row("1e999", "", 0, false);
    row("true", "", 0, true);
    row("null", "", 0, false);
    row("[1]", "", 0, false);
    row("{\"uid\":\"a\"}", "", 0, false);
}

void TestRecords::anyValue()
{
    QFETCH(QByteArray, json);
    const QJsonObject object =
        parse("{\"uid\":" + json + ",\"status\":" + json + ",\"novery\":" + json + "}");
    const CloneInfo clone(object.toVariantMap());
    QTEST(clone.uid(), "text");
    QTEST(clone.status(), "integer");
    QTEST(clone.novery(), "flag");
}

void TestRecords::keys()
{
    // Each text holds the name of its key.
    QVariantMap record{{"novery", true}, {"restriction", 1}, {"secure_flags", 2}, {"status", 3}};
    const QString texts =
        "id uid cookies device_id email firstname lastname mail_password network password secretkey "
        "user_id farm_profile unknown selected filtered place";
    for (const QString& key : texts.split(' '))
        record[key] = key;
    const auto values = [](const CloneInfo& clone) {
        QStringList list;
        for (int i = 1; i < clone.metaObject()->propertyCount(); ++i)
            list << clone.metaObject()->property(i).read(&clone).toString();
        return list.join(' ');
    };
    QCOMPARE(values(CloneInfo(record, 5)), "id uid cookies device_id email firstname lastname mail_password "
                                           "network password true 1 secretkey 2 3 "
                                           "user_id false true farm_profile 5");
    QCOMPARE(values(CloneInfo({})), "          false 0  0 0  false true  0");
}

void TestRecords::ages_data()
{
    QTest::addColumn<qint64>("timestampMs");
    QTest::addColumn<QString>("text");
    constexpr qint64 now = 1700000000;
    const auto row = [](const char* name, qint64 timestampMs, const char* text) {
        QTest::newRow(name) << timestampMs << QString(text);
    };
    row("now", now * 1000, "0 minutes ago");
    row("59 s", (now - 59) * 1000, "0 minutes ago");
    row("the milliseconds do not count", (now - 60) * 1000 + 999, "1 minutes ago");
    row("3599 s", (now - 3599) * 1000, "59 minutes ago");
    row("3600 s", (now - 3600) * 1000, "1 hours 0 minutes ago");
    row("3725 s", (now - 3725) * 1000, "1 hours 2 minutes ago");
    row("90000 s", (now - 90000) * 1000, "25 hours 0 minutes ago");
    row("the epoch", 0, "472222 hours 13 minutes ago");
    row("3725 s ahead", (now + 3725) * 1000, "-1 hours -2 minutes ago");
    row("as late as can be", std::numeric_limits<qint64>::max(), "-2562047315792 hours -59 minutes ago");
    row("before the epoch", -1, "-5124095103808 hours -12 minutes ago");
}

void TestRecords::ages()
{
    QFETCH(qint64, timestampMs);
    QTEST(DeviceInfo::ageText(timestampMs, 1700000000), "text");
}

void TestRecords::device()
{
    const qint64 hourAgo = QDateTime::currentMSecsSinceEpoch() - 3630 * 1000;
    const QJsonObject record =
        parse(R"({"android_id":"a1","model":"M","status":1,"user_id":"u","selected":true,
        "device_config":{"connectivity_type":1,"device_label":"shelf"},"last_getting_job_ts":)" +
              QByteArray::number(hourAgo) + "}");
    const DeviceInfo device(record.toVariantMap());
    QCOMPARE(device.androidId(), "a1");
    QCOMPARE(device.model(), "M");
    QCOMPARE(device.status(), 1);
    QCOMPARE(device.userId(), "u");
    QCOMPARE(device.selected(), false);
    QCOMPARE(device.lastGettingJobs(), "1 hours 0 minutes ago");
    QCOMPARE(device.deviceConfig()->toJson(), record["device_config"].toObject());

    const DeviceInfo bare({{"device_config", 7}});
    QCOMPARE(bare.lastGettingJobs(), "");
    QCOMPARE(bare.deviceConfig()->toJson(), parse(R"({"connectivity_type":0,"device_label":""})"));
}

void TestRecords::globalConfig()
{
    const QJsonObject object = parse(R"({"velstrand_dropbox_token":"s","velstrand_android_app_version":"12",
        "velstrand_android_app_path":"https://x/a","facebook_app_version":"34","velstrand_manager_app_version":"19",
        "velstrand_manager_app_path":"https://x/m","velstrand_definition_version":"5"})");
    GlobalConfig config;
    config.fromJson(object);
    QCOMPARE(config.vsAndroidAppVersion() + '|' + config.vsAndroidAppPath() + '|' +
                 config.facebookAppVersion() + '|' + config.vsManagerAppVersion() + '|' +
                 config.vsManagerAppPath() + '|' + config.vsDefinitionsVersion() + '|' +
                 config.dropboxToken(),
             "12|https://x/a|34|19|https://x/m|5|s");
    QCOMPARE(config.toJson(), object);

    config.fromJson(parse(R"({"velstrand_manager_app_version":20,"facebook_app_version":null,"other":"x"})"));
    QCOMPARE(config.vsManagerAppVersion(), "20");
    QJsonObject expected = object;
    expected["velstrand_manager_app_version"] = "20";
    expected.remove("facebook_app_version");
    QCOMPARE(config.toJson(), expected);
}

void TestRecords::profile()
{
    FarmProfile profile("p");
    QCOMPARE(profile.toJson(), parse(R"({"name":"p","farm_action_config":{}})"));
    profile.readActions(
        {{"unknown", 1}, {"facebook_watch", 0}, {"facebook_feed", "many"}, {"facebook_react_story", 250.0}});
    QCOMPARE(profile.toJson(), parse(R"({"name":"p","farm_action_config":
        {"facebook_feed":0,"facebook_react_story":250,"facebook_watch":0}})"));

    QStringList names;
    for (const QObject* action : profile.farmActions())
        names << action->property("actionName").toString().remove("facebook_");
    QCOMPARE(names.join(' '), "feed feed_like watch watch_like add_suggest_friend confirm_friend post_status "
                              "post_status_image add_avatar_frame react_story share_random_video "
                              "share_create_profile_page");
}

QTEST_GUILESS_MAIN(TestRecords)
#include "tst_records.moc"
