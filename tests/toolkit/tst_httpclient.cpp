#include "tests/support/RawServer.h"
#include "toolkit/HttpClient.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <archive.h>
#include <archive_entry.h>

#include <thread>

using toolkit::Exchange;
using toolkit::HttpClient;
using Connection = RawServer::Connection;

namespace {

enum class End { Keep, Cut, TlsClose };

std::string GzippedZeros(std::size_t bytes)
{
    std::string packed(1u << 20, '\0');
    std::size_t used = 0;
    archive* const writer = archive_write_new();
    archive_write_set_format_raw(writer);
    archive_write_add_filter_gzip(writer);
    archive_write_open_memory(writer, packed.data(), packed.size(), &used);
    archive_entry* const entry = archive_entry_new();
    archive_entry_set_pathname(entry, "zeros");
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_write_header(writer, entry);
    const std::string zeros(1u << 20, '\0');
    for (std::size_t done = 0; done < bytes; done += zeros.size())
        archive_write_data(writer, zeros.data(), zeros.size());
    archive_write_close(writer);
    archive_entry_free(entry);
    archive_write_free(writer);
    packed.resize(used);
    return packed;
}

void Wait(int ms)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

} // namespace

Q_DECLARE_METATYPE(End)
Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(toolkit::Exchange)

class TestHttpClient : public QObject
{
    Q_OBJECT

private slots:
    void answer_data();
    void answer();
    void hostileSize();
    void requestOnTheWire();
    void refusedBeforeSending_data();
    void refusedBeforeSending();
    void silence_data();
    void silence();
    void slowButAlive();
    void connectTimeout();
    void deadConnection_data();
    void deadConnection();
    void connectionsAreKept();
    void trust();
    void notValid();
};

void TestHttpClient::answer_data()
{
    QTest::addColumn<std::string>("response");
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("body");
    QTest::addColumn<bool>("whole");

    const auto row = [](const char* name, const std::string& response, End end, int status, const char* body,
                        bool whole) { QTest::newRow(name) << response << end << status << body << whole; };
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    row("length", RawServer::Ok("{\"a\":1}"), End::Keep, 200, "{\"a\":1}", true);
    row("chunked", ok + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", End::Keep, 200, "abc",
        true);
    row("no bytes", RawServer::Ok(""), End::Keep, 200, "", true);
    row("no content", "HTTP/1.1 204 No Content\r\n\r\n", End::Keep, 204, "", true);
    row("interim", "HTTP/1.1 100 Continue\r\n\r\n" + RawServer::Ok("x"), End::Keep, 200, "x", true);
    row("error status", "HTTP/1.1 500 No\r\nContent-Length: 2\r\n\r\nno", End::Keep, 500, "no", true);
    row("redirect is not followed", "HTTP/1.1 302 F\r\nLocation: /b\r\nContent-Length: 0\r\n\r\n", End::Keep,
        302, "", true);

    row("cut in the status line", "HTTP/1.1 2", End::Cut, 0, "", false);
    row("cut in the head", ok + "Content-Length: 3\r\n", End::Cut, 200, "", false);
    row("cut before the blank line", ok + "Content-Length: 0\r\n", End::TlsClose, 200, "", false);
    row("cut in the body", ok + "Content-Length: 5\r\n\r\nabc", End::Cut, 200, "", false);
    row("cut between chunks", ok + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n", End::Cut, 200, "",
        false);
    row("ends with the connection", ok + "\r\nabc", End::Cut, 200, "", false);
    row("ends with the connection, TLS closed", ok + "\r\nabc", End::TlsClose, 200, "", false);
    row("unchunked transfer encoding", ok + "Transfer-Encoding: identity\r\n\r\nabc", End::TlsClose, 200, "",
        false);
    row("no answer", "", End::Cut, 0, "", false);
    row("no HTTP", "SSH-2.0-server\r\n\r\n", End::Cut, 0, "", false);
    row("damaged compression", RawServer::Ok("abc", "Content-Encoding: gzip\r\n"), End::Keep, 200, "", false);
}

