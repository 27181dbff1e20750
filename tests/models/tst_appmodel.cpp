#include "models/AppModel.h"

#include <QPointer>
#include <QThread>
#include <QtTest>

#include <atomic>
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

// An answer that gives each of the ten days before and including @p today the same figures.
QJsonObject reportsOf(const QDate& today, int figure)
{
    QJsonObject reports;
    for (int i = 0; i < 10; ++i) {
        reports[ReportsByDate::dateText(today.addDays(-i))] =
            QJsonObject{{"total", QJsonObject{{"job", figure}}},
                        {"device_details", QJsonObject{{"d1", QJsonObject{{"job", figure}}}}}};
    }
    return reports;
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
    void reportsStartToday_data();
    void reportsStartToday();
    void reportsFillTheirDays();
    void reportsFromWorkers();
};

void TestAppModel::userInfo()
{
    AppModel model;
    QSignalSpy announced(&model, &AppModel::userInfoChanged);
    model.setUserInfo(nullptr);
    QVERIFY(!model.userInfo());
    const QPointer<UserInfo> first = new UserInfo("a", this);
    model.setUserInfo(first);
    model.setUserInfo(new UserInfo("a", this));
    model.setUserInfo(nullptr);
    QCOMPARE(model.userInfo(), first.data());
    QPointer<UserInfo> second = new UserInfo("b", this);
    model.setUserInfo(second);
    QCOMPARE(model.userInfo(), second.data());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!first);
    delete second; // as with the controller that owns it
    QVERIFY(!model.userInfo());
    QCOMPARE(announced.count(), 0);
}

void TestAppModel::lists()
{
    AppModel model;
    QSignalSpy devices(&model, &AppModel::deviceListChanged);
    QSignalSpy clones(&model, &AppModel::cloneListChanged);
    QSignalSpy filtered(&model, &AppModel::filteredCloneListChanged);
    QSignalSpy total(&model, &AppModel::totalFilteredClonesChanged);

    model.setDevices({});
    QCOMPARE(devices.count(), 1);
    model.setDevices({QVariantMap{{"android_id", "b"}}, 7, QVariant(), "x", QVariantList{1},
                      QVariantMap{{"android_id", "a"}}});
    QCOMPARE(devices.count(), 2);
    QCOMPARE(model.devices().size(), 2);
    QCOMPARE(model.devices()[0]->androidId() + model.devices()[1]->androidId(), "ba");

    model.setClones({clone("2"), QVariant(), clone("1"), QVariantMap()});
    QCOMPARE(uids(model.cloneList()), "2 1 ");
    QCOMPARE(model.clones()[2]->place(), 2);
    QCOMPARE(model.totalFilteredClones(), 3);
    QVERIFY(model.clones()[0]->filtered());
    QVERIFY(model.filteredCloneList().isSharedWith(model.cloneList()));
    QCOMPARE(clones.count(), 1);
    QCOMPARE(filtered.count(), 1);
    QCOMPARE(total.count(), 1);

    model.setClones({clone("a"), clone("b"), clone("c")}); // the same number
    QCOMPARE(filtered.count(), 2);
    QCOMPARE(total.count(), 1);
}

void TestAppModel::oldObjectsOutliveTheAnnouncement()
{
    AppModel model;
    model.setDevices({QVariantMap()});
    model.setClones({clone("1")});
    model.setGlobalConfig(new GlobalConfig);
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
    model.setGlobalConfig(new GlobalConfig);
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
    QSignalSpy flag(model.clones()[0], &CloneInfo::filteredChanged);

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
    QCOMPARE(flag.count(), 0);
    QVERIFY(!model.clones()[1]->filtered());
    model.filterClones({{"status", QVariantList{1.0, 16}}}); // passes the same clones
    QCOMPARE(list.count(), 1);
    model.filterClones({{"status", QVariantList{2}}});
    QCOMPARE(uids(model.filteredCloneList()), "2");
    model.filterClones({{"uid", QVariantList{"3"}}}); // others, as many
    QCOMPARE(list.count(), 3);
    QCOMPARE(total.count(), 2);
    model.filterClones({});
    QVERIFY(model.filteredCloneList().isSharedWith(model.cloneList()));
    QCOMPARE(total.count(), 3);
    QCOMPARE(flag.count(), 2);
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
    QCOMPARE(model.selectedUids(), "");
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
    QTest::addColumn<QString>("dates");
    QTest::newRow("month end in a leap year") << QDate(2024, 3, 1)
                                              << "2024-3-1 2024-2-29 2024-2-28 2024-2-27 2024-2-26 2024-2-25 "
                                                 "2024-2-24 2024-2-23 2024-2-22 2024-2-21";
    QTest::newRow("year end") << QDate(2025, 1, 2)
                              << "2025-1-2 2025-1-1 2024-12-31 2024-12-30 2024-12-29 2024-12-28 2024-12-27 "
                                 "2024-12-26 2024-12-25 2024-12-24";
}

void TestAppModel::reportDates()
{
    QFETCH(QDate, today);
    QFETCH(QString, dates);
    AppModel model;
    QCOMPARE(model.reportDates(today).toVariantList(), QVariant(dates.split(' ')).toList());
    model.applyReports(reportsOf(today, 1), today);
    QStringList seen;
    for (const QObject* report : model.reportList()) {
        seen << report->property("date").toString();
        QCOMPARE(report->property("data").toMap(), QVariantMap({{"job", 1}}));
    }
    QCOMPARE(seen.join(' '), dates);
}

