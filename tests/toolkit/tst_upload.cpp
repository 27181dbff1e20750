#include "tests/support/RawServer.h"
#include "toolkit/HttpClient.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>

using toolkit::HttpClient;
using toolkit::HttpRequest;
using Connection = RawServer::Connection;

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
    return request;
}

std::filesystem::path WriteFile(const QTemporaryDir& folder, const QString& name, const QByteArray& content)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write the test's file");
    return file.fileName().toStdString();
}

/// Memory of this process that was never given back, in bytes.
qint64 PeakMemory()
{
    QFile status("/proc/self/status");
    status.open(QIODevice::ReadOnly);
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf("VmHWM:") + 6, 20).trimmed().split(' ').first().toLongLong() * 1024;
}

} // namespace

class TestUpload : public QObject
{
    Q_OBJECT

private slots:
    void onTheWire_data();
    void onTheWire();
    void largeAndSlow();
    void fileChanges_data();
    void fileChanges();
    void refused_data();
    void refused();
    void refusedFiles();
};

void TestUpload::onTheWire_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("sentName");
    QTest::addColumn<int>("size");
    QTest::newRow("empty") << "plain.zip" << QByteArray("plain.zip") << 0;
    QTest::newRow("one byte, blanks") << "two  blanks.zip" << QByteArray("two  blanks.zip") << 1;
    QTest::newRow("quotes") << "a\"b'c.zip" << QByteArray("a%22b'c.zip") << 300000;
    QTest::newRow("not Latin") << QString::fromUtf8("định nghĩa 定義.zip")
                               << QByteArray("định nghĩa 定義.zip") << 9;
    QTest::newRow("line break") << "a\nb\\c.zip" << QByteArray("a%0Ab\\c.zip") << 9;
}

void TestUpload::onTheWire()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, sentName);
    QFETCH(int, size);
    QTemporaryDir folder;
    QByteArray content(size, '\0');
    for (int i = 0; i < size; ++i)
        content[i] = static_cast<char>(i * 7 + i / 251);
    RawServer server(RawServer::Always(RawServer::Ok("{\"success\":true}")), RawServer::Mode::Tls);

    HttpRequest request = Push();
    QVERIFY2(request.AddFileForUpload("definitions", WriteFile(folder, fileName, content)),
             request.LastErrorText().c_str());
    HttpClient client;
    client.SetTrustAnchors(server.CaFile());
    client.SetRequestHeader("Content-Type", "application/json");
    const auto answer = client.SynchronousRequest("localhost", server.Port(), true, request);
    QVERIFY2(answer && answer->BodyStr() == "{\"success\":true}", client.LastErrorText().c_str());

    QCOMPARE(server.Requests().size(), std::size_t(1));
    const auto sent = QByteArray::fromStdString(server.Requests()[0]);
    const int headEnd = sent.indexOf("\r\n\r\n") + 2;
    const QByteArray head = sent.left(headEnd);
    QVERIFY(head.startsWith("POST /api/v1/definitions/push HTTP/1.1\r\n"));
    QVERIFY(head.contains("\r\nConnection: Keep-Alive\r\ntoken: T-1\r\nAccept: text/html\r\n"));
    QCOMPARE(head.count("\r\nContent-Type: "), 1);
    QVERIFY(!head.contains("Transfer-Encoding") && !head.contains("Expect"));
    const int boundaryAt = head.indexOf("boundary=") + 9;
    const QByteArray boundary = "--" + head.mid(boundaryAt, head.indexOf('\r', boundaryAt) - boundaryAt);
    QCOMPARE(sent.mid(headEnd + 2),
             boundary + "\r\nContent-Disposition: form-data; name=\"version\"\r\n\r\n7\r\n" + boundary +
                 "\r\nContent-Disposition: form-data; name=\"definitions\"; filename=\"" + sentName +
                 "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + content + "\r\n" + boundary +
                 "--\r\n");
}

