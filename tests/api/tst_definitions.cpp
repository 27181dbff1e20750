#include "api/VelstrandAPI.h"

#include "devservice/DevService.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ServiceFixture.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ZipFile.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/resource.h>

using devservice::Fault;

namespace {

const QString kPush = QStringLiteral("/api/v1/definitions/push");
constexpr char kPassword[] = "0417385926";

long peakMemoryKiB()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// The archive with a bit of its first member flipped, behind what any encryption puts in front of the data.
QByteArray spoiled(QByteArray zip)
{
    const int nameAndExtra = zip[26] + zip[28];
    const int at = 30 + nameAndExtra + 20;
    zip[at] = char(zip[at] ^ 0x10);
    return zip;
}

} // namespace

/// The definitions both ways, and downloads, against the development service.
class TestDefinitions : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture->clearRequests(); }
    void cleanup() { m_fixture->clearFaults(); }

    void push()
    {
        const QString name = QStringLiteral("định \"nghĩa\" мир's 😀.zip");
        const QByteArray bytes = QByteArrayLiteral("--\r\n----x--\r\n\r\n\0\x1a\xff");
        const QString path = writeFile(m_folder.filePath(name), bytes);
        QString error = QStringLiteral("untouched");
        QVERIFY(m_api.pushDefinition(m_fixture->adminToken(), 21, path, &error));
        QCOMPARE(error, QStringLiteral("untouched"));
        const auto farm = m_fixture->farm();
        QCOMPARE(farm.definitionsVersion, 21);
        QCOMPARE(farm.definitionsFileName, name);
        QCOMPARE(farm.definitionsSize, qint64(bytes.size()));
        QCOMPARE(farm.definitionsSha256, QCryptographicHash::hash(bytes, QCryptographicHash::Sha256));

        const auto requests = m_fixture->requests(kPush);
        QCOMPARE(requests.size(), 1);
        const QRegularExpression ours("^(Connection|token|Accept):");
        QCOMPARE(requests[0].headerLines.filter(ours),
                 QStringList(
                     {"Connection: Keep-Alive", "token: " + m_fixture->adminToken(), "Accept: text/html"}));
        QVERIFY(requests[0].headers.value("Content-Type").startsWith("multipart/form-data; boundary="));
    }

    void pushIsFlatInMemory()
    {
        QFile large(m_folder.filePath("large"));
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(200 << 20));
        const long before = peakMemoryKiB();
        QVERIFY(m_api.pushDefinition(m_fixture->adminToken(), 22, large.fileName()));
        QCOMPARE(m_fixture->farm().definitionsSize, large.size());
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        QVERIFY2(peakMemoryKiB() - before < 32 * 1024, "the file passes through, it is not held");
#else
        Q_UNUSED(before) // sanitizers keep freed memory
