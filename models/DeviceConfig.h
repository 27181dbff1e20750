#pragma once

#include "models/Property.h"

#include <QJsonObject>
#include <QString>
#include <QVariantMap>

/// What an operator may set on a device.
class DeviceConfig : public QObject
{
    Q_OBJECT
    /// Index of the choice: 0 wifi, 1 cellular.
    NOTIFYING_PROPERTY(int, connectivityType, setConnectivityType);
    NOTIFYING_PROPERTY(QString, deviceLabel, setDeviceLabel);

public:
    using QObject::QObject;

    /// Reads the keys that are present in @p record.
    void fromJson(const QVariantMap& record);
    /// The form in which the service stores it.
    QJsonObject toJson() const;
};
