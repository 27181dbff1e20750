#include "models/DeviceConfig.h"

QJsonObject DeviceConfig::toJson() const
{
    return {{connectivityTypeKey, connectivityType()}, {deviceLabelKey, deviceLabel()}};
}
