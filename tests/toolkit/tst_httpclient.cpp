#include "tests/support/RawServer.h"
#include "toolkit/HttpClient.h"
#include "toolkit/Url.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <zlib.h>

#include <array>
#include <climits>
#include <thread>
#include <tuple>

using toolkit::Exchange;
using toolkit::HttpClient;
using Connection = RawServer::Connection;
using Mode = RawServer::Mode;

namespace {

enum class End { Keep, Cut, TlsClose };

const std::string kOk = "HTTP/1.1 200 OK\r\n";

/// @p block so many times over, compressed.
std::string Gzipped(const std::string& block, int times = 1)
{
    constexpr int gzip = 16;
    std::string packed(4u << 20, '\0');
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS + gzip, 8, Z_DEFAULT_STRATEGY);
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    for (int i = 1; i <= times; ++i) {
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(block.data()));
        stream.avail_in = static_cast<uInt>(block.size());
        deflate(&stream, i == times ? Z_FINISH : Z_NO_FLUSH);
    }
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

} // namespace

Q_DECLARE_METATYPE(End)
Q_DECLARE_METATYPE(std::string)

class TestHttpClient : public QObject
{
    Q_OBJECT

private slots:
    /// To make room libcurl drops the connection that was used least lately, to the millisecond: that of the
    /// test before shall be it.
    void init() { std::this_thread::sleep_for(std::chrono::milliseconds(3)); }