void TestHttpClient::answer()
{
    QFETCH(std::string, response);
    QFETCH(End, end);
    QFETCH(bool, whole);
    for (const auto mode : {RawServer::Mode::Plain, RawServer::Mode::Tls}) {
        RawServer server(
            [&](Connection& connection) {
                connection.Receive();
                connection.Send(response);
                if (end == End::TlsClose)
                    connection.CloseTls();
                if (end == End::Keep)
                    connection.Hang();
            },
            mode);
        HttpClient client;
        client.SetReadTimeout(5);
        if (mode == RawServer::Mode::Tls)
            client.SetTrustAnchors(server.CaFile());
        const auto answer = client.PostJson(server.Origin() + "/a", "{}");
        QCOMPARE(answer != nullptr, whole);
        QCOMPARE(client.LastCallSucceeded(), whole);
        QCOMPARE(client.LastErrorText().empty(), whole);
        QTEST(client.LastStatus(), "status");
        if (!whole)
            continue;
        const auto body = answer->BodyStr().value_or("");
        QTEST(QString::fromUtf8(body.data(), static_cast<int>(body.size())), "body");
        QCOMPARE(answer->BodyStr().has_value(), !body.empty());
        toolkit::BinaryData data;
        QVERIFY(answer->GetBodyBd(&data));
        QVERIFY(data.bytes == body);
    }
}

void TestHttpClient::hostileSize()
{
    const std::string bomb = GzippedZeros(300u << 20);
    std::string lines = "HTTP/1.1 200 OK\r\n";
    for (int i = 0; i < 20000; ++i)
        lines += "X-" + std::to_string(i) + ": " + std::string(100, 'x') + "\r\n";
    for (const std::string& response :
         {RawServer::Ok(bomb, "Content-Encoding: gzip\r\n"),
          std::string("HTTP/1.1 200 OK\r\nContent-Length: 999999999999\r\n\r\n"), lines}) {
        RawServer server(RawServer::Always(response));
        HttpClient client;
        client.SetReadTimeout(5);
        QVERIFY(!client.PostJson(server.Origin(), "{}"));
        QVERIFY2(client.LastErrorText().find("too large") != std::string::npos,
                 client.LastErrorText().c_str());
    }
}

void TestHttpClient::requestOnTheWire()
{
    RawServer server(RawServer::Always(RawServer::Ok("{}")));
    HttpClient client;
    client.SetRequestHeader("Content-Type", "text/plain");
    client.SetRequestHeader("content-type", "application/json");
    client.SetRequestHeader("X-Empty", "");
    const std::string large(3u << 20, 'j');
    QVERIFY(client.PostJson(server.Origin() + "/api/v1/x", large));
    QVERIFY(HttpClient().PostJson(server.Origin() + "/y", ""));

    const auto requests = server.Requests();
    QCOMPARE(requests.size(), std::size_t(2));
    const auto head = QString::fromStdString(requests[0].substr(0, requests[0].find("\r\n\r\n")));
    QVERIFY(head.startsWith("POST /api/v1/x HTTP/1.1\r\n"));
    QCOMPARE(head.count("content-type: application/json", Qt::CaseInsensitive), 1);
    QCOMPARE(head.count("content-type", Qt::CaseInsensitive), 1);
    QVERIFY(head.contains("\r\nX-Empty:"));
    QVERIFY(!head.contains("Expect", Qt::CaseInsensitive));
    QVERIFY(requests[0].substr(requests[0].size() - large.size()) == large);
    QVERIFY(requests[1].find("Content-Type: application/json\r\n") != std::string::npos);
    QVERIFY(requests[1].find("Content-Length: 0\r\n") != std::string::npos);
}

