#include "tests/support/RawServer.h"
#include "toolkit/HttpClient.h"

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <utility>

using toolkit::Exchange;
using toolkit::HttpClient;
using Connection = RawServer::Connection;
using Mode = RawServer::Mode;

namespace {

/// A session keeps the newest of its connections, and libcurl tells their ages apart by the millisecond.
void AwaitNextMillisecond()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

} // namespace

Q_DECLARE_METATYPE(std::string)

/// Connections that are kept, and what becomes of a request when one dies.
class TestConnections : public QObject
{
    Q_OBJECT

private slots:
    void init() { AwaitNextMillisecond(); }

    void repeatedRead()
    {
        // A kept connection takes the request and dies: libcurl asks again, which a read may.
        RawServer server([](Connection& connection) {
            connection.Receive();
            connection.Send(RawServer::Ok("{}"));
            connection.Receive();
        });
        for (int i = 0; i < 2; ++i)
            QVERIFY(HttpClient().PostJson(server.Origin(), "{}", Exchange::Read));
        QCOMPARE(server.Requests().size(), std::size_t(3));
    }

    void dyingConnection_data()
    {
        // How much of a write the server takes, and what it answers, before the connection dies.
        QTest::addColumn<std::string>("until");
        QTest::addColumn<std::string>("answer");
        QTest::addColumn<bool>("deadBefore");
        const std::string whole = RawServer::Ok("{}");
        const auto row = [](const char* name, const std::string& until, const std::string& answer = {},
                            bool deadBefore = false) {
            QTest::newRow(name) << until << answer << deadBefore;
        };
        row("before the write", "END", whole, true);
        row("before the head", "");
        row("in the head", "POST /w");
        row("after the head", "\r\n\r\n");
        row("in the body", "\r\n\r\n{");
        row("after the body", "END");
        row("in the answer's head", "END", whole.substr(0, 20));
        row("in the answer's body", "END", whole.substr(0, whole.size() - 1));
        row("after the answer", "END", whole);
    }
    void dyingConnection()
    {
        QFETCH(std::string, until);
        QFETCH(std::string, answer);
        QFETCH(bool, deadBefore);
        const bool succeeds = answer == RawServer::Ok("{}");
        for (int variant = 0; variant < 32; ++variant) {
            const bool kept = variant & 1;
            const bool byReset = variant & 2;
            const Mode mode = variant & 4 ? Mode::Tls : Mode::Plain;
            const std::string body = std::string(variant & 8 ? 4u << 20 : 1, '{') + "END";
            const bool form = variant & 16;
            std::atomic<int> writes{0};
            std::promise<void> readIsOver;
            RawServer server(
                [&](Connection& connection) {
                    if (kept && server.Connections() == 1) {
                        connection.Receive();
                        connection.Send(RawServer::Ok("{}"));
                        if (deadBefore)
                            connection.Die(byReset);
                        readIsOver.set_value();
                    }
                    if (!connection.AwaitBytes())
                        return;
                    ++writes;
                    std::string taken;
                    std::string more = "?";
                    for (std::size_t from = 0;
                         !more.empty() && taken.find(until, from) == std::string::npos;) {
                        from = taken.size() - std::min(taken.size(), until.size());
                        more = connection.ReceiveSome(until == "END" ? 65536 : 1);
                        taken += more;
                    }
                    connection.Send(answer);
                    connection.Die(byReset);
                },
                mode);
            HttpClient client;
            client.SetReadTimeout(5);
            if (mode == Mode::Tls)
                client.SetTrustAnchors(server.CaFile());
            if (kept) {
                AwaitNextMillisecond();
                QVERIFY(client.PostJson(server.Origin(), "{}", Exchange::Read));
                readIsOver.get_future().wait();
            }
            toolkit::HttpRequest request;
            request.SetVerb("POST");
            request.Path("/w");
            request.SetContentType("multipart/form-data");
            request.AddParam("body", body);
            const auto got =
                form ? client.SynchronousRequest("localhost", server.Port(), mode == Mode::Tls, request)
                     : client.PostJson(server.Origin() + "/w", body);
            const auto context = QByteArray::number(variant);
            QVERIFY2((got != nullptr) == succeeds, context + client.LastErrorText().c_str());
            QVERIFY2(client.LastErrorText().empty() == succeeds, context);
            QVERIFY2(writes == 1, context);
            QVERIFY2(server.Connections() == (kept && deadBefore ? 2 : 1), context);
        }
    }

    void connectionsAreKept()
    {
        RawServer server(RawServer::Always(RawServer::Ok("{}")), Mode::Tls);
        const auto connectionsAfter = [&](Exchange exchange) {
            AwaitNextMillisecond();
            HttpClient client;
            client.SetTrustAnchors(server.CaFile());
            return client.PostJson(server.Origin(), "{}", exchange) ? server.Connections() : -1;
        };
        QCOMPARE(connectionsAfter(Exchange::Write), 1);
        QCOMPARE(connectionsAfter(Exchange::Read), 1);
        QCOMPARE(connectionsAfter(Exchange::Read), 1);
        // A write takes the connection of a read, and none that has served a write or been idle for long.
        QCOMPARE(connectionsAfter(Exchange::Write), 1);
        QCOMPARE(connectionsAfter(Exchange::Write), 2);
        QCOMPARE(connectionsAfter(Exchange::Read), 2);
        std::this_thread::sleep_for(std::chrono::milliseconds(3100));
        QCOMPARE(connectionsAfter(Exchange::Write), 3);
    }

    void unaskedAnswer()
    {
        // What comes before the next request must not be taken for its answer.
        std::promise<Connection*> peer;
        RawServer server([&, first = true](Connection& connection) mutable {
            connection.Receive();
            connection.Send(RawServer::Ok("asked"));
            if (std::exchange(first, false))
                peer.set_value(&connection);
            connection.Hang();
        });
        const auto read = [&] { return HttpClient().PostJson(server.Origin(), "{}", Exchange::Read); };
        QVERIFY(read());
        QVERIFY(peer.get_future().get()->Send(RawServer::Ok("forged")));
        const auto second = read();
        QVERIFY(second && second->BodyStr() == "asked");
    }

    void foldedFirstHeader()
    {
        // Whether libcurl takes it or not, it must not use freed memory (found by a sanitizer).
        RawServer server([](Connection& connection) {
            for (const char* line : {"X: 1\r\n", " Folded: 1\r\n", "X: 1\r\n"}) {
                connection.Receive();
                connection.Send(std::string("HTTP/1.1 200 OK\r\n") + line + "Content-Length: 2\r\n\r\n{}");
            }
        });
        for (int i = 0; i < 3; ++i)
            QVERIFY(HttpClient().PostJson(server.Origin(), "{}", Exchange::Read) || i == 1);
    }
};

QTEST_GUILESS_MAIN(TestConnections)
#include "tst_connections.moc"
