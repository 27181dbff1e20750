#pragma once

#include "models/Snapshot.h"

#include <QSet>
#include <QVariantMap>

#include <optional>

/// Which clones an operator wants to see. A clone passes when each field that is constrained holds one of the
/// accepted values.
class CloneFilter
{
public:
    /// @p filters holds lists of accepted values under "uid", "device_id", "status" (numbers) and
    /// "farm_profile". An empty or missing list constrains nothing; other keys are ignored.
    explicit CloneFilter(const QVariantMap& filters);

    bool passes(const Record& clone) const;

private:
    std::optional<QSet<QByteArray>> m_uids;
    std::optional<QSet<QByteArray>> m_deviceIds;
    std::optional<QSet<qint64>> m_statuses;
    std::optional<QSet<QByteArray>> m_farmProfiles;
};
