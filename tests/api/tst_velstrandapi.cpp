#include "api/VelstrandAPI.h"

#include "devservice/DevService.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RawServer.h"
#include "tests/support/ServiceFixture.h"
#include "toolkit/HttpClient.h"

#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QtTest>

#include <atomic>
#include <functional>
#include <future>
#include <thread>
#include <vector>

using devservice::Fault;

namespace {

const QString kToken = QStringLiteral("t\"ö");
using Call = std::function<bool(const VelstrandAPI&)>;

/// Gives up sooner.
struct HastyAPI : VelstrandAPI {
    using APIBase::m_timeoutSeconds;
};

} // namespace

Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(Fault)
Q_DECLARE_METATYPE(RawServer::Mode)

/// The service client against the development service, over TLS.
class TestVelstrandAPI : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture->clearFaults(); }
    void cleanup() { m_fixture->clearRequests(); }

    void requestsAreExact_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<Call>("call");
        const auto row = [](const char* path, const char* rest, const Call& call) {
            QTest::newRow(path) << QStringLiteral("/api/v1/") + path
                                << QByteArray("{") + rest + "\"token\":\"t\\\"ö\"}" << call;
        };
        static QString text;
        static QJsonArray array;
        static QJsonObject object;
        row("config/get-global", "", [](auto& api) { return api.getGlobalConfig(kToken, &text); });
        row("device/list", "", [](auto& api) { return api.getDeviceList(kToken, &array); });
        row("device/confirm", R"("device_info":{"android_id":"a 1"},)",
            [](auto& api) { return api.confirmDevice(kToken, "a 1"); });
        row("device/delete", R"("device_info":{"android_id":""},)",
            [](auto& api) { return api.deleteDevice(kToken, ""); });
        row("device/save-config",
            R"("android_id":"a","device_config":{"connectivity_type":1,"device_label":"<b>"},)",
            [](auto& api) {
                return api.saveDeviceConfig(kToken, "a", {{"device_label", "<b>"}, {"connectivity_type", 1}});
            });
        row("user/get-info", "", [](auto& api) { return api.getUserInfo(kToken, &object); });
        row("clone/list", R"("android_id":"",)",
            [](auto& api) { return api.getCloneList(kToken, "", &array); });
        row("clone/add", R"("clones":[{"uid":"1"}],"network":"tiktok",)",
            [](auto& api) { return api.addClones(kToken, "tiktok", {QJsonObject{{"uid", "1"}}}); });
        row("config/update-global", R"("global_config":{"k":"v"},)",
            [](auto& api) { return api.updateGlobalConfig(kToken, {{"k", "v"}}); });
        row("reports/get", R"("date_list":["2024-3-1","2024-2-29"],)",
            [](auto& api) { return api.getReports(kToken, {"2024-3-1", "2024-2-29"}, &object); });
        row("user/upsert-farm-profile", R"("farm_profile":{"farm_action_config":{},"name":"p"},)",
            [](auto& api) {
                return api.upsertFarmProfile(kToken, {{"name", "p"}, {"farm_action_config", QJsonObject()}});
            });
        row("clone/reset-live", R"("clones":[],)", [](auto& api) { return api.resetLiveClones(kToken, {}); });
        row("clone/delete", R"("clones":[{"id":"2"},{"id":"1"},{"id":"2"}],)",
            [](auto& api) { return api.deleteClones(kToken, {"2", "1", "2"}); });
        row("clone/update-farm-profile", R"("clones":[{"id":"7"}],"farm_profile":"p",)",
            [](auto& api) { return api.updateCloneFarmProfile(kToken, {"7"}, "p"); });
    }

    void requestsAreExact()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, body);
        QFETCH(Call, call);
        m_fixture.service().clearRequests();
        m_fixture.service().setReply(path, 200, R"({"success":false,"data":{}})");

        const VelstrandAPI api;
        QVERIFY(!call(api));
        const auto requests = m_fixture.service().requests();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests[0].path, path);
        QCOMPARE(requests[0].body, body);
        QCOMPARE(requests[0].headers.value("Content-Type"), QStringLiteral("application/json"));

        const bool array = path.endsWith("/list");
        m_fixture->setReply(path, 200,
                            array ? R"({"success":true,"data":[1]})" : R"({"success":true,"data":{}})");
        QVERIFY(call(api)); // which leaves a connection

        // A connection dies once the request is out: a read is asked again, a change is not.
        const bool reads = array || path.contains("/get");
        m_fixture->setFault(path, Fault::DropAfterwards);
        m_fixture->clearRequests();
        QVERIFY(!call(api));
        QCOMPARE(m_fixture->requests(path).size() > 1, reads);
    }

    void envelope_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("success");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("data");
        const auto row = [](const char* name, int status, QByteArray body, int code, bool success,
                            const char* message, const char* data) {
            QTest::newRow(name) << status << body << code << success << QString::fromUtf8(message)
                                << QByteArray(data);
        };
        row("whole", 200, R"({"code":7,"success":true,"message":"hé","data":[1]})", 7, true, "hé", "[1]");
        row("object", 200, R"({"success":true,"data":{"a":1}})", 200, true, "", R"({"a":1})");
        row("no data", 200, R"({"success":true})", 200, true, "", "");
        row("data text", 200, R"({"success":true,"data":"x"})", 200, true, "", "");
        row("data number", 200, R"({"success":true,"data":5})", 200, true, "", "");
        row("code cut to a byte", 200, R"({"code":300})", 44, false, "", "");
        row("code 256", 200, R"({"code":256})", 0, false, "", "");
        row("code is no number", 200, R"({"code":"9"})", 0, false, "", "");
        row("success is no boolean", 200, R"({"success":"true"})", 200, false, "", "");
        row("message is no text", 200, R"({"success":true,"message":5})", 200, true, "", "");
        row("error with an envelope", 404, R"({"success":false,"message":"gone"})", 148, false, "gone", "");
        row("error whose envelope says yes", 500, R"({"success":true,"data":[]})", 244, true, "", "[]");
        row("error page", 502, "<html>", 246, false, "", "");
        row("not JSON", 200, "{\"success\":true", 200, false, "", "");
        row("an array", 200, R"([{"success":true}])", 200, false, "", "");
        row("nested too deep", 200, QByteArray(5000, '['), 200, false, "", "");
        row("broken UTF-8", 200, "{\"success\":true,\"message\":\"\xff\"}", 200, false, "", "");
        row("no body", 200, "", 200, false, "No response body", "");
    }

    void envelope()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        const QString path = QStringLiteral("/api/v1/device/list");
        m_fixture.service().setReply(path, status, body);
        const ApiResponse response = VelstrandAPI().sendPostRequest(path, {}, toolkit::Exchange::Read);
        QTEST(int(response.code), "code");
        QTEST(response.success, "success");
        QTEST(response.message, "message");
        QTEST(response.data.toJson(QJsonDocument::Compact), "data");
        QCOMPARE(m_fixture.service().requests(path).last().body, QByteArray("{}"));
    }

    void readingOperations_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("array");
        QTest::addColumn<bool>("object");
        QTest::addColumn<QString>("configText");
        QTest::newRow("array") << QByteArray(R"({"success":true,"data":[2]})") << true << false << "[2]";
        QTest::newRow("object") << QByteArray(R"({"success":true,"data":{"a": 2}})") << false << true
                                << R"({"a":2})";
        QTest::newRow("none") << QByteArray(R"({"success":true})") << false << false << "";
        QTest::newRow("refused") << QByteArray(R"({"success":false,"data":[2]})") << false << false
                                 << "untouched";
        QTest::newRow("refused object") << QByteArray(R"({"data":{"a":2}})") << false << false << "untouched";
    }

    void readingOperations()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, array);
        QFETCH(bool, object);
        for (const char* path :
             {"device/list", "clone/list", "user/get-info", "reports/get", "config/get-global"})
            m_fixture.service().setReply(QStringLiteral("/api/v1/") + path, 200, reply);

        const VelstrandAPI api;
        QJsonArray devices{"untouched"}, clones = devices;
        const QJsonArray expectedList = array ? QJsonArray{2} : devices;
        QCOMPARE(api.getDeviceList(kToken, &devices), array);
        QCOMPARE(api.getCloneList(kToken, QString(), &clones), array);
        QCOMPARE(devices, expectedList);
        QCOMPARE(clones, expectedList);
        QJsonObject user{{"untouched", true}}, reports = user;
        const QJsonObject expected = object ? QJsonObject{{"a", 2}} : user;
        QCOMPARE(api.getUserInfo(kToken, &user), object);
        QCOMPARE(api.getReports(kToken, {}, &reports), object);
        QCOMPARE(user, expected);
        QCOMPARE(reports, expected);
        QString config = QStringLiteral("untouched");
        QCOMPARE(api.getGlobalConfig(kToken, &config), object);
        QTEST(config, "configText");
    }

    void failures_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<bool>("toldByToolkit");
        QTest::newRow("cut answer") << Fault::Cut << true;
        QTest::newRow("dropped after the work") << Fault::DropAfterwards << true;
        QTest::newRow("error page") << Fault::HttpError << false;
        QTest::newRow("not JSON") << Fault::NotJson << false;
        QTest::newRow("no body") << Fault::NoBody << true;
        QTest::newRow("refused") << Fault::Refuse << true;
        QTest::newRow("wrong shape") << Fault::WrongShape << false;
    }

    void failures()
    {
        QFETCH(Fault, fault);
        const QString path = QStringLiteral("/api/v1/device/list");
        m_fixture.service().setFault(path, fault);
        const VelstrandAPI api;
        QJsonArray array{"untouched"};
        QVERIFY(!api.getDeviceList(m_fixture.service().userToken(), &array));
        QCOMPARE(array, QJsonArray{"untouched"});
        const auto response =
            api.sendPostRequest(path, {{"token", m_fixture.service().userToken()}}, toolkit::Exchange::Read);
        QTEST(!response.message.isEmpty(), "toldByToolkit");
        m_fixture.service().setFault(path, Fault::None);
        QVERIFY(api.getDeviceList(m_fixture.service().userToken(), &array));
    }

    void origins_data()
    {
        QTest::addColumn<QByteArray>("origin");
        QTest::addColumn<QByteArray>("target");
        const auto row = [](const char* origin, const char* target) {
            QTest::newRow(origin) << QByteArray(origin) << QByteArray(target);
        };
        row("https://farm.example", "farm.example:443");
        row("https://farm.example//", "farm.example:443");
        row("https://farm.example:8443/", "farm.example:8443");
        row("https://[2001:db8::1]", "[2001:db8::1]:443");
        row("https://[2001:db8::1]:8443", "[2001:db8::1]:8443");
    }

    void origins()
    {
        QFETCH(QByteArray, origin);
        QFETCH(QByteArray, target);
        // A proxy is told whom the client wants to reach.
        RawServer proxy(RawServer::Always("HTTP/1.1 503 No\r\nContent-Length: 0\r\n\r\n"));
        const std::pair<const char*, QByteArray> environment[] = {
            {"VELSTRAND_SERVICE_URL", origin},
            {"https_proxy", QByteArray::fromStdString(proxy.Origin())},
            {"no_proxy", ""}};
        QVector<QByteArray> before;
        for (const auto& [name, value] : environment) {
            before.append(qgetenv(name));
            qputenv(name, value);
        }
        const VelstrandAPI api;
        api.sendPostRequest("/x", {}, toolkit::Exchange::Write);
        api.pushDefinition(kToken, 1, QCoreApplication::applicationFilePath());
        for (int i = 0; i < before.size(); ++i)
            before[i].isNull() ? qunsetenv(environment[i].first) : qputenv(environment[i].first, before[i]);

        QVERIFY(!api.baseUrl().endsWith('/') && origin.startsWith(api.baseUrl().toUtf8()));
        QCOMPARE(proxy.Requests().size(), size_t(2));
        for (const std::string& request : proxy.Requests())
            QVERIFY2(request.rfind(("CONNECT " + target + ' ').toStdString(), 0) == 0, request.c_str());
    }

    void timeouts_data()
    {
        QTest::addColumn<RawServer::Mode>("mode");
        QTest::newRow("no connection") << RawServer::Mode::NoHandshake;
        QTest::newRow("no answer") << RawServer::Mode::Tls;
    }

    void timeouts()
    {
        QFETCH(RawServer::Mode, mode);
        auto server = std::make_unique<RawServer>(
            [](RawServer::Connection& connection) {
                connection.ReceiveSome(1);
                connection.Hang();
            },
            mode);
        HastyAPI api;
        QCOMPARE(api.m_timeoutSeconds, 30);
        api.m_timeoutSeconds = 1;
        const QString origin = QString::fromStdString(server->Origin());
        api.setBaseUrl(origin);
        api.setTrustAnchors(QString::fromStdString(server->CaFile().string()));
        QTemporaryFile file;
        QVERIFY(file.open());
        const auto push =
            std::async(std::launch::async, [&] { return api.pushDefinition(kToken, 1, file.fileName()); });
        QTRY_COMPARE(server->Connections(), 1);

        QElapsedTimer elapsed;
        elapsed.start();
        const auto message = api.sendPostRequest("/x", {}, toolkit::Exchange::Read).message;
        QVERIFY2(message.startsWith("Timed out: "), qPrintable(message));
        QVERIFY(elapsed.restart() < 25000);
        QVERIFY(!api.getDefinition(kToken, 1));
        QVERIFY(elapsed.restart() < 25000);
        QVERIFY(!api.downloadFile(origin, file.fileName()));
        QVERIFY(elapsed.restart() < 25000);
        // The push goes by the toolkit's own.
        QVERIFY(push.wait_for(std::chrono::seconds(0)) == std::future_status::timeout);
        server.reset();
    }

    void unreachable()
    {
        VelstrandAPI api;
        {
            devservice::Options options;
            options.devices = options.clones = 0;
            devservice::DevService gone(options);
            QVERIFY(gone.start());
            api.setBaseUrl(gone.origin());
        }
        const auto response = api.sendPostRequest("/x", {}, toolkit::Exchange::Read);
        QVERIFY(!response.success);
        QCOMPARE(int(response.code), 0);
        QVERIFY2(!response.message.isEmpty(), "the toolkit's words are passed on");
    }

    void untrusted()
    {
        m_fixture.service().clearRequests();
        VelstrandAPI api;
        api.setTrustAnchors(QString());
        const auto refused = api.sendPostRequest("/api/v1/device/list", {}, toolkit::Exchange::Read);
        QVERIFY(!refused.success && !refused.message.isEmpty());
        api.setTrustAnchors(QStringLiteral("/nonexistent.pem"));
        QVERIFY(!api.sendPostRequest("/api/v1/device/list", {}, toolkit::Exchange::Read).message.isEmpty());
        QVERIFY(m_fixture.service().requests().isEmpty());
    }

    void concurrentRequests()
    {
        const VelstrandAPI api;
        const QString token = m_fixture.service().userToken();
        std::atomic<int> done{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] {
                for (int k = 0; k < 20; ++k) {
                    QJsonArray array;
                    done += api.getDeviceList(token, &array) && array.size() == 40;
                }
            });
        for (auto& thread : threads)
            thread.join();
        QCOMPARE(done.load(), 160);
    }

    void logLines()
    {
        m_fixture.service().setReply("/api/v1/user/get-info", 200, R"({"success":true,"data":{"a":1}})");
        const LogCapture log;
        QJsonObject user;
        VelstrandAPI api;
        api.getUserInfo("secret", &user);
        api.updateGlobalConfig("secret", {});
        const QStringList lines = log.lines();
        const QString prefix = QStringLiteral("\\[D\\]\\[ %1 \\]\\[ \\d+ \\]");
        const auto matches = [&](int line, const char* operation, const QString& rest) {
            const QRegularExpression form('^' + prefix.arg(operation) + rest + '$');
            return form.match(lines.value(line)).hasMatch();
        };
        QVERIFY(matches(0, "sendPostRequest",
                        QStringLiteral(" url:  \"%1/api/v1/user/get-info\"").arg(api.baseUrl())));
        QVERIFY(matches(1, "sendPostRequest", R"( params:  QJsonObject\(\{"token":"secret"\}\))"));
        QVERIFY(matches(2, "getUserInfo", R"( doc:  QJsonDocument\(\{"a":1\}\))"));
        QVERIFY(matches(3, "updateGlobalConfig", ""));
    }

private:
    ServiceFixture m_fixture;
};

QTEST_GUILESS_MAIN(TestVelstrandAPI)
#include "tst_velstrandapi.moc"
