#include "tests/support/TestFiles.h"
#include "tests/support/ZipFile.h"
#include "tests/toolkit/ZipBytes.h"
#include "toolkit/ZipArchive.h"
#include "toolkit/ZipRules.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <clocale>

using toolkit::BinaryData;
using toolkit::ZipArchive;
namespace fs = std::filesystem;
using Entries = std::vector<RawZipEntry>;

namespace {

constexpr char kPassword[] = "0417385926";

bool Open(ZipArchive* archive, const std::string& bytes)
{
    BinaryData data;
    data.bytes = bytes;
    return archive->OpenBd(data);
}

std::string Packed(const QByteArray& name, const QByteArray& content, const char* password = nullptr)
{
    return packZip({{name, content}}, "aes256", password).toStdString();
}

int FilesBelow(const QString& folder)
{
    return static_cast<int>(std::distance(fs::recursive_directory_iterator(folder.toStdString()), {}));
}

} // namespace

Q_DECLARE_METATYPE(Entries)

class TestZipArchive : public QObject
{
    Q_OBJECT

private slots:
    void password()
    {
        const std::string zip = Packed("definitions.json", "text", kPassword);
        for (const char* password : {kPassword, "0417385927", ""}) {
            for (const bool before : {true, false}) {
                ZipArchive archive;
                if (before)
                    archive.SetPassword(password);
                QVERIFY2(Open(&archive, zip), archive.LastErrorText().c_str());
                if (!before)
                    archive.SetPassword(password);
                QCOMPARE(archive.GetEntryByIndex(0) != nullptr, password == std::string(kPassword));
                QCOMPARE(archive.LastErrorText().empty(), password == std::string(kPassword));
            }
        }
    }

    void damaged()
    {
        std::string tampered = RawZip({{"a.txt", "content"}});
        tampered[30 + 5 + 3] ^= 0x20;
        const std::vector<std::pair<std::string, bool>> zips{
            {tampered, true},
            {RawZip({{"larger than declared", "content", 0100644, 3}}), true},
            {RawZip({{"smaller than declared", "content", 0100644, 300}}), true},
            {tampered.substr(0, tampered.size() - 30), false},
            {RawZip({}), false}};
        for (const auto& [zip, opens] : zips) {
            QTemporaryDir folder;
            ZipArchive archive;
            QVERIFY2(Open(&archive, zip) == opens && archive.LastErrorText().empty() == opens, zip.c_str());
            QVERIFY2(!archive.GetEntryByIndex(0) && !archive.LastErrorText().empty(), zip.c_str());
            QCOMPARE(archive.Unzip(folder.filePath("out").toStdString()), -1);
            QCOMPARE(FilesBelow(folder.path()), 0);
        }
    }

    void text()
    {
        const std::pair<std::string, bool> texts[] = {
            {"", true},
            {std::string("a\0\r\n\r\n\n", 7), true},
            {"a\xc2\x80\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xef\xbf\xbf\xf4\x8f\xbf\xbf", true},
            {"caf\xe9 au lait", false},
            {"cut\xe1\xba", false},
            {"overlong\xe0\x80\xaf", false},
            {"overlong\xc0\xaf", false},
            {"surrogate\xed\xa0\x80", false},
            {"above the last\xf4\x90\x80\x80", false},
            {"continuation missing\xf0\x9f\x98z", false}};
        for (const auto& [content, valid] : texts) {
            ZipArchive archive;
            QVERIFY(Open(&archive, RawZip({{"a", content}})));
            const auto entry = archive.GetEntryByIndex(0);
            QVERIFY(entry);
            const auto text = entry->UnzipToString(0, "UTF-8");
            QVERIFY2(valid ? text == content : !text,
                     QByteArray::fromStdString(content).toPercentEncoding(" "));
            QVERIFY(!entry->UnzipToString(1, "utf-8") && !entry->UnzipToString(0, "windows-1258"));
        }
    }

    void indexes()
    {
        ZipArchive archive;
        QVERIFY(!archive.GetEntryByIndex(0));
        QCOMPARE(archive.LastErrorText().c_str(), "No archive is open");
        QVERIFY(Open(&archive, RawZip({{"a", "first"}, {"b", "second"}})));
        QVERIFY(archive.GetEntryByIndex(1)->UnzipToString(0, "utf-8") == "second");
        QVERIFY(archive.GetEntryByIndex(0)->UnzipToString(0, "utf-8") == "first");
        QVERIFY(archive.LastErrorText().empty());
        for (int index : {-1, 2, 1000000}) {
            QVERIFY(!archive.GetEntryByIndex(index));
            QCOMPARE(archive.LastErrorText().c_str(), "Index out of range");
        }
        BinaryData gone;
        gone.Dispose();
        QVERIFY(!archive.OpenBd(gone));
        // What fails to open leaves nothing of the last one.
        QVERIFY(!archive.OpenZip("/nonexistent.zip"));
        QCOMPARE(archive.Unzip("/nonexistent"), -1);
    }

