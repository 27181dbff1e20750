#include "models/CloneFilter.h"

#include "models/CloneInfo.h"

namespace {

std::optional<QSet<QString>> texts(const QVariant& list)
{
    const QVariantList values = list.toList();
    if (values.isEmpty())
        return std::nullopt;
    QSet<QString> set;
    set.reserve(values.size());
    for (const QVariant& value : values)
        set.insert(value.toString());
    return set;
}

// JavaScript passes numbers as int or double. A value that is no whole int, which toInt() would round,
// matches nothing; the list constrains all the same.
std::optional<QSet<int>> integers(const QVariant& list)
{
    const QVariantList values = list.toList();
    if (values.isEmpty())
        return std::nullopt;
    QSet<int> set;
    for (const QVariant& value : values) {
        bool isNumber = false;
        const int integer = value.toInt(&isNumber);
        if (isNumber && QVariant(integer) == value)
            set.insert(integer);
    }
    return set;
}

template <class T>
bool accepts(const std::optional<QSet<T>>& accepted, const T& value)
{
    return !accepted || accepted->contains(value);
}

} // namespace

CloneFilter::CloneFilter(const QVariantMap& filters)
    : m_uids(texts(filters.value(QStringLiteral("uid")))),
      m_deviceIds(texts(filters.value(QStringLiteral("device_id")))),
      m_statuses(integers(filters.value(QStringLiteral("status")))),
      m_farmProfiles(texts(filters.value(QStringLiteral("farm_profile"))))
{
}

bool CloneFilter::passes(const CloneInfo& clone) const
{
    return accepts(m_statuses, clone.status()) && accepts(m_deviceIds, clone.deviceId()) &&
           accepts(m_farmProfiles, clone.farmProfile()) && accepts(m_uids, clone.uid());
}
