#pragma once

#include "app/BuildNumber.h"

#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

class AppIO;
class JobOutlet;
class QSettings;
class QTimer;
struct Job;

/// The controller: what the scene asks for is carried out through the service, and the outcome arrives in the
/// data model and as notifications. Methods return at once where they run a job on the global thread pool and
/// block for one request where they change data. Lives on the UI thread.
class Application : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int appVersion READ appVersion CONSTANT)

public:
    /// Kinds of notification.
    enum MessageType { Info = 0, Warning = 1, Error = 2 };

    /// Opens the settings, takes the stored token and starts to look for newer builds every 10 seconds.
    explicit Application(QObject* parent);
    ~Application() override;

    int appVersion() const { return kBuildNumber; }
    /// @p appIO is not owned.
    void setAppIO(AppIO* appIO);

    /// Fetches the global configuration into the model. Never installs a newer build.
    void getGlobalConfigAsync();

    /// Asks the service whether the current token is a user's, on a worker.
    Q_INVOKABLE void checkUser();
    /// Reads the reserved list of earlier users; has no effect on the model.
    Q_INVOKABLE void loadAllCachedUsers();
    /// Fetches the devices, and the clones too while there are none, on workers.
    Q_INVOKABLE void getDeviceList();
    /// Blocks for one request.
    Q_INVOKABLE void confirmSelectedDevice(QObject* device);
    /// Blocks for one request.
    Q_INVOKABLE void deleteSelectedDevice(QObject* device);
    /// Sends the device's configuration as it is now, on a worker.
    Q_INVOKABLE void saveDeviceConfig(QObject* device);
    /// Fetches the clones on a worker.
    Q_INVOKABLE void getCloneList();
    /// Gives the ticked clones the farm profile of that name. Blocks for one request.
    Q_INVOKABLE void updateFarmProfile(const QString& profile);
    /// Sets the ticked clones live again. Blocks for one request.
    Q_INVOKABLE void resetSelectedClone();
    /// Deletes the ticked clones. Blocks for one request.
    Q_INVOKABLE void deleteSelectedClone();
    /// Imports clones from text, one "uid|password|secret key" a line. Blocks for one request.
    Q_INVOKABLE void addClone(const QString& raw, const QString& network, const QString& profile);
    /// Uploads a definitions file. Blocks for the transfer.
    Q_INVOKABLE void uploadDefinition(int ver, const QString& filePath);
    /// Blocks for one request.
    Q_INVOKABLE void saveProfileSettings(QObject* profileObj);
    /// Changes the global configuration; a version of 0 and an empty path keep what the service has. Blocks
    /// for one request.
    Q_INVOKABLE void applyGlobalSetting(int androidAppVer, const QString& androidAppPath, int facebookAppVer,
                                        int managerAppVer, const QString& managerAppPath,
                                        int definitionsVersion);
    /// Fetches the reports of the last ten days on a worker.
    Q_INVOKABLE void getReports();
    /// Ticks or unticks every clone that passes the filter.
    Q_INVOKABLE void selectAllClone(bool);
    /// Puts the uids of the ticked clones on the clipboard, each with a line break.
    Q_INVOKABLE void copyUIDsSelectedClones();
    /// Filters the clones; see CloneFilter for @p filters.
    Q_INVOKABLE void updateFilteredClone(const QVariantMap& filters);

signals:
    void getUserInfo(QVariant userInfo);
    void getDeviceListDone(QVariantList array);
    void getCloneListDone(QVariantList array);
    void getGlobalConfig(QString configJson);
    /// @p type is a MessageType.
    void pushNotification(int type, QString message);

private:
    void loadUserInfo();
    void onGetUserInfo(const QVariant& userInfo);
    void onGetDeviceListDone(const QVariantList& array);
    void onGetCloneListDone(const QVariantList& array);
    void onGetGlobalConfig(const QString& configJson);

    void checkVersion();
    void start(std::function<void(const Job&)> work);

    std::unique_ptr<QSettings> m_settings;
    AppIO* m_appIO = nullptr;
    QTimer* m_versionTimer = nullptr;
    /// The token that a check under way is about.
    std::optional<QString> m_checkedToken;
    /// Token of the account whose farm the model holds; empty before the first sign-in.
    QString m_farmOwner;
    std::shared_ptr<JobOutlet> m_outlet;
};
