#pragma once

#include "models/Snapshot.h"

#include <QMetaType>

/// What a new answer changes in a list. Records are the same where their ids are; those without an id, or
/// with the same one, are told apart by which of them they are: first, second and so on. Made on a worker,
/// immutable.
struct Difference {
    SnapshotPtr before;
    /// The same as before where the answer was the same.
    SnapshotPtr after;
    /// For each row of after, the record's row in before; -1 where it is new. Empty where after is before.
    std::vector<int> oldRows;
    /// For each row of before, the record's row in after; -1 where it is gone. Empty where after is before.
    std::vector<int> newRows;
    /// The rows of after, as few as can be, whose records have changed places. Empty where none has.
    std::vector<bool> moved;

    bool unchanged() const { return before == after; }
    /// Whether both hold the same records in the same order, be their values the same or not.
    bool sameOrder() const;
};
using DifferencePtr = std::shared_ptr<const Difference>;
Q_DECLARE_METATYPE(DifferencePtr)

/// By row, whether its record has changed places: whether it is not in the longest run of @p oldRows that
/// ascends. Those of -1 have not. Empty where none has.
std::vector<bool> movedRows(const std::vector<int>& oldRows);

/// Collects the records of a new snapshot and finds each in the last one, from which it takes those that are
/// the same in all. One thread.
class SnapshotBuilder
{
public:
    /// @p layout must outlive this. @p last is never null.
    SnapshotBuilder(const RecordLayout& layout, SnapshotPtr last);

    /// Appends a record with these values, one for each slot.
    void add(const std::vector<std::string_view>& texts, const std::vector<qint64>& numbers);
    std::size_t size() const { return m_snapshot.records.size(); }

    /// Hands out what was collected, and with it the difference. Call it once.
    std::shared_ptr<Difference> finish(const AnswerMark& mark);

private:
    int takeOldRow(std::string_view id);
    void indexFrom(std::size_t row);

    const RecordLayout& m_layout;
    SnapshotPtr m_last;
    Snapshot m_snapshot;
    std::vector<int> m_oldRows;
    std::string m_payload;
    /// While both lists have the same ids from the start on, rows need no looking up.
    bool m_inStep = true;
    /// The first row of the last list with an id that nobody has taken, and the next one with the same id.
    QHash<QByteArray, int> m_firstRow;
    std::vector<int> m_nextRow;
};
