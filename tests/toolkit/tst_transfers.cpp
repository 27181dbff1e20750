#include "tests/support/RawServer.h"
#include "tests/support/TestFiles.h"
#include "toolkit/HttpClient.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <future>
#include <thread>
#include <tuple>

using toolkit::HttpClient;
using toolkit::HttpRequest;
using Connection = RawServer::Connection;
using Mode = RawServer::Mode;
using Spoil = std::function<void(HttpRequest&)>;

namespace {

HttpRequest Push()
{
    HttpRequest request;
    request.SetVerb("POST");
    request.Path("/api/v1/definitions/push");
    request.SetContentType("multipart/form-data");
    request.AddHeader("Connection", "Keep-Alive");
    request.AddHeader("token", "T-1");
    request.AddHeader("Accept", "text/html");
    request.AddParam("version", "7");
    request.AddParam("note", "two\r\nlines");
    return request;
}

std::string Redirect(const std::string& target)
{
    return "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 4\r\n\r\naway";
}

} // namespace

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(Spoil)

/// Files that go to a server, and files that come from one.
class TestTransfers : public QObject
{
    Q_OBJECT

private slots:
    void uploadOnTheWire()
    {
        RawServer server(RawServer::Always(RawServer::Ok("{\"success\":true}")), Mode::Tls);
        const std::tuple<QString, QByteArray, int> files[] = {{"two  blanks.zip", "two  blanks.zip", 0},
                                                              {"a\"b'c.zip", "a%22b'c.zip", 300000},
                                                              {"a\nb\\c.zip", "a%0Ab\\c.zip", 9}};
        for (const auto& [fileName, sentName, size] : files) {
            QTemporaryDir folder;
            QByteArray bytes(size, '\0');
            for (int i = 0; i < size; ++i)
                bytes[i] = static_cast<char>(i * 7 + i / 251);
            HttpRequest request = Push();
            QVERIFY(request.AddFileForUpload("definitions",
                                             writeFile(folder.filePath(fileName), bytes).toStdString()));
            HttpClient client;
            client.SetTrustAnchors(server.CaFile());
            client.SetRequestHeader("Content-Type", "application/json");
            const auto answer = client.SynchronousRequest("localhost", server.Port(), true, request);
            QVERIFY2(answer && answer->BodyStr() == "{\"success\":true}", client.LastErrorText().c_str());

            const auto sent = QByteArray::fromStdString(server.Requests().back());
            const int headEnd = sent.indexOf("\r\n\r\n") + 2;
            const QByteArray head = sent.left(headEnd);
            QVERIFY(head.startsWith("POST /api/v1/definitions/push HTTP/1.1\r\n"));
            QVERIFY(head.contains("\r\nConnection: Keep-Alive\r\ntoken: T-1\r\nAccept: text/html\r\n"));
            QCOMPARE(head.count("\r\nContent-Type: "), 1);
            QVERIFY(!head.contains("Transfer-Encoding") && !head.contains("Expect"));
            const int boundaryAt = head.indexOf("boundary=") + 9;
            const QByteArray boundary =
                "--" + head.mid(boundaryAt, head.indexOf('\r', boundaryAt) - boundaryAt);
            const QByteArray part = boundary + "\r\nContent-Disposition: form-data; name=";
            QCOMPARE(sent.mid(headEnd + 2), part + "\"version\"\r\n\r\n7\r\n" + part +
                                                "\"note\"\r\n\r\ntwo\r\nlines\r\n" + part +
                                                "\"definitions\"; filename=\"" + sentName +
                                                "\"\r\nContent-Type: application/octet-stream\r\n\r\n" +
                                                bytes + "\r\n" + boundary + "--\r\n");
        }
        QCOMPARE(server.Requests().size(), std::size_t(3));
    }

    void slowUpload()
    {
        constexpr qint64 size = 8 << 20;
        QTemporaryDir folder;
        const auto path = writeFile(folder.filePath("large"), QByteArray(size, 'x')).toStdString();
        HttpRequest request = Push();
        QVERIFY(request.AddFileForUpload("definitions", path));
        for (const bool stalls : {false, true}) {
            std::promise<void> clientIsDone;
            std::promise<qint64> received;
            RawServer server([&](Connection& connection) {
                qint64 total = 0;
                const auto receive = [&](std::size_t most) {
                    const auto bytes = static_cast<qint64>(connection.ReceiveSome(most).size());
                    total += bytes;
                    return bytes > 0;
                };
                // A line of 200 kB a second, never silent for as long as the time-out.
                while (total < (stalls ? 50000 : 500000) && receive(10000))
                    std::this_thread::sleep_for(std::chrono::milliseconds(50));
                if (stalls)
                    clientIsDone.get_future().wait();
                while (total < size && receive(1 << 20)) {
                }
                connection.Send(RawServer::Ok("{}"));
                received.set_value(total);
                connection.Hang();
            });
            HttpClient client;
            client.SetReadTimeout(1);
            client.SynchronousRequest("localhost", server.Port(), false, request);
            clientIsDone.set_value();
            QCOMPARE(client.LastErrorText().c_str(), stalls ? "Timed out: no data for 1 second" : "");
            const qint64 bytes = received.get_future().get();
            // The system must not take megabytes ahead: progress would come in jumps minutes apart.
            QVERIFY2(stalls ? bytes < 1000000 : bytes >= size, qPrintable(QString::number(bytes)));
        }
    }