    void unpacks()
    {
        // Names must survive in a process of the C locale.
        std::setlocale(LC_ALL, "C");
        QTemporaryDir folder;
        const QString path =
            writeFile(folder.filePath(QString::fromUtf8("gói.zip")),
                      QByteArray::fromStdString(RawZip({{"velstrand/", "", 040755},
                                                        {"velstrand/Velstrand.exe", "MZ", 0104755},
                                                        {"velstrand/data/read.me", "hello", 0100444},
                                                        {"velstrand/Cài đặt 設定.txt", "x"},
                                                        {"top", std::string(300000, 't')},
                                                        {std::string(240, 'n'), "long"},
                                                        {"~COMMON~1.conf~", ""},
                                                        {"empty/", "", 040700}})));
        ZipArchive archive;
        QVERIFY2(archive.OpenZip(path.toStdString()), archive.LastErrorText().c_str());
        const QString out = folder.filePath(QString::fromUtf8("đích/tmp"));
        for (int attempt = 0; attempt < 2; ++attempt) {
            const int files = archive.Unzip(out.toStdString());
            QVERIFY2(files == 6, archive.LastErrorText().c_str());
            QCOMPARE(FilesBelow(out), 9);
            QCOMPARE(content(out + "/velstrand/Velstrand.exe"), QByteArray("MZ"));
            QCOMPARE(content(out + QString::fromUtf8("/velstrand/Cài đặt 設定.txt")), QByteArray("x"));
            QCOMPARE(content(out + "/top"), QByteArray(300000, 't'));
            const auto perms = fs::status((out + "/velstrand/Velstrand.exe").toStdString()).permissions();
            QVERIFY((perms & fs::perms::owner_exec) != fs::perms::none);
            QVERIFY((perms & fs::perms::set_uid) == fs::perms::none);
            QVERIFY(!QFileInfo(out + "/top").isExecutable());
        }
        archive.CloseZip();
        QCOMPARE(archive.Unzip(out.toStdString()), -1);
    }

    void refused_data()
    {
        QTest::addColumn<Entries>("entries");
        QTest::addColumn<QByteArray>("reason");
        const auto row = [](const std::string& title, const QByteArray& reason, const Entries& entries) {
            QTest::newRow(title.c_str()) << entries << reason;
        };
        const auto names = [&](const QByteArray& reason, const QList<QByteArray>& bad) {
            for (const QByteArray& name : bad)
                row("name " + name.toPercentEncoding("/\\: ").toStdString(), reason,
                    {{name.toStdString(), "x"}});
        };
        names("an absolute or an empty name", {"/absolute", "//server/share", "a//b", "", "\\x"});
        names("leads out of its folder", {"../up", "a/../../up", "a/..", "..", "..\\up", "a\\..\\..\\b"});
        names("characters that are not allowed",
              {"C:/x", "C:x", "a/C:/x", "a/b\\c", "new\nline", "bell\a", "del\x7f", "c1\xc2\x85", "stream:x",
               "ask?", "star*", "quote\"", "pipe|", "less<", "more>"});
        names("ends in a dot or a blank", {"./a", "a/./b", "dot.", "blank ", "dir./a", "dir /a"});
        names("that Windows reserves",
              {"CON", "nul", "a/Aux.txt", "COM1.log", "lpt9", "COM\xc2\xb9", "NUL .txt", "conin$"});
        names("that Windows takes for a short one", {"VELSTR~1/a", "a~b~12.exe"});
        names("cannot be converted", {"bad\xff\xfe"});
        row("name too long", "a name that is too long", {{"a/" + std::string(239, 'n'), "x"}});
        row("link, then through it", "a link or a special file", {{"dir", "/tmp", 0120777}, {"dir/x", "x"}});
        row("device", "a link or a special file", {{"dev", "", 0020666}});
        row("same name", "two entries of one name", {{"a", "1"}, {"a", "2"}});
        row("same but for case", "two entries of one name", {{"đường", "1"}, {"ĐƯỜNG", "2"}});
        row("folders of one name", "two entries of one name", {{"d/", "", 040755}, {"D/", "", 040755}});
        row("file and folder", "two entries of one name", {{"a", "1"}, {"A/b", "2"}});
        row("folder and file", "two entries of one name", {{"a/b", "1"}, {"A", "2"}});
        row("one too large", "a file that is too large", {{"a", "x", 0100644, (256 << 20) + 1}});
        Entries deep;
        for (int i = 0; i < 200; ++i)
            deep.push_back({std::to_string(i) + QByteArray("/a").repeated(110).toStdString(), ""});
        row("too many folders", "too many entries", deep);
    }
    void refused()
    {
        QFETCH(Entries, entries);
        QFETCH(QByteArray, reason);
        // The harmless entry in front must not be written either.
        entries.insert(entries.begin(), {"harmless", "x"});
        QTemporaryDir folder;
        ZipArchive archive;
        QVERIFY2(Open(&archive, RawZip(entries)), archive.LastErrorText().c_str());
        QCOMPARE(archive.Unzip(folder.filePath("a/b/out").toStdString()), -1);
        QVERIFY2(archive.LastErrorText().find(reason.constData()) != std::string::npos,
                 archive.LastErrorText().c_str());
        QCOMPARE(FilesBelow(folder.path()), 0);
    }

