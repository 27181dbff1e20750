#include "devservice/DevService.h"
#include "tests/support/ServiceFixture.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ZipFile.h"

#include <QDirIterator>
#include <QLibraryInfo>
#include <QProcess>
#include <QSettings>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QtTest>

using devservice::Fault;

namespace {

/// A program that reports which build was started, with how many arguments and where.
QByteArray program(const char* build)
{
    return QByteArray("#!/bin/sh\nprintf '%s' \"") + build +
           " $# $PWD $0\" > started.tmp\nmv started.tmp started\n";
}

const QString kPackage = QStringLiteral("/packages/velstrand_19.zip");
const QByteArray kGoodPackage =
    packZip({{"velstrand/Velstrand.exe", program("new")}, {"velstrand/lib/data.bin", "x"}});

/// To be killed while the archive is on its way.
constexpr char kHalfway[] = "halfway through the download";

/// What a process may take on a machine with much else to do, ms.
constexpr int kPatience = 30000;

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

    void cleanup()
    {
        m_fixture->clearFaults();
        QSettings("Velstrand", "Velstrand Manager").clear();
    }

    void outcomes_data()
    {
        QTest::addColumn<QByteArray>("package");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QString>("logged");
        QTest::addColumn<QString>("restarted");
        QTest::addColumn<QStringList>("after");
        const auto row = [](const char* name, const QByteArray& package, const QStringList& before,
                            const char* logged, const char* restarted, const QStringList& after) {
            QTest::newRow(name) << package << before << QString(logged) << QString(restarted) << after;
        };
        const QStringList swapped{"Velstrand.exe", "temp.dat", "tmp/"};
        const QStringList kept{"Velstrand.exe", "tmp/", "tmp/velstrand_19.zip"};
        row("good", kGoodPackage, {}, "]Unzip success!", "new", swapped);
        row("left-overs of a broken attempt", kGoodPackage,
            {"tmp/velstrand_19.zip/x", "tmp/velstrand/Velstrand.exe/x", "tmp/velstrand_19.zip.part",
             "Velstrand.exe.part"},
            "]Unzip success!", "new", {"Velstrand.exe", "Velstrand.exe.part", "temp.dat", "tmp/"});
        row("unpacked folder is a file", kGoodPackage, {"tmp/velstrand"}, "success", "new", swapped);
        row("no temporary folder", kGoodPackage, {"tmp"}, "Create tmp folder failed!", "",
            {"Velstrand.exe", "tmp"});
        row("not to be had", "", {}, "Download ERROR:", "", {"Velstrand.exe", "tmp/"});
        row("not a zip", QByteArray(5000, 'x'), {}, "Unrecognized archive format", "", kept);
        row("hostile", packZip({{"../evil", "x"}, {"velstrand/Velstrand.exe", program("new")}}), {},
            "leads out of its folder", "", kept);
        row("executable at the top, one of before where it belongs",
            packZip({{"Velstrand.exe", program("new")}}), {"tmp/velstrand/Velstrand.exe"}, "success", "old",
            {"Velstrand.exe", "tmp/", "tmp/Velstrand.exe"});
        row("an earlier build is parked", kGoodPackage, {"temp.dat"},
            "tmp/velstrand/Velstrand.exe\"  don't exist", "old", swapped);
        row("executable is a folder", packZip({{"velstrand/Velstrand.exe/", ""}}), {}, "Copy new bin failed!",
            "none", {"temp.dat", "tmp/"});
    }

    void outcomes()
    {
        QFETCH(QByteArray, package);
        QFETCH(QStringList, before);
        QFETCH(QString, logged);
        QFETCH(QString, restarted);
        for (const QString& name : before)
            put(name, "left");
        const auto [log, exitCode] = update(package);
        QVERIFY2(log.contains(logged), qPrintable(log));
        for (const char* words : {"Copy new bin failed!", " don't exist"})
            QCOMPARE(log.contains(words), logged.contains(words));
        QVERIFY2(exitCode == (restarted.isEmpty() ? 3 : 0), qPrintable(log));
        if (restarted == "new" || restarted == "old") {
            const QString folder = QFileInfo(m_folder->path()).canonicalFilePath();
            QCOMPARE(QString(started()), restarted + " 0 " + folder + ' ' + path("Velstrand.exe"));
        }
        QTEST(listing(), "after");
        if (restarted == "new")
            QCOMPARE(content(path("temp.dat")), program("old"));
        if (restarted.isEmpty())
            QCOMPARE(content(path("Velstrand.exe")), program("old"));
        QVERIFY(!QFile::exists(path("../evil")));
    }

    void killed_data()
    {
        QTest::addColumn<QByteArray>("survivor");
        // By what is logged at that moment: before the download, in it, behind it, ...
        for (const char* killAt : {"outputPah", kHalfway, "Download new version", "]Unzip success!"})
            QTest::newRow(killAt) << program("old");
        // The executable is in its place; the archive is gone.
        for (const char* killAt : {"velstrand\"  : ", ".zip\"  : "})
            QTest::newRow(killAt) << program("new");
    }

