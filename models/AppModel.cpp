#include "models/AppModel.h"

#include "models/CloneFilter.h"

#include <QDateTime>

namespace {

constexpr int kReportDays = 10;

} // namespace

AppModel* AppModel::instance()
{
    static auto* const model = new AppModel; // lives as long as the process
    return model;
}

AppModel::AppModel(QObject* parent)
    : QObject(parent), m_clones([](QObject* list) { return new CloneInfo(list); }, this),
      m_surroundings{0, m_clones.snapshot()},
      m_devices([this](QObject* list) { return new DeviceInfo(&m_surroundings, list); }, this)
{
    for (int i = 0; i < kReportDays; ++i)
        m_reportList.append(new ReportsByDate(this));
    applyReports({});
}

void AppModel::setUserInfo(UserInfo* userInfo)
{
    if (!userInfo || (m_userInfo && m_userInfo->token() == userInfo->token()))
        return;
    if (m_userInfo)
        m_userInfo->deleteLater();
    m_userInfo = userInfo;
}

ListReading AppModel::readDevices(std::string_view answer, const SnapshotPtr& last, const QString& owner)
{
    return readList(answer, DeviceInfo::layout(), last, owner);
}

ListReading AppModel::readClones(std::string_view answer, const SnapshotPtr& last, const QString& owner)
{
    return readList(answer, CloneInfo::layout(), last, owner);
}

void AppModel::applyDevices(const Difference& difference)
{
    m_surroundings.readAt = QDateTime::currentSecsSinceEpoch();
    const RecordModel::Outcome outcome = m_devices.refresh(difference);
    m_devices.visitObjects([](ListRecord* device, const Record& record) { device->assign(record); });
    if (outcome.list)
        emit deviceListChanged();
}

void AppModel::applyClones(const Difference& difference)
{
    const int totalBefore = totalFilteredClones();
    const RecordModel::Outcome outcome = m_clones.refresh(difference);
    countClones();
    announceClones(outcome, totalBefore);
}

void AppModel::countClones()
{
    if (m_surroundings.clones == m_clones.snapshot())
        return;
    m_surroundings.clones = m_clones.snapshot();
    m_devices.visitObjects(
        [](ListRecord* device, const Record&) { static_cast<DeviceInfo*>(device)->countClones(); });
}

void AppModel::announceClones(RecordModel::Outcome outcome, int totalBefore)
{
    if (outcome.list)
        emit cloneListChanged();
    if (outcome.shown)
        emit filteredCloneListChanged();
    if (totalBefore != totalFilteredClones())
        emit totalFilteredClonesChanged();
}

void AppModel::filterClones(const QVariantMap& filters)
{
    if (filters == m_filters)
        return;
    m_filters = filters;
    const int totalBefore = totalFilteredClones();
    const auto filter = std::make_shared<const CloneFilter>(filters);
    announceClones(m_clones.setFilter([filter](const Record& clone) { return filter->passes(clone); }),
                   totalBefore);
}

void AppModel::selectAllClones(bool selected)
{
    m_clones.tickShown(selected);
}

QString AppModel::selectedUids() const
{
    static const int slot = CloneInfo::layout().slot("uid");
    QString uids;
    for (const int row : m_clones.tickedRows())
        uids += m_clones.record(row).text(slot) + QLatin1Char('\n');
    return uids;
}

QStringList AppModel::selectedCloneIds() const
{
    QStringList ids;
    for (const int row : m_clones.tickedRows())
        ids.append(m_clones.record(row).text(0));
    return ids;
}

void AppModel::setGlobalConfig(std::unique_ptr<GlobalConfig> globalConfig)
{
    GlobalConfig* const before = m_globalConfig;
    m_globalConfig = globalConfig.release();
    if (m_globalConfig)
        m_globalConfig->setParent(this);
    emit globalConfigChanged();
    if (before)
        before->deleteLater();
}

QJsonArray AppModel::reportDates(const QDate& today)
{
    QJsonArray dates;
    for (int i = 0; i < kReportDays; ++i)
        dates.append(ReportsByDate::dateText(today.addDays(-i)));
    return dates;
}

void AppModel::applyReports(const ReportDays& days, const QDate& today)
{
    for (int i = 0; i < kReportDays; ++i) {
        const QString date = ReportsByDate::dateText(today.addDays(-i));
        static_cast<ReportsByDate*>(m_reportList[i])->assign(date, days.value(date));
    }
    emit reportListChanged();
}

void AppModel::clearFarm()
{
    const auto none = std::make_shared<const Snapshot>();
    if (m_devices.replace(none).list)
        emit deviceListChanged();
    const int totalBefore = totalFilteredClones();
    const RecordModel::Outcome outcome = m_clones.replace(none);
    countClones();
    announceClones(outcome, totalBefore);
    applyReports({});
    setGlobalConfig(nullptr);
}
