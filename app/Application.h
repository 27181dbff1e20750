#pragma once

#include "app/BuildNumber.h"
#include "models/ListReader.h"

#include <QObject>
#include <QSettings>
#include <QVariant>

#include <functional>
#include <optional>

class AppIO;

/// The controller. Carries out what the scene asks for through the service; results arrive in the data model
/// and as notifications. Fetches run as jobs on the global thread pool and return at once; changes, except
/// saveDeviceConfig(), block for their request. Lives on the UI thread.
class Application : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int appVersion READ appVersion CONSTANT)

public:
    /// Kinds of notification.
    enum MessageType { Info = 0, Warning = 1, Error = 2 };

    /// Opens the settings, loads the stored token and starts looking for newer builds.
    explicit Application(QObject* parent);

    int appVersion() const { return kBuildNumber; }
    /// @p appIO is not owned.
    void setAppIO(AppIO* appIO);

    /// Fetches the global configuration into the model. Never installs a newer build.
    void getGlobalConfigAsync();

    /// Checks the current token with the service.
    Q_INVOKABLE void checkUser();
    /// Reads the reserved list of earlier users; has no effect on the model.
    Q_INVOKABLE void loadAllCachedUsers();
    /// Fetches the devices, and the clones too while there are none. While a fetch of a list is under way,
    /// any number of further wishes leads to one more.
    Q_INVOKABLE void getDeviceList();
    Q_INVOKABLE void confirmSelectedDevice(QObject* device);
    Q_INVOKABLE void deleteSelectedDevice(QObject* device);
    /// Sends the device's configuration as it is now, as a job.
    Q_INVOKABLE void saveDeviceConfig(QObject* device);
    Q_INVOKABLE void getCloneList();
    /// Assigns the farm profile of that name to the ticked clones.
    Q_INVOKABLE void updateFarmProfile(const QString& profile);
    /// Resets the ticked clones to live.
    Q_INVOKABLE void resetSelectedClone();
    Q_INVOKABLE void deleteSelectedClone();
    /// Imports clones from text, one "uid|password|secret key" a line.
    Q_INVOKABLE void addClone(const QString& raw, const QString& network, const QString& profile);
    /// Uploads a definitions file. Blocks for the whole transfer.
    Q_INVOKABLE void uploadDefinition(int ver, const QString& filePath);
    Q_INVOKABLE void saveProfileSettings(QObject* profileObj);
    /// Changes the global configuration; a version of 0 and an empty path keep what the service has.
    Q_INVOKABLE void applyGlobalSetting(int androidAppVer, const QString& androidAppPath, int facebookAppVer,
                                        int managerAppVer, const QString& managerAppPath,
                                        int definitionsVersion);
    /// Fetches the reports of the last ten days.
    Q_INVOKABLE void getReports();
    /// Ticks or unticks every clone that passes the filter.
    Q_INVOKABLE void selectAllClone(bool);
    /// Puts the uids of the ticked clones on the clipboard, each with a line break.
    Q_INVOKABLE void copyUIDsSelectedClones();
    /// Filters the clones; see CloneFilter for @p filters.
    Q_INVOKABLE void updateFilteredClone(const QVariantMap& filters);

signals:
    void getUserInfo(QVariant userInfo);
    /// After every fetch; @p difference is null where it failed.
    void getDeviceListDone(DifferencePtr difference);
    void getCloneListDone(DifferencePtr difference);
    void getGlobalConfig(QString configJson);
    /// @p type is a MessageType.
    void pushNotification(int type, QString message);

private:
    void loadUserInfo();
    void onGetUserInfo(const QVariant& userInfo);
    void onGetDeviceListDone(const DifferencePtr& difference);
    void onGetCloneListDone(const DifferencePtr& difference);
    void onGetGlobalConfig(const QString& configJson);

    struct Job;
    /// Runs @p work on a worker, for the token of this moment.
    void start(std::function<void(const Job&)> work);
    /// A list's latest fetch.
    struct Fetch {
        int number = 0;
        QString token;
        bool underWay = false;
        bool again = false;
    };
    /// One of the two lists: whom to ask, how to read the answer, and where it goes.
    struct List;
    static const List kDevices;
    static const List kClones;
    void fetch(const List& list);
    /// On a worker: asks for the list, and reads what comes.
    static ListReading readList(const List& list, const Job& job, const SnapshotPtr& last);

    /// Notifies the user of how a change ended; of a success only if @p success has text. Returns @p done.
    bool announce(bool done, const QString& failure, const QString& success = QString());

    QSettings m_settings{QStringLiteral("Velstrand"), QStringLiteral("Velstrand Manager")};
    AppIO* m_appIO = nullptr;
    /// The token being checked, while a check is under way.
    std::optional<QString> m_checkedToken;
    Fetch m_deviceFetch;
    Fetch m_cloneFetch;
    /// Token of the account whose farm the model holds; empty before the first sign-in.
    QString m_farmOwner;
};