    void answer_data()
    {
        QTest::addColumn<std::string>("response");
        QTest::addColumn<End>("end");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("body");
        QTest::addColumn<bool>("whole");
        const auto whole = [](const char* name, const std::string& response, int status, const char* body) {
            QTest::newRow(name) << response << End::Keep << status << body << true;
        };
        const std::string zip = "Content-Encoding: gzip\r\n";
        const std::string packed = Gzipped("{\"a\":1}");
        whole("length", RawServer::Ok("{\"a\":1}"), 200, "{\"a\":1}");
        whole("chunked", kOk + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", 200, "abc");
        whole("compressed", RawServer::Ok(packed, zip), 200, "{\"a\":1}");
        whole("no bytes", RawServer::Ok(""), 200, "");
        whole("no content", "HTTP/1.1 204 No Content\r\n\r\n", 204, "");
        const std::string interim = "HTTP/1.1 103 Early\r\nContent-Length: 3\r\n" + zip + "\r\n";
        whole("interim", "HTTP/1.1 100 Continue\r\n\r\n" + interim + RawServer::Ok("x"), 200, "x");
        whole("interim, then compressed", interim + RawServer::Ok(packed, zip), 200, "{\"a\":1}");
        whole("error status", "HTTP/1.1 500 No\r\nContent-Length: 2\r\n\r\nno", 500, "no");
        whole("redirect is not followed", "HTTP/1.1 302 F\r\nLocation: /b\r\nContent-Length: 0\r\n\r\n", 302,
              "");

        const auto failed = [](const char* name, const std::string& response, End end, int status = 200) {
            QTest::newRow(name) << response << end << status << "" << false;
        };
        std::string badChecksum = packed;
        badChecksum[packed.size() - 8] = static_cast<char>(~packed[packed.size() - 8]);
        failed("cut before the blank line", kOk + "Content-Length: 0\r\n", End::TlsClose);
        failed("cut in the body", kOk + "Content-Length: 5\r\n\r\nabc", End::Cut);
        failed("cut between chunks", kOk + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n", End::Cut);
        failed("ends with the connection", kOk + "\r\nabc", End::Cut);
        failed("ends with the connection, TLS closed", kOk + "\r\nabc", End::TlsClose);
        failed("unchunked transfer encoding", kOk + "Transfer-Encoding: identity\r\n\r\nabc", End::TlsClose);
        failed("not a final status", "HTTP/1.1 101 Switching\r\nContent-Length: 2\r\n\r\nno", End::TlsClose,
               101);
        failed("length of an interim answer", interim + kOk + "\r\nabc", End::TlsClose);
        failed("cut behind an interim answer", interim + kOk + "Content-Length: 0\r\n", End::TlsClose);
        failed("no gzip", RawServer::Ok("abc", zip), End::Keep);
        failed("cut gzip", RawServer::Ok(packed.substr(0, packed.size() - 9), zip), End::Keep);
        failed("gzip without its checksum", RawServer::Ok(packed.substr(0, packed.size() - 8), zip),
               End::Keep);
        failed("gzip with a wrong checksum", RawServer::Ok(badChecksum, zip), End::Keep);
        failed("more after the gzip", RawServer::Ok(packed + "x", zip), End::Keep);
        failed("encoding that was not offered", RawServer::Ok("x", "Content-Encoding: br\r\n"), End::Keep);
    }
    void answer()
    {
        QFETCH(std::string, response);
        QFETCH(End, end);
        QFETCH(bool, whole);
        for (const Mode mode : {Mode::Plain, Mode::Tls}) {
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
            if (mode == Mode::Tls)
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

    void hostileSize()
    {
        const auto packed = [](int mebibytes) {
            return RawServer::Ok(Gzipped(std::string(1u << 20, '\0'), mebibytes),
                                 "Content-Encoding: gzip\r\n");
        };
        std::string lines = kOk;
        for (int i = 0; i < 20000; ++i)
            lines += "X-" + std::to_string(i) + ": " + std::string(100, 'x') + "\r\n";
        for (const std::string& response :
             {packed(20), packed(300), kOk + "Content-Length: 999999999999\r\n\r\n", lines}) {
            RawServer server(RawServer::Always(response));
            HttpClient client;
            client.SetReadTimeout(5);
            const bool fits = response == packed(20);
            QCOMPARE(client.PostJson(server.Origin(), "{}") != nullptr, fits);
            QCOMPARE(client.LastErrorText().c_str(), fits ? "" : "The answer is too large");
        }
    }

    void requestOnTheWire()
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
        QVERIFY(head.contains("\r\nX-Empty:") && head.contains("\r\nAccept-Encoding: gzip\r\n"));
        QVERIFY(!head.contains("Expect", Qt::CaseInsensitive));
        QVERIFY(requests[0].substr(requests[0].size() - large.size()) == large);
        QVERIFY(requests[1].find("Content-Type: application/json\r\n") != std::string::npos);
        QVERIFY(requests[1].find("Content-Length: 0\r\n") != std::string::npos);
    }

    void refusedBeforeSending()
    {
        RawServer server(RawServer::Always(RawServer::Ok("{}")));
        const std::string http = "http://";
        const std::vector<std::array<std::string, 3>> cases{
            {http, "A", "b\r\nX: y"}, {http, "A", std::string("b\0c", 3)},
            {http, "A\nB", "b"},      {http, "A: b", "c"},
            {"", "A", "b"},           {"file://", "A", "b"},
            {"http:", "A", "b"},      {"http://a\n@", "A", "b"}};
        for (const auto& [scheme, name, value] : cases) {
            HttpClient client;
            client.SetRequestHeader(name, value);
            QVERIFY2(!client.PostJson(scheme + "localhost:" + std::to_string(server.Port()), "{}"),
                     (scheme + name + value).c_str());
            QVERIFY(!client.LastErrorText().empty());
            QCOMPARE(client.LastStatus(), 0);
        }
        QVERIFY(server.Requests().empty());
    }

    void timeouts()
    {
        const std::string silent = "Timed out: no data for 1 second";
        const std::string head = kOk + "Content-Length: 6\r\n\r\n";
        const std::tuple<Mode, std::vector<std::string>, int, std::string> cases[] = {
            {Mode::Plain, {}, 1000, silent},
            {Mode::Plain, {kOk + "Content-"}, 1400, silent},
            {Mode::Plain, {head + "ab"}, 1400, silent},
            {Mode::Plain, {head, "ab", "cd", "ef"}, 1600, ""},
            {Mode::NoHandshake, {}, 2000, "Timed out: no connection within 2 seconds"}};
        for (const auto& [mode, pieces, afterMs, error] : cases) {
            RawServer server(
                [&parts = pieces](Connection& connection) {
                    connection.Receive();
                    for (const std::string& piece : parts) {
                        std::this_thread::sleep_for(std::chrono::milliseconds(400));
                        connection.Send(piece);
                    }
                    connection.Hang();
                },
                mode);
            HttpClient client;
            // The system's trust anchors would take their time to read.
            if (mode != Mode::Plain)
                client.SetTrustAnchors(server.CaFile());
            client.SetConnectTimeout(2);
            client.SetReadTimeout(1);
            QElapsedTimer timer;
            timer.start();
            const auto answer = client.PostJson(server.Origin(), "{}");
            const auto ms = timer.elapsed();
            QCOMPARE(client.LastErrorText(), error);
            QVERIFY(!answer || answer->BodyStr() == "abcdef");
            QVERIFY2(ms >= afterMs - 10 && ms < afterMs + 10000, qPrintable(QString::number(ms)));
        }
    }

    void origins()
    {
        for (const char* bad : {"", "host:80", "ftp://host", "http:/host", "https://", "https://host:65536"})
            QVERIFY2(!toolkit::OriginOf(bad), bad);
        const std::pair<const char*, const char*> good[]{
            {"https://host", "https://host:443/p"},   {"http://host/", "http://host:80/p"},
            {"HTTPS://host:84", "https://host:84/p"}, {"https://[::1]/", "https://[::1]:443/p"},
            {"http://[::1]:81", "http://[::1]:81/p"}, {"https://u:w@h/a?b#c", "https://h:443/p"}};
        for (const auto& [address, expected] : good)
            QCOMPARE(toolkit::UrlAt(toolkit::OriginOf(address).value_or(toolkit::Origin{}), "/p").c_str(),
                     expected);
        QCOMPARE(toolkit::UrlAt({"::1", 80, false}, "/p").c_str(), "http://[::1]:80/p");
    }

    void timeoutSettings()
    {
        HttpClient client;
        QVERIFY(client.ConnectTimeoutMs() == 30000 && client.ReadTimeoutMs() == 60000);
        for (const auto& [seconds, ms] : {std::pair(7, 7000), {0, 1000}, {INT_MAX, 86400000}}) {
            client.SetConnectTimeout(seconds);
            client.SetReadTimeout(seconds);
            QVERIFY(client.ConnectTimeoutMs() == ms && client.ReadTimeoutMs() == ms);
        }
    }

    void trust()
    {
        RawServer server(RawServer::Always(RawServer::Ok("{}")), Mode::Tls);
        RawServer other(RawServer::Always(RawServer::Ok("{}")), Mode::Tls);
        RawServer impostor(RawServer::Always(RawServer::Ok("{}")), Mode::TlsForOtherHost);
        const auto accepts = [](const RawServer& peer, const std::filesystem::path& anchors,
                                Exchange exchange = Exchange::Read) {
            HttpClient client;
            client.SetTrustAnchors(anchors);
            return client.PostJson(peer.Origin(), "{}", exchange) && client.LastErrorText().empty();
        };
        QTemporaryDir folder;
        const std::filesystem::path copy(folder.filePath("copy.pem").toStdString());

        QVERIFY(accepts(server, server.CaFile()));
        // A connection that is kept is no way round the anchors of the next client.
        QVERIFY(!accepts(server, {}));
        QVERIFY(!accepts(server, copy));
        QVERIFY(!accepts(server, impostor.CaFile()));
        QVERIFY(!accepts(impostor, impostor.CaFile()));
        // What is in the file counts, not what was in it.
        std::filesystem::copy(server.CaFile(), copy);
        QVERIFY(accepts(server, copy, Exchange::Write));
        std::filesystem::copy(other.CaFile(), copy, std::filesystem::copy_options::overwrite_existing);
        QVERIFY(accepts(other, copy));
        QVERIFY(!accepts(server, copy, Exchange::Write));
        std::filesystem::remove(copy);
        QVERIFY(!accepts(other, copy));
        QVERIFY(impostor.Requests().empty());
        QCOMPARE(server.Requests().size(), std::size_t(2));
    }

    void notValid()
    {
        RawServer server(RawServer::Always(RawServer::Ok("{}")));
        HttpClient client;
        const auto answer = client.PostJson(server.Origin(), "{}");
        HttpClient moved = std::move(client);
        QVERIFY(answer && moved.LastCallSucceeded() && moved.LastStatus() == 200);
        moved.Dispose();
        for (HttpClient* gone : {&client, &moved}) { // NOLINT(bugprone-use-after-move): what a use does then
            QVERIFY(!gone->IsValid() && !gone->LastCallSucceeded() && gone->LastStatus() == 0);
            QVERIFY(!gone->PostJson(server.Origin(), "{}"));
            QVERIFY(!gone->LastErrorText().empty());
        }
        toolkit::BinaryData data;
        data.bytes = "kept";
        answer->Dispose();
        QVERIFY(!answer->BodyStr() && !answer->GetBodyBd(&data));
        QCOMPARE(data.bytes.c_str(), "kept");
        QCOMPARE(server.Requests().size(), std::size_t(1));
    }
};

QTEST_GUILESS_MAIN(TestHttpClient)
#include "tst_httpclient.moc"