    void killed()
    {
        QFETCH(QByteArray, survivor);
        const QString killAt = QTest::currentDataTag();
        QCOMPARE(update(kGoodPackage, killAt).second, -1);
        QCOMPARE(QFile::exists(path("tmp/velstrand_19.zip.part")), killAt == kHalfway);
        QCOMPARE(content(path("Velstrand.exe")), survivor);

        QFile::remove(path("temp.dat")); // as the next start does
        QCOMPARE(update(kGoodPackage).second, 0);
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
        const auto [log, exitCode] = update(kGoodPackage);
        QVERIFY2(exitCode == 0 && started().startsWith("new 0 "), qPrintable(log));
        QCOMPARE(content(path("Velstrand.exe")), program("new"));
        QCOMPARE(content(path("victim")), QByteArray("untouched"));
        QVERIFY(!QFileInfo(path("Velstrand.exe.part")).isSymLink());
    }

    void runningManager()
    {
        m_fixture->setReply(kPackage, 200, kGoodPackage);
        auto farm = m_fixture->farm();
        farm.globalConfig["velstrand_manager_app_version"] = "19";
        farm.globalConfig["velstrand_manager_app_path"] = m_fixture->origin() + kPackage;
        m_fixture->setFarm(farm);
        QSettings("Velstrand", "Velstrand Manager").setValue("user_token", m_fixture->userToken());
        QProcess manager;
        startManager(&manager);
        QVERIFY2(manager.waitForFinished(20000), "the first look for a newer build comes after 10 seconds");
        QCOMPARE(manager.exitStatus(), QProcess::NormalExit);
        QCOMPARE(manager.exitCode(), 0);
        QVERIFY(started().startsWith("new 0 "));
        QCOMPARE(listing(), QStringList({"Velstrand.exe", "temp.dat", "tmp/"}));
        // Meanwhile the stored token has signed in.
        const auto asked = m_fixture->requests("/api/v1/user/get-info");
        QCOMPARE(asked.size(), 1);
        QVERIFY(asked[0].body.contains(m_fixture->userToken().toUtf8()));
        QCOMPARE(m_fixture->requests("/api/v1/device/list").size(), 1);
    }

    void nextStartRemovesTheParkedBuild()
    {
        put("temp.dat", "old");
        QProcess manager;
        startManager(&manager);
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(path("temp.dat")), kPatience);
        manager.terminate();
        QVERIFY(manager.waitForFinished());
    }

    void brokenScene()
    {
        // The modules that the scene imports are not to be found.
        put("qt.conf", "[Paths]\nQml2Imports=none\nPlugins=" +
                           QLibraryInfo::location(QLibraryInfo::PluginsPath).toUtf8() + '\n');
        QProcess manager;
        startManager(&manager);
        QVERIFY(manager.waitForFinished());
        QCOMPARE(manager.exitStatus(), QProcess::NormalExit);
        QCOMPARE(manager.exitCode(), 255);
    }

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    void put(const QString& name, const QByteArray& bytes) const
    {
        QFile file(writeFile(path(name), bytes));
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

    /// Runs one update to its end. Its log, and its exit code, -1 after a crash. Without a package there is
    /// none to be had.
    std::pair<QString, int> update(const QByteArray& package, const QString& killAt = QString())
    {
        m_fixture->setReply(kPackage, package.isEmpty() ? 404 : 200, package);
        m_fixture->setFault(kPackage, killAt == kHalfway ? Fault::Hang : Fault::None);
        QProcess runner;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KILL_AT", killAt);
        runner.setProcessEnvironment(environment);
        runner.setWorkingDirectory(m_folder->path());
        runner.start(UPDATE_RUNNER, {"19", m_fixture->origin() + kPackage});
        if (killAt == kHalfway) {
            (void)QTest::qWaitFor([&] { return QFile::exists(path("tmp/velstrand_19.zip.part")); },
                                  kPatience);
            runner.kill();
        }
        runner.waitForFinished();
        return {QString::fromUtf8(runner.readAllStandardError()),
                runner.exitStatus() == QProcess::NormalExit ? runner.exitCode() : -1};
    }

    /// Starts the real program in place of the other.
    void startManager(QProcess* manager) const
    {
        QVERIFY(QFile::remove(path("Velstrand.exe")) && QFile::copy(MANAGER, path("Velstrand.exe")));
        manager->setWorkingDirectory(m_folder->path());
        manager->start(path("Velstrand.exe"), QStringList());
    }

    /// What the program in place reports once the update has started it.
    QByteArray started() const
    {
        (void)QTest::qWaitFor([&] { return QFile::exists(path("started")); }, kPatience);
        const QByteArray text = content(path("started"));
        QFile::remove(path("started"));
        return text;
    }

    ServiceFixture m_fixture;
    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestSelfUpdate)
#include "tst_selfupdate.moc"
