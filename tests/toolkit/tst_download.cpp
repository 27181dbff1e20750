#include "tests/support/RawServer.h"
#include "toolkit/HttpClient.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using toolkit::HttpClient;
using Connection = RawServer::Connection;

namespace {

QByteArray Content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

std::string Redirect(const std::string& target)
{
    return "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 4\r\n\r\naway";
}

} // namespace

Q_DECLARE_METATYPE(std::string)

class TestDownload : public QObject
{
    Q_OBJECT

private slots:
    void answer_data();
    void answer();
    void redirects_data();
    void redirects();
    void leftOversAndTargets();
};

void TestDownload::answer_data()
{
    QTest::addColumn<std::string>("response");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("whole");
    const auto row = [](const char* name, const std::string& response, int status, bool whole) {
        QTest::newRow(name) << response << status << whole;
    };
    const std::string zeros("a\0b\r\nc", 6);
    row("whole", RawServer::Ok(zeros), 200, true);
    row("chunked", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n6\r\n" + zeros + "\r\n0\r\n\r\n",
        200, true);
    row("nothing is decoded", RawServer::Ok(zeros, "Content-Encoding: gzip\r\n"), 200, true);
    row("cut", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n" + zeros, 200, false);
    row("ends with the connection", "HTTP/1.1 200 OK\r\n\r\n" + zeros, 200, false);
    row("not found", "HTTP/1.1 404 No\r\nContent-Length: 2\r\n\r\nno", 404, false);
    row("server error", "HTTP/1.1 503 No\r\nContent-Length: 2\r\n\r\nno", 503, false);
    row("partial", "HTTP/1.1 206 Part\r\nContent-Length: 2\r\n\r\nno", 206, false);
    row("no content", "HTTP/1.1 204 No Content\r\n\r\n", 204, false);
    row("redirect to nowhere", "HTTP/1.1 302 Found\r\nContent-Length: 2\r\n\r\nno", 302, false);
    row("beyond the bound", "HTTP/1.1 200 OK\r\nContent-Length: 9999999999\r\n\r\n", 200, false);
}

void TestDownload::answer()
{
    QFETCH(std::string, response);
    QFETCH(bool, whole);
    RawServer server(
        [&](Connection& connection) {
            connection.Receive();
            connection.Send(response);
            connection.CloseTls();
        },
        RawServer::Mode::Tls);
    for (const bool replaces : {false, true}) {
        QTemporaryDir folder;
        const QString path = folder.filePath(QString::fromUtf8("gói cập nhật.zip"));
        QFile old(path);
        if (replaces)
            QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();

        HttpClient client;
        client.SetTrustAnchors(server.CaFile());
        QCOMPARE(client.Download(server.Origin() + "/package.zip", path.toStdString()), whole);
        QTEST(client.LastStatus(), "status");
        QCOMPARE(client.LastErrorText().empty(), whole);
        QCOMPARE(Content(path),
                 whole ? QByteArray("a\0b\r\nc", 6) : QByteArray(replaces ? "old" : "(no file)"));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), whole || replaces ? 1 : 0);
        QVERIFY(server.Requests().back().find("Accept-Encoding") == std::string::npos);
    }
}

void TestDownload::redirects_data()
{
    QTest::addColumn<std::string>("target");
    QTest::addColumn<int>("hops");
    QTest::addColumn<bool>("followed");
    QTest::newRow("two") << std::string("/") << 2 << true;
    QTest::newRow("five") << std::string("/") << 5 << true;
    QTest::newRow("six") << std::string("/") << 6 << false;
    QTest::newRow("to http") << std::string() << 1 << false;
    QTest::newRow("to a file") << std::string("file:///etc/hostname?") << 1 << false;
}

void TestDownload::redirects()
{
    QFETCH(std::string, target);
    QFETCH(int, hops);
    QFETCH(bool, followed);
    RawServer unsafe(RawServer::Always(RawServer::Ok("here")));
    if (target.empty())
        target = unsafe.Origin() + "/";
    std::atomic<int> hop{0};
    RawServer server(
        [&](Connection& connection) {
            while (!connection.Receive().empty()) {
                connection.Send(hop < hops ? Redirect(target + std::to_string(hop)) : RawServer::Ok("here"));
                ++hop;
            }
        },
        RawServer::Mode::Tls);
    // From a plain address to a safe one is fine.
    RawServer plain(RawServer::Always(Redirect(server.Origin() + "/start")));
    for (const std::string& origin : {server.Origin(), plain.Origin()}) {
        QTemporaryDir folder;
        HttpClient client;
        client.SetTrustAnchors(server.CaFile());
        hop = 0;
        const bool expected = followed && (origin == server.Origin() || hops < 5);
        QCOMPARE(client.Download(origin + "/a", folder.filePath("f").toStdString()), expected);
        QCOMPARE(Content(folder.filePath("f")), expected ? QByteArray("here") : "(no file)");
    }
}

void TestDownload::leftOversAndTargets()
{
    RawServer server(RawServer::Always(RawServer::Ok("new")));
    QTemporaryDir folder;
    const QString precious = folder.filePath("precious");
    QFile file(precious);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("precious") == 8);
    file.close();
    QVERIFY(QFile::link(precious, folder.filePath("a.part")));
    QVERIFY(QFile::link(precious, folder.filePath("a")));
    QVERIFY(HttpClient().Download(server.Origin(), folder.filePath("a").toStdString()));
    QCOMPARE(Content(folder.filePath("a")), QByteArray("new"));
    QCOMPARE(Content(precious), QByteArray("precious"));

    const auto requests = server.Requests().size();
    HttpClient client;
    QVERIFY(!client.Download(server.Origin(), folder.filePath("missing/a").toStdString()));
    QCOMPARE(server.Requests().size(), requests);
    QVERIFY(QDir(folder.path()).mkpath("taken/x"));
    QVERIFY(!client.Download(server.Origin(), folder.filePath("taken").toStdString()));
    QVERIFY2(client.LastErrorText().find("taken") != std::string::npos, client.LastErrorText().c_str());
    QVERIFY(!QFile::exists(folder.filePath("taken.part")));
}

QTEST_GUILESS_MAIN(TestDownload)
#include "tst_download.moc"
