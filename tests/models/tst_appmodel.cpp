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

QJsonObject day(int figure)
{
    const QJsonObject jobs{{"job", figure}};
    return {{"total", jobs}, {"device_details", QJsonObject{{"d1", jobs}}}};
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
    void userInfo()
    {
        AppModel model;
        const QPointer<UserInfo> first = new UserInfo("a", this);
        model.setUserInfo(first);
        model.setUserInfo(new UserInfo("a", this));
        model.setUserInfo(nullptr);
        QCOMPARE(model.userInfo(), first.data());
        model.setUserInfo(new UserInfo("b", this));
        QCOMPARE(model.userInfo()->token(), "b");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!first);
    }

    void oldObjectsOutliveTheAnnouncement()
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
        for (auto signal : {&AppModel::deviceListChanged, &AppModel::cloneListChanged,
                            &AppModel::filteredCloneListChanged, &AppModel::globalConfigChanged})
            connect(&model, signal, check);
        model.setDevices({});
        model.setClones({clone("2")});
        model.setGlobalConfig(std::make_unique<GlobalConfig>());
        QCOMPARE(announced, 4);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!device && !cloneBefore && !config);
    }

    void cloneCounts()
    {
        AppModel model;
        const auto counts = [&] {
            QString text;
            for (const DeviceInfo* device : model.devices())
                text += device->androidId() + QString::number(device->cloneCount());
            return text;
        };
        model.setClones({clone("1", "a"), clone("2", "b"), clone("3", "a"), clone("4")});
        model.setDevices({QVariantMap{{"android_id", "b"}}, 7, QVariantMap{{"android_id", "a"}},
                          QVariantMap{{"android_id", "c"}}});
        QCOMPARE(counts(), "b1a2c0");
        model.setClones({clone("1", "c"), clone("2", "b")});
        QCOMPARE(counts(), "b1a0c1");
    }

    void filter()
    {
        AppModel model;
        QSignalSpy list(&model, &AppModel::filteredCloneListChanged);
        QSignalSpy total(&model, &AppModel::totalFilteredClonesChanged);
        model.setClones({clone("0"), clone("1"), clone("2")});
        model.setClones({clone("3"), QVariant(), clone("2", "", 2), clone("1")});
        QCOMPARE(uids(model.cloneList()), "3 2 1");
        QCOMPARE(model.clones()[2]->place(), 2);
        QVERIFY(model.filteredCloneList().isSharedWith(model.cloneList()));
        QCOMPARE(list.count(), 2);
        QCOMPARE(total.count(), 1); // as many as before

        // The flags and the list agree when the list is announced.
        connect(&model, &AppModel::filteredCloneListChanged, &model, [&] {
            for (CloneInfo* c : model.clones())
                QCOMPARE(model.filteredCloneList().contains(c), c->filtered());
        });
        model.filterClones({{"status", QVariantList{1}}});
        QCOMPARE(uids(model.filteredCloneList()), "3 1");
        model.filterClones({{"status", QVariantList{1.0, 16}}}); // passes the same clones
        QCOMPARE(list.count(), 3);
        model.filterClones({{"status", QVariantList{2}}});
        model.filterClones({{"uid", QVariantList{"3"}}}); // others, as many
        QCOMPARE(model.totalFilteredClones(), 1);
        QCOMPARE(list.count(), 5);
        QCOMPARE(total.count(), 3);
        model.filterClones({});
        QVERIFY(model.filteredCloneList().isSharedWith(model.cloneList()));
    }

    void filterInTheHandlerOfANewList()
    {
        AppModel model;
        model.setClones({clone("0")});
        connect(&model, &AppModel::cloneListChanged,
                [&] { model.filterClones({{"status", QVariantList{2}}}); });
        QSignalSpy list(&model, &AppModel::filteredCloneListChanged);
        model.setClones({clone("1"), clone("2", "", 2)});
        QCOMPARE(uids(model.filteredCloneList()), "2");
        QCOMPARE(list.count(), 1);
        model.setClones({clone("3", "", 2)}); // all pass
        QCOMPARE(uids(model.filteredCloneList()), "3");
        QCOMPARE(list.count(), 2);
    }

    void selection()
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

    void reportDates()
    {
        AppModel model;
        const auto check = [&](const QDate& today, int k, const QString& expected) {
            QCOMPARE(AppModel::reportDates(today).size(), 10);
            QCOMPARE(AppModel::reportDates(today)[k].toString(), expected);
            model.applyReports(ReportsByDate::readDays({{expected, day(1)}}), today);
            QCOMPARE(model.reportList().size(), 10);
            QCOMPARE(figures(model.reportList()[k]), expected + " 1 1");
        };
        check(QDate(2024, 3, 1), 0, "2024-3-1");
        check(QDate(2024, 3, 1), 1, "2024-2-29");
        check(QDate(2024, 3, 1), 9, "2024-2-21");
        check(QDate(2025, 1, 2), 2, "2024-12-31");
    }

    void reportsStartToday()
    {
        const QByteArray zoneBefore = qgetenv("TZ");
        // At any moment one of the two has another date than UTC.
        for (const int hours : {14, -12}) {
            qputenv("TZ", hours > 0 ? "<+14>-14" : "<-12>+12");
            tzset();
            const auto there = [hours] {
                return ReportsByDate::dateText(
                    QDateTime::currentDateTimeUtc().addSecs(qint64{hours} * 3600).date());
            };
            const QString before = there();
            const QString first = AppModel().reportList()[0]->property("date").toString();
            const QString asked = AppModel::reportDates()[0].toString();
            const QString after = there(); // midnight may pass meanwhile
            zoneBefore.isNull() ? qunsetenv("TZ") : qputenv("TZ", zoneBefore);
            tzset();
            QVERIFY2(first == before || first == after, qPrintable(first));
            QVERIFY2(asked == before || asked == after, qPrintable(asked));
        }
    }

    void reportsFillTheirDays()
    {
        const QDate today(2024, 3, 1);
        AppModel model;
        const QList<QObject*> entries = model.reportList();
        model.applyReports(
            ReportsByDate::readDays({{"2024-3-1", day(1)}, {"2024-2-29", day(1)}, {"2024-2-28", day(1)}}),
            today);
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
        const QJsonObject answer{
            {"2024-3-2", day(2)},
            {"2024-3-1", day(3)},
            {"2024-02-29", day(2)},
            {"2024-2-28", QJsonArray{1}},
            {"2024-2-27", QJsonObject{{"total", QJsonObject{{"job", 5}}}, {"device_details", "none"}}}};
        model.applyReports(ReportsByDate::readDays(answer), today.addDays(1));

        QCOMPARE(parts, 3);
        QCOMPARE(announced.count(), 1);
        QCOMPARE(model.reportList(), entries);
        QCOMPARE(figures(entries[1]), "2024-3-1 3 3");
        QCOMPARE(figures(entries[2]), "2024-2-29  ");
        QCOMPARE(figures(entries[3]), "2024-2-28  ");
        QCOMPARE(figures(entries[4]), "2024-2-27 5 ");

        entries[0]->disconnect(&model);
        model.setDevices({QVariantMap()});
        model.setClones({clone("1")});
        model.clearFarm();
        QCOMPARE(figures(entries[0]), AppModel::reportDates()[0].toString() + "  ");
        QVERIFY(model.deviceList().isEmpty() && model.cloneList().isEmpty() &&
                model.filteredCloneList().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAppModel)
#include "tst_appmodel.moc"
