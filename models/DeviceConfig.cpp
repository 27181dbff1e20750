#include "models/DeviceConfig.h"

#include "models/Json.h"

DeviceConfig::DeviceConfig(QObject* parent) : QObject(parent) {}

void DeviceConfig::read(const QVariantMap& record)
{
    static const json::Fields<DeviceConfig> fields{
        {QStringLiteral("connectivity_type"), json::readInteger<&DeviceConfig::setConnectivityType>},
        {QStringLiteral("device_label"), json::readText<&DeviceConfig::setDeviceLabel>},
    };
    json::readFields(record, fields, this);
}

QJsonObject DeviceConfig::toJson() const
{
    return {{QStringLiteral("connectivity_type"), connectivityType()},
            {QStringLiteral("device_label"), deviceLabel()}};
}
