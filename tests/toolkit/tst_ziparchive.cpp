#include "tests/toolkit/ZipBytes.h"
#include "toolkit/ZipArchive.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <clocale>
#include <random>

using toolkit::BinaryData;
using toolkit::ZipArchive;
namespace fs = std::filesystem;
using Entries = std::vector<RawZipEntry>;

namespace {

const std::string kText = "{\r\n \"name\": \"Đường\"\n}\r";
const std::string kPassword = "0417385926";

bool Open(ZipArchive* archive, const std::string& bytes)
{
    BinaryData data;
    data.bytes = bytes;
    return archive->OpenBd(data);
}

QByteArray Content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

void Write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write the test's file");
}

int FilesBelow(const QString& folder)
{
    int count = 0;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    for (; entries.hasNext(); entries.next())
        ++count;
    return count;
}

std::string Tampered(std::string zip, std::size_t at)
{
    zip[at] = static_cast<char>(zip[at] ^ 0x20);
    return zip;
}

} // namespace

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(Entries)

class TestZipArchive : public QObject
{
    Q_OBJECT

private slots:
    void encrypted_data();
    void encrypted();
    void damaged_data();
    void damaged();
    void text_data();
    void text();
    void indexes();
    void unpacks();
    void refused_data();
    void refused();
    void bounds();
    void leftOvers();
    void notValid();
};

void TestZipArchive::encrypted_data()
{
    QTest::addColumn<std::string>("encryption");
    for (const char* encryption : {"", "zipcrypt", "aes128", "aes256"})
        QTest::newRow(encryption) << std::string(encryption);
}

void TestZipArchive::encrypted()
{
    QFETCH(std::string, encryption);
    const std::string zip = PackedZip("definitions.json", kText, encryption, kPassword);
    for (const std::string& password : {kPassword, std::string("0417385927"), std::string()}) {
        for (const bool passwordFirst : {true, false}) {
            ZipArchive archive;
            if (passwordFirst)
                archive.SetPassword(password);
            QVERIFY2(Open(&archive, zip), archive.LastErrorText().c_str());
            archive.SetPassword(password);
            const auto entry = archive.GetEntryByIndex(0);
            const bool readable = encryption.empty() || password == kPassword;
            QCOMPARE(entry != nullptr, readable);
            QCOMPARE(archive.LastErrorText().empty(), readable);
            if (readable)
                QVERIFY(entry->UnzipToString(0, "utf-8") == kText);
        }
    }
}

void TestZipArchive::damaged_data()
{
    QTest::addColumn<std::string>("zip");
    QTest::addColumn<bool>("opens");
    const std::string stored = RawZip({{"a.txt", kText}});
    const std::string aes = PackedZip("a.txt", kText, "aes256", kPassword);
    const std::string crypt = PackedZip("a.txt", kText, "zipcrypt", kPassword);
    const std::size_t data = 30 + 5;
    QTest::newRow("stored") << Tampered(stored, data + 3) << true;
    QTest::newRow("deflated") << Tampered(PackedZip("a.txt", kText), data + 40) << true;
    QTest::newRow("AES data") << Tampered(aes, aes.find("PK\x01\x02") - 30) << true;
    QTest::newRow("traditional data") << Tampered(crypt, crypt.find("PK\x01\x02") - 30) << true;
    QTest::newRow("larger than declared") << RawZip({{"a.txt", kText, 0100644, 3}}) << true;
    QTest::newRow("smaller than declared") << RawZip({{"a.txt", kText, 0100644, 300}}) << true;
    QTest::newRow("cut") << stored.substr(0, stored.size() - 30) << false;
    QTest::newRow("cut in the data") << stored.substr(0, data + 4) << false;
    QTest::newRow("no zip") << std::string("<html></html>") << false;
    QTest::newRow("no entries") << RawZip({}) << false;
    QTest::newRow("no bytes") << std::string() << false;
}

void TestZipArchive::damaged()
{
    QFETCH(std::string, zip);
    QFETCH(bool, opens);
    QTemporaryDir folder;
    ZipArchive archive;
    archive.SetPassword(kPassword);
    QCOMPARE(Open(&archive, zip), opens);
    QCOMPARE(archive.LastErrorText().empty(), opens);
    QVERIFY(!archive.GetEntryByIndex(0));
    QVERIFY(!archive.LastErrorText().empty());
    QCOMPARE(archive.Unzip(folder.filePath("out").toStdString()), -1);
    QCOMPARE(FilesBelow(folder.path()), 0);
}

