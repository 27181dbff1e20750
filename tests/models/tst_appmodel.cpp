#include "models/AppModel.h"

#include <QPointer>
#include <QtTest>

#include <ctime>

namespace {

QVariantMap clone(const char* uid, const char* deviceId = "", int status = 1)
{
    return {{"id", QString("id-") + uid}, {"uid", uid}, {"device_id", deviceId}, {"status", status}};
}

QString uids(const QList<QObject*>& list)
{
    QStringList texts;
    for (const QObject* object : list)
        texts << object->property("uid").toString();
    return texts.join(' ');
}

// An answer that gives each of the ten days up to @p today the same figures.
QJsonObject answerOf(const QDate& today, int figure)
{
    QJsonObject reports;
    for (int i = 0; i < 10; ++i) {
        reports[ReportsByDate::dateText(today.addDays(-i))] =
            QJsonObject{{"total", QJsonObject{{"job", figure}}},
                        {"device_details", QJsonObject{{"d1", QJsonObject{{"job", figure}}}}}};
    }
    return reports;
}

QString figures(const QObject* report)
{
    return report->property("date").toString() + ' ' + report->property("data").toMap()["job"].toString() +
           ' ' + report->property("details").toMap()["d1"].toMap()["job"].toString();
}

} // namespace

/// The model that the scene binds to: lists and how they are announced, filter and selection, reports.
class TestAppModel : public QObject
{
    Q_OBJECT

private slots:
    void userInfo();
    void lists();
    void oldObjectsOutliveTheAnnouncement();
    void cloneCounts();
    void filter();
    void filterInTheHandlerOfANewList();
    void selection();
    void reportDates_data();
    void reportDates();
    void reportsStartToday();
    void reportsFillTheirDays();
};

void TestAppModel::userInfo()
{
    AppModel model;
    const QPointer<UserInfo> first = new UserInfo("a", this);
    model.setUserInfo(first);
    model.setUserInfo(new UserInfo("a", this));
    model.setUserInfo(nullptr);
    QCOMPARE(model.userInfo(), first.data());
    auto* const second = new UserInfo("b", this);
    model.setUserInfo(second);
    QCOMPARE(model.userInfo(), second);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!first);
    delete second; // as with the controller that owns it
    QVERIFY(!model.userInfo());
}

void TestAppModel::lists()
{
    AppModel model;
    QSignalSpy clones(&model, &AppModel::cloneListChanged);
    QSignalSpy filtered(&model, &AppModel::filteredCloneListChanged);
    QSignalSpy total(&model, &AppModel::totalFilteredClonesChanged);
    model.setDevices({QVariantMap{{"android_id", "b"}}, 7, QVariantMap{{"android_id", "a"}}});
    QCOMPARE(model.devices().size(), 2);
    QCOMPARE(model.devices()[0]->androidId() + model.devices()[1]->androidId(), "ba");

    model.setClones({clone("2"), QVariant(), clone("1"), QVariantMap()});
    QCOMPARE(uids(model.cloneList()), "2 1 ");
    QCOMPARE(model.clones()[2]->place(), 2);
    QCOMPARE(model.totalFilteredClones(), 3);
    QVERIFY(model.filteredCloneList().isSharedWith(model.cloneList()));
    model.setClones({clone("a"), clone("b"), clone("c")}); // the same number
    QCOMPARE(clones.count(), 2);
    QCOMPARE(filtered.count(), 2);
    QCOMPARE(total.count(), 1);
}

void TestAppModel::oldObjectsOutliveTheAnnouncement()
{
    AppModel model;
    model.setDevices({QVariantMap()});
    model.setClones({clone("1")});
    model.setGlobalConfig(std::make_unique<GlobalConfig>());
    const QPointer<QObject> device = model.deviceList()[0];
    const QPointer<QObject> cloneBefore = model.cloneList()[0];
    const QPointer<QObject> config = model.globalConfig();
    int announced = 0;
    const auto check = [&] {
        ++announced;
        QVERIFY(device && cloneBefore && config);
    };
    connect(&model, &AppModel::deviceListChanged, check);
    connect(&model, &AppModel::cloneListChanged, check);
    connect(&model, &AppModel::filteredCloneListChanged, check);
    connect(&model, &AppModel::globalConfigChanged, check);
    model.setDevices({});
    model.setClones({clone("2")});
    model.setGlobalConfig(std::make_unique<GlobalConfig>());
    QCOMPARE(announced, 4);
    QVERIFY(model.globalConfig() != config);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!device && !cloneBefore && !config);
}

