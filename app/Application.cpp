#include "app/Application.h"

#include "api/APIManager.h"
#include "api/VelstrandAPI.h"
#include "app/AppIO.h"
#include "app/VersionCheck.h"
#include "logging/Log.h"
#include "models/AppModel.h"
#include "models/CloneImport.h"
#include "models/DeviceConfig.h"
#include "models/DeviceInfo.h"
#include "models/FarmProfile.h"
#include "models/GlobalConfig.h"

#include <QCoreApplication>
#include <QPointer>
#include <QtConcurrent>

#include <new>
#include <utility>

namespace {

constexpr int kJobsAtOnce = 16;
const QString kTokenKey = QStringLiteral("user_token");

VelstrandAPI& service()
{
    return *APIManager::instance()->api();
}

QString currentToken()
{
    return AppModel::instance()->userInfo()->token();
}

} // namespace

/// What a job on a worker thread works with: values and shared references only, nothing that the UI thread
/// may delete under it.
struct Application::Job {
    std::shared_ptr<VelstrandAPI> api;
    /// As it was when the job was started.
    QString token;
    /// Dereferenced on the UI thread only.
    QPointer<Application> controller;
    /// Outlives every job: its destructor waits for the thread pool.
    QCoreApplication* qtApplication;

    /// Calls @p handler with the controller on the UI thread, unless the controller is gone by then.
    template <typename Handler>
    void deliver(const Handler& handler) const
    {
        const auto call = [app = controller, handler = std::move(handler)] {
            if (app)
                handler(app.data());
        };
        QMetaObject::invokeMethod(qtApplication, call, Qt::QueuedConnection);
    }

    /// The same, unless the token has changed since: what was asked for one account is not shown to another.
    template <typename Handler>
    void deliverForToken(const Handler& handler) const
    {
        deliver([asked = token, handler = std::move(handler)](Application* app) {
            if (currentToken() == asked)
                handler(app);
        });
    }
};

struct Application::List {
    Fetch Application::* fetch;
    RecordModel* (AppModel::*model)();
    bool (*ask)(const VelstrandAPI& api, const QString& token, RawAnswer* answer);
    ListReading (*read)(std::string_view answer, const SnapshotPtr& last, const QString& owner);
    void (Application::*done)(DifferencePtr difference);
    const char* failure;
};

const Application::List Application::kDevices{
    &Application::m_deviceFetch,
    &AppModel::deviceModel,
    [](const VelstrandAPI& api, const QString& token, RawAnswer* answer) {
        return api.getDeviceList(token, answer);
    },
    &AppModel::readDevices,
    &Application::getDeviceListDone,
    QT_TR_NOOP("Load device list failure!")};

const Application::List Application::kClones{
    &Application::m_cloneFetch,
    &AppModel::cloneModel,
    [](const VelstrandAPI& api, const QString& token, RawAnswer* answer) {
        return api.getCloneList(token, QString(), answer);
    },
    &AppModel::readClones,
    &Application::getCloneListDone,
    QT_TR_NOOP("Load clone list failure!")};

Application::Application(QObject* parent) : QObject(parent)
{
    qRegisterMetaType<DifferencePtr>();
    loadUserInfo();

    connect(this, &Application::getUserInfo, this, &Application::onGetUserInfo);
    connect(this, &Application::getDeviceListDone, this, &Application::onGetDeviceListDone);
    connect(this, &Application::getCloneListDone, this, &Application::onGetCloneListDone);
    connect(this, &Application::getGlobalConfig, this, &Application::onGetGlobalConfig);

    // Jobs spend their time waiting for the network, so more of them may run than there are cores; a long
    // download must not hold up the lists.
    QThreadPool::globalInstance()->setMaxThreadCount(kJobsAtOnce);

    new VersionCheck(this);
}

void Application::setAppIO(AppIO* appIO)
{
    m_appIO = appIO;
}

void Application::start(std::function<void(const Job&)> work)
{
    const Job job{APIManager::instance()->api(), currentToken(), this, QCoreApplication::instance()};
    QtConcurrent::run([job, work = std::move(work)] { work(job); });
}

bool Application::announce(bool done, const QString& failure, const QString& success)
{
    if (!done)
        emit pushNotification(Error, failure);
    else if (!success.isEmpty())
        emit pushNotification(Info, success);
    return done;
}

// Session

void Application::loadUserInfo()
{
    const QString token = m_settings.value(kTokenKey, QString()).toString();
    LOG_D << "userToken: " << token;
    AppModel::instance()->setUserInfo(new UserInfo(token, this));
}