    void answerDuringUpload()
    {
        QTemporaryDir folder;
        const auto path = writeFile(folder.filePath("large"), QByteArray(8 << 20, 'x')).toStdString();
        HttpRequest request = Push();
        QVERIFY(request.AddFileForUpload("definitions", path));
        for (const auto& variant : {std::pair(false, true), {true, true}, {true, false}}) {
            for (const Mode mode : {Mode::Plain, Mode::Tls}) {
                const bool leaves = variant.first;
                const bool whole = variant.second;
                const std::string bytes = RawServer::Ok("{}").substr(0, whole ? std::string::npos : 30);
                std::promise<void> clientIsDone;
                RawServer server(
                    [&](Connection& connection) {
                        connection.ReceiveSome(1000);
                        connection.Send(bytes);
                        std::this_thread::sleep_for(std::chrono::milliseconds(200));
                        if (!leaves)
                            clientIsDone.get_future().wait();
                    },
                    mode);
                HttpClient client;
                client.SetReadTimeout(1);
                if (mode == Mode::Tls)
                    client.SetTrustAnchors(server.CaFile());
                const auto answer =
                    client.SynchronousRequest("localhost", server.Port(), mode == Mode::Tls, request);
                clientIsDone.set_value();
                QVERIFY2(client.LastErrorText().empty() == whole, client.LastErrorText().c_str());
                QCOMPARE(answer && answer->BodyStr() == "{}", whole);
            }
        }
    }

    void fileChanges()
    {
        constexpr std::uintmax_t whole = 8 << 20;
        for (const std::uintmax_t sizeWhileSending : {std::uintmax_t(5), whole + 4096}) {
            QTemporaryDir folder;
            const auto path = writeFile(folder.filePath("f"), QByteArray(int(whole), 'x')).toStdString();
            std::uintmax_t received = 0;
            RawServer server([&](Connection& connection) {
                received = connection.ReceiveSome(1).size();
                std::filesystem::resize_file(path, sizeWhileSending);
                while (received < whole + 500) {
                    const auto bytes = connection.ReceiveSome(1 << 20).size();
                    if (bytes == 0)
                        return;
                    received += bytes;
                }
                connection.Send(RawServer::Ok("{}"));
                connection.Hang();
            });
            HttpRequest request = Push();
            QVERIFY(request.AddFileForUpload("definitions", path));
            HttpClient client;
            client.SetReadTimeout(5);
            const bool sent =
                client.SynchronousRequest("localhost", server.Port(), false, request) != nullptr;
            QCOMPARE(sent, sizeWhileSending > whole);
            QVERIFY(sent || client.LastErrorText().find("could not be read to its end") != std::string::npos);
            QVERIFY(received < whole + 1500);
        }
    }

    void refusedUpload_data()
    {
        QTest::addColumn<Spoil>("spoil");
        QTest::addColumn<QString>("domain");
        const auto row = [](const char* name, const Spoil& spoil, const char* domain = "localhost") {
            QTest::newRow(name) << spoil << QString(domain);
        };
        row("header", [](HttpRequest& r) { r.AddHeader("token", "a\r\nX: y"); });
        row("field", [](HttpRequest& r) { r.AddParam("version\r\n--x", "1"); });
        row("path", [](HttpRequest& r) { r.Path("/a\r\nX: y"); });
        row("path without slash", [](HttpRequest& r) { r.Path("@elsewhere/"); });
        row("verb", [](HttpRequest& r) { r.SetVerb("GET"); });
        row("content type", [](HttpRequest& r) { r.SetContentType("text/plain"); });
        row("disposed", [](HttpRequest& r) { r.Dispose(); });
        row("path with NUL", [](HttpRequest& r) { r.Path(std::string("/a\0b", 4)); });
        for (const char* host : {"x@localhost", "localhost:80", "localhost/x", "local\nhost", ""})
            row(host, Spoil([](HttpRequest&) {}), host);
        row("file that is gone", [](HttpRequest& r) {
            QTemporaryDir folder;
            const QString path = writeFile(folder.filePath("there"), "x");
            QVERIFY(r.AddFileForUpload("definitions", path.toStdString()));
        });
    }
    void refusedUpload()
    {
        QFETCH(Spoil, spoil);
        QFETCH(QString, domain);
        RawServer server(RawServer::Always(RawServer::Ok("{}")));
        HttpRequest request = Push();
        // A device is no file to upload, though it can be read.
        QVERIFY(!request.AddFileForUpload("definitions", "/dev/null"));
        spoil(request);
        HttpClient client;
        QVERIFY(!client.SynchronousRequest(domain.toStdString(), server.Port(), false, request));
        QVERIFY(!client.LastCallSucceeded() && !client.LastErrorText().empty());
        QCOMPARE(server.Connections(), 0);
    }