void TestAppModel::cloneCounts()
{
    AppModel model;
    model.setClones({clone("1", "a"), clone("2", "b"), clone("3", "a"), clone("4")});
    model.setDevices({QVariantMap{{"android_id", "a"}}, QVariantMap{{"android_id", "b"}},
                      QVariantMap{{"android_id", "c"}}});
    const auto counts = [&] {
        QString text;
        for (const DeviceInfo* device : model.devices())
            text += QString::number(device->cloneCount());
        return text;
    };
    QCOMPARE(counts(), "210");
    model.setClones({clone("1", "c"), clone("2", "b")});
    QCOMPARE(counts(), "011");
}

void TestAppModel::filter()
{
    AppModel model;
    model.setClones({clone("1", "", 1), clone("2", "", 2), clone("3", "", 1)});
    QSignalSpy list(&model, &AppModel::filteredCloneListChanged);
    QSignalSpy total(&model, &AppModel::totalFilteredClonesChanged);
    // The flags are right, and list and count agree, when either is announced.
    const auto consistent = [&] {
        int passing = 0;
        for (const CloneInfo* c : model.clones())
            passing += c->filtered();
        QCOMPARE(model.filteredCloneList().size(), passing);
        QCOMPARE(model.totalFilteredClones(), passing);
    };
    connect(&model, &AppModel::filteredCloneListChanged, consistent);
    connect(&model, &AppModel::totalFilteredClonesChanged, consistent);

    model.filterClones({{"status", QVariantList{1}}});
    QCOMPARE(uids(model.filteredCloneList()), "1 3");
    model.filterClones({{"status", QVariantList{1.0, 16}}}); // passes the same clones
    QCOMPARE(list.count(), 1);
    model.filterClones({{"status", QVariantList{2}}});
    model.filterClones({{"uid", QVariantList{"3"}}}); // others, as many
    QCOMPARE(uids(model.filteredCloneList()), "3");
    QCOMPARE(list.count(), 3);
    QCOMPARE(total.count(), 2);
    model.filterClones({});
    QVERIFY(model.filteredCloneList().isSharedWith(model.cloneList()));
}

void TestAppModel::filterInTheHandlerOfANewList()
{
    AppModel model;
    model.setClones({clone("0")});
    connect(&model, &AppModel::cloneListChanged, [&] { model.filterClones({{"status", QVariantList{2}}}); });
    QSignalSpy list(&model, &AppModel::filteredCloneListChanged);
    model.setClones({clone("1"), clone("2", "", 2)});
    QCOMPARE(uids(model.filteredCloneList()), "2");
    QCOMPARE(list.count(), 1);
    model.setClones({clone("3", "", 2)}); // all pass
    QCOMPARE(uids(model.filteredCloneList()), "3");
    QCOMPARE(list.count(), 2);
}

void TestAppModel::selection()
{
    AppModel model;
    model.setClones({clone("1"), clone("2", "", 2), clone("3")});
    model.clones()[1]->setSelected(true);
    model.filterClones({{"status", QVariantList{1}}});
    model.selectAllClones(true);
    QCOMPARE(model.selectedUids(), "1\n2\n3\n");
    model.selectAllClones(false); // the hidden one stays ticked
    QCOMPARE(model.selectedUids(), "2\n");
    model.filterClones({{"uid", QVariantList{"3"}}});
    model.selectAllClones(true);
    model.filterClones({});
    QCOMPARE(model.selectedCloneIds(), QStringList({"id-2", "id-3"}));
    model.setClones({clone("2")});
    QCOMPARE(model.selectedUids(), "");
}

