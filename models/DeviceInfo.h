#pragma once

#include "models/DeviceConfig.h"
#include "models/Property.h"

#include <QString>
#include <QVariantMap>

/// One Android device of the farm.
class DeviceInfo : public QObject
{
    Q_OBJECT
    NOTIFYING_PROPERTY(QString, androidId, setAndroidId);
    NOTIFYING_PROPERTY(QString, model, setModel);
    NOTIFYING_PROPERTY(int, status, setStatus);
    NOTIFYING_PROPERTY(QString, userId, setUserId);
    Q_PROPERTY(DeviceConfig* deviceConfig READ deviceConfig NOTIFY deviceConfigChanged)
    NOTIFYING_PROPERTY(bool, selected, setSelected);
    /// How long ago the device last asked for jobs, as of the moment it was read.
    NOTIFYING_PROPERTY(QString, lastGettingJobs, setLastGettingJobs);
    /// How many clones of the model run on this device; kept by AppModel.
    NOTIFYING_PROPERTY(int, cloneCount, setCloneCount);

public:
    /// A device as one element of the service's list describes it; keys that are missing leave the defaults.
    explicit DeviceInfo(const QVariantMap& record, QObject* parent = nullptr);

    /// Never null, and the same object for the whole life of the device.
    DeviceConfig* deviceConfig() const { return m_deviceConfig; }

    /// Words for the time from @p timestampMs (milliseconds since the Unix epoch) to @p nowSecs (seconds
    /// since the epoch): minutes, from one hour on with the hours before them. A time ahead gives negative
    /// numbers.
    static QString ageText(qint64 timestampMs, qint64 nowSecs);

signals:
    void deviceConfigChanged();

private:
    DeviceConfig* m_deviceConfig;
};
