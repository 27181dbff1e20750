#include "app/Application.h"

#include "api/APIManager.h"
#include "api/SelfUpdate.h"
#include "api/VelstrandAPI.h"
#include "app/AppIO.h"
#include "app/Job.h"
#include "logging/Log.h"
#include "models/AppModel.h"
#include "models/CloneImport.h"
#include "models/DeviceConfig.h"
#include "models/DeviceInfo.h"
#include "models/FarmProfile.h"
#include "models/GlobalConfig.h"

#include <QScopeGuard>
#include <QSettings>
#include <QTimer>
#include <QtConcurrent>

#include <mutex>

namespace {

constexpr int kVersionCheckIntervalMs = 10000;
constexpr int kJobsAtOnce = 16;
const QString kTokenKey = QStringLiteral("user_token");

/// Whether a version check is under way. Set by the UI thread, cleared by the check's worker as its last
/// step; the mutex makes sure that a check which ends at once is cleared after it was set.
std::mutex versionCheckMutex;
bool versionCheckBusy = false;

VelstrandAPI& service()
{
    return *APIManager::instance()->api();
}

QString currentToken()
{
    return AppModel::instance()->userInfo()->token();
}

/// Delivers what a job has found out for the account with @p token, unless the user has taken another since.
/// Only the UI thread, which sets the token, can tell.
template <typename Message>
void deliverFor(const QString& token, const Job& job, Message message)
{
    job.outlet->deliver([token, message](Application* app) {
        if (currentToken() == token)
            message(app);
    });
}

std::unique_ptr<QSettings> openSettings()
{
    return std::make_unique<QSettings>(QStringLiteral("Velstrand"), QStringLiteral("Velstrand Manager"));
}

} // namespace

Application::Application(QObject* parent) : QObject(parent), m_outlet(std::make_shared<JobOutlet>(this))
{
    loadUserInfo();

    connect(this, &Application::getUserInfo, this, &Application::onGetUserInfo);
    connect(this, &Application::getDeviceListDone, this, &Application::onGetDeviceListDone);
    connect(this, &Application::getCloneListDone, this, &Application::onGetCloneListDone);
    connect(this, &Application::getGlobalConfig, this, &Application::onGetGlobalConfig);

    // Jobs wait for the network, not for a processor: a long download must not keep the lists waiting.
    QThreadPool::globalInstance()->setMaxThreadCount(kJobsAtOnce);

    m_versionTimer = new QTimer(this);
    m_versionTimer->setInterval(kVersionCheckIntervalMs);
    connect(m_versionTimer, &QTimer::timeout, this, &Application::checkVersion);
    m_versionTimer->start();
}

Application::~Application()
{
    m_outlet->close();
}

void Application::setAppIO(AppIO* appIO)
{
    m_appIO = appIO;
}

void Application::start(std::function<void(const Job&)> work)
{
    const Job job{APIManager::instance()->api(), AppModel::instance()->userInfo()->tokenReader(), m_outlet};
    QtConcurrent::run(std::function<void()>([job, work = std::move(work)] { work(job); }));
}

// Session

void Application::loadUserInfo()
{
    m_settings = openSettings();
    const QString token = m_settings->value(kTokenKey, QString()).toString();
    LOG_D << "userToken: " << token;
    AppModel::instance()->setUserInfo(new UserInfo(token, this));
}

void Application::loadAllCachedUsers()
{
    m_settings = openSettings();
    m_settings->value(QStringLiteral("cached_users")).toJsonArray();
}

