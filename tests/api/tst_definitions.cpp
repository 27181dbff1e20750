#include "api/VelstrandAPI.h"

#include "devservice/DevService.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ServiceFixture.h"
#include "tests/support/ZipFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/resource.h>

using devservice::Fault;

namespace {

const QString kPush = QStringLiteral("/api/v1/definitions/push");
const QString kGet = QStringLiteral("/api/v1/definitions/get");
constexpr char kPassword[] = "0417385926";

long peakMemoryKiB()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

/// The definitions both ways, and downloads, against the development service.
class TestDefinitions : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture->clearRequests(); }
    void cleanup() { m_fixture->clearFaults(); }

    void push_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << "definitions.bin" << QByteArray();
        QTest::newRow("one byte") << "d" << QByteArray("\0", 1);
        QTest::newRow("line breaks and boundaries")
            << "a b.txt" << QByteArrayLiteral("--\r\n----x--\r\n\r\n\0\x1a\xff");
        QTest::newRow("quotes") << "it's \"new\".zip" << QByteArray("q");
        QTest::newRow("non-Latin") << QStringLiteral("định nghĩa мир 😀.zip") << QByteArray("n");
        QTest::newRow("a megabyte") << "big" << QByteArray(1 << 20, '\r');
    }

    void push()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        const QString path = write(name, content);
        QString error = QStringLiteral("untouched");
        QVERIFY(m_api.pushDefinition(m_fixture->adminToken(), 21, path, &error));
        QCOMPARE(error, QStringLiteral("untouched"));
        const auto farm = m_fixture->farm();
        QCOMPARE(farm.definitionsVersion, 21);
        QCOMPARE(farm.definitionsFileName, name);
        QCOMPARE(farm.definitionsSize, qint64(content.size()));
        QCOMPARE(farm.definitionsSha256, QCryptographicHash::hash(content, QCryptographicHash::Sha256));

        const auto requests = m_fixture->requests(kPush);
        QCOMPARE(requests.size(), 1);
        const QStringList own =
            requests[0].headerLines.filter(QRegularExpression("^(Connection|token|Accept):"));
        QCOMPARE(own, QStringList({"Connection: Keep-Alive", "token: " + m_fixture->adminToken(),
                                   "Accept: text/html"}));
        QVERIFY(requests[0].headers.value("Content-Type").startsWith("multipart/form-data; boundary="));
    }

    void pushIsFlatInMemory()
    {
        QFile large(m_folder.filePath("large"));
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(200 << 20));
        large.close();
        const long before = peakMemoryKiB();
        QVERIFY(m_api.pushDefinition(m_fixture->adminToken(), 22, large.fileName()));
        QCOMPARE(m_fixture->farm().definitionsSize, qint64(200) << 20);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        QVERIFY2(peakMemoryKiB() - before < 32 * 1024, "the file passes through, it is not held");
#else
        Q_UNUSED(before) // sanitizers keep freed memory