void TestHttpClient::refusedBeforeSending_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<std::string>("value");
    QTest::addColumn<std::string>("scheme");
    const std::string http = "http://";
    QTest::newRow("CR LF in a value") << std::string("A") << std::string("b\r\nX: y") << http;
    QTest::newRow("LF in a value") << std::string("A") << std::string("b\nX: y") << http;
    QTest::newRow("NUL in a value") << std::string("A") << std::string("b\0c", 3) << http;
    QTest::newRow("LF in a name") << std::string("A\nB") << std::string("b") << http;
    QTest::newRow("colon in a name") << std::string("A: b") << std::string("c") << http;
    QTest::newRow("no name") << std::string() << std::string("c") << http;
    for (const char* scheme : {"", "ftp://", "file://", "HTTPX://", "://", "http:", "http://a\n@"})
        QTest::newRow(qPrintable("address " + QString(scheme).simplified()))
            << std::string("A") << std::string("b") << std::string(scheme);
}

void TestHttpClient::refusedBeforeSending()
{
    QFETCH(std::string, name);
    QFETCH(std::string, value);
    QFETCH(std::string, scheme);
    RawServer server(RawServer::Always(RawServer::Ok("{}")));
    HttpClient client;
    client.SetRequestHeader(name, value);
    QVERIFY(!client.PostJson(scheme + "localhost:" + std::to_string(server.Port()), "{}"));
    QVERIFY(!client.LastErrorText().empty());
    QCOMPARE(client.LastStatus(), 0);
    QVERIFY(server.Requests().empty());
}

void TestHttpClient::silence_data()
{
    QTest::addColumn<std::string>("response");
    QTest::newRow("no answer") << std::string();
    QTest::newRow("in the head") << std::string("HTTP/1.1 200 OK\r\nContent-");
    QTest::newRow("in the body") << std::string("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nab");
}

void TestHttpClient::silence()
{
    QFETCH(std::string, response);
    RawServer server([&](Connection& connection) {
        connection.Receive();
        Wait(300);
        connection.Send(response);
        connection.Hang();
    });
    HttpClient client;
    client.SetReadTimeout(1);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!client.PostJson(server.Origin(), "{}"));
    // Without an answer the clock starts with the request, otherwise with the last byte.
    const qint64 expected = response.empty() ? 1000 : 1300;
    QVERIFY2(timer.elapsed() >= expected - 310 && timer.elapsed() < expected + 1500,
             qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(client.LastErrorText().find("Timed out") == 0, client.LastErrorText().c_str());
}

void TestHttpClient::slowButAlive()
{
    RawServer server([](Connection& connection) {
        connection.Receive();
        connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\n");
        for (char c : std::string("abcdef")) {
            Wait(400);
            connection.Send({&c, 1});
        }
        connection.Hang();
    });
    HttpClient client;
    client.SetReadTimeout(1);
    const auto answer = client.PostJson(server.Origin(), "{}");
    QVERIFY2(answer, client.LastErrorText().c_str());
    QVERIFY(answer->BodyStr() == "abcdef");
}

void TestHttpClient::connectTimeout()
{
    RawServer server({}, RawServer::Mode::NoHandshake);
    HttpClient client;
    client.SetConnectTimeout(1);
    client.SetReadTimeout(20);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!client.PostJson(server.Origin(), "{}"));
    QVERIFY2(timer.elapsed() >= 900 && timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(client.LastErrorText().find("Timed out") == 0, client.LastErrorText().c_str());
}

void TestHttpClient::deadConnection_data()
{
    QTest::addColumn<Exchange>("exchange");
    QTest::addColumn<bool>("succeeds");
    QTest::addColumn<int>("sent");
    QTest::newRow("a read is repeated on a new connection") << Exchange::Read << true << 2;
    QTest::newRow("a write is sent once") << Exchange::Write << false << 1;
}

void TestHttpClient::deadConnection()
{
    QFETCH(Exchange, exchange);
    // Every connection answers "/first"; a change on any connection, and a read on a kept one, is carried out
    // and then left without an answer.
    RawServer server([](Connection& connection) {
        for (int i = 0;; ++i) {
            const std::string request = connection.Receive();
            if (request.empty() || request.find("/write") != std::string::npos ||
                (i > 0 && request.find("/read") != std::string::npos))
                return;
            connection.Send(RawServer::Ok("{}"));
        }
    });
    QVERIFY(HttpClient().PostJson(server.Origin() + "/first", "{}", Exchange::Read));
    HttpClient client;
    const std::string path = exchange == Exchange::Read ? "/read" : "/write";
    QTEST(client.PostJson(server.Origin() + path, "{}", exchange) != nullptr, "succeeds");
    QTEST(static_cast<int>(server.Requests().size()) - 1, "sent");
}

