#pragma once

#include "models/CloneInfo.h"
#include "models/DeviceInfo.h"
#include "models/GlobalConfig.h"
#include "models/ListReader.h"
#include "models/RecordModel.h"
#include "models/ReportsByDate.h"
#include "models/UserInfo.h"

#include <QDate>
#include <QJsonArray>
#include <QList>
#include <QPointer>
#include <QVariantMap>

#include <memory>

/// Everything that the scene shows. Devices and clones are snapshots, each shown by one item model; as lists
/// of objects they are made when somebody reads them, and announced when other records are in them or in
/// another order. Lives on the UI thread.
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
    Q_PROPERTY(RecordModel* deviceModel READ deviceModel CONSTANT)
    Q_PROPERTY(RecordModel* cloneModel READ cloneModel CONSTANT)

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

    /// The devices, and the clones that pass the filter, as views show them.
    RecordModel* deviceModel() { return &m_devices; }
    RecordModel* cloneModel() { return &m_clones; }

    /// Every device and every clone as an object, made now where there was none.
    QList<QObject*> deviceList() { return m_devices.objects(); }
    QList<QObject*> cloneList() { return m_clones.objects(); }
    /// The clones that pass the filter, in list order.
    QList<QObject*> filteredCloneList() { return m_clones.shownObjects(); }
    int totalFilteredClones() const { return static_cast<int>(m_clones.shownRows().size()); }

    /// Reads an answer of the service, see readList(). Any thread.
    static ListReading readDevices(std::string_view answer, const SnapshotPtr& last, const QString& owner);
    static ListReading readClones(std::string_view answer, const SnapshotPtr& last, const QString& owner);
    /// Shows what was read. The devices' ages are those of this moment, also where nothing else has changed.
    void applyDevices(const Difference& difference);
    void applyClones(const Difference& difference);

    /// Applies a filter (see CloneFilter) to the clones, those to come included.
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
    void announceClones(RecordModel::Outcome outcome, int totalBefore);
    void countClones();

    QPointer<UserInfo> m_userInfo;
    QList<QObject*> m_cachedUsers;
    RecordModel m_clones;
    DeviceInfo::Surroundings m_surroundings;
    RecordModel m_devices;
    QVariantMap m_filters;
    GlobalConfig* m_globalConfig = nullptr;
    QList<QObject*> m_reportList;
};