void TestZipArchive::text_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("valid");
    QTest::newRow("empty") << QByteArray("") << true;
    QTest::newRow("NUL and line ends") << QByteArray("a\0\r\n\r\n\n", 7) << true;
    QTest::newRow("all lengths")
        << QByteArray("a\xc2\x80\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xef\xbf\xbf\xf4\x8f\xbf\xbf") << true;
    QTest::newRow("Latin-1") << QByteArray("caf\xe9 au lait") << false;
    QTest::newRow("cut") << QByteArray("a\xe1\xba") << false;
    QTest::newRow("overlong") << QByteArray("\xe0\x80\xaf") << false;
    QTest::newRow("overlong slash") << QByteArray("\xc0\xaf") << false;
    QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80") << false;
    QTest::newRow("above the last") << QByteArray("\xf4\x90\x80\x80") << false;
    QTest::newRow("continuation missing") << QByteArray("\xf0\x9f\x98"
                                                        "a")
                                          << false;
}

void TestZipArchive::text()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, valid);
    ZipArchive archive;
    QVERIFY(Open(&archive, RawZip({{"a", content.toStdString()}})));
    const auto entry = archive.GetEntryByIndex(0);
    QVERIFY(entry);
    const auto text = entry->UnzipToString(0, "UTF-8");
    QCOMPARE(text.has_value(), valid);
    QVERIFY(!valid || *text == content.toStdString());
    QVERIFY(!entry->UnzipToString(1, "utf-8"));
    QVERIFY(!entry->UnzipToString(0, "windows-1258"));
}

void TestZipArchive::indexes()
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
    // What fails to open leaves nothing of the last one.
    QVERIFY(!archive.OpenZip("/nonexistent.zip"));
    QCOMPARE(archive.Unzip("/nonexistent"), -1);
}

void TestZipArchive::unpacks()
{
    // Names must survive in a process of the C locale.
    std::setlocale(LC_ALL, "C");
    QTemporaryDir folder;
    const QString path = folder.filePath(QString::fromUtf8("gói.zip"));
    Write(path, QByteArray::fromStdString(RawZip({{"velstrand/", "", 040755},
                                                  {"velstrand/Velstrand.exe", "MZ", 0104755},
                                                  {"velstrand/data/read.me", "hello", 0100444},
                                                  {"velstrand/Cài đặt 設定.txt", "x"},
                                                  {"top", std::string(300000, 't')},
                                                  {"COMMON.conf", ""},
                                                  {"empty/", "", 040700}})));
    ZipArchive archive;
    QVERIFY2(archive.OpenZip(path.toStdString()), archive.LastErrorText().c_str());
    const QString out = folder.filePath(QString::fromUtf8("đích/tmp"));
    for (int attempt = 0; attempt < 2; ++attempt) {
        const int files = archive.Unzip(out.toStdString());
        QVERIFY2(files == 5, archive.LastErrorText().c_str());
        QCOMPARE(FilesBelow(out), 8);
        QCOMPARE(Content(out + "/velstrand/Velstrand.exe"), QByteArray("MZ"));
        QCOMPARE(Content(out + QString::fromUtf8("/velstrand/Cài đặt 設定.txt")), QByteArray("x"));
        QCOMPARE(Content(out + "/top"), QByteArray(300000, 't'));
        const auto perms = fs::status((out + "/velstrand/Velstrand.exe").toStdString()).permissions();
        QVERIFY((perms & fs::perms::owner_exec) != fs::perms::none);
        QVERIFY((perms & fs::perms::set_uid) == fs::perms::none);
        QVERIFY(!QFileInfo(out + "/top").isExecutable());
    }
    archive.CloseZip();
    QCOMPARE(archive.Unzip(out.toStdString()), -1);
}

void TestZipArchive::refused_data()
{
    QTest::addColumn<Entries>("entries");
    const auto row = [](const std::string& label, Entries entries) {
        // The harmless entry in front must not be written either.
        entries.insert(entries.begin(), {"harmless", "x"});
        QTest::newRow(label.c_str()) << entries;
    };
    for (const char* name : {"../up",
                             "a/../../up",
                             "a/..",
                             "..",
                             "/absolute",
                             "//server/share",
                             "C:/x",
                             "C:x",
                             "a/C:/x",
                             "..\\up",
                             "a\\..\\..\\b",
                             "\\x",
                             "a/b\\c",
                             "a//b",
                             "./a",
                             "a/./b",
                             "",
                             "new\nline",
                             "bell\a",
                             "del\x7f",
                             "c1\xc2\x85",
                             "dot.",
                             "blank ",
                             "dir./a",
                             "dir /a",
                             "CON",
                             "nul",
                             "a/Aux.txt",
                             "COM1.log",
                             "lpt9",
                             "COM\xc2\xb9",
                             "NUL .txt",
                             "conin$",
                             "stream:x",
                             "ask?",
                             "star*",
                             "quote\"",
                             "pipe|",
                             "less<",
                             "more>",
                             "bad\xff\xfe"})
        row("name " + QByteArray(name).toPercentEncoding("/\\: ").toStdString(), {{name, "x"}});
    row("link", {{"link", "/etc/passwd", 0120777}});
    row("link, then through it", {{"dir", "/tmp", 0120777}, {"dir/x", "x"}});
    row("device", {{"dev", "", 0020666}});
    row("same name", {{"a", "1"}, {"a", "2"}});
    row("same but for case", {{"Readme", "1"}, {"README", "2"}});
    row("same but for case, not Latin", {{"đường", "1"}, {"ĐƯỜNG", "2"}});
    row("folders of one name", {{"d/", "", 040755}, {"D/", "", 040755}});
    row("file and folder", {{"a", "1"}, {"A/b", "2"}});
    row("folder and file", {{"a/b", "1"}, {"A", "2"}});
    row("one too large", {{"a", "x", 0100644, (256 << 20) + 1}});
    row("all too large",
        {{"a", "x", 0100644, 200 << 20}, {"b", "x", 0100644, 200 << 20}, {"c", "x", 0100644, 200 << 20}});
    row("last one damaged", {{"a", "x", 0100644, 2}});
}