void Application::loadAllCachedUsers()
{
    m_settings.value(QStringLiteral("cached_users")).toJsonArray();
}

void Application::checkUser()
{
    // The validation popup keeps asking; while the service hangs, one request at a time is enough.
    const UserInfo* const user = AppModel::instance()->userInfo();
    if (!user->isValidated() && m_checkedToken == user->token())
        return;
    m_checkedToken = user->token();
    start([](const Job& job) {
        QJsonObject userInfo;
        const bool answered = job.api->getUserInfo(job.token, &userInfo);
        job.deliver([token = job.token, answered, userInfo](Application* app) {
            if (app->m_checkedToken == token)
                app->m_checkedToken.reset();
            if (answered && currentToken() == token)
                emit app->getUserInfo(QVariant(userInfo));
        });
    });
}

void Application::onGetUserInfo(const QVariant& userInfo)
{
    const QJsonObject answer = userInfo.toJsonObject();
    LOG_D << answer;
    UserInfo* const user = AppModel::instance()->userInfo();
    if (!user)
        return;
    bool fetches = !user->isValidated();
    if (!user->applyInfo(answer))
        return;
    m_settings.setValue(kTokenKey, user->token());
    emit pushNotification(Info, tr("Load user info successful!"));
    getGlobalConfigAsync();
    if (m_farmOwner != user->token()) {
        // The farm of the account that was signed in before must not stay on the screen.
        m_farmOwner = user->token();
        AppModel::instance()->clearFarm();
        fetches = true;
    }
    if (fetches) {
        fetch(kClones);
        fetch(kDevices);
    }
}

// Lists

ListReading Application::readList(const List& list, const Job& job, const SnapshotPtr& last)
{
    RawAnswer answer;
    if (!list.ask(*job.api, job.token, &answer))
        return {};
    ListReading reading;
    try {
        reading = list.read(answer.bytes, last, job.token);
    } catch (const std::bad_alloc&) {
        // The list of before stays, and may be asked for again.
        reading.message = QStringLiteral("Out of memory");
    }
    if (!reading.success)
        LOG_D << list.failure << ": " << reading.message;
    return reading;
}

void Application::fetch(const List& list)
{
    Fetch& latest = this->*list.fetch;
    if (latest.underWay && latest.token == currentToken()) {
        latest.again = true;
        return;
    }
    latest = {latest.number + 1, currentToken(), true, false};
    const SnapshotPtr last = (AppModel::instance()->*list.model)()->snapshot();
    start([&list, number = latest.number, last](const Job& job) {
        const ListReading reading = readList(list, job, last);
        job.deliver([&list, number, token = job.token,
                     difference = DifferencePtr(reading.difference)](Application* app) {
            Fetch& mine = app->*list.fetch;
            // Meanwhile asked for another account.
            if (mine.number != number)
                return;
            mine.underWay = false;
            if (currentToken() != token)
                return;
            (app->*list.done)(difference);
            if (!difference)
                emit app->pushNotification(Error, tr(list.failure));
            if (mine.again)
                app->fetch(list);
        });
    });
}

void Application::getDeviceList()
{
    fetch(kDevices);
    if (AppModel::instance()->cloneModel()->snapshot()->records.empty() && !m_cloneFetch.underWay)
        fetch(kClones);
}

void Application::onGetDeviceListDone(const DifferencePtr& difference)
{
    if (difference)
        AppModel::instance()->applyDevices(*difference);
}

void Application::getCloneList()
{
    fetch(kClones);
}

void Application::onGetCloneListDone(const DifferencePtr& difference)
{
    if (difference)
        AppModel::instance()->applyClones(*difference);
}

// Devices

void Application::confirmSelectedDevice(QObject* device)
{
    const auto* const info = qobject_cast<DeviceInfo*>(device);
    if (!info)
        return;
    if (announce(service().confirmDevice(currentToken(), info->androidId()), tr("Confirm device failure!")))
        getDeviceList();
}

void Application::deleteSelectedDevice(QObject* device)
{
    const auto* const info = qobject_cast<DeviceInfo*>(device);
    if (!info)
        return;
    announce(service().deleteDevice(currentToken(), info->androidId()), tr("Delete device failure!"));
    // After a failure too: the service may have deleted the device although its answer was lost.
    getDeviceList();
}

