#include "app/Application.h"

#include "devservice/DevService.h"
#include "models/AppModel.h"
#include "models/FarmProfile.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ServiceFixture.h"
#include "tests/support/ZipFile.h"

#include <QDir>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

using devservice::Fault;

namespace {

/// What the controller sends, what it says, and what it asks for anew.
struct Change {
    const char* operation;
    std::function<void(Application&)> send;
    const char* success;
    const char* failure;
    const char* refresh;
    bool refreshesAfterFailure;
};

QString api(const char* path)
{
    return QStringLiteral("/api/v1/") + QLatin1String(path);
}

QSettings settings()
{
    return QSettings(QStringLiteral("Velstrand"), QStringLiteral("Velstrand Manager"));
}

AppModel& model()
{
    return *AppModel::instance();
}

} // namespace

Q_DECLARE_METATYPE(Change)

/// The controller with the real model against the development service.
class TestApplication : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_fixture->setFarm(m_farm);
        settings().remove("user_token");
        QThreadPool::globalInstance()->setMaxThreadCount(1); // as a small machine has it
        m_app = std::make_unique<Application>(nullptr);
        m_notified = std::make_unique<QSignalSpy>(m_app.get(), &Application::pushNotification);
    }

    void cleanup()
    {
        settle();
        m_notified.reset();
        m_app.reset();
        m_fixture->clearFaults();
        m_fixture->setLatency(0);
        m_fixture->clearRequests();
        model().clearFarm();
    }

    void interfaceOrder()
    {
        QStringList names;
        const QMetaObject& meta = Application::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names.append(QString::fromLatin1(meta.method(i).methodSignature()));
        QCOMPARE(
            names.join(' '),
            "getUserInfo(QVariant) getDeviceListDone(DifferencePtr) getCloneListDone(DifferencePtr) "
            "getGlobalConfig(QString) pushNotification(int,QString) checkUser() loadAllCachedUsers() "
            "getDeviceList() confirmSelectedDevice(QObject*) deleteSelectedDevice(QObject*) "
            "saveDeviceConfig(QObject*) getCloneList() updateFarmProfile(QString) resetSelectedClone() "
            "deleteSelectedClone() addClone(QString,QString,QString) uploadDefinition(int,QString) "
            "saveProfileSettings(QObject*) applyGlobalSetting(int,QString,int,int,QString,int) getReports() "
            "selectAllClone(bool) copyUIDsSelectedClones() updateFilteredClone(QVariantMap)");
    }

    void storedToken()
    {
        for (const QString& stored : {QString(), QStringLiteral("a \"b\" ö")}) {
            QSettings kept = settings();
            kept.setValue("user_token", stored);
            const LogCapture log;
            m_app.reset();
            m_app = std::make_unique<Application>(nullptr);
            QCOMPARE(model().userInfo()->token(), stored);
            QVERIFY(!model().userInfo()->isValidated());
            const QRegularExpression form(
                QStringLiteral("^\\[D\\]\\[ loadUserInfo \\]\\[ \\d+ \\] userToken:  \"%1\"$")
                    .arg(QRegularExpression::escape(stored.split('"').join("\\\""))));
            QVERIFY2(log.lines().filter(form).size() == 1, qPrintable(log.lines().join('\n')));
        }
    }

    void rejectedToken()
    {
        const std::pair<QByteArray, bool> answers[] = {{R"({"success":true,"data":{"fullname":"x"}})", true},
                                                       {R"({"success":true,"data":{"token":""}})", true},
                                                       {R"({"success":true,"data":{"token":5}})", true},
                                                       {R"({"success":false,"data":{"token":"t"}})", false},
                                                       {R"({"success":true,"data":[]})", false}};
        for (const auto& [answer, clears] : answers) {
            m_fixture->setReply(api("user/get-info"), 200, answer);
            for (const bool validated : {false, true}) {
                signIn("kept");
                model().userInfo()->setIsValidated(validated);
                settle();
                QCOMPARE(model().userInfo()->token(), clears ? QString() : QStringLiteral("kept"));
                QCOMPARE(model().userInfo()->isValidated(), validated && !clears);
            }
        }
        QVERIFY(notifications().isEmpty());
        QVERIFY(!settings().contains("user_token"));
        QVERIFY(requests("config/get-global").isEmpty());
    }

    void lateAnswerAboutAnotherToken()
    {
        m_fixture->setLatency(300);
        QSignalSpy answers(m_app.get(), &Application::getUserInfo);
        m_app->checkUser(); // about the empty token: would be a rejection
        m_app->checkUser(); // asks nothing more while that is under way
        QTRY_COMPARE(requests("user/get-info").size(), 1);
        signIn(m_fixture->userToken());
        QTRY_VERIFY(model().userInfo()->isValidated());
        settle();
        QCOMPARE(answers.count(), 1);
        QCOMPARE(requests("user/get-info").size(), 2);
        QCOMPARE(model().userInfo()->token(), m_fixture->userToken());
        QCOMPARE(settings().value("user_token").toString(), m_fixture->userToken());
        QCOMPARE(notifications().count("0 Load user info successful!"), 1);
        QCOMPARE(requests("config/get-global").size(), 1);
    }

    void renamedToken()
    {
        m_fixture->setReply(api("user/get-info"), 200,
                            R"({"success":true,"data":{"token":"renamed","user_type":"x"}})");
        signIn(m_fixture->userToken());
        QTRY_VERIFY(model().userInfo()->isValidated());
        settle();
        QCOMPARE(model().userInfo()->token(), QStringLiteral("renamed"));
        QCOMPARE(settings().value("user_token").toString(), QStringLiteral("renamed"));
        const auto configRequests = requests("config/get-global");
        QCOMPARE(configRequests.size(), 1);
        QVERIFY(configRequests[0].body.contains("renamed"));
    }

    void missingDefinitions()
    {
        enter();
        const LogCapture log;
        m_app->uploadDefinition(5, "/none/such");
        QCOMPARE(notifications(), QStringList{"2 Upload definitions falure!"});
        QVERIFY(m_fixture->requests().isEmpty());
        QCOMPARE(log.lines().filter(QRegularExpression("^\\[D\\]\\[ uploadDefinition ")).size(), 2);
        QVERIFY(log.lines().constFirst().endsWith("] ver:  5  file:  \"/none/such\""));
        QVERIFY(log.lines().constLast().contains("] error:  \""));
    }

    void hangingService()
    {
        enter();
        QSignalSpy devices(m_app.get(), &Application::getDeviceListDone);
        QSignalSpy clones(m_app.get(), &Application::getCloneListDone);
        m_fixture->setFault(api("device/list"), Fault::Hang);
        for (int i = 0; i < 4; ++i)
            m_app->getDeviceList();
        QTRY_COMPARE(requests("device/list").size(), 1);
        m_fixture->setFault(api("reports/get"), Fault::Hang);
        for (int i = 0; i < 14; ++i)
            m_app->getReports();
        QTRY_COMPARE(requests("reports/get").size(), 14);
        m_app->getCloneList(); // nothing waits behind the hanging requests
        QTRY_COMPARE(clones.count(), 1);
        QCOMPARE(devices.count(), 0);
        // However many have asked meanwhile, one more fetch serves them all; another account's does not wait.
        m_fixture->setFault(api("clone/list"), Fault::Hang);
        m_app->getCloneList();
        QTRY_COMPARE(requests("clone/list").size(), 2);
        m_fixture->setFault(api("device/list"), Fault::None);
        QTRY_COMPARE(devices.count(), 2);
        model().userInfo()->setToken(m_fixture->userToken());
        m_app->getCloneList();
        QTRY_COMPARE(requests("clone/list").size(), 3);
        m_fixture->clearFaults();
        settle();
        QCOMPARE(devices.count(), 2);
        QCOMPARE(clones.count(), 2);
    }

    void equalLists()
    {
        enter();
        QSignalSpy devices(m_app.get(), &Application::getDeviceListDone);
        QSignalSpy listed(&model(), &AppModel::deviceListChanged);
        const QList<QObject*> before = model().deviceList();
        devservice::Farm farm = m_farm;
        const auto fetch = [&](int count) {
            m_fixture->setFarm(farm);
            m_app->getDeviceList();
            QTRY_COMPARE(devices.count(), count);
        };
        fetch(1);
        QVERIFY(devices.last()[0].value<DifferencePtr>()->unchanged());
        QJsonObject changed = farm.devices[0].toObject();
        changed["model"] = "another";
        farm.devices[0] = changed;
        fetch(2); // other values of the same records
        QCOMPARE(before[0]->property("model").toString(), "another");
        QCOMPARE(model().deviceList(), before);
        QCOMPARE(listed.count(), 0);
        farm.devices.removeLast();
        fetch(3);
        QCOMPARE(listed.count(), 1);
        QCOMPARE(model().deviceList(), before.mid(0, before.size() - 1));
    }

    void anotherAccountSeesItsOwnFarm()
    {
        enter();
        model().userInfo()->setToken(QString());
        QVERIFY(!model().userInfo()->isValidated());
        m_fixture->setLatency(200);
        signIn(m_fixture->userToken());
        QTRY_VERIFY(model().userInfo()->isValidated());
        QVERIFY(model().deviceList().isEmpty() && model().cloneList().isEmpty() && !model().globalConfig());
        QTRY_VERIFY(!model().deviceList().isEmpty() && !model().cloneList().isEmpty());

        // What was asked for one account never arrives in another's.
        m_fixture->clearRequests();
        QSignalSpy devices(m_app.get(), &Application::getDeviceListDone);
        QSignalSpy configs(m_app.get(), &Application::getGlobalConfig);
        m_app->getDeviceList();
        m_app->getGlobalConfigAsync();
        QTRY_COMPARE(m_fixture->requests().size(), 2);
        model().userInfo()->setToken("another");
        settle();
        QCOMPARE(devices.count() + configs.count(), 0);
    }

    void renewedToken()
    {
        enter();
        m_fixture->setReply(api("user/get-info"), 200,
                            "{\"success\":true,\"data\":{\"token\":\"" + m_fixture->userToken().toUtf8() +
                                "\"}}");
        m_app->checkUser();
        QTRY_COMPARE(model().userInfo()->token(), m_fixture->userToken());
        QTRY_VERIFY(!model().deviceList().isEmpty() && !model().cloneList().isEmpty());
    }

    void lists()
    {
        enter();
        QCOMPARE(model().deviceList().size(), m_farm.devices.size());
        QCOMPARE(model().cloneList().size(), m_farm.clones.size());
        m_app->getDeviceList();
        settle();
        QCOMPARE(requests("device/list").size(), 1);
        QCOMPARE(requests("clone/list").size(), 0);
        model().clearFarm();
        m_app->getDeviceList();
        settle();
        QCOMPARE(requests("clone/list").size(), 1);
        QTRY_COMPARE(model().cloneList().size(), m_farm.clones.size());
    }

    void failedLists()
    {
        enter();
        m_fixture->setFault(api("device/list"), Fault::WrongShape);
        m_fixture->setFault(api("clone/list"), Fault::Cut);
        m_fixture->setFault(api("reports/get"), Fault::WrongShape);
        QSignalSpy devices(m_app.get(), &Application::getDeviceListDone);
        QSignalSpy clones(m_app.get(), &Application::getCloneListDone);
        QSignalSpy reports(&model(), &AppModel::reportListChanged);
        m_app->getDeviceList();
        m_app->getCloneList();
        m_app->getReports();
        QTRY_COMPARE(notifications().size(), 3);
        for (const char* list : {"device", "clone", "report"})
            QVERIFY2(notifications().contains(QStringLiteral("2 Load %1 list failure!").arg(list)), list);
        QVERIFY(devices.count() == 1 && clones.count() == 1 && reports.isEmpty());
        QCOMPARE(model().deviceList().size(), m_farm.devices.size());
        QCOMPARE(model().cloneList().size(), m_farm.clones.size());
    }

    void changes_data()
    {
        QTest::addColumn<Change>("change");
        const auto device = [] { return model().deviceList().first(); };
        const auto tick = [] { model().cloneList().first()->setProperty("selected", true); };
        const Change changes[] = {
            {"device/confirm", [=](auto& app) { app.confirmSelectedDevice(device()); }, "",
             "2 Confirm device failure!", "device/list", false},
            {"device/delete", [=](auto& app) { app.deleteSelectedDevice(device()); }, "",
             "2 Delete device failure!", "device/list", true},
            {"device/save-config", [=](auto& app) { app.saveDeviceConfig(device()); },
             "0 Save device config successful!", "2 Save device config falure!", "", false},
            {"clone/update-farm-profile", [=](auto& app) { tick(), app.updateFarmProfile("Warm-up"); }, "",
             "2 Update farm profile failure!", "clone/list", true},
            {"clone/reset-live", [=](auto& app) { tick(), app.resetSelectedClone(); }, "",
             "2 Reset clone failure!", "clone/list", false},
            {"clone/delete", [=](auto& app) { tick(), app.deleteSelectedClone(); }, "",
             "2 Delete clone failure!", "clone/list", true},
            {"clone/add", [](auto& app) { app.addClone("new-1|p", "facebook", "Warm-up"); }, "",
             "2 Add clone failure!", "clone/list", false},
            {"config/update-global", [](auto& app) { app.applyGlobalSetting(7, "", 0, 0, "", 0); },
             "0 Save global config successful!", "2 Save global config failure!", "config/get-global", false},
            {"user/upsert-farm-profile",
             [](auto& app) { app.saveProfileSettings(model().userInfo()->farmProfiles().first()); },
             "0 Save profile successful!", "2 Save profile failure!", "user/get-info", false},
            {"definitions/push",
             [](auto& app) { app.uploadDefinition(5, QCoreApplication::applicationFilePath()); },
             "0 Upload definitions successful!", "2 Upload definitions falure!", "", false}};
        for (const Change& change : changes)
            QTest::newRow(change.operation) << change;
    }

    void changes()
    {
        QFETCH(Change, change);
        const bool refreshes = *change.refresh;
        for (const bool fails : {false, true}) {
            enter();
            if (fails)
                m_fixture->setFault(api(change.operation), Fault::Refuse);
            change.send(*m_app);
            settle();
            QCOMPARE(requests(change.operation).size(), 1);
            QStringList told = notifications();
            told.removeAll("0 Load user info successful!"); // saving a profile asks for the user again
            QCOMPARE(told.join('|'), fails ? change.failure : change.success);
            QCOMPARE(requests(change.refresh).size(),
                     refreshes && (!fails || change.refreshesAfterFailure) ? 1 : 0);
            QVERIFY(change.refresh == QString("device/list") || requests("device/list").isEmpty());
        }
    }

    void savingTakesTheValuesOfTheMoment()
    {
        enter();
        auto* const device = static_cast<DeviceInfo*>(model().deviceList().first());
        const QString id = device->androidId();
        device->deviceConfig()->setDeviceLabel("as typed");
        device->deviceConfig()->setConnectivityType(1);
        m_fixture->setLatency(200);
        m_app->saveDeviceConfig(device);
        device->deviceConfig()->setDeviceLabel("typed later");
        model().userInfo()->setToken("another");
        model().clearFarm();
        model().clearFarm(); // the objects of a list go with the next but one
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTRY_COMPARE(notifications(), QStringList{"0 Save device config successful!"});
        const QJsonObject config{{"connectivity_type", 1}, {"device_label", "as typed"}};
        const QJsonObject body{
            {"token", m_fixture->adminToken()}, {"android_id", id}, {"device_config", config}};
        QCOMPARE(QJsonDocument::fromJson(requests("device/save-config").value(0).body).object(), body);
    }

    void importWithoutAWholeLineSendsNothing()
    {
        enter();
        m_app->addClone(" \n\nonly-uid\n", "facebook", "Warm-up");
        QVERIFY(m_fixture->requests().isEmpty());
    }

    void versionCheck()
    {
        enter();
        auto* const timer = m_app->findChild<QTimer*>();
        QCOMPARE(timer->interval(), 10000);
        QVERIFY(timer->isActive() && !timer->isSingleShot());

        // During a slow check ticks are dropped; later ones are not.
        m_fixture->setLatency(150);
        timer->setInterval(1);
        QElapsedTimer elapsed;
        elapsed.start();
        QTRY_COMPARE(requests("config/get-global").size(), 3);
        QVERIFY(elapsed.elapsed() >= 2 * 150);
        timer->stop();
        settle();

        // A check that ends before the tick returns leaves nothing behind.
        m_fixture->setLatency(0);
        m_fixture->clearRequests();
        timer->start();
        QTRY_VERIFY(requests("config/get-global").size() > 10);
        QVERIFY(m_fixture->requests(QStringLiteral("/packages/velstrand_18.zip")).isEmpty());
    }

    void closingWithJobsInFlight()
    {
        enter();
        m_fixture->setLatency(100);
        QObject* const device = model().deviceList().first();
        // Closed while the requests go out, while they wait for their answers and while those come in, ms.
        for (const int wait : {0, 50, 100, 150}) {
            m_app->getDeviceList();
            m_app->getCloneList();
            m_app->getReports();
            m_app->checkUser();
            m_app->saveDeviceConfig(device);
            QThread::msleep(ulong(wait));
            m_app.reset();
            m_app = std::make_unique<Application>(nullptr);
            model().userInfo()->setToken(m_fixture->adminToken());
        }
        settle();
    }

    void noCheckAfterAnUpdate()
    {
        // The build in place is started again when the package brings no other.
        const QTemporaryDir folder;
        const QString cwd = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder.path()));
        const QString package = QStringLiteral("/packages/velstrand_19.zip");
        m_fixture->setReply(package, 200, packZip({{"readme", "x"}}));
        devservice::Farm farm = m_farm;
        farm.globalConfig["velstrand_manager_app_version"] = "19";
        farm.globalConfig["velstrand_manager_app_path"] = m_fixture->origin() + package;
        m_fixture->setFarm(farm);
        enter();
        auto* const timer = m_app->findChild<QTimer*>();
        timer->setInterval(1);
        QTRY_VERIFY(!timer->isActive());
        QCOMPARE(requests("config/get-global").size(), 1);
        QCOMPARE(m_fixture->requests(package).size(), 1);
        QVERIFY(QDir::setCurrent(cwd));
    }