    void download_data()
    {
        QTest::addColumn<std::string>("response");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("whole");
        const auto row = [](const char* name, const std::string& response, int status, bool whole) {
            QTest::newRow(name) << response << status << whole;
        };
        const std::string zeros("a\0b\r\nc", 6);
        const std::string ok = "HTTP/1.1 200 OK\r\n";
        row("whole", RawServer::Ok(zeros), 200, true);
        row("nothing is decoded", RawServer::Ok(zeros, "Content-Encoding: gzip\r\n"), 200, true);
        row("cut", ok + "Content-Length: 9\r\n\r\n" + zeros, 200, false);
        row("ends with the connection", ok + "\r\n" + zeros, 200, false);
        row("not found", "HTTP/1.1 404 No\r\nContent-Length: 2\r\n\r\nno", 404, false);
        row("partial", "HTTP/1.1 206 Part\r\nContent-Length: 2\r\n\r\nno", 206, false);
        row("redirect to nowhere", "HTTP/1.1 302 Found\r\nContent-Length: 2\r\n\r\nno", 302, false);
        row("beyond the bound", ok + "Content-Length: 9999999999\r\n\r\n", 200, false);
    }
    void download()
    {
        QFETCH(std::string, response);
        QFETCH(bool, whole);
        RawServer server(
            [&](Connection& connection) {
                connection.Receive();
                connection.Send(response);
                connection.CloseTls();
            },
            Mode::Tls);
        for (const bool replaces : {false, true}) {
            QTemporaryDir folder;
            const QString path = folder.filePath(QString::fromUtf8("gói cập nhật.zip"));
            if (replaces)
                writeFile(path, "old");
            HttpClient client;
            client.SetTrustAnchors(server.CaFile());
            QCOMPARE(client.Download(server.Origin() + "/package.zip", path.toStdString()), whole);
            QTEST(client.LastStatus(), "status");
            QCOMPARE(client.LastErrorText().empty(), whole);
            QCOMPARE(content(path),
                     whole ? QByteArray("a\0b\r\nc", 6) : QByteArray(replaces ? "old" : "(no file)"));
            QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), whole || replaces ? 1 : 0);
            QVERIFY(server.Requests().back().find("Accept-Encoding") == std::string::npos);
        }
    }

    void redirects()
    {
        RawServer unsafe(RawServer::Always(RawServer::Ok("here")));
        std::string target;
        std::atomic<int> hops{0};
        RawServer server(
            [&](Connection& connection) {
                while (!connection.Receive().empty())
                    connection.Send(hops-- > 0 ? Redirect(target) : RawServer::Ok("here"));
            },
            Mode::Tls);
        // From a plain address to a safe one is fine, and is a hop too.
        RawServer plain(RawServer::Always(Redirect(server.Origin() + "/start")));
        const std::vector<std::tuple<std::string, int, bool>> cases{
            {"/", 5, true}, {"/", 6, false}, {unsafe.Origin(), 2, false}, {"file:///etc/hostname", 2, false}};
        for (const auto& [to, count, followed] : cases) {
            for (const bool fromPlain : {false, true}) {
                target = to;
                hops = count - (fromPlain ? 1 : 0);
                QTemporaryDir folder;
                HttpClient client;
                client.SetTrustAnchors(server.CaFile());
                QCOMPARE(client.Download((fromPlain ? plain : server).Origin() + "/a",
                                         folder.filePath("f").toStdString()),
                         followed);
                QCOMPARE(content(folder.filePath("f")), followed ? QByteArray("here") : "(no file)");
            }
        }
        QVERIFY(unsafe.Requests().empty());
    }

    void leftOversAndTargets()
    {
        RawServer server(RawServer::Always(RawServer::Ok("new")));
        QTemporaryDir folder;
        const auto downloads = [&](const char* name, const char* error) {
            HttpClient client;
            const bool done = client.Download(server.Origin(), folder.filePath(name).toStdString());
            return done == !*error && client.LastErrorText().find(error) != std::string::npos;
        };
        const QString precious = writeFile(folder.filePath("precious"), "precious");
        QVERIFY(QFile::link(precious, folder.filePath("a.part")));
        QVERIFY(QFile::link(precious, folder.filePath("a")));
        QVERIFY(downloads("a", ""));
        QCOMPARE(content(folder.filePath("a")), QByteArray("new"));
        QCOMPARE(content(precious), QByteArray("precious"));

        QVERIFY(QDir(folder.path()).mkpath("b.part/x") && QDir(folder.path()).mkpath("taken/x"));
        QVERIFY(downloads("missing/a", "Cannot create the file"));
        QVERIFY(downloads("b", "Cannot create the file"));
        QCOMPARE(server.Requests().size(), std::size_t(1));
        QVERIFY(downloads("taken", "Cannot replace the file"));
        QVERIFY(!QFile::exists(folder.filePath("taken.part")) && QFile::exists(folder.filePath("b.part/x")));
    }
};

QTEST_GUILESS_MAIN(TestTransfers)
#include "tst_transfers.moc"