void Application::saveDeviceConfig(QObject* device)
{
    const auto* const info = qobject_cast<DeviceInfo*>(device);
    if (!info)
        return;
    start([androidId = info->androidId(), config = info->deviceConfig()->toJson()](const Job& job) {
        const bool saved = job.api->saveDeviceConfig(job.token, androidId, config);
        job.deliver([saved](Application* app) {
            // "falure" here and for the definitions: the spelling is part of the interface; kept.
            app->announce(saved, tr("Save device config falure!"), tr("Save device config successful!"));
        });
    });
}

// Clones

void Application::updateFarmProfile(const QString& profile)
{
    const QStringList ids = AppModel::instance()->selectedCloneIds();
    announce(service().updateCloneFarmProfile(currentToken(), ids, profile),
             tr("Update farm profile failure!"));
    getCloneList();
}

void Application::resetSelectedClone()
{
    const QStringList ids = AppModel::instance()->selectedCloneIds();
    if (announce(service().resetLiveClones(currentToken(), ids), tr("Reset clone failure!")))
        getCloneList();
}

void Application::deleteSelectedClone()
{
    const QStringList ids = AppModel::instance()->selectedCloneIds();
    announce(service().deleteClones(currentToken(), ids), tr("Delete clone failure!"));
    getCloneList();
}

void Application::addClone(const QString& raw, const QString& network, const QString& profile)
{
    LOG_D << network << " -- profile: " << profile << " : \n" << raw;
    const QJsonArray clones = cloneimport::parse(raw, profile);
    if (clones.isEmpty())
        return;
    if (announce(service().addClones(currentToken(), network, clones), tr("Add clone failure!")))
        getCloneList();
}

void Application::selectAllClone(bool selected)
{
    AppModel::instance()->selectAllClones(selected);
}

void Application::copyUIDsSelectedClones()
{
    if (m_appIO)
        m_appIO->sendToClibboard(AppModel::instance()->selectedUids());
}

void Application::updateFilteredClone(const QVariantMap& filters)
{
    AppModel::instance()->filterClones(filters);
}

// Farm profiles, configuration, definitions, reports

void Application::saveProfileSettings(QObject* profileObj)
{
    const auto* const profile = qobject_cast<FarmProfile*>(profileObj);
    if (!profile)
        return;
    if (announce(service().upsertFarmProfile(currentToken(), profile->toJson()), tr("Save profile failure!"),
                 tr("Save profile successful!")))
        checkUser();
}

void Application::getGlobalConfigAsync()
{
    start([](const Job& job) {
        QString config;
        if (job.api->getGlobalConfig(job.token, &config))
            job.deliverForToken([config](Application* app) { emit app->getGlobalConfig(config); });
    });
}

void Application::onGetGlobalConfig(const QString& configJson)
{
    auto config = std::make_unique<GlobalConfig>();
    config->fromJson(QJsonDocument::fromJson(configJson.toUtf8()).object());
    AppModel::instance()->setGlobalConfig(std::move(config));
}

void Application::applyGlobalSetting(int androidAppVer, const QString& androidAppPath, int facebookAppVer,
                                     int managerAppVer, const QString& managerAppPath, int definitionsVersion)
{
    const auto text = [](int version) { return version == 0 ? QString() : QString::number(version); };
    GlobalConfig config;
    config.setVsAndroidAppVersion(text(androidAppVer));
    config.setVsAndroidAppPath(androidAppPath);
    config.setFacebookAppVersion(text(facebookAppVer));
    config.setVsManagerAppVersion(text(managerAppVer));
    config.setVsManagerAppPath(managerAppPath);
    config.setVsDefinitionsVersion(text(definitionsVersion));
    if (announce(service().updateGlobalConfig(currentToken(), config.toJson()),
                 tr("Save global config failure!"), tr("Save global config successful!")))
        getGlobalConfigAsync();
}

void Application::uploadDefinition(int ver, const QString& filePath)
{
    LOG_D << "ver: " << ver << " file: " << filePath;
    QString error;
    if (!announce(service().pushDefinition(currentToken(), ver, filePath, &error),
                  tr("Upload definitions falure!"), tr("Upload definitions successful!")))
        LOG_D << "error: " << error;
}

void Application::getReports()
{
    start([dates = AppModel::reportDates()](const Job& job) {
        QJsonObject answer;
        const bool fetched = job.api->getReports(job.token, dates, &answer);
        job.deliverForToken([fetched, days = ReportsByDate::readDays(answer)](Application* app) {
            if (fetched)
                AppModel::instance()->applyReports(days);
            else
                emit app->pushNotification(Error, tr("Load report list failure!"));
        });
    });
}
