#include "models/DeviceInfo.h"

namespace {

DeviceInfo* device(ListRecord* record)
{
    return static_cast<DeviceInfo*>(record);
}

template <auto setter>
void text(ListRecord* object, const Record& record, int slot)
{
    (device(object)->*setter)(record.text(slot));
}

} // namespace

DeviceInfo::DeviceInfo(const Surroundings* surroundings, QObject* parent)
    : ListRecord(parent), m_surroundings(surroundings), m_deviceConfig(new DeviceConfig(this))
{
}

const RecordLayout& DeviceInfo::layout()
{
    using L = RecordLayout;
    static const RecordLayout layout({
        {"android_id", L::Text, text<&DeviceInfo::setAndroidId>},
        {"model", L::Text, text<&DeviceInfo::setModel>},
        {"status", L::Integer,
         [](ListRecord* object, const Record& record, int slot) {
             device(object)->setStatus(static_cast<int>(record.number(slot)));
         }},
        {"user_id", L::Text, text<&DeviceInfo::setUserId>},
        {DeviceConfig::key, L::Group, nullptr},
        {DeviceConfig::connectivityTypeKey, L::Integer,
         [](ListRecord* object, const Record& record, int slot) {
             device(object)->deviceConfig()->setConnectivityType(static_cast<int>(record.number(slot)));
         },
         DeviceConfig::key},
        {DeviceConfig::deviceLabelKey, L::Text,
         [](ListRecord* object, const Record& record, int slot) {
             device(object)->deviceConfig()->setDeviceLabel(record.text(slot));
         },
         DeviceConfig::key},
        {"last_getting_job_ts", L::Stamp,
         [](ListRecord* object, const Record& record, int slot) {
             const qint64 timestampMs = record.number(slot);
             device(object)->setLastGettingJobs(
                 timestampMs == L::noStamp ? QString()
                                           : ageText(timestampMs, device(object)->m_surroundings->readAt));
         }},
    });
    return layout;
}

void DeviceInfo::assign(const Record& record)
{
    layout().apply(record, this);
    countClones();
}

void DeviceInfo::countClones()
{
    setCloneCount(m_surroundings->clones->counts.value(androidId().toUtf8()));
}

QString DeviceInfo::ageText(qint64 timestampMs, qint64 nowSecs)
{
    const auto timestampSecs = static_cast<qint64>(static_cast<quint64>(timestampMs) / 1000);
    const qint64 age = nowSecs - timestampSecs;
    const QString minutes = QString::number(age / 60 % 60) + QLatin1String(" minutes ago");
    const qint64 hours = age / 3600;
    return hours == 0 ? minutes : QString::number(hours) + QLatin1String(" hours ") + minutes;
}
