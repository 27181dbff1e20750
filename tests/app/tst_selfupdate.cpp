#include "devservice/DevService.h"
#include "tests/support/ServiceFixture.h"
#include "tests/support/ZipFile.h"

#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QProcess>
#include <QSettings>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QtTest>

using Members = QVector<ZipMember>;

Q_DECLARE_METATYPE(Members)

namespace {

/// A program that reports which build was started, with how many arguments and where.
QByteArray program(const char* build)
{
    return QByteArray("#!/bin/sh\nprintf '%s' \"") + build +
           " $# $PWD $0\" > started.tmp\nmv started.tmp started\n";
}

/// To be killed while the archive is on its way.
const QString kHalfway = QStringLiteral("halfway through the download");

const Members kGoodPackage{{"velstrand/Velstrand.exe", program("new")},
                           {"velstrand/lib/data.bin", "x", 0644}};

} // namespace

/// Replacing a running program, each time in a real process with a folder of its own.
class TestSelfUpdate : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        put("Velstrand.exe", program("old"));
    }

    void outcomes_data()
    {
        QTest::addColumn<Members>("package");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QString>("logged");
        QTest::addColumn<QString>("restarted");
        QTest::addColumn<QStringList>("after");
        const QStringList swapped{"Velstrand.exe", "temp.dat", "tmp/"};
        const QStringList same{"Velstrand.exe", "tmp/"};
        const QStringList kept{"Velstrand.exe", "tmp/", "tmp/velstrand_19.zip"};
        QTest::newRow("good") << kGoodPackage << QStringList() << "]Unzip success!"
                              << "new" << swapped;
        QTest::newRow("left-overs of a broken attempt")
            << kGoodPackage
            << QStringList{"tmp/velstrand_19.zip/x", "tmp/velstrand/Velstrand.exe/x",
                           "tmp/velstrand_19.zip.part", "Velstrand.exe.part"}
            << "]Unzip success!"
            << "new" << QStringList{"Velstrand.exe", "Velstrand.exe.part", "temp.dat", "tmp/"};
        QTest::newRow("unpacked folder is a file")
            << kGoodPackage << QStringList{"tmp/velstrand"} << "success"
            << "new" << swapped;
        QTest::newRow("no temporary folder")
            << kGoodPackage << QStringList{"tmp"} << "Create tmp folder failed!"
            << "" << QStringList{"Velstrand.exe", "tmp"};
        QTest::newRow("not to be had") << kGoodPackage << QStringList() << "Download ERROR:"
                                       << "" << same;
        QTest::newRow("not a zip") << Members() << QStringList() << "Unrecognized archive format"
                                   << "" << kept;
        QTest::newRow("hostile") << Members{{"../evil", "x"}, {"velstrand/Velstrand.exe", program("new")}}
                                 << QStringList() << "leads out of its folder"
                                 << "" << kept;
        QTest::newRow("executable at the top")
            << Members{{"Velstrand.exe", program("new")}} << QStringList() << "success"
            << "old" << QStringList{"Velstrand.exe", "tmp/", "tmp/Velstrand.exe"};
        QTest::newRow("an earlier build is parked")
            << kGoodPackage << QStringList{"temp.dat"} << "tmp/velstrand/Velstrand.exe\"  don't exist"
            << "old" << swapped;
        QTest::newRow("executable is a folder")
            << Members{{"velstrand/Velstrand.exe/", ""}} << QStringList() << "Copy new bin failed!"
            << "none" << QStringList{"temp.dat", "tmp/"};
    }

    void outcomes()
    {
        QFETCH(Members, package);
        QFETCH(QStringList, before);
        QFETCH(QString, logged);
        QFETCH(QString, restarted);
        for (const QString& name : before)
            put(name.toLatin1().constData(), "left");
        int exitCode = -1;
        const QString log = update(package, &exitCode);
        QVERIFY2(log.contains(logged), qPrintable(log));
        for (const char* words : {"Copy new bin failed!", " don't exist"})
            QCOMPARE(log.contains(words), logged.contains(words));
        QVERIFY2(exitCode == (restarted.isEmpty() ? 3 : 0), qPrintable(log));
        if (restarted == "new" || restarted == "old") {
            const QString folder = QFileInfo(m_folder->path()).canonicalFilePath();
            QCOMPARE(QString(started()),
                     restarted + " 0 " + folder + ' ' + m_folder->path() + "/Velstrand.exe");
        }
        QTEST(listing(), "after");
        if (restarted == "new")
            QCOMPARE(content("temp.dat"), program("old"));
        if (restarted.isEmpty())
            QCOMPARE(content("Velstrand.exe"), program("old"));
        QVERIFY(!QFile::exists(m_folder->path() + "/../evil"));
    }

    void killed_data()
    {
        QTest::addColumn<QString>("killAt");
        QTest::addColumn<QString>("survivor");
        QTest::newRow("before the download") << "outputPah"
                                             << "old";
        QTest::newRow("downloading") << kHalfway << "old";
        QTest::newRow("downloaded") << "Download new version"
                                    << "old";
        QTest::newRow("unpacked") << "]Unzip success!"
                                  << "old";
        QTest::newRow("swapped") << "velstrand\"  : "
                                 << "new";
        QTest::newRow("cleared up") << ".zip\"  : "
                                    << "new";
    }

    void killed()
    {
        QFETCH(QString, killAt);
        QFETCH(QString, survivor);
        int exitCode = 0;
        update(kGoodPackage, &exitCode, killAt);
        QCOMPARE(exitCode, -1);
        QCOMPARE(QFile::exists(path("tmp/velstrand_19.zip.part")), killAt == kHalfway);
        QCOMPARE(content("Velstrand.exe"), program(survivor.toLatin1()));

        QFile::remove(path("temp.dat")); // as the next start does
        update(kGoodPackage, &exitCode);
        QCOMPARE(exitCode, 0);
        QVERIFY(started().startsWith("new 0 "));
    }

    void temporaryFolderOnAnotherVolume()
    {
        QTemporaryDir elsewhere("/dev/shm/tst_selfupdate-XXXXXX");
        if (!elsewhere.isValid() || QStorageInfo(elsewhere.path()) == QStorageInfo(m_folder->path()))
            QSKIP("no second volume here");
        QVERIFY(QFile::link(elsewhere.path(), path("tmp")));
        // What an attempt interrupted while copying may have left.
        put("victim", "untouched");
        QVERIFY(QFile::link(path("victim"), path("Velstrand.exe.part")));
        int exitCode = -1;
        const QString log = update(kGoodPackage, &exitCode);
        QVERIFY2(exitCode == 0, qPrintable(log));
        QVERIFY2(started().startsWith("new 0 "), qPrintable(log));
        QCOMPARE(content("Velstrand.exe"), program("new"));
        QCOMPARE(content("victim"), QByteArray("untouched"));
        QVERIFY(!QFileInfo(path("Velstrand.exe.part")).isSymLink());
    }

    void runningManager()
    {
        QTemporaryDir packages;
        devservice::Options options;
        options.packageVersion = 19;
        options.packageFile = packages.filePath("package.zip");
        QVERIFY(writeZip(options.packageFile, kGoodPackage));
        ServiceFixture fixture(options);
        QSettings("Velstrand", "Velstrand Manager").setValue("user_token", fixture.service().userToken());
        QVERIFY(QFile::remove(path("Velstrand.exe")) && QFile::copy(MANAGER, path("Velstrand.exe")));

        QProcess manager;
        manager.setWorkingDirectory(m_folder->path());
        manager.start(path("Velstrand.exe"), QStringList());
        QVERIFY2(manager.waitForFinished(20000), "the first look for a newer build comes after 10 seconds");
        QCOMPARE(manager.exitStatus(), QProcess::NormalExit);
        QCOMPARE(manager.exitCode(), 0);
        QVERIFY(started().startsWith("new 0 "));
        QCOMPARE(listing(), QStringList({"Velstrand.exe", "temp.dat", "tmp/"}));
        // Meanwhile the stored token has signed in.
        const auto asked = fixture.service().requests("/api/v1/user/get-info");
        QCOMPARE(asked.size(), 1);
        QVERIFY(asked[0].body.contains(fixture.service().userToken().toUtf8()));
        QCOMPARE(fixture.service().requests("/api/v1/device/list").size(), 1);
    }

    void nextStartRemovesTheParkedBuild()
    {
        put("temp.dat", "old");
        QProcess manager;
        manager.setWorkingDirectory(m_folder->path());
        manager.start(MANAGER, QStringList());
        QTRY_VERIFY(!QFile::exists(path("temp.dat")));
        manager.terminate();
        QVERIFY(manager.waitForFinished());
    }

    void brokenScene()
    {
        QVERIFY(QFile::remove(path("Velstrand.exe")) && QFile::copy(MANAGER, path("Velstrand.exe")));
        // The modules that the scene imports are not to be found.
        put("qt.conf", "[Paths]\nQml2Imports=none\nPlugins=" +
                           QLibraryInfo::location(QLibraryInfo::PluginsPath).toUtf8() + '\n');
        QProcess manager;
        manager.setWorkingDirectory(m_folder->path());
        manager.start(path("Velstrand.exe"), QStringList());
        QVERIFY(manager.waitForFinished());
        QCOMPARE(manager.exitStatus(), QProcess::NormalExit);
        QCOMPARE(manager.exitCode(), 255);
    }

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    QByteArray content(const char* name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void put(const char* name, const QByteArray& bytes) const
    {
        QDir(m_folder->path()).mkpath(QFileInfo(QLatin1String(name)).path());
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner));
    }

    /// Everything in the folder and below, sorted; folders end in "/".
    QStringList listing() const
    {
        QStringList names;
        QDirIterator it(m_folder->path(),
                        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            it.next();
            names.append(QDir(m_folder->path()).relativeFilePath(it.filePath()) +
                         (it.fileInfo().isDir() ? "/" : ""));
        }
        names.removeAll("started");
        names.sort();
        return names;
    }

    /// Runs one update to its end. Returns its log; @p exitCode is -1 after a crash.
    QString update(const Members& package, int* exitCode, const QString& killAt = QString())
    {
        QTemporaryDir packages;
        devservice::Options options;
        options.devices = options.clones = 0;
        options.packageVersion = 19;
        options.packageFile = packages.filePath("package.zip");
        options.packageBytesPerSecond = killAt == kHalfway ? 200 : 0;
        if (package.isEmpty()) {
            QFile broken(options.packageFile);
            broken.open(QIODevice::WriteOnly);
            broken.write(QByteArray(5000, 'x'));
        } else {
            writeZip(options.packageFile, package);
        }
        ServiceFixture fixture(options);
        QProcess runner;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KILL_AT", killAt);
        runner.setProcessEnvironment(environment);
        runner.setWorkingDirectory(m_folder->path());
        const bool found = QByteArray(QTest::currentDataTag()) != "not to be had";
        runner.start(UPDATE_RUNNER, {"19", fixture.service().origin() + "/packages/velstrand_" +
                                               (found ? "19" : "20") + ".zip"});
        if (killAt == kHalfway) {
            (void)QTest::qWaitFor([&] { return QFile::exists(path("tmp/velstrand_19.zip.part")); });
            runner.kill();
        }
        runner.waitForFinished();
        *exitCode = runner.exitStatus() == QProcess::NormalExit ? runner.exitCode() : -1;
        return QString::fromUtf8(runner.readAllStandardError());
    }

    /// What the program in place reports once the update has started it.
    QByteArray started() const
    {
        (void)QTest::qWaitFor([&] { return QFile::exists(path("started")); });
        const QByteArray text = content("started");
        QFile::remove(path("started"));
        return text;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_package;
};

QTEST_GUILESS_MAIN(TestSelfUpdate)
#include "tst_selfupdate.moc"
