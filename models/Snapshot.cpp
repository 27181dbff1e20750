#include "models/Snapshot.h"

#include <QThreadPool>

#include <algorithm>
#include <cstring>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

constexpr std::size_t kLargeSnapshot = 1000;
/// After one of this size, free memory is given back to the system.
constexpr std::size_t kHugeSnapshot = 10000;

template <class T>
T readAt(const char* place)
{
    T value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

template <class T>
void append(std::string* bytes, T value)
{
    bytes->append(reinterpret_cast<const char*>(&value), sizeof value);
}

void destroy(const Snapshot* snapshot)
{
    [[maybe_unused]] const bool trim = snapshot->records.size() >= kHugeSnapshot;
    delete snapshot;
#ifdef __GLIBC__
    // What reading the next one took lies between its records, in the heap of whichever worker did it.
    if (trim)
        malloc_trim(0);
#endif
}

} // namespace

Record::Ptr Record::make(std::size_t texts, std::size_t numbers, std::string_view payload)
{
    auto* const record = new (payload.size()) Record(texts, numbers);
    const Ptr owner(record);
    std::memcpy(reinterpret_cast<char*>(record + 1), payload.data(), payload.size());
    return owner;
}

void Record::pack(const std::vector<std::string_view>& texts, const std::vector<qint64>& numbers,
                  std::string* payload)
{
    payload->clear();
    for (const qint64 number : numbers)
        append(payload, number);
    quint32 end = 0;
    for (const std::string_view text : texts)
        append(payload, end += static_cast<quint32>(text.size()));
    for (const std::string_view text : texts)
        payload->append(text);
}

quint32 Record::textEnd(int slot) const
{
    return slot < 0 ? 0
                    : readAt<quint32>(start() + m_numbers * sizeof(qint64) +
                                      static_cast<std::size_t>(slot) * sizeof(quint32));
}

std::string_view Record::utf8(int slot) const
{
    const quint32 from = textEnd(slot - 1);
    const char* const texts = start() + m_numbers * sizeof(qint64) + m_texts * sizeof(quint32);
    return {texts + from, textEnd(slot) - from};
}

QByteArray Record::bytes(int slot) const
{
    const std::string_view text = utf8(slot);
    return QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
}

QString Record::text(int slot) const
{
    const std::string_view bytes = utf8(slot);
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

qint64 Record::number(int slot) const
{
    return readAt<qint64>(start() + static_cast<std::size_t>(slot) * sizeof(qint64));
}

std::string_view Record::payload() const
{
    return {start(), m_numbers * sizeof(qint64) + m_texts * sizeof(quint32) + textEnd(m_texts - 1)};
}

RecordLayout::RecordLayout(std::initializer_list<Field> fields, std::string_view counted) : m_fields(fields)
{
    for (Field& field : m_fields) {
        if (field.kind == Text)
            field.slot = static_cast<int>(m_texts++);
        else if (field.kind != Group)
            field.slot = static_cast<int>(m_numbers++);
    }
    if (!counted.empty())
        m_counted = slot(counted);
}

const RecordLayout::Field* RecordLayout::find(std::string_view key, std::string_view group) const
{
    for (const Field& field : m_fields) {
        if (field.key == key && field.group == group)
            return &field;
    }
    return nullptr;
}

void RecordLayout::apply(const Record& record, ListRecord* object) const
{
    for (const Field& field : m_fields) {
        if (field.apply)
            field.apply(object, record, field.slot);
    }
}

// A hash that is as fast as memory: four sums side by side, 32 bytes a step. Not for keeping secrets.
AnswerMark AnswerMark::of(std::string_view bytes, const QString& owner)
{
    const quint64 seed = qHash(owner);
    constexpr quint64 factor = 0x9e3779b97f4a7c15U;
    quint64 sums[4] = {seed, seed ^ factor, seed + factor, ~seed};
    const auto mix = [](quint64 sum, quint64 word) {
        sum = (sum ^ word) * factor;
        return sum ^ (sum >> 29);
    };
    quint64 words[4];
    std::size_t at = 0;
    for (; at + sizeof words <= bytes.size(); at += sizeof words) {
        std::memcpy(words, bytes.data() + at, sizeof words);
        for (int lane = 0; lane < 4; ++lane)
            sums[lane] = mix(sums[lane], words[lane]);
    }
    std::fill(std::begin(words), std::end(words), 0);
    std::memcpy(words, bytes.data() + at, bytes.size() - at);
    quint64 hash = bytes.size();
    for (int lane = 0; lane < 4; ++lane)
        hash = mix(hash, mix(sums[lane], words[lane]));
    return {bytes.size(), hash};
}

SnapshotPtr share(Snapshot&& snapshot)
{
    return {new Snapshot(std::move(snapshot)), [](const Snapshot* last) {
                if (last->records.size() < kLargeSnapshot)
                    delete last;
                else
                    QThreadPool::globalInstance()->start([last] { destroy(last); });
            }};
}
