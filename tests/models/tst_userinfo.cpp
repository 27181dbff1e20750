#include "models/FarmProfile.h"
#include "models/UserInfo.h"
#include "tests/support/LogCapture.h"

#include <QJsonDocument>
#include <QPointer>
#include <QtTest>

#include <atomic>
#include <thread>

namespace {

QJsonObject parse(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

QString profileNames(const UserInfo& user)
{
    QStringList names;
    for (const QObject* profile : user.farmProfiles())
        names << profile->property("profileName").toString();
    return names.join('|');
}

} // namespace

/// The session's record: the token, the service's answer about it, the farm profiles.
class TestUserInfo : public QObject
{
    Q_OBJECT

private slots:
    void answers_data();
    void answers();
    void tokenOnManyThreads();
    void profilesAreReplacedWhole();
    void tempProfiles_data();
    void tempProfiles();
};

void TestUserInfo::answers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("expected"); // token|validated|full name|type|user name|phone|profiles
    const auto row = [](const char* name, const char* answer, const char* expected) {
        QTest::newRow(name) << QByteArray(answer) << QString(expected);
    };
    const char* rejected = "old|0|Old|3|olduser|111|Kept";
    row("all fields", R"({"token":"new","fullname":"N","user_type":255,"username":"n","phonenumber":"2",
        "farm_profiles":{"b":{},"a":{}}})",
        "new|1|N|255|n|2|a,b");
    row("only the token", R"({"token":"old"})", "old|1|Old|3|olduser|111|Kept");
    row("a type that is no number", R"({"token":"new","user_type":"255"})", "new|1|Old|0|olduser|111|Kept");
    row("no profiles any more", R"({"token":"new","farm_profiles":{}})", "new|1|Old|3|olduser|111|");
    row("profiles of another shape", R"({"token":"new","farm_profiles":[{}]})", "new|1|Old|3|olduser|111|");
    row("an empty token", R"({"token":"","fullname":"N"})", rejected);
    row("no token", R"({"fullname":"N","farm_profiles":{}})", rejected);
    row("a token that is no text", R"({"token":7,"fullname":"N"})", rejected);
}

void TestUserInfo::answers()
{
    QFETCH(QByteArray, answer);
    for (const bool validated : {false, true}) {
        UserInfo user("old");
        user.applyInfo(parse(R"({"token":"old","fullname":"Old","user_type":3,"username":"olduser",
            "phonenumber":"111","farm_profiles":{"Kept":{}}})"));
        user.setIsValidated(validated);
        const bool accepted = user.applyInfo(parse(answer));
        QCOMPARE(accepted, user.isValidated());
        const QString seen = QStringLiteral("%1|%2|%3|%4|%5|%6|%7")
                                 .arg(user.token(), QString::number(user.isValidated()), user.fullName(),
                                      QString::number(user.userType()), user.userName(), user.phoneNumber(),
                                      profileNames(user).replace('|', ','));
        QTEST(seen, "expected");
        user.setToken("");
        QVERIFY(!user.isValidated());
    }
}

void TestUserInfo::tokenOnManyThreads()
{
    auto user = std::make_unique<UserInfo>("a");
    std::atomic_bool stop{false};
    std::atomic_int torn{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back([&stop, &torn, read = user->tokenReader()] {
            while (!stop) {
                const QString token = read();
                if (token != QString(token.size(), token.isEmpty() ? QChar() : token[0]))
                    ++torn;
            }
        });
    }
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; clock.elapsed() < 200; ++i)
        user->setToken(QString(i % 40, QChar('a' + i % 20)));
    const TokenReader read = user->tokenReader();
    user->setToken("zzz");
    user.reset();
    stop = true;
    for (std::thread& reader : readers)
        reader.join();
    QCOMPARE(torn, 0);
    QCOMPARE(read(), "zzz");
}

void TestUserInfo::profilesAreReplacedWhole()
{
    UserInfo user("t");
    user.applyInfo(parse(R"({"token":"t","farm_profiles":{"a":{"facebook_feed":5},"b":{}}})"));
    const QPointer<QObject> old = user.farmProfiles().first();
    QCOMPARE(static_cast<FarmProfile*>(old.data())->toJson(),
             parse(R"({"name":"a","farm_action_config":{"facebook_feed":5}})"));

    int announced = 0;
    connect(&user, &UserInfo::farmProfilesChanged, [&] {
        ++announced;
        QVERIFY(old);
        QVERIFY(!user.farmProfiles().contains(old));
    });
    user.applyInfo(parse(R"({"token":"t","farm_profiles":{"a":{},"z":{}}})"));
    QCOMPARE(announced, 1);
    QCOMPARE(profileNames(user), "a|z");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!old);
}

void TestUserInfo::tempProfiles_data()
{
    QTest::addColumn<QByteArray>("existing");
    QTest::addColumn<QString>("names");
    QTest::newRow("none") << QByteArray("{}") << "Profile-0|Profile-1";
    QTest::newRow("a gap is filled") << QByteArray(R"({"Profile-0":{},"Profile-2":{}})")
                                     << "Profile-0|Profile-2|Profile-1|Profile-3";
    QTest::newRow("names differ by case")
        << QByteArray(R"({"profile-0":{}})") << "profile-0|Profile-0|Profile-1";
}

void TestUserInfo::tempProfiles()
{
    QFETCH(QByteArray, existing);
    UserInfo user("t");
    user.applyInfo(parse("{\"token\":\"t\",\"farm_profiles\":" + existing + "}"));
    QSignalSpy announced(&user, &UserInfo::farmProfilesChanged);
    const LogCapture log;
    user.createTempProfile();
    user.createTempProfile();
    QCOMPARE(announced.count(), 2);
    QTEST(profileNames(user), "names");

    const auto* last = static_cast<FarmProfile*>(user.farmProfiles().last());
    QVERIFY(last->temp());
    QCOMPARE(last->farmActions().size(), 12);
    QVERIFY(last->toJson()["farm_action_config"].toObject().isEmpty());
    const QRegularExpression line("^\\[D\\]\\[ createTempProfile \\]\\[ \\d+ \\] name;  \"" +
                                  last->profileName() + "\"$");
    QVERIFY2(line.match(log.lines().value(1)).hasMatch(), qPrintable(log.lines().join('\n')));
}

QTEST_GUILESS_MAIN(TestUserInfo)
#include "tst_userinfo.moc"
