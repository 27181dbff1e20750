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
#include <tuple>
#include <vector>

using devservice::Fault;
using toolkit::Exchange;

namespace {

const QString kToken = QStringLiteral("t\"ö");
const QString kDevices = QStringLiteral("/api/v1/device/list");
using Call = std::function<bool(const VelstrandAPI&)>;

/// Gives up sooner.
struct HastyAPI : VelstrandAPI {
    using APIBase::m_timeoutSeconds;
};

} // namespace

Q_DECLARE_METATYPE(Call)

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
        static RawAnswer answer;
        static const auto saysYes = [] { return answer.bytes.find("true") != std::string_view::npos; };
        static QJsonObject object;
        row("config/get-global", "", [](auto& api) { return api.getGlobalConfig(kToken, &text); });
        row("device/list", "", [](auto& api) { return api.getDeviceList(kToken, &answer) && saysYes(); });
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
            [](auto& api) { return api.getCloneList(kToken, "", &answer) && saysYes(); });
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
        row("clone/delete", R"("clones":[{"id":"3"},{"id":"1"},{"id":"1"}],)",
            [](auto& api) { return api.deleteClones(kToken, {"3", "1", "1"}); });
        row("clone/update-farm-profile", R"("clones":[{"id":"7"}],"farm_profile":"p",)",
            [](auto& api) { return api.updateCloneFarmProfile(kToken, {"7"}, "p"); });
    }

    void requestsAreExact()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, body);
        QFETCH(Call, call);
        m_fixture->clearRequests();
        m_fixture->setReply(path, 200, R"({"success":false,"data":{}})");

        const VelstrandAPI api;
        QVERIFY(!call(api));
        const auto requests = m_fixture->requests();
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
        const auto row = [](const char* name, int status, const QByteArray& body, int code, bool success,
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
        m_fixture->setReply(kDevices, status, body);
        const ApiResponse response = VelstrandAPI().sendPostRequest(kDevices, {}, Exchange::Read);
        QTEST(int(response.code), "code");
        QTEST(response.success, "success");
        QTEST(response.message, "message");
        QTEST(response.data.toJson(QJsonDocument::Compact), "data");
        QCOMPARE(m_fixture->requests(kDevices).last().body, QByteArray("{}"));
    }

    void readingOperations()
    {
        // The reply, whether it is the answer to those who want an object, the configuration's text.
        const std::tuple<QByteArray, bool, QString> replies[] = {
            {R"({"success":true,"data":[2]})", false, "[2]"},
            {R"({"success":true,"data":{"a": 2}})", true, R"({"a":2})"},
            {R"({"success":true})", false, ""},
            {R"({"success":false,"data":[2]})", false, "untouched"},
            {R"({"data":{"a":2}})", false, "untouched"}};
        const VelstrandAPI api;
        for (const auto& [reply, object, text] : replies) {
            for (const char* path :
                 {"device/list", "clone/list", "user/get-info", "reports/get", "config/get-global"})
                m_fixture->setReply(QStringLiteral("/api/v1/") + path, 200, reply);
            // The lists are handed out as they came.
            RawAnswer devices, clones;
            QVERIFY(api.getDeviceList(kToken, &devices) && devices.bytes == reply.toStdString());
            QVERIFY(api.getCloneList(kToken, QString(), &clones) && clones.bytes == devices.bytes);
            const QJsonObject oldRecord{{"untouched", true}};
            QJsonObject user = oldRecord, reports = oldRecord;
            const QJsonObject record = object ? QJsonObject{{"a", 2}} : oldRecord;
            QVERIFY(api.getUserInfo(kToken, &user) == object && user == record);
            QVERIFY(api.getReports(kToken, {}, &reports) == object && reports == record);
            QString config = QStringLiteral("untouched");
            QVERIFY(api.getGlobalConfig(kToken, &config) == object && config == text);
        }
    }

    void unanswered()
    {
        VelstrandAPI api;
        const auto message = [&] {
            RawAnswer answer;
            const bool done = api.getDeviceList(m_fixture->userToken(), &answer);
            const auto response = api.sendPostRequest(kDevices, {}, Exchange::Read);
            return done || response.success || !answer.bytes.empty() ? QString() : response.message;
        };
        for (const Fault fault : {Fault::Cut, Fault::DropAfterwards}) {
            m_fixture->setFault(kDevices, fault);
            QVERIFY(!message().isEmpty());
        }
        m_fixture->clearFaults();
        m_fixture->clearRequests();
        for (const char* anchors : {"", "/nonexistent.pem"}) {
            api.setTrustAnchors(anchors);
            QVERIFY(!message().isEmpty());
        }
        QVERIFY(m_fixture->requests().isEmpty());
        api.setBaseUrl("https://localhost:1"); // where nobody listens
        QVERIFY(!message().isEmpty());
        QCOMPARE(int(api.sendPostRequest(kDevices, {}, Exchange::Read).code), 0);
    }

    void origins()
    {
        const std::pair<QByteArray, QByteArray> targets[] = {
            {"https://farm.example//", "farm.example:443"},
            {"https://farm.example:8443/", "farm.example:8443"},
            {"https://[2001:db8::1]", "[2001:db8::1]:443"}};
        for (const auto& [origin, target] : targets) {
            // A proxy is told whom the client wants to reach.
            RawServer proxy(RawServer::Always("HTTP/1.1 503 No\r\nContent-Length: 0\r\n\r\n"));
            std::pair<const char*, QByteArray> environment[] = {
                {"VELSTRAND_SERVICE_URL", origin},
                {"https_proxy", QByteArray::fromStdString(proxy.Origin())},
                {"no_proxy", ""}};
            const auto exchangeEnvironment = [&] {
                for (auto& [name, value] : environment)
                    qputenv(name, std::exchange(value, qgetenv(name)));
            };
            exchangeEnvironment();
            const VelstrandAPI api;
            api.sendPostRequest("/x", {}, Exchange::Write);
            api.pushDefinition(kToken, 1, QCoreApplication::applicationFilePath());
            exchangeEnvironment();

            QVERIFY(!api.baseUrl().endsWith('/') && origin.startsWith(api.baseUrl().toUtf8()));
            QCOMPARE(proxy.Requests().size(), size_t(2));
            for (const std::string& request : proxy.Requests())
                QVERIFY2(request.rfind(("CONNECT " + target + ' ').toStdString(), 0) == 0, request.c_str());
        }
    }

    void timeouts()
    {
        for (const auto mode : {RawServer::Mode::NoHandshake, RawServer::Mode::Tls}) {
            HastyAPI api;
            QCOMPARE(api.m_timeoutSeconds, 30);
            api.m_timeoutSeconds = 1;
            QTemporaryFile file;
            QVERIFY(file.open());
            std::future<bool> push;
            // The last, so that its end ends the push.
            RawServer server([](auto& connection) { connection.Hang(); }, mode);
            const QString origin = QString::fromStdString(server.Origin());
            api.setBaseUrl(origin);
            api.setTrustAnchors(QString::fromStdString(server.CaFile().string()));
            push = std::async([&] { return api.pushDefinition(kToken, 1, file.fileName()); });
            QTRY_COMPARE(server.Connections(), 1);

            QElapsedTimer elapsed;
            elapsed.start();
            const auto message = api.sendPostRequest("/x", {}, Exchange::Read).message;
            QVERIFY2(message.startsWith("Timed out: "), qPrintable(message));
            QVERIFY(elapsed.restart() < 25000);
            QVERIFY(!api.getDefinition(kToken, 1) && elapsed.restart() < 25000);
            QVERIFY(!api.downloadFile(origin, file.fileName()) && elapsed.restart() < 25000);
            // The push goes by the toolkit's own.
            QVERIFY(push.wait_for(std::chrono::seconds(0)) == std::future_status::timeout);
        }
    }

    void concurrentRequests()
    {
        const VelstrandAPI api;
        const QString token = m_fixture->userToken();
        RawAnswer first;
        QVERIFY(api.getDeviceList(token, &first));
        std::atomic<int> done{0};
        std::vector<std::thread> threads(8);
        for (auto& thread : threads)
            thread = std::thread([&] {
                for (int k = 0; k < 20; ++k) {
                    RawAnswer answer;
                    done += api.getDeviceList(token, &answer) && answer.bytes == first.bytes;
                }
            });
        for (auto& thread : threads)
            thread.join();
        QCOMPARE(done.load(), 160);
    }

    void logLines()
    {
        m_fixture->setReply("/api/v1/user/get-info", 200, R"({"success":true,"data":{"a":1}})");
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