void TestHttpClient::connectionsAreKept()
{
    RawServer server(RawServer::Always(RawServer::Ok("{}")), RawServer::Mode::Tls);
    const auto connectionsAfter = [&](Exchange exchange) {
        HttpClient client;
        client.SetTrustAnchors(server.CaFile());
        return client.PostJson(server.Origin(), "{}", exchange) ? server.Connections() : -1;
    };
    QCOMPARE(connectionsAfter(Exchange::Write), 1);
    QCOMPARE(connectionsAfter(Exchange::Read), 1);
    QCOMPARE(connectionsAfter(Exchange::Read), 1);
    QCOMPARE(connectionsAfter(Exchange::Write), 2);
    QCOMPARE(connectionsAfter(Exchange::Read), 2);

    // Many at once: each has a session of its own, and all are answered.
    std::atomic<int> answered{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 12; ++i)
        threads.emplace_back([&] { answered += connectionsAfter(Exchange::Read) > 0; });
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(answered.load(), 12);
}

void TestHttpClient::trust()
{
    RawServer server(RawServer::Always(RawServer::Ok("{}")), RawServer::Mode::Tls);
    RawServer impostor(RawServer::Always(RawServer::Ok("{}")), RawServer::Mode::TlsForOtherHost);
    const auto accepts = [](const RawServer& peer, const std::filesystem::path& anchors) {
        HttpClient client;
        client.SetTrustAnchors(anchors);
        const bool accepted = client.PostJson(peer.Origin(), "{}", Exchange::Read) != nullptr;
        return accepted && client.LastErrorText().empty();
    };
    QTemporaryDir folder;
    const std::filesystem::path missing(folder.filePath("missing.pem").toStdString());
    const std::filesystem::path copy(folder.filePath("copy.pem").toStdString());
    std::filesystem::copy(server.CaFile(), copy);

    QVERIFY(accepts(server, server.CaFile()));
    // A connection that is kept is no way round the anchors of the next client.
    QVERIFY(!accepts(server, {}));
    QVERIFY(!accepts(server, missing));
    QVERIFY(!accepts(server, impostor.CaFile()));
    QVERIFY(!accepts(impostor, impostor.CaFile()));
    QVERIFY(accepts(server, copy));
    std::filesystem::remove(copy);
    QVERIFY(!accepts(server, copy));
    QVERIFY(impostor.Requests().empty());
    QCOMPARE(server.Requests().size(), std::size_t(2));
}

void TestHttpClient::notValid()
{
    RawServer server(RawServer::Always(RawServer::Ok("{}")));
    HttpClient client;
    const auto answer = client.PostJson(server.Origin(), "{}");
    QVERIFY(answer && client.LastCallSucceeded());

    HttpClient moved = std::move(client);
    QVERIFY(moved.IsValid() && moved.LastCallSucceeded() && moved.LastStatus() == 200);
    moved.Dispose();
    for (HttpClient* gone : {&client, &moved}) {
        QVERIFY(!gone->IsValid() && !gone->LastCallSucceeded());
        QCOMPARE(gone->LastStatus(), 0);
        QVERIFY(!gone->PostJson(server.Origin(), "{}"));
        QVERIFY(!gone->Download(server.Origin(), "nowhere"));
        QVERIFY(!gone->LastErrorText().empty());
    }
    toolkit::BinaryData data;
    data.bytes = "kept";
    answer->Dispose();
    QVERIFY(!answer->BodyStr());
    QVERIFY(!answer->GetBodyBd(&data));
    QCOMPARE(data.bytes.c_str(), "kept");
    QCOMPARE(server.Requests().size(), std::size_t(1));
}

QTEST_GUILESS_MAIN(TestHttpClient)
#include "tst_httpclient.moc"
