#include "models/AppModel.h"

#include "models/CloneFilter.h"

namespace {

constexpr int kReportDays = 10;

} // namespace

AppModel* AppModel::instance()
{
    static auto* const model = new AppModel; // lives as long as the process
    return model;
}

AppModel::AppModel(QObject* parent) : QObject(parent)
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

void AppModel::setDevices(const QVariantList& records)
{
    Published<DeviceInfo> list;
    list.holder = new QObject(this);
    for (const QVariant& record : records) {
        if (record.type() != QVariant::Map)
            continue;
        auto* device = new DeviceInfo(record.toMap(), list.holder);
        list.records.append(device);
        list.objects.append(device);
    }
    std::swap(m_devices, list);
    refreshCloneCounts();
    emit deviceListChanged();
    if (list.holder)
        list.holder->deleteLater();
}

void AppModel::setClones(const QVariantList& records)
{
    Published<CloneInfo> list;
    list.holder = new QObject(this);
    for (const QVariant& record : records) {
        if (record.type() != QVariant::Map)
            continue;
        auto* clone = new CloneInfo(record.toMap(), list.records.size(), list.holder);
        list.records.append(clone);
        list.objects.append(clone);
    }
    const int totalBefore = totalFilteredClones();
    std::swap(m_clones, list);
    m_filteredClones = m_clones.objects;
    refreshCloneCounts();
    emit cloneListChanged();
    // Whoever heard that may have filtered the new clones already, which was announced then.
    if (m_filteredClones.size() == m_clones.objects.size()) {
        emit filteredCloneListChanged();
        if (totalBefore != totalFilteredClones())
            emit totalFilteredClonesChanged();
    }
    if (list.holder)
        list.holder->deleteLater();
}

void AppModel::refreshCloneCounts()
{
    QHash<QString, int> counts;
    for (const CloneInfo* clone : qAsConst(m_clones.records))
        ++counts[clone->deviceId()];
    for (DeviceInfo* device : qAsConst(m_devices.records))
        device->setCloneCount(counts.value(device->androidId()));
}

void AppModel::filterClones(const QVariantMap& filters)
{
    const CloneFilter filter(filters);
    QList<QObject*> passing;
    for (CloneInfo* clone : qAsConst(m_clones.records)) {
        clone->setFiltered(filter.passes(*clone));
        if (clone->filtered())
            passing.append(clone);
    }
    if (passing == m_filteredClones)
        return;
    // Shared while nothing is filtered, so that a view need not tell two lists apart.
    if (passing.size() == m_clones.objects.size())
        passing = m_clones.objects;
    const int totalBefore = totalFilteredClones();
    m_filteredClones.swap(passing);
    emit filteredCloneListChanged();
    if (totalBefore != totalFilteredClones())
        emit totalFilteredClonesChanged();
}

void AppModel::selectAllClones(bool selected)
{
    for (CloneInfo* clone : qAsConst(m_clones.records)) {
        if (clone->filtered())
            clone->setSelected(selected);
    }
}

QString AppModel::selectedUids() const
{
    QString uids;
    for (const CloneInfo* clone : m_clones.records) {
        if (clone->selected())
            uids += clone->uid() + QLatin1Char('\n');
    }
    return uids;
}

QStringList AppModel::selectedCloneIds() const
{
    QStringList ids;
    for (const CloneInfo* clone : m_clones.records) {
        if (clone->selected())
            ids.append(clone->id());
    }
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
    setDevices({});
    setClones({});
    applyReports({});
    setGlobalConfig(nullptr);
}
