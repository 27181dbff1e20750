#include "models/Difference.h"

#include <algorithm>

std::vector<bool> movedRows(const std::vector<int>& oldRows)
{
    int last = -1;
    const bool inOrder = std::all_of(oldRows.begin(), oldRows.end(), [&](int old) {
        return old < 0 || (old > last && ((last = old), true));
    });
    if (inOrder)
        return {};

    // tails[n] is the row that ends the run of n + 1 rows with the lowest end; before[row] stands ahead of it
    // there.
    std::vector<int> tails;
    std::vector<int> before(oldRows.size(), -1);
    for (std::size_t row = 0; row < oldRows.size(); ++row) {
        if (oldRows[row] < 0)
            continue;
        const auto place = std::lower_bound(tails.begin(), tails.end(), oldRows[row], [&](int tail, int old) {
            return oldRows[static_cast<std::size_t>(tail)] < old;
        });
        if (place != tails.begin())
            before[row] = *(place - 1);
        if (place == tails.end())
            tails.push_back(static_cast<int>(row));
        else
            *place = static_cast<int>(row);
    }
    std::vector<bool> moved(oldRows.size());
    for (std::size_t row = 0; row < oldRows.size(); ++row)
        moved[row] = oldRows[row] >= 0;
    for (int row = tails.back(); row >= 0; row = before[static_cast<std::size_t>(row)])
        moved[static_cast<std::size_t>(row)] = false;
    return moved;
}

bool Difference::sameOrder() const
{
    if (unchanged())
        return true;
    const auto isNone = [](int row) { return row < 0; };
    return moved.empty() && oldRows.size() == newRows.size() &&
           std::none_of(oldRows.begin(), oldRows.end(), isNone);
}

SnapshotBuilder::SnapshotBuilder(const RecordLayout& layout, SnapshotPtr last)
    : m_layout(layout), m_last(std::move(last))
{
    m_snapshot.records.reserve(m_last->records.size());
    m_oldRows.reserve(m_last->records.size());
}

void SnapshotBuilder::indexFrom(std::size_t row)
{
    m_inStep = false;
    const auto& records = m_last->records;
    m_nextRow.assign(records.size(), -1);
    m_firstRow.reserve(static_cast<int>(records.size() - row));
    for (std::size_t i = records.size(); i-- > row;) {
        const QByteArray id = records[i]->bytes(0);
        m_nextRow[i] = m_firstRow.value(id, -1);
        m_firstRow.insert(id, static_cast<int>(i));
    }
}

int SnapshotBuilder::takeOldRow(std::string_view id)
{
    const auto& records = m_last->records;
    if (m_inStep) {
        if (size() < records.size() && records[size()]->utf8(0) == id)
            return static_cast<int>(size());
        indexFrom(std::min(size(), records.size()));
    }
    const auto found = m_firstRow.find(QByteArray::fromRawData(id.data(), static_cast<int>(id.size())));
    if (found == m_firstRow.end())
        return -1;
    const int row = *found;
    const int next = m_nextRow[static_cast<std::size_t>(row)];
    if (next < 0)
        m_firstRow.erase(found);
    else
        *found = next;
    return row;
}

void SnapshotBuilder::add(const std::vector<std::string_view>& texts, const std::vector<qint64>& numbers)
{
    const int oldRow = takeOldRow(texts[0]);
    Record::pack(texts, numbers, &m_payload);
    Record::Ptr record;
    if (oldRow >= 0 && m_last->records[static_cast<std::size_t>(oldRow)]->payload() == m_payload)
        record = m_last->records[static_cast<std::size_t>(oldRow)];
    else
        record = Record::make(m_layout.texts(), m_layout.numbers(), m_payload);
    m_snapshot.records.push_back(std::move(record));
    m_oldRows.push_back(oldRow);
}

std::shared_ptr<Difference> SnapshotBuilder::finish(const AnswerMark& mark)
{
    m_snapshot.mark = mark;
    m_snapshot.records.shrink_to_fit();
    if (m_layout.counted() >= 0) {
        for (const Record::Ptr& record : m_snapshot.records)
            ++m_snapshot.counts[record->bytes(m_layout.counted())];
    }
    auto difference = std::make_shared<Difference>();
    difference->newRows.assign(m_last->records.size(), -1);
    for (std::size_t row = 0; row < m_oldRows.size(); ++row) {
        if (m_oldRows[row] >= 0)
            difference->newRows[static_cast<std::size_t>(m_oldRows[row])] = static_cast<int>(row);
    }
    difference->moved = movedRows(m_oldRows);
    difference->oldRows = std::move(m_oldRows);
    difference->before = std::move(m_last);
    difference->after = share(std::move(m_snapshot));
    return difference;
}
