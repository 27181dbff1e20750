#pragma once

#include <QSet>
#include <QString>
#include <QVariantMap>

#include <optional>

class CloneInfo;

/// Which clones an operator wants to see. A clone passes when each field that is constrained holds one of the
/// accepted values.
class CloneFilter
{
public:
    /// @p filters holds lists of accepted values under "uid", "device_id", "status" (numbers) and
    /// "farm_profile". An empty or missing list constrains nothing; other keys are ignored.
    explicit CloneFilter(const QVariantMap& filters);

    bool passes(const CloneInfo& clone) const;

private:
    std::optional<QSet<QString>> m_uids;
    std::optional<QSet<QString>> m_deviceIds;
    std::optional<QSet<int>> m_statuses;
    std::optional<QSet<QString>> m_farmProfiles;
};