void TestAppModel::reportsStartToday_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<int>("hours");
    // At any time the date in one of them is not that of UTC.
    QTest::newRow("far east") << QByteArray("<+14>-14") << 14;
    QTest::newRow("far west") << QByteArray("<-12>+12") << -12;
}

void TestAppModel::reportsStartToday()
{
    QFETCH(QByteArray, zone);
    QFETCH(int, hours);
    const QByteArray zoneBefore = qgetenv("TZ");
    qputenv("TZ", zone);
    tzset();
    const auto there = [hours] {
        return ReportsByDate::dateText(QDateTime::currentDateTimeUtc().addSecs(hours * 3600).date());
    };
    const QString before = there();
    AppModel model;
    const QString first = model.reportList()[0]->property("date").toString();
    const QString asked = model.reportDates()[0].toString();
    const QString after = there(); // midnight may pass meanwhile
    zoneBefore.isNull() ? qunsetenv("TZ") : qputenv("TZ", zoneBefore);
    tzset();
    QVERIFY2(first == before || first == after, qPrintable(first));
    QVERIFY2(asked == before || asked == after, qPrintable(asked));
}

void TestAppModel::reportsFillTheirDays()
{
    const QDate today(2024, 3, 1);
    AppModel model;
    const QList<QObject*> entries = model.reportList();
    model.applyReports(reportsOf(today, 1), today);
    QSignalSpy announced(&model, &AppModel::reportListChanged);

    // A day on: one key in another form, one of another day, one of another shape, totals without details.
    QJsonObject reports = reportsOf(today.addDays(1), 2);
    reports.remove("2024-2-29");
    reports["2024-02-29"] = reports["2024-3-1"];
    reports["1999-1-1"] = reports["2024-3-1"];
    reports["2024-2-28"] = QJsonArray{1};
    reports["2024-2-27"] = QJsonObject{{"total", QJsonObject{{"job", 5}}}, {"device_details", "none"}};
    model.applyReports(reports, today.addDays(1));

    QCOMPARE(announced.count(), 1);
    QCOMPARE(model.reportList(), entries);
    const auto figures = [&](int i) {
        return entries[i]->property("date").toString() + ' ' +
               entries[i]->property("data").toMap()["job"].toString() + ' ' +
               entries[i]->property("details").toMap()["d1"].toMap()["job"].toString();
    };
    QCOMPARE(figures(0), "2024-3-2 2 2");
    QCOMPARE(figures(1), "2024-3-1 2 2");
    QCOMPARE(figures(2), "2024-2-29  ");
    QCOMPARE(figures(3), "2024-2-28  ");
    QCOMPARE(figures(4), "2024-2-27 5 ");
    QCOMPARE(figures(9), "2024-2-22 2 2");
    model.setClones({clone("1")});
    model.clearFarm();
    QCOMPARE(figures(0), model.reportDates()[0].toString() + "  ");
    QVERIFY(model.deviceList().isEmpty() && model.cloneList().isEmpty());
    QCOMPARE(model.totalFilteredClones(), 0);
}

void TestAppModel::reportsFromWorkers()
{
    AppModel model;
    const QDate start(2024, 3, 1);
    std::atomic_int faults{0}; // the listeners below run wherever the model announces
    std::atomic_int announced{0};
    const auto figure = [](const QObject* report) { return report->property("data").toMap()["job"].toInt(); };
    for (QObject* report : model.reportList()) {
        // Whenever one part of an entry changes, its date, data and details belong together.
        const auto check = [&, report] {
            const QDate today = start.addDays(figure(report));
            const auto date = QDate::fromString(report->property("date").toString(), "yyyy-M-d");
            const QVariantMap details = report->property("details").toMap();
            faults += QThread::currentThread() != model.thread() || date > today ||
                      date <= today.addDays(-10) || details["d1"].toMap()["job"].toInt() != figure(report);
        };
        auto* entry = static_cast<ReportsByDate*>(report);
        for (auto signal :
             {&ReportsByDate::dateChanged, &ReportsByDate::dataChanged, &ReportsByDate::detailsChanged})
            connect(entry, signal, check);
    }
    connect(&model, &AppModel::reportListChanged, [&] {
        ++announced;
        for (const QObject* report : model.reportList())
            faults += figure(report) != figure(model.reportList()[0]);
    });

    std::vector<std::unique_ptr<QThread>> workers;
    for (int w = 0; w < 3; ++w) {
        workers.emplace_back(QThread::create([&, w] {
            for (int i = 0; i < 100; ++i) {
                const int value = 1 + w * 100 + i;
                faults += model.reportDates(start).size() != 10;
                model.applyReports(reportsOf(start.addDays(value), value), start.addDays(value));
            }
        }));
        workers.back()->start();
    }
    QTRY_COMPARE(announced.load(), 300);
    for (const auto& worker : workers)
        worker->wait();
    QCOMPARE(faults.load(), 0);
}

QTEST_GUILESS_MAIN(TestAppModel)
#include "tst_appmodel.moc"
