#include "models/CloneFilter.h"

#include "models/CloneInfo.h"

namespace {

std::optional<QSet<QByteArray>> texts(const QVariant& list)
{
    const QVariantList values = list.toList();
    if (values.isEmpty())
        return std::nullopt;
    QSet<QByteArray> set;
    set.reserve(values.size());
    for (const QVariant& value : values)
        set.insert(value.toString().toUtf8());
    return set;
}

// JavaScript passes numbers as int or double. A value that is no whole int, which toInt() would round,
// matches nothing; the list constrains all the same.
std::optional<QSet<qint64>> integers(const QVariant& list)
{
    const QVariantList values = list.toList();
    if (values.isEmpty())
        return std::nullopt;
    QSet<qint64> set;
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

bool CloneFilter::passes(const Record& clone) const
{
    static const RecordLayout& layout = CloneInfo::layout();
    static const int uid = layout.slot("uid");
    static const int deviceId = layout.slot("device_id");
    static const int status = layout.slot("status");
    static const int farmProfile = layout.slot("farm_profile");
    return accepts(m_statuses, clone.number(status)) && accepts(m_deviceIds, clone.bytes(deviceId)) &&
           accepts(m_farmProfiles, clone.bytes(farmProfile)) && accepts(m_uids, clone.bytes(uid));
}
