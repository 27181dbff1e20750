#include "models/AppModel.h"

#include <QJsonDocument>
#include <QPointer>
#include <QtTest>

#include <ctime>

namespace {

QJsonObject clone(const char* uid, const char* deviceId = "", int status = 1)
{
    return {{"id", QString("id-") + uid}, {"uid", uid}, {"device_id", deviceId}, {"status", status}};
}

/// Reads an answer with these records, and takes it over as @p apply does.
template <class Read, class Apply>
void set(AppModel& model, const RecordModel& shown, const QJsonArray& records, Read read, Apply apply)
{
    const QByteArray answer = QJsonDocument(QJsonObject{{"success", true}, {"data", records}}).toJson();
    const std::string_view bytes(answer.data(), std::size_t(answer.size()));
    (model.*apply)(*read(bytes, shown.snapshot(), "t").difference);
}

void setDevices(AppModel& model, const QJsonArray& records)
{
    set(model, *model.deviceModel(), records, AppModel::readDevices, &AppModel::applyDevices);
}

void setClones(AppModel& model, const QJsonArray& records)
{
    set(model, *model.cloneModel(), records, AppModel::readClones, &AppModel::applyClones);
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

    void cloneCounts()
    {
        AppModel model;
        const auto counts = [&] {
            QString text;
            const auto devices = model.deviceList();
            for (const QObject* device : devices)
                text += device->property("androidId").toString() + device->property("cloneCount").toString();
            return text;
        };
        setClones(model, {clone("1", "a"), clone("2", "b"), clone("3", "a"), clone("4")});
        setDevices(model, {QJsonObject{{"android_id", "b"}}, 7, QJsonObject{{"android_id", "a"}},
                           QJsonObject{{"android_id", "c"}}});
        QCOMPARE(counts(), "b1a2c0");
        setClones(model, {clone("1", "c"), clone("2", "b")});
        QCOMPARE(counts(), "b1a0c1");
    }

    void agesAreOfTheLastFetch()
    {
        AppModel model;
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        const QJsonArray devices{QJsonObject{{"android_id", "a"}, {"last_getting_job_ts", now - 3725000}},
                                 QJsonObject{{"android_id", "b"}}};
        setDevices(model, devices);
        QObject* const device = model.deviceList().at(0);
        QCOMPARE(device->property("lastGettingJobs").toString(), "1 hours 2 minutes ago");
        QCOMPARE(model.deviceList().at(1)->property("lastGettingJobs").toString(), "");
        device->setProperty("lastGettingJobs", "stale");
        QSignalSpy changed(&model, &AppModel::deviceListChanged);
        setDevices(model, devices); // the same bytes
        QCOMPARE(device->property("lastGettingJobs").toString(), "1 hours 2 minutes ago");
        QCOMPARE(changed.count(), 0);
    }

    void filter()
    {
        AppModel model;
        QSignalSpy list(&model, &AppModel::filteredCloneListChanged);
        QSignalSpy total(&model, &AppModel::totalFilteredClonesChanged);
        setClones(model, {clone("0"), clone("1"), clone("2")});
        setClones(model, {clone("3"), QJsonValue(), clone("2", "", 2), clone("1")});
        QCOMPARE(uids(model.cloneList()), "3 2 1");
        QCOMPARE(list.count(), 2);
        QCOMPARE(total.count(), 1); // as many as before

        model.filterClones({{"status", QVariantList{1}}});
        QCOMPARE(uids(model.filteredCloneList()), "3 1");
        QCOMPARE(model.cloneList().at(1)->property("filtered").toBool(), false);
        model.filterClones({{"status", QVariantList{1.0, 16}}}); // passes the same clones
        QCOMPARE(list.count(), 3);
        model.filterClones({{"status", QVariantList{2}}});
        model.filterClones({{"uid", QVariantList{"3"}}}); // others, as many
        QCOMPARE(model.totalFilteredClones(), 1);
        QCOMPARE(list.count(), 5);
        QCOMPARE(total.count(), 3);
        setClones(model, {clone("4"), clone("3")}); // holds for new ones
        QCOMPARE(uids(model.filteredCloneList()), "3");
        QCOMPARE(list.count(), 5);
        model.filterClones({{"device_id", QVariantList{"none"}}, {"farm_profile", QVariantList{""}}});
        QCOMPARE(model.totalFilteredClones(), 0);
        model.filterClones({});
        QCOMPARE(uids(model.filteredCloneList()), "4 3");
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
        setDevices(model, {QJsonObject()});
        setClones(model, {clone("1")});
        model.clearFarm();
        QCOMPARE(figures(entries[0]), AppModel::reportDates()[0].toString() + "  ");
        QVERIFY(model.deviceList().isEmpty() && model.cloneList().isEmpty() &&
                model.filteredCloneList().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAppModel)
#include "tst_appmodel.moc"
