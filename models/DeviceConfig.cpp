#include "models/DeviceConfig.h"

#include "models/Json.h"

namespace {

const QString kConnectivityType = QStringLiteral("connectivity_type");
const QString kDeviceLabel = QStringLiteral("device_label");

} // namespace

void DeviceConfig::fromJson(const QVariantMap& record)
{
    static const json::Fields<DeviceConfig> fields{
        {kConnectivityType, json::readInteger<&DeviceConfig::setConnectivityType>},
        {kDeviceLabel, json::readText<&DeviceConfig::setDeviceLabel>},
    };
    json::readFields(record, fields, this);
}

QJsonObject DeviceConfig::toJson() const
{
    return {{kConnectivityType, connectivityType()}, {kDeviceLabel, deviceLabel()}};
}
