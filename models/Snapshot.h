#pragma once

#include <QHash>
#include <QSharedData>
#include <QString>

#include <initializer_list>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

class ListRecord;

/// A record of a long list in one piece of memory: its numbers, then its texts in UTF-8, each in its slot
/// (see RecordLayout). Immutable; snapshots share the records that they have in common. Any thread.
class Record : public QSharedData
{
public:
    using Ptr = QExplicitlySharedDataPointer<const Record>;

    /// @p payload as pack() makes it, for that many texts and numbers (255 at most).
    static Ptr make(std::size_t texts, std::size_t numbers, std::string_view payload);
    /// Writes into @p payload, in the place of what it holds, what a record keeps of these.
    static void pack(const std::vector<std::string_view>& texts, const std::vector<qint64>& numbers,
                     std::string* payload);

    std::string_view utf8(int slot) const;
    /// The same as a view, good for as long as the record.
    QByteArray bytes(int slot) const;
    QString text(int slot) const;
    qint64 number(int slot) const;
    std::string_view payload() const;

    static void operator delete(void* memory) { ::operator delete(memory); }

private:
    Record(std::size_t texts, std::size_t numbers)
        : m_texts(static_cast<quint8>(texts)), m_numbers(static_cast<quint8>(numbers))
    {
    }
    static void* operator new(std::size_t size, std::size_t payload)
    {
        return ::operator new(size + payload);
    }
    static void operator delete(void* memory, std::size_t /*payload*/) { ::operator delete(memory); }

    const char* start() const { return reinterpret_cast<const char*>(this + 1); }
    quint32 textEnd(int slot) const;

    quint8 m_texts;
    quint8 m_numbers;
};

/// What is kept of the JSON objects of one list, and where. The first field is the record's id.
class RecordLayout
{
public:
    enum Kind {
        Text,    ///< a string, or a number as its decimal text; empty for anything else
        Integer, ///< a number without its fraction, or a whole decimal number in text, that an int can hold;
                 ///< or 0
        Stamp,   ///< the same in 64 bits; noStamp where the key is missing
        Flag,    ///< 1 only for the JSON value true
        Group    ///< an object whose members are fields too
    };
    static constexpr qint64 noStamp = std::numeric_limits<qint64>::min();

    struct Field {
        std::string_view key;
        Kind kind;
        /// Gives an object what the record holds in a slot. Null for a group.
        void (*apply)(ListRecord* object, const Record& record, int slot);
        /// Key of the object around it; empty for the record itself.
        std::string_view group = {};
        int slot = 0;

        qint64 initial() const { return kind == Stamp ? noStamp : 0; }
    };

    /// Gives out the slots. @p counted names a text field whose values a snapshot counts.
    RecordLayout(std::initializer_list<Field> fields, std::string_view counted = {});

    const std::vector<Field>& fields() const { return m_fields; }
    std::size_t texts() const { return m_texts; }
    std::size_t numbers() const { return m_numbers; }
    /// Null where no field has that key.
    const Field* find(std::string_view key, std::string_view group = {}) const;
    /// The slot of a field that exists.
    int slot(std::string_view key) const { return find(key)->slot; }
    /// Gives @p object what @p record holds, field by field.
    void apply(const Record& record, ListRecord* object) const;
    /// Slot of the counted field; -1 without one.
    int counted() const { return m_counted; }

private:
    std::vector<Field> m_fields;
    std::size_t m_texts = 0;
    std::size_t m_numbers = 0;
    int m_counted = -1;
};

/// Tells two answers apart: their length and a hash of their bytes.
struct AnswerMark {
    std::size_t length = 0;
    quint64 hash = 0;

    /// Of @p bytes, asked for by @p owner (a token).
    static AnswerMark of(std::string_view bytes, const QString& owner);

    bool operator==(const AnswerMark& other) const { return length == other.length && hash == other.hash; }
};

/// What a list held in one answer, in the service's order. Immutable, and shared between threads.
struct Snapshot {
    std::vector<Record::Ptr> records;
    /// How many records have each value of the counted field; the keys lie in the records.
    QHash<QByteArray, int> counts;
    /// Of the answer that it was read from.
    AnswerMark mark;
};
using SnapshotPtr = std::shared_ptr<const Snapshot>;

/// Shares @p snapshot. A large one dies on the thread pool, whoever lets go of it last: freeing 200,000
/// records takes longer than a frame.
SnapshotPtr share(Snapshot&& snapshot);