    void bounds()
    {
        QTemporaryDir folder;
        const auto refusal = [&](const std::string& zip) {
            ZipArchive archive;
            const bool done = Open(&archive, zip) && archive.Unzip(folder.filePath("out").toStdString()) > 0;
            return done ? QByteArray("none") : QByteArray::fromStdString(archive.LastErrorText());
        };
        // Zeros deflate to about a thousandth: fine up to 1 MiB, unbelievable above.
        QCOMPARE(refusal(Packed("zeros", QByteArray(1 << 20, '\0'))), QByteArray("none"));
        QCOMPARE(refusal(Packed("zeros", QByteArray((1 << 20) + 1, '\0'))),
                 QByteArray("The archive holds a file that is packed beyond belief"));
        toolkit::ZipRules::AdmitRatio(20000, 2000000);
        QVERIFY_EXCEPTION_THROWN(toolkit::ZipRules::AdmitRatio(20000, 2000001), std::runtime_error);
        toolkit::ZipRules rules;
        rules.Admit(L"a", toolkit::ZipKind::File, 256 << 20);
        rules.Admit(L"b", toolkit::ZipKind::File, 256 << 20);
        QByteArray words;
        try {
            rules.Admit(L"c", toolkit::ZipKind::File, 1);
        } catch (const std::runtime_error& refused) {
            words = refused.what();
        }
        QCOMPARE(words, QByteArray("The files of the archive are too large together"));

        Entries many;
        for (int i = 0; i < 10000; ++i)
            many.push_back({"d/" + std::to_string(i), ""});
        QCOMPARE(refusal(RawZip(many)), QByteArray("none"));
        many.push_back({"e", ""});
        QCOMPARE(refusal(RawZip(many)), QByteArray("The archive holds too many entries"));
        QVERIFY(!QFile::exists(folder.filePath("out/e")));
    }

    void leftOvers()
    {
        QTemporaryDir folder;
        const QString out = folder.filePath("out");
        QVERIFY(QDir().mkpath(out + "/file/full"));
        QVERIFY(QDir().mkpath(folder.filePath("elsewhere")));
        const QString precious = writeFile(folder.filePath("precious"), "precious");
        writeFile(folder.filePath("elsewhere/kept"), "kept");
        writeFile(out + "/old", "an earlier attempt left more than this");
        writeFile(out + "/folder", "a file where a folder goes");
        writeFile(out + "/file/full/x", "a folder where a file goes");
        QVERIFY(QFile::link(precious, out + "/link"));
        for (const char* name : {"/away", "/file/full/away"})
            QVERIFY(QFile::link(folder.filePath("elsewhere"), out + name));
        fs::create_hard_link(precious.toStdString(), (out + "/twin").toStdString());

        ZipArchive archive;
        QVERIFY(Open(&archive, RawZip({{"old", "new"},
                                       {"folder/a", "new"},
                                       {"file", "new"},
                                       {"link", "new"},
                                       {"away/a", "new"},
                                       {"twin", "new"}})));
        QCOMPARE(archive.Unzip(out.toStdString()), 6);
        for (const char* name : {"old", "folder/a", "file", "link", "away/a", "twin"})
            QCOMPARE(content(out + "/" + name), QByteArray("new"));
        QCOMPARE(content(precious), QByteArray("precious"));
        QCOMPARE(QDir(folder.filePath("elsewhere")).entryList(QDir::Files), QStringList("kept"));
    }
};

QTEST_GUILESS_MAIN(TestZipArchive)
#include "tst_ziparchive.moc"
