#include "models/DeviceInfo.h"

#include "models/Json.h"

#include <QDateTime>

DeviceInfo::DeviceInfo(const QVariantMap& record, QObject* parent)
    : QObject(parent), m_deviceConfig(new DeviceConfig(this))
{
    static const json::Fields<DeviceInfo> fields{
        {QStringLiteral("android_id"), json::readText<&DeviceInfo::setAndroidId>},
        {QStringLiteral("model"), json::readText<&DeviceInfo::setModel>},
        {QStringLiteral("status"), json::readInteger<&DeviceInfo::setStatus>},
        {QStringLiteral("user_id"), json::readText<&DeviceInfo::setUserId>},
        {QStringLiteral("device_config"),
         [](DeviceInfo* device, const QVariant& value) { device->m_deviceConfig->fromJson(value.toMap()); }},
        {QStringLiteral("last_getting_job_ts"),
         [](DeviceInfo* device, const QVariant& value) {
             device->setLastGettingJobs(ageText(json::integer64(value), QDateTime::currentSecsSinceEpoch()));
         }},
    };
    json::readFields(record, fields, this);
}

QString DeviceInfo::ageText(qint64 timestampMs, qint64 nowSecs)
{
    const auto timestampSecs = static_cast<qint64>(static_cast<quint64>(timestampMs) / 1000);
    const qint64 age = nowSecs - timestampSecs;
    const QString minutes = QString::number(age / 60 % 60) + QLatin1String(" minutes ago");
    const qint64 hours = age / 3600;
    return hours == 0 ? minutes : QString::number(hours) + QLatin1String(" hours ") + minutes;
}
