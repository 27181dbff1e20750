#pragma once

#include "models/Property.h"

#include <QJsonObject>
#include <QString>

/// What an operator may set on a device.
class DeviceConfig : public QObject
{
    Q_OBJECT
    /// Index of the choice: 0 wifi, 1 cellular.
    NOTIFYING_PROPERTY(int, connectivityType, setConnectivityType);
    NOTIFYING_PROPERTY(QString, deviceLabel, setDeviceLabel);

public:
    /// Where the service keeps it in a device's record.
    static constexpr char key[] = "device_config";
    static constexpr char connectivityTypeKey[] = "connectivity_type";
    static constexpr char deviceLabelKey[] = "device_label";

    using QObject::QObject;

    /// The form in which the service stores it.
    QJsonObject toJson() const;
};
