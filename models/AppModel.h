#pragma once

#include "models/CloneInfo.h"
#include "models/DeviceInfo.h"
#include "models/GlobalConfig.h"
#include "models/ReportsByDate.h"
#include "models/UserInfo.h"

#include <QDate>
#include <QJsonArray>
#include <QList>
#include <QPointer>
#include <QVariantList>
#include <QVariantMap>
#include <QVector>

#include <memory>

/// Everything that the scene shows. Lists are replaced whole and announced with one signal; the objects of
/// the list before stay alive until the event loop turns, because the scene uses them while it hears of the
/// new ones. Lives on the UI thread.
class AppModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(UserInfo* userInfo READ userInfo NOTIFY userInfoChanged)
    Q_PROPERTY(QList<QObject*> cachedUsers READ cachedUsers NOTIFY cachedUsersChanged)
    Q_PROPERTY(QList<QObject*> deviceList READ deviceList NOTIFY deviceListChanged)
    Q_PROPERTY(QList<QObject*> cloneList READ cloneList NOTIFY cloneListChanged)
    Q_PROPERTY(QList<QObject*> reportList READ reportList NOTIFY reportListChanged)
    Q_PROPERTY(GlobalConfig* globalConfig READ globalConfig NOTIFY globalConfigChanged)
    Q_PROPERTY(int totalFilteredClones READ totalFilteredClones NOTIFY totalFilteredClonesChanged)
    Q_PROPERTY(QList<QObject*> filteredCloneList READ filteredCloneList NOTIFY filteredCloneListChanged)

public:
    /// The one model of the program, made on first use and never destroyed.
    static AppModel* instance();

    explicit AppModel(QObject* parent = nullptr);

    /// Null until setUserInfo().
    UserInfo* userInfo() const { return m_userInfo; }
    /// Takes @p userInfo in the place of a user with another token, who is then deleted. Null, or a user with
    /// the token of the present one, changes nothing. Announced to nobody: it happens before the scene
    /// exists. The objects stay owned by their parents.
    void setUserInfo(UserInfo* userInfo);
    /// Always empty; reserved for further accounts.
    const QList<QObject*>& cachedUsers() const { return m_cachedUsers; }

    const QList<QObject*>& deviceList() const { return m_devices.objects; }
    const QVector<DeviceInfo*>& devices() const { return m_devices.records; }
    /// Replaces the devices by those that @p records (JSON objects) describe, in their order. Elements that
    /// are no objects are left out.
    void setDevices(const QVariantList& records);

    const QList<QObject*>& cloneList() const { return m_clones.objects; }
    const QVector<CloneInfo*>& clones() const { return m_clones.records; }
    /// The same for the clones. Every new clone passes the filter.
    void setClones(const QVariantList& records);

    /// The clones that pass the filter, in list order: what a view shows.
    const QList<QObject*>& filteredCloneList() const { return m_filteredClones; }
    int totalFilteredClones() const { return m_filteredClones.size(); }
    /// Applies a filter (see CloneFilter) to every clone.
    void filterClones(const QVariantMap& filters);

    /// Ticks or unticks every clone that passes the filter; hidden ones keep what they have.
    void selectAllClones(bool selected);
    /// The uids of the ticked clones, hidden ones included, each followed by a line break.
    QString selectedUids() const;
    QStringList selectedCloneIds() const;

    /// Null until the service's configuration is known.
    GlobalConfig* globalConfig() const { return m_globalConfig; }
    /// The configuration before is deleted later.
    void setGlobalConfig(std::unique_ptr<GlobalConfig> globalConfig);

    /// One ReportsByDate a day, newest first; the same ten objects for ever.
    const QList<QObject*>& reportList() const { return m_reportList; }
    /// The days to ask the service about, today first. Any thread.
    static QJsonArray reportDates(const QDate& today = QDate::currentDate());
    /// Dates the entries from @p today back and gives each the figures of its day, one entry after the other;
    /// a day that @p days lacks is empty. Announces the list once, after the last.
    void applyReports(const ReportDays& days, const QDate& today = QDate::currentDate());

    /// Empties the devices, the clones, the reports and the configuration: another account's farm comes next.
    void clearFarm();

signals:
    void userInfoChanged();
    void cachedUsersChanged();
    void deviceListChanged();
    void cloneListChanged();
    void reportListChanged();
    void globalConfigChanged();
    void totalFilteredClonesChanged();
    void filteredCloneListChanged();

private:
    /// A published list: once as QML sees it, once as what it holds. The records are children of the holder,
    /// so that one deferred deletion takes them all.
    template <class Record>
    struct Published {
        QObject* holder = nullptr;
        QVector<Record*> records;
        QList<QObject*> objects;
    };

    void refreshCloneCounts();

    QPointer<UserInfo> m_userInfo;
    QList<QObject*> m_cachedUsers;
    Published<DeviceInfo> m_devices;
    Published<CloneInfo> m_clones;
    QList<QObject*> m_filteredClones;
    GlobalConfig* m_globalConfig = nullptr;
    QList<QObject*> m_reportList;
};