void TestZipArchive::refused()
{
    QFETCH(Entries, entries);
    QTemporaryDir folder;
    ZipArchive archive;
    QVERIFY2(Open(&archive, RawZip(entries)), archive.LastErrorText().c_str());
    QCOMPARE(archive.Unzip(folder.filePath("a/b/out").toStdString()), -1);
    QVERIFY(!archive.LastErrorText().empty());
    QCOMPARE(FilesBelow(folder.path()), 0);
}

void TestZipArchive::bounds()
{
    QTemporaryDir folder;
    const auto unpack = [&](const std::string& zip) {
        ZipArchive archive;
        return Open(&archive, zip) ? archive.Unzip(folder.filePath("out").toStdString()) : -2;
    };
    // Zeros deflate to about a thousandth: fine up to 1 MiB, unbelievable above.
    QCOMPARE(unpack(PackedZip("zeros", std::string(1 << 20, '\0'))), 1);
    QCOMPARE(unpack(PackedZip("zeros", std::string((1 << 20) + 1, '\0'))), -1);
    std::string noise((3 << 20) / 2, '\0');
    std::mt19937 random;
    std::generate_n(noise.begin(), noise.size() / 30, [&] { return static_cast<char>(random()); });
    QCOMPARE(unpack(PackedZip("mixed", noise)), 1);

    Entries many;
    for (int i = 0; i < 10000; ++i)
        many.push_back({"d/" + std::to_string(i), ""});
    QCOMPARE(unpack(RawZip(many)), 10000);
    many.push_back({"e", ""});
    QCOMPARE(unpack(RawZip(many)), -1);
    QVERIFY(!QFile::exists(folder.filePath("out/e")));
}

void TestZipArchive::leftOvers()
{
    QTemporaryDir folder;
    const QString out = folder.filePath("out");
    QVERIFY(QDir().mkpath(out + "/file/full"));
    QVERIFY(QDir().mkpath(folder.filePath("elsewhere")));
    Write(folder.filePath("precious"), "precious");
    Write(out + "/old", "an earlier attempt left more than this");
    Write(out + "/folder", "a file where a folder goes");
    Write(out + "/file/full/x", "a folder where a file goes");
    QVERIFY(QFile::link(folder.filePath("precious"), out + "/link"));
    QVERIFY(QFile::link(folder.filePath("elsewhere"), out + "/away"));
    fs::create_hard_link(folder.filePath("precious").toStdString(), (out + "/twin").toStdString());

    ZipArchive archive;
    QVERIFY(Open(&archive, RawZip({{"old", "new"},
                                   {"folder/a", "new"},
                                   {"file", "new"},
                                   {"link", "new"},
                                   {"away/a", "new"},
                                   {"twin", "new"}})));
    QCOMPARE(archive.Unzip(out.toStdString()), 6);
    for (const char* name : {"old", "folder/a", "file", "link", "away/a", "twin"})
        QCOMPARE(Content(out + "/" + name), QByteArray("new"));
    QCOMPARE(Content(folder.filePath("precious")), QByteArray("precious"));
    QCOMPARE(FilesBelow(folder.filePath("elsewhere")), 0);
}

void TestZipArchive::notValid()
{
    ZipArchive archive;
    QVERIFY(Open(&archive, RawZip({{"a", "x"}})));
    const auto entry = archive.GetEntryByIndex(0);
    ZipArchive moved = std::move(archive);
    QVERIFY(moved.GetEntryByIndex(0));
    QVERIFY(!archive.GetEntryByIndex(0));
    QVERIFY(!archive.LastErrorText().empty());
    moved.Dispose();
    entry->Dispose();
    QVERIFY(!entry->UnzipToString(0, "utf-8"));
    QVERIFY(!Open(&moved, RawZip({{"a", "x"}})));
    QCOMPARE(moved.Unzip("out"), -1);
    BinaryData data;
    data.bytes = RawZip({{"a", "x"}});
    data.Dispose();
    QVERIFY(!ZipArchive().OpenBd(data));
}

QTEST_GUILESS_MAIN(TestZipArchive)
#include "tst_ziparchive.moc"
