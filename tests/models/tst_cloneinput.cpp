#include "models/CloneFilter.h"
#include "models/CloneImport.h"
#include "models/CloneInfo.h"

#include <QJsonDocument>
#include <QtTest>

/// What an operator pastes: the import text and the filter values.
class TestCloneInput : public QObject
{
    Q_OBJECT

private slots:
    void import_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected"); // uid/password/secret key of each clone
        const auto row = [](const char* name, const QString& text, const QString& expected) {
            QTest::newRow(name) << text << expected;
        };
        row("blank lines", "\n \n\t\n\r\n", "");
        row("more fields", "u|p|k|x|y", "u/p/k");
        row("too few fields are skipped", "u\nv|q\nw", "v/q");
        row("outer blanks and Windows line ends", "  u|p|k\r\nv|q\t\r\n", "u/p/k;v/q");
        row("blanks at the bar stay, as one", "u  | \t p |  k", "u / p / k");
        row("empty fields count", "|\n||", "/;//");
    }

    void import()
    {
        QFETCH(QString, text);
        QStringList clones;
        const QJsonArray parsed = cloneimport::parse(text, "prof");
        for (const QJsonValue& value : parsed) {
            const QJsonObject clone = value.toObject();
            QCOMPARE(clone["farm_profile"], QJsonValue("prof"));
            clones << clone["uid"].toString() + '/' + clone["password"].toString();
            if (clone.contains("secretkey"))
                clones.last() += '/' + clone["secretkey"].toString();
        }
        QTEST(clones.join(';'), "expected");
    }

    void filter_data()
    {
        QTest::addColumn<QByteArray>("filters");
        QTest::addColumn<QString>("passing"); // uids of those of the four clones below that pass
        const auto row = [](const char* filters, const char* passing) {
            QTest::newRow(filters) << QByteArray(filters) << QString(passing);
        };
        row(R"({"uid":[],"device_id":[],"status":[],"farm_profile":[]})", "11 12 13 é");
        row(R"({"uid":["12","é","nobody"]})", "12 é");
        row(R"({"uid":["1"]})", "");
        row(R"({"device_id":["d1"]})", "11 12");
        row(R"({"device_id":[""]})", "é");
        row(R"({"status":[1.0,8]})", "11 12 13");
        row(R"({"status":[0]})", "é");
        row(R"({"status":[7.6]})", "");
        row(R"({"status":["live"]})", "");
        row(R"({"farm_profile":["a","b"]})", "11 12 13");
        row(R"({"status":[1],"farm_profile":["b"],"device_id":["d1"]})", "");
        row(R"({"uid":[],"email":["nobody@x"],"status":[8]})", "12");
    }

    void filter()
    {
        QFETCH(QByteArray, filters);
        const CloneFilter filter(QJsonDocument::fromJson(filters).object().toVariantMap());
        const QVariantMap clones[] = {
            {{"uid", "11"}, {"device_id", "d1"}, {"status", 1}, {"farm_profile", "a"}},
            {{"uid", "12"}, {"device_id", "d1"}, {"status", 8}, {"farm_profile", "b"}},
            {{"uid", "13"}, {"device_id", "d2"}, {"status", 1}, {"farm_profile", "b"}},
            {{"uid", "é"}},
        };
        QStringList passing;
        for (const QVariantMap& record : clones) {
            const CloneInfo clone(record, 0);
            if (filter.passes(clone))
                passing << clone.uid();
        }
        QTEST(passing.join(' '), "passing");
    }
};

QTEST_GUILESS_MAIN(TestCloneInput)
#include "tst_cloneinput.moc"