void Application::checkUser()
{
    // The validation popup asks again and again; while the service hangs, one question at a time is enough.
    const UserInfo* const user = AppModel::instance()->userInfo();
    if (!user->isValidated() && m_checkedToken == user->token())
        return;
    m_checkedToken = user->token();
    start([checked = user->token()](const Job& job) {
        const QString token = job.token();
        QJsonObject userInfo;
        const bool answered = job.api->getUserInfo(token, &userInfo);
        job.outlet->deliver([checked, token, answered, userInfo](Application* app) {
            if (app->m_checkedToken == checked)
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
    const bool entering = !user->isValidated();
    if (!user->applyInfo(answer))
        return;
    m_settings->setValue(kTokenKey, user->token());
    emit pushNotification(Info, tr("Load user info successful!"));
    getGlobalConfigAsync();
    if (m_farmOwner != user->token()) {
        // Nobody sees the farm of the account that was signed in before.
        m_farmOwner = user->token();
        AppModel::instance()->clearFarm();
    }
    if (entering)
        getDeviceList();
}

// Devices

void Application::getDeviceList()
{
    start([](const Job& job) {
        const QString token = job.token();
        QJsonArray array;
        const bool fetched = job.api->getDeviceList(token, &array);
        deliverFor(token, job, [fetched, records = array.toVariantList()](Application* app) {
            emit app->getDeviceListDone(records);
            if (!fetched)
                emit app->pushNotification(Error, tr("Load device list failure!"));
        });
    });
    if (AppModel::instance()->cloneList().isEmpty())
        getCloneList();
}

void Application::onGetDeviceListDone(const QVariantList& array)
{
    AppModel::instance()->setDevices(array);
}

void Application::confirmSelectedDevice(QObject* device)
{
    const auto* const info = qobject_cast<DeviceInfo*>(device);
    if (!info)
        return;
    if (service().confirmDevice(currentToken(), info->androidId()))
        getDeviceList();
    else
        emit pushNotification(Error, tr("Confirm device failure!"));
}

void Application::deleteSelectedDevice(QObject* device)
{
    const auto* const info = qobject_cast<DeviceInfo*>(device);
    if (!info)
        return;
    if (!service().deleteDevice(currentToken(), info->androidId()))
        emit pushNotification(Error, tr("Delete device failure!"));
    // Also after a failure: the service may have deleted it and the answer got lost.
    getDeviceList();
}

void Application::saveDeviceConfig(QObject* device)
{
    const auto* const info = qobject_cast<DeviceInfo*>(device);
    if (!info)
        return;
    start([androidId = info->androidId(), config = info->deviceConfig()->toJson()](const Job& job) {
        const bool saved = job.api->saveDeviceConfig(job.token(), androidId, config);
        job.outlet->deliver([saved](Application* app) {
            if (saved)
                emit app->pushNotification(Info, tr("Save device config successful!"));
            else
                emit app->pushNotification(Error, tr("Save device config falure!"));
        });
    });
}

// Clones

void Application::getCloneList()
{
    start([](const Job& job) {
        const QString token = job.token();
        QJsonArray array;
        const bool fetched = job.api->getCloneList(token, QString(), &array);
        deliverFor(token, job, [fetched, records = array.toVariantList()](Application* app) {
            emit app->getCloneListDone(records);
            if (!fetched)
                emit app->pushNotification(Error, tr("Load clone list failure!"));
        });
    });
}

void Application::onGetCloneListDone(const QVariantList& array)
{
    AppModel::instance()->setClones(array);
}

void Application::updateFarmProfile(const QString& profile)
{
    if (!service().updateCloneFarmProfile(currentToken(), AppModel::instance()->selectedCloneIds(), profile))
        emit pushNotification(Error, tr("Update farm profile failure!"));
    getCloneList();
}

void Application::resetSelectedClone()
{
    if (service().resetLiveClones(currentToken(), AppModel::instance()->selectedCloneIds()))
        getCloneList();
    else
        emit pushNotification(Error, tr("Reset clone failure!"));
}

void Application::deleteSelectedClone()
{
    if (!service().deleteClones(currentToken(), AppModel::instance()->selectedCloneIds()))
        emit pushNotification(Error, tr("Delete clone failure!"));
    getCloneList();
}

void Application::addClone(const QString& raw, const QString& network, const QString& profile)
{
    LOG_D << network << " -- profile: " << profile << " : \n" << raw;
    const QJsonArray clones = cloneimport::parse(raw, profile);
    if (clones.isEmpty())
        return;
    if (service().addClones(currentToken(), network, clones))
        getCloneList();
    else
        emit pushNotification(Error, tr("Add clone failure!"));
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
    if (service().upsertFarmProfile(currentToken(), profile->toJson())) {
        emit pushNotification(Info, tr("Save profile successful!"));
        checkUser();
    } else {
        emit pushNotification(Error, tr("Save profile failure!"));
    }
}

void Application::getGlobalConfigAsync()
{
    start([](const Job& job) {
        QString config;
        if (job.api->getGlobalConfig(job.token(), &config))
            job.outlet->deliver([config](Application* app) { emit app->getGlobalConfig(config); });
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
    if (service().updateGlobalConfig(currentToken(), config.toJson())) {
        emit pushNotification(Info, tr("Save global config successful!"));
        getGlobalConfigAsync();
    } else {
        emit pushNotification(Error, tr("Save global config failure!"));
    }
}

void Application::uploadDefinition(int ver, const QString& filePath)
{
    LOG_D << "ver: " << ver << " file: " << filePath;
    QString error;
    if (service().pushDefinition(currentToken(), ver, filePath, &error)) {
        emit pushNotification(Info, tr("Upload definitions successful!"));
    } else {
        emit pushNotification(Error, tr("Upload definitions falure!"));
        LOG_D << "error: " << error;
    }
}

void Application::getReports()
{
    start([dates = AppModel::reportDates()](const Job& job) {
        const QString token = job.token();
        QJsonObject answer;
        const bool fetched = job.api->getReports(token, dates, &answer);
        deliverFor(token, job, [fetched, days = ReportsByDate::readDays(answer)](Application* app) {
            if (fetched)
                AppModel::instance()->applyReports(days);
            else
                emit app->pushNotification(Error, tr("Load report list failure!"));
        });
    });
}

// Newer builds

void Application::checkVersion()
{
    const std::lock_guard lock(versionCheckMutex);
    if (versionCheckBusy)
        return;
    start([](const Job& job) {
        const auto last = qScopeGuard([] {
            const std::lock_guard guard(versionCheckMutex);
            versionCheckBusy = false;
        });
        QString text;
        if (job.api->getGlobalConfig(job.token(), &text)) {
            GlobalConfig config;
            config.fromJson(QJsonDocument::fromJson(text.toUtf8()).object());
            const uint version = config.vsManagerAppVersion().toUInt();
            const bool restarts = version > uint(kBuildNumber) &&
                                  installNewVersion(*job.api, version, config.vsManagerAppPath());
            // The process is about to end; no further check may begin.
            if (restarts)
                job.outlet->deliver([](Application* app) { app->m_versionTimer->stop(); });
        }
    });
    versionCheckBusy = true;
}