void TestUpload::largeAndSlow()
{
    constexpr qint64 size = 200 << 20;
    QTemporaryDir folder;
    const auto path = WriteFile(folder, "large", {});
    std::filesystem::resize_file(path, size);
    // For two seconds and a half a trickle: far below any rate, yet never silent for as long as the time-out.
    std::atomic<qint64> received{0};
    RawServer server([&](Connection& connection) {
        while (received < size) {
            const auto bytes = connection.ReceiveSome(received < 500000 ? 10000 : 1 << 20).size();
            if (bytes == 0)
                return;
            received += static_cast<qint64>(bytes);
            if (received < 500000)
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        connection.Send(RawServer::Ok("{}"));
        connection.Hang();
    });
    HttpRequest request = Push();
    QVERIFY(request.AddFileForUpload("definitions", path));
    HttpClient client;
    client.SetReadTimeout(1);
    const qint64 before = PeakMemory();
    QVERIFY2(client.SynchronousRequest("localhost", server.Port(), false, request),
             client.LastErrorText().c_str());
    QVERIFY(received > size);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    QVERIFY2(PeakMemory() - before < (16 << 20), qPrintable(QString::number(PeakMemory() - before)));
#else
    Q_UNUSED(before)
#endif
}

void TestUpload::fileChanges_data()
{
    QTest::addColumn<int>("sizeWhileSending");
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("shorter") << 5 << false;
    QTest::newRow("longer") << (12 << 20) << true;
}

void TestUpload::fileChanges()
{
    QFETCH(int, sizeWhileSending);
    QTemporaryDir folder;
    const auto path = WriteFile(folder, "f", QByteArray(8 << 20, 'x'));
    qint64 received = 0;
    RawServer server([&](Connection& connection) {
        received = static_cast<qint64>(connection.ReceiveSome(1).size());
        std::filesystem::resize_file(path, static_cast<std::uintmax_t>(sizeWhileSending));
        const qint64 whole = 8 << 20;
        while (received < whole + 500) {
            const auto bytes = connection.ReceiveSome(1 << 20).size();
            if (bytes == 0)
                return;
            received += static_cast<qint64>(bytes);
        }
        connection.Send(RawServer::Ok("{}"));
        connection.Hang();
    });
    HttpRequest request = Push();
    QVERIFY(request.AddFileForUpload("definitions", path));
    HttpClient client;
    client.SetReadTimeout(5);
    const bool sent = client.SynchronousRequest("localhost", server.Port(), false, request) != nullptr;
    QTEST(sent, "succeeds");
    QVERIFY(sent || client.LastErrorText().find("could not be read to its end") != std::string::npos);
    QVERIFY(received < (8 << 20) + 1500);
}

void TestUpload::refused_data()
{
    QTest::addColumn<std::function<void(HttpRequest&)>>("spoil");
    QTest::addColumn<QString>("domain");
    using Spoil = std::function<void(HttpRequest&)>;
    const auto row = [](const char* name, Spoil spoil, const char* domain = "localhost") {
        QTest::newRow(name) << spoil << QString(domain);
    };
    row("header", [](HttpRequest& r) { r.AddHeader("token", "a\r\nX: y"); });
    row("field", [](HttpRequest& r) { r.AddParam("version", "1\r\n--x"); });
    row("field name", [](HttpRequest& r) { r.AddParam(std::string("a\0b", 3), "1"); });
    row("path", [](HttpRequest& r) { r.Path("/a\r\nX: y"); });
    row("path without slash", [](HttpRequest& r) { r.Path("@elsewhere/"); });
    row("verb", [](HttpRequest& r) { r.SetVerb("GET"); });
    row("content type", [](HttpRequest& r) { r.SetContentType("text/plain"); });
    row("disposed", [](HttpRequest& r) { r.Dispose(); });
    row(
        "host with user", [](HttpRequest&) {}, "x@localhost");
    row(
        "host with path", [](HttpRequest&) {}, "localhost/x?");
    row(
        "no host", [](HttpRequest&) {}, "");
}

void TestUpload::refused()
{
    QFETCH(std::function<void(HttpRequest&)>, spoil);
    QFETCH(QString, domain);
    RawServer server(RawServer::Always(RawServer::Ok("{}")));
    HttpRequest request = Push();
    spoil(request);
    HttpClient client;
    QVERIFY(!client.SynchronousRequest(domain.toStdString(), server.Port(), false, request));
    QVERIFY(!client.LastCallSucceeded() && !client.LastErrorText().empty());
    QCOMPARE(server.Connections(), 0);
}

void TestUpload::refusedFiles()
{
    QTemporaryDir folder;
    const auto path = WriteFile(folder, "there", "x");
    HttpRequest request = Push();
    for (const std::filesystem::path& bad :
         {path.parent_path() / "missing", path.parent_path(), std::filesystem::path("/dev/null"), {}}) {
        QVERIFY(!request.AddFileForUpload("definitions", bad));
        QVERIFY(!request.LastErrorText().empty());
    }
    QVERIFY(request.AddFileForUpload("definitions", path));
    QVERIFY(request.LastErrorText().empty());

    // Gone before it is sent.
    std::filesystem::remove(path);
    RawServer server(RawServer::Always(RawServer::Ok("{}")));
    HttpClient client;
    QVERIFY(!client.SynchronousRequest("localhost", server.Port(), false, request));
    QCOMPARE(server.Connections(), 0);
}

Q_DECLARE_METATYPE(std::function<void(HttpRequest&)>)
QTEST_GUILESS_MAIN(TestUpload)
#include "tst_upload.moc"