private:
    void signIn(const QString& token)
    {
        model().userInfo()->setToken(token);
        m_app->checkUser();
    }

    /// Signs in, and returns with both lists in the model and no job running.
    void enter()
    {
        signIn(m_fixture->adminToken());
        QTRY_VERIFY_WITH_TIMEOUT(!model().cloneList().isEmpty() && !model().deviceList().isEmpty() &&
                                     model().globalConfig(),
                                 30000);
        settle();
        m_notified->clear();
        m_fixture->clearRequests();
    }

    /// Waits until no job runs and no answer starts another.
    static void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QThreadPool::globalInstance()->waitForDone();
            QCoreApplication::processEvents();
        }
    }
    QStringList notifications() const
    {
        QStringList texts;
        for (const auto& arguments : *m_notified)
            texts.append(QString::number(arguments[0].toInt()) + ' ' + arguments[1].toString());
        return texts;
    }

    /// What came for that operation.
    QVector<devservice::Request> requests(const char* operation)
    {
        return m_fixture->requests(api(operation));
    }

    ServiceFixture m_fixture;
    devservice::Farm m_farm = m_fixture->farm();
    std::unique_ptr<Application> m_app;
    std::unique_ptr<QSignalSpy> m_notified;
};

QTEST_MAIN(TestApplication)
#include "tst_application.moc"
