#pragma once

#include "models/DeviceConfig.h"
#include "models/ListRecord.h"
#include "models/Property.h"

/// One Android device of the farm.
class DeviceInfo : public ListRecord
{
    Q_OBJECT
    NOTIFYING_PROPERTY(QString, androidId, setAndroidId);
    NOTIFYING_PROPERTY(QString, model, setModel);
    NOTIFYING_PROPERTY(int, status, setStatus);
    NOTIFYING_PROPERTY(QString, userId, setUserId);
    Q_PROPERTY(DeviceConfig* deviceConfig READ deviceConfig NOTIFY deviceConfigChanged)
    Q_PROPERTY(bool selected READ selected WRITE setSelected NOTIFY selectedChanged)
    /// How long ago the device last asked for jobs, as of the moment it was read.
    NOTIFYING_PROPERTY(QString, lastGettingJobs, setLastGettingJobs);
    /// How many clones of the model run on this device; kept by AppModel.
    NOTIFYING_PROPERTY(int, cloneCount, setCloneCount);
    Q_PROPERTY(int place READ place NOTIFY placeChanged)

public:
    /// What is the same for all devices of a list, beside their records.
    struct Surroundings {
        /// When the list was read, in seconds since the epoch.
        qint64 readAt = 0;
        SnapshotPtr clones;
    };

    /// @p surroundings is not owned and must outlive the device.
    explicit DeviceInfo(const Surroundings* surroundings, QObject* parent = nullptr);

    /// What a device's record keeps, and under which keys the service sends it.
    static const RecordLayout& layout();
    void assign(const Record& record) override;
    /// Counts the clones anew.
    void countClones();

    /// Never null, and the same object for the whole life of the device.
    DeviceConfig* deviceConfig() const { return m_deviceConfig; }

    /// Words for the time from @p timestampMs (milliseconds since the Unix epoch) to @p nowSecs (seconds
    /// since the epoch): minutes, from one hour on with the hours before them. A time ahead gives negative
    /// numbers.
    static QString ageText(qint64 timestampMs, qint64 nowSecs);

signals:
    void deviceConfigChanged();

private:
    const Surroundings* m_surroundings;
    DeviceConfig* m_deviceConfig;
};