void TestAppModel::reportDates_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<int>("k");
    QTest::addColumn<QString>("expected");
    QTest::newRow("today") << QDate(2024, 3, 1) << 0 << "2024-3-1";
    QTest::newRow("month end in a leap year") << QDate(2024, 3, 1) << 1 << "2024-2-29";
    QTest::newRow("the last") << QDate(2024, 3, 1) << 9 << "2024-2-21";
    QTest::newRow("year end") << QDate(2025, 1, 2) << 2 << "2024-12-31";
}

void TestAppModel::reportDates()
{
    QFETCH(QDate, today);
    QFETCH(int, k);
    QFETCH(QString, expected);
    AppModel model;
    QCOMPARE(AppModel::reportDates(today).size(), 10);
    QCOMPARE(AppModel::reportDates(today)[k].toString(), expected);
    model.applyReports(ReportsByDate::readDays(answerOf(today, 1)), today);
    QCOMPARE(model.reportList().size(), 10);
    QCOMPARE(figures(model.reportList()[k]), expected + " 1 1");
}

void TestAppModel::reportsStartToday()
{
    const QByteArray zoneBefore = qgetenv("TZ");
    // At any time the date in one of them is not that of UTC.
    for (const int hours : {14, -12}) {
        qputenv("TZ", hours > 0 ? "<+14>-14" : "<-12>+12");
        tzset();
        const auto there = [hours] {
            return ReportsByDate::dateText(QDateTime::currentDateTimeUtc().addSecs(hours * 3600).date());
        };
        const QString before = there();
        AppModel model;
        const QString first = model.reportList()[0]->property("date").toString();
        const QString asked = AppModel::reportDates()[0].toString();
        const QString after = there(); // midnight may pass meanwhile
        zoneBefore.isNull() ? qunsetenv("TZ") : qputenv("TZ", zoneBefore);
        tzset();
        QVERIFY2(first == before || first == after, qPrintable(first));
        QVERIFY2(asked == before || asked == after, qPrintable(asked));
    }
}

void TestAppModel::reportsFillTheirDays()
{
    const QDate today(2024, 3, 1);
    AppModel model;
    const QList<QObject*> entries = model.reportList();
    model.applyReports(ReportsByDate::readDays(answerOf(today, 1)), today);
    QSignalSpy announced(&model, &AppModel::reportListChanged);
    // Whoever hears of a part of an entry sees the others new too.
    int parts = 0;
    for (auto signal :
         {&ReportsByDate::dateChanged, &ReportsByDate::dataChanged, &ReportsByDate::detailsChanged}) {
        connect(static_cast<ReportsByDate*>(entries[0]), signal, &model, [&] {
            ++parts;
            QCOMPARE(figures(entries[0]), "2024-3-2 2 2");
        });
    }

    // A day on: one key in another form, one day of another shape, one with totals only.
    QJsonObject answer = answerOf(today.addDays(1), 2);
    answer["2024-02-29"] = answer.take("2024-2-29");
    answer["2024-2-28"] = QJsonArray{1};
    answer["2024-2-27"] = QJsonObject{{"total", QJsonObject{{"job", 5}}}, {"device_details", "none"}};
    model.applyReports(ReportsByDate::readDays(answer), today.addDays(1));

    QCOMPARE(parts, 3);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(model.reportList(), entries);
    QCOMPARE(figures(entries[1]), "2024-3-1 2 2");
    QCOMPARE(figures(entries[2]), "2024-2-29  ");
    QCOMPARE(figures(entries[3]), "2024-2-28  ");
    QCOMPARE(figures(entries[4]), "2024-2-27 5 ");

    entries[0]->disconnect(&model);
    model.setDevices({QVariantMap()});
    model.setClones({clone("1")});
    model.clearFarm();
    QCOMPARE(figures(entries[0]), AppModel::reportDates()[0].toString() + "  ");
    QVERIFY(model.deviceList().isEmpty() && model.cloneList().isEmpty());
    QCOMPARE(model.totalFilteredClones(), 0);
}

QTEST_GUILESS_MAIN(TestAppModel)
#include "tst_appmodel.moc"