#endif
        large.remove();
    }

    void pushNothing()
    {
        for (const QString& path : {m_folder.filePath("none"), m_folder.path(), QString()}) {
            const LogCapture log;
            QString error;
            QVERIFY(!m_api.pushDefinition(m_fixture->adminToken(), 1, path, &error));
            QVERIFY(!error.isEmpty());
            QCOMPARE(log.lines().size(), 1);
            QVERIFY(log.lines().constFirst().startsWith("[D][ pushDefinition ][ "));
            QVERIFY(log.lines().constFirst().endsWith("] AddFileForUpload error:  \"" + error + '"'));
        }
        QVERIFY(m_fixture->requests().isEmpty());
    }

    void pushReplies()
    {
        const std::tuple<int, QByteArray, bool> replies[] = {{200, R"({"success":true})", true},
                                                             {500, R"({"success":true})", true},
                                                             {200, R"({"success":"yes"})", false},
                                                             {200, R"({"success":1})", false},
                                                             {200, "success", false},
                                                             {200, "", false}};
        for (const auto& [status, reply, done] : replies) {
            m_fixture->setReply(kPush, status, reply);
            QString error;
            QVERIFY2(m_api.pushDefinition(m_fixture->adminToken(), 5, m_anyFile, &error) == done, reply);
            QVERIFY(error.isEmpty());
        }
    }

    void pushUnanswered()
    {
        m_fixture->setFault(kPush, Fault::DropAfterwards);
        QString error;
        QVERIFY(!m_api.pushDefinition(m_fixture->adminToken(), 23, m_anyFile, &error));
        QVERIFY(!error.isEmpty());
        QCOMPARE(m_fixture->requests(kPush).size(), 1);
        QCOMPARE(m_fixture->farm().definitionsVersion, 23);
    }

    void fetch_data()
    {
        QTest::addColumn<QByteArray>("encryption");
        for (const char* name : {"zipcrypt", "aes128", "aes256"})
            QTest::newRow(name) << QByteArray(name);
    }
    void fetch()
    {
        QFETCH(QByteArray, encryption);
        const auto packed = [&](const ZipMembers& members, const char* password) {
            return packZip(members, encryption, password);
        };
        const ZipMembers members{{"first.txt", "line 1\r\nline 2\n\xc4\x91" + QByteArray(300000, 'x')},
                                 {"second.txt", "another"}};
        const QByteArray good = packed(members, kPassword);

        const auto fetched = [&](const QByteArray& archive) {
            auto farm = m_fixture->farm();
            farm.definitionsArchive = archive;
            m_fixture->setFarm(farm);
            const LogCapture log;
            const bool done = m_api.getDefinition(m_fixture->userToken(), 21);
            return std::pair(done, log.lines().join('\n').trimmed());
        };
        QString words;
        QDebug(&words) << "fileContents: " << QString::fromUtf8(members[0].second);
        const auto [done, logged] = fetched(good);
        QVERIFY(done && logged.startsWith("[D][ getDefinition ][") && logged.endsWith(words.trimmed()));
        const QByteArray body = "{\"token\":\"" + m_fixture->userToken().toUtf8() + "\",\"version\":21}";
        QCOMPARE(m_fixture->requests("/api/v1/definitions/get").last().body, body);

        for (const QByteArray& bad : {packed(members, "another"), spoiled(good), good.left(good.size() / 2),
                                      packed({}, kPassword), QByteArray("no zip at all"), QByteArray()}) {
            const auto [doneToo, error] = fetched(bad);
            QVERIFY(!doneToo);
            static const QRegularExpression oneLine("^\\[D\\]\\[ getDefinition \\]\\[ \\d+ \\] \".+\"$");
            QVERIFY2(oneLine.match(error).hasMatch(), qPrintable(error));
        }
    }

    void download()
    {
        const QString path = m_folder.filePath("downloaded ä.zip");
        const QString url = m_fixture->origin() + "/packages/velstrand_19.zip";
        const LogCapture log;
        QVERIFY(m_api.downloadFile(url, path));
        QCOMPARE(content(path), QByteArray(100000, 'p'));

        m_fixture->setFault("/packages/velstrand_19.zip", Fault::Cut);
        QVERIFY(!m_api.downloadFile(url, path));
        QVERIFY(!m_api.downloadFile(m_fixture->origin() + "/packages/none.zip", path));
        QVERIFY(!m_api.downloadFile(url, m_folder.filePath("no/such/folder.zip")));
        QCOMPARE(content(path).size(), 100000);
        const QStringList lines = log.lines();
        QCOMPARE(lines.filter(QRegularExpression("\\] path:  \".*\"  -- outputPah:  \".*\"$")).size(), 4);
        QCOMPARE(lines.filter("] Download  \"" + url + "\"  success").size(), 1);
        QCOMPARE(lines.filter("] Download ERROR:  \"").size(), 3);
        QCOMPARE(lines.size(), 8);
    }

private:
    static devservice::Options options(const QTemporaryDir& folder)
    {
        devservice::Options result;
        result.packageFile = writeFile(folder.filePath("package.zip"), QByteArray(100000, 'p'));
        result.packageVersion = 19;
        return result;
    }

    QTemporaryDir m_folder;
    ServiceFixture m_fixture{options(m_folder)};
    const QString m_anyFile = writeFile(m_folder.filePath("any"), "x");
    VelstrandAPI m_api;
};

QTEST_GUILESS_MAIN(TestDefinitions)
#include "tst_definitions.moc"
