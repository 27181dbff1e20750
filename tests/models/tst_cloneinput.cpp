#include "models/CloneFilter.h"
#include "models/CloneImport.h"
#include "models/CloneInfo.h"
#include "models/ListReader.h"

#include <QJsonDocument>
#include <QtTest>

/// What an operator pastes: the import text and the filter values.
class TestCloneInput : public QObject
{
    Q_OBJECT

private slots:
    void import()
    {
        // The text, and uid/password/secret key of each clone.
        const std::pair<QString, QString> texts[] = {{"\n \n\t\n\r\n", ""},
                                                     {"u|p|k|x|y", "u/p/k"},
                                                     {"u\nv|q\nw", "v/q"},
                                                     {"  u|p|k\r\nv|q\t\r\n", "u/p/k;v/q"},
                                                     {"u  | \t p |  k", "u / p / k"},
                                                     {"|\n||", "/;//"}};
        for (const auto& [text, expected] : texts) {
            QStringList clones;
            const QJsonArray parsed = cloneimport::parse(text, "prof");
            for (const QJsonValue& value : parsed) {
                const QJsonObject clone = value.toObject();
                QCOMPARE(clone["farm_profile"], QJsonValue("prof"));
                clones << clone["uid"].toString() + '/' + clone["password"].toString();
                if (clone.contains("secretkey"))
                    clones.last() += '/' + clone["secretkey"].toString();
            }
            QCOMPARE(clones.join(';'), expected);
        }
    }

    void filter()
    {
        const std::string_view answer = R"({"success":true,"data":[
            {"uid":"11","device_id":"d1","status":1,"farm_profile":"a"},
            {"uid":"12","device_id":"d1","status":8,"farm_profile":"b"},
            {"uid":"13","device_id":"d2","status":1,"farm_profile":"b"},
            {"uid":"é"}]})";
        const auto none = std::make_shared<const Snapshot>();
        const SnapshotPtr clones = readList(answer, CloneInfo::layout(), none, "t").difference->after;
        // The filters, and the uids of those that pass.
        const std::pair<QByteArray, QString> filters[] = {
            {R"({"uid":[],"device_id":[],"status":[],"farm_profile":[]})", "11 12 13 é"},
            {R"({"uid":["12","é","nobody"]})", "12 é"},
            {R"({"uid":["1"]})", ""},
            {R"({"device_id":["d1"]})", "11 12"},
            {R"({"device_id":[""]})", "é"},
            {R"({"status":[1.0,8]})", "11 12 13"},
            {R"({"status":[0]})", "é"},
            {R"({"status":[7.6]})", ""},
            {R"({"status":["live"]})", ""},
            {R"({"farm_profile":["a","b"]})", "11 12 13"},
            {R"({"status":[1],"farm_profile":["b"],"device_id":["d1"]})", ""},
            {R"({"uid":[],"email":["nobody@x"],"status":[8]})", "12"}};
        for (const auto& [json, expected] : filters) {
            const CloneFilter filter(QJsonDocument::fromJson(json).object().toVariantMap());
            QStringList passing;
            for (const Record::Ptr& clone : clones->records) {
                if (filter.passes(*clone))
                    passing << clone->text(CloneInfo::layout().slot("uid"));
            }
            QVERIFY2(passing.join(' ') == expected, json);
        }
    }
};

QTEST_GUILESS_MAIN(TestCloneInput)
#include "tst_cloneinput.moc"