#endif
        large.remove();
    }

    void pushNothing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << m_folder.filePath("none");
        QTest::newRow("folder") << m_folder.path();
        QTest::newRow("empty name") << QString();
    }

    void pushNothing()
    {
        QFETCH(QString, path);
        const LogCapture log;
        QString error;
        QVERIFY(!m_api.pushDefinition(m_fixture->adminToken(), 1, path, &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(m_fixture->requests().isEmpty());
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.lines().at(0).startsWith("[D][ pushDefinition ][ "));
        QVERIFY(log.lines().at(0).endsWith("] AddFileForUpload error:  \"" + error + '"'));
    }

    void pushReplies_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("done");
        QTest::newRow("true") << 200 << QByteArray(R"({"success":true})") << true;
        QTest::newRow("true with an error status") << 500 << QByteArray(R"({"success":true})") << true;
        QTest::newRow("text") << 200 << QByteArray(R"({"success":"yes"})") << false;
        QTest::newRow("number") << 200 << QByteArray(R"({"success":1})") << false;
        QTest::newRow("absent") << 200 << QByteArray("{}") << false;
        QTest::newRow("no JSON") << 200 << QByteArray("success") << false;
        QTest::newRow("nothing") << 200 << QByteArray() << false;
    }

    void pushReplies()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, reply);
        m_fixture->setReply(kPush, status, reply);
        QString error = QStringLiteral("untouched");
        QTEST(m_api.pushDefinition(m_fixture->adminToken(), 5, write("d", "x"), &error), "done");
        QCOMPARE(error, QStringLiteral("untouched"));
    }

    void pushUnanswered()
    {
        m_fixture->setFault(kPush, Fault::DropAfterwards);
        QString error;
        QVERIFY(!m_api.pushDefinition(m_fixture->adminToken(), 23, write("d", "x"), &error));
        QVERIFY(!error.isEmpty());
        QCOMPARE(m_fixture->requests(kPush).size(), 1);
        QCOMPARE(m_fixture->farm().definitionsVersion, 23);
    }

    void fetch_data()
    {
        QTest::addColumn<QByteArray>("encryption");
        QTest::addColumn<QByteArray>("content");
        for (const char* kind : {"zipcrypt", "aes128", "aes256"}) {
            QTest::newRow(kind) << QByteArray(kind) << QByteArray("line 1\r\nline 2\n\xc4\x91");
            QTest::addRow("%s, large", kind) << QByteArray(kind) << QByteArray(300000, 'x');
        }
    }

    void fetch()
    {
        QFETCH(QByteArray, encryption);
        QFETCH(QByteArray, content);
        const QString path = m_folder.filePath("definitions.zip");
        const auto bytes = [&](const QVector<ZipMember>& members, const char* password) {
            writeZip(path, members, encryption, password);
            QFile file(path);
            file.open(QIODevice::ReadOnly);
            return file.readAll();
        };
        const QVector<ZipMember> members{{"first.txt", content}, {"second.txt", "another"}};
        const QByteArray good = bytes(members, kPassword);

        QString logged;
        QVERIFY(fetch(good, &logged));
        QVERIFY(logged.startsWith("[D][ getDefinition ]["));
        QString expected;
        QDebug(&expected) << "fileContents: " << QString::fromUtf8(content);
        QVERIFY(logged.trimmed().endsWith(expected.trimmed()));
        const auto requests = m_fixture->requests(kGet);
        const QByteArray body = "{\"token\":\"" + m_fixture->userToken().toUtf8() + "\",\"version\":21}";
        QCOMPARE(requests.last().body, body);

        QByteArray tampered = good;
        tampered[80] = char(tampered[80] ^ 0x55);
        QByteArray cut = good;
        cut.chop(cut.size() / 2);
        for (const QByteArray& bad : {bytes(members, "another"), tampered, cut, bytes({}, kPassword),
                                      QByteArray("no zip at all"), QByteArray()}) {
            QVERIFY(!fetch(bad, &logged));
            static const QRegularExpression oneLine("^\\[D\\]\\[ getDefinition \\]\\[ \\d+ \\] \".+\"\\s*$");
            QVERIFY2(oneLine.match(logged).hasMatch(), qPrintable(logged));
        }
    }

    void download()
    {
        const QString path = m_folder.filePath("downloaded ä.zip");
        const QString url = m_fixture->origin() + "/packages/velstrand_19.zip";
        const LogCapture log;
        QVERIFY(m_api.downloadFile(url, path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray(100000, 'p'));

        m_fixture->setFault("/packages/velstrand_19.zip", Fault::Cut);
        QVERIFY(!m_api.downloadFile(url, path));
        QVERIFY(!m_api.downloadFile(m_fixture->origin() + "/packages/none.zip", path));
        QVERIFY(!m_api.downloadFile(url, m_folder.filePath("no/such/folder.zip")));
        QCOMPARE(QFileInfo(path).size(), 100000);
        const QStringList lines = log.lines();
        QCOMPARE(lines.filter(QRegularExpression("\\] path:  \".*\"  -- outputPah:  \".*\"$")).size(), 4);
        QCOMPARE(lines.filter("] Download  \"" + url + "\"  success").size(), 1);
        QCOMPARE(lines.filter("] Download ERROR:  \"").size(), 3);
        QCOMPARE(lines.size(), 8);
    }

private:
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(m_folder.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return file.fileName();
    }
    /// A fetch of an archive; what was logged after the request.
    bool fetch(const QByteArray& archive, QString* logged)
    {
        auto farm = m_fixture->farm();
        farm.definitionsArchive = archive;
        m_fixture->setFarm(farm);
        const LogCapture log;
        const bool done = m_api.getDefinition(m_fixture->userToken(), 21);
        *logged = log.lines().join('\n');
        return done;
    }

    static devservice::Options options(const QTemporaryDir& folder)
    {
        QFile package(folder.filePath("package.zip"));
        package.open(QIODevice::WriteOnly);
        package.write(QByteArray(100000, 'p'));
        devservice::Options result;
        result.packageFile = package.fileName();
        result.packageVersion = 19;
        return result;
    }

    QTemporaryDir m_folder;
    ServiceFixture m_fixture{options(m_folder)};
    VelstrandAPI m_api;
};

QTEST_GUILESS_MAIN(TestDefinitions)
#include "tst_definitions.moc"
