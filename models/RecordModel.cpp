#include "models/RecordModel.h"

#include <algorithm>

namespace {

/// With more ranges than these, showing the rows anew is faster than telling the views of each.
constexpr int kMostRanges = 2400;
/// So many are made before the model looks for those that nobody needs any more.
constexpr int kObjectsBetweenLooks = 512;

} // namespace

RecordModel::RecordModel(Make make, QObject* parent)
    : QAbstractListModel(parent), m_make(std::move(make)), m_snapshot(std::make_shared<Snapshot>())
{
}

int RecordModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid())
        return 0;
    return m_walking ? m_newEnd + static_cast<int>(m_oldRows.size()) - m_oldFrom
                     : static_cast<int>(m_rows.size());
}

QHash<int, QByteArray> RecordModel::roleNames() const
{
    return {{Qt::UserRole, "modelData"}};
}

QVariant RecordModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::UserRole || !index.isValid() || index.row() >= rowCount())
        return {};
    const int row = index.row();
    ListRecord* found = nullptr;
    if (!m_walking || row < m_newEnd) {
        found = object(m_rows[static_cast<std::size_t>(row)]);
    } else {
        const int oldRow =
            m_oldRows.at(static_cast<std::size_t>(row - m_newEnd) + static_cast<std::size_t>(m_oldFrom));
        const int now = newRow(oldRow);
        found = now >= 0 ? object(now) : goneObject(oldRow);
    }
    return QVariant::fromValue<QObject*>(found);
}

// Objects

ListRecord* RecordModel::makeObject(int row, const Record& record) const
{
    // A const read makes a child, as a cache is filled.
    ListRecord* const made = m_make(const_cast<RecordModel*>(this));
    made->assign(record);
    made->m_row = row;
    return made;
}

ListRecord* RecordModel::object(int row) const
{
    ListRecord*& object = m_objects[row];
    if (!object) {
        object = makeObject(row, record(row));
        object->m_place = row;
        object->m_selected = isTicked(row);
        object->m_filtered = m_marks[static_cast<std::size_t>(row)] & Shown;
        object->m_model = const_cast<RecordModel*>(this);
        // Not at once: whoever asks holds what was asked for before.
        if (++m_made == kObjectsBetweenLooks)
            QMetaObject::invokeMethod(
                object->m_model, [model = object->m_model] { model->dropUnused(); }, Qt::QueuedConnection);
    }
    object->m_fresh = true;
    return object;
}

/// A view may ask for a row that is about to be taken away.
ListRecord* RecordModel::goneObject(int oldRow) const
{
    ListRecord*& object = m_gone[oldRow];
    if (!object)
        object = makeObject(-1, *m_difference->before->records[static_cast<std::size_t>(oldRow)]);
    return object;
}

void RecordModel::dropGone()
{
    // In the order in which they were made, in which a parent finds each child at once.
    const QObjectList all = children();
    for (QObject* child : all) {
        const auto* const object = qobject_cast<ListRecord*>(child);
        if (object && object->m_row < 0 && object->m_users == 0)
            child->deleteLater();
    }
}

void RecordModel::dropUnused()
{
    m_made = 0;
    if (m_listRead)
        return;
    const auto objects = m_objects;
    for (ListRecord* object : objects) {
        if (object->m_users == 0 && !std::exchange(object->m_fresh, false)) {
            m_objects.remove(object->m_row);
            object->m_row = -1;
        }
    }
    dropGone();
}

QList<QObject*> RecordModel::listOf(const std::vector<int>& rows) const
{
    QList<QObject*> list;
    list.reserve(static_cast<int>(rows.size()));
    for (const int row : rows)
        list.append(object(row));
    return list;
}

QList<QObject*> RecordModel::objects()
{
    m_listRead = true;
    std::vector<int> rows(m_snapshot->records.size());
    std::generate(rows.begin(), rows.end(), [row = 0]() mutable { return row++; });
    return listOf(rows);
}

QList<QObject*> RecordModel::shownObjects()
{
    m_listRead = true;
    return listOf(m_rows);
}

void RecordModel::visitObjects(const std::function<void(ListRecord*, const Record&)>& visit) const
{
    // What hears of a change may ask for a row that has no object yet.
    const auto objects = m_objects;
    for (auto it = objects.cbegin(); it != objects.cend(); ++it)
        visit(it.value(), record(it.key()));
}

int RecordModel::rowOf(ListRecord* object) const
{
    if (!object || object->m_row < 0)
        return -1;
    const auto row = std::lower_bound(m_rows.begin(), m_rows.end(), object->m_row);
    return row != m_rows.end() && *row == object->m_row ? static_cast<int>(row - m_rows.begin()) : -1;
}

// Ticks

void RecordModel::setTicked(int row, bool ticked)
{
    quint8& mark = m_marks[static_cast<std::size_t>(row)];
    if (bool(mark & Ticked) == ticked)
        return;
    mark ^= Ticked;
    const int step = ticked ? 1 : -1;
    m_ticked += step;
    if (!(mark & Shown))
        m_tickedHidden += step;
    if (ListRecord* const object = m_objects.value(row))
        object->setSelected(ticked);
    emit ticksChanged();
}

void RecordModel::tickShown(bool ticked)
{
    for (quint8& mark : m_marks) {
        if (mark & Shown)
            mark = ticked ? Shown | Ticked : Shown;
    }
    tellObjects();
}

/// Counts the ticks, and gives the objects their places and marks.
void RecordModel::tellObjects()
{
    const auto count = [this](quint8 mark) {
        return static_cast<int>(std::count(m_marks.begin(), m_marks.end(), mark));
    };
    const int hidden = count(Ticked);
    const int all = hidden + count(Ticked | Shown);
    const bool changed = std::exchange(m_ticked, all) != all || m_tickedHidden != hidden;
    m_tickedHidden = hidden;
    const auto objects = m_objects;
    for (ListRecord* object : objects) {
        object->setPlace(object->m_row);
        object->setFiltered(m_marks[static_cast<std::size_t>(object->m_row)] & Shown);
        object->setSelected(isTicked(object->m_row));
    }
    if (changed)
        emit ticksChanged();
}

// Refreshes and filters

RecordModel::Outcome RecordModel::replace(SnapshotPtr snapshot)
{
    Difference whole;
    whole.before = m_snapshot;
    whole.oldRows.assign(snapshot->records.size(), -1);
    whole.newRows.assign(m_snapshot->records.size(), -1);
    whole.after = std::move(snapshot);
    return refresh(whole);
}

RecordModel::Outcome RecordModel::refresh(const Difference& difference)
{
    if (difference.after == m_snapshot)
        return {};
    // Somebody has emptied the list since the answer was read.
    if (difference.before != m_snapshot)
        return replace(difference.after);

    emit aboutToRefresh();
    dropGone();
    m_difference = &difference;
    m_snapshot = difference.after;

    const auto& before = difference.before->records;
    const std::vector<quint8> oldMarks = std::exchange(m_marks, {});
    m_marks.reserve(m_snapshot->records.size());
    for (std::size_t row = 0; row < m_snapshot->records.size(); ++row) {
        const auto old = static_cast<std::size_t>(difference.oldRows[row]);
        const bool known = difference.oldRows[row] >= 0;
        const quint8 mark = known ? oldMarks[old] : 0;
        m_marks.push_back(known && before[old] == m_snapshot->records[row] ? mark : marked(row, mark));
    }

    const QHash<int, ListRecord*> objects = std::exchange(m_objects, {});
    std::vector<ListRecord*> changed;
    for (auto it = objects.cbegin(); it != objects.cend(); ++it) {
        ListRecord* const object = it.value();
        object->m_row = newRow(it.key());
        (object->m_row < 0 ? m_gone : m_objects)[object->m_row < 0 ? it.key() : object->m_row] = object;
        if (object->m_row >= 0 && before[static_cast<std::size_t>(it.key())] !=
                                      m_snapshot->records[static_cast<std::size_t>(object->m_row)])
            changed.push_back(object);
    }

    Outcome outcome;
    outcome.list = !difference.sameOrder();
    if (outcome.list)
        m_listRead = false;
    outcome.shown = show(rowsWith(Shown));

    for (ListRecord* object : changed)
        object->assign(record(object->m_row));
    tellObjects();
    emit refreshed();
    m_gone.clear();
    m_oldRows.clear();
    m_difference = nullptr;
    return outcome;
}

RecordModel::Outcome RecordModel::setFilter(Filter filter)
{
    m_filter = std::move(filter);
    for (std::size_t row = 0; row < m_marks.size(); ++row)
        m_marks[row] = marked(row, m_marks[row]);
    Outcome outcome;
    outcome.shown = show(rowsWith(Shown));
    m_oldRows.clear();
    tellObjects();
    return outcome;
}

/// What a row is marked with once the filter has seen it; the tick is that of @p before.
quint8 RecordModel::marked(std::size_t row, quint8 before) const
{
    const bool passes = !m_filter || m_filter(*m_snapshot->records[row]);
    return (before & Ticked) | (passes ? Shown : 0);
}

std::vector<int> RecordModel::rowsWith(Mark mark) const
{
    std::vector<int> rows;
    rows.reserve(m_marks.size());
    for (std::size_t row = 0; row < m_marks.size(); ++row) {
        if (m_marks[row] & mark)
            rows.push_back(static_cast<int>(row));
    }
    rows.shrink_to_fit();
    return rows;
}

int RecordModel::newRow(int oldRow) const
{
    return m_difference ? m_difference->newRows[static_cast<std::size_t>(oldRow)] : oldRow;
}

int RecordModel::rowNow(int row) const
{
    for (auto old = static_cast<std::size_t>(std::max(row, 0)); old < m_oldRows.size(); ++old) {
        const auto now = std::lower_bound(m_rows.begin(), m_rows.end(), newRow(m_oldRows[old]));
        if (now != m_rows.end() && *now == newRow(m_oldRows[old]))
            return static_cast<int>(now - m_rows.begin());
    }
    return -1;
}

/// For each of @p rows, where its record stood in the snapshot before; -1 where it was not, or where it has
/// changed places with others that are shown.
std::vector<int> RecordModel::rowsBefore(const std::vector<int>& rows) const
{
    if (!m_difference)
        return rows;
    std::vector<int> result;
    result.reserve(rows.size());
    for (const int row : rows)
        result.push_back(m_difference->oldRows[static_cast<std::size_t>(row)]);
    if (m_difference->moved.empty())
        return result;
    // What has moved among all need not have moved among those that are shown.
    const bool all =
        rows.size() == m_snapshot->records.size() && m_rows.size() == m_difference->newRows.size();
    if (!all) {
        for (int& row : result)
            row = row >= 0 && std::binary_search(m_rows.begin(), m_rows.end(), row) ? row : -1;
    }
    const std::vector<bool> moved = all ? m_difference->moved : movedRows(result);
    for (std::size_t row = 0; row < moved.size(); ++row)
        result[row] = moved[row] ? -1 : result[row];
    return result;
}

std::vector<RecordModel::Step> RecordModel::steps(const std::vector<int>& rows) const
{
    std::vector<Step> result;
    const int oldCount = static_cast<int>(m_rows.size());
    const int newCount = static_cast<int>(rows.size());
    int old = 0;
    int from = 0;
    int stays = 0;
    const auto add = [&](int oldTo, int newTo) {
        if (oldTo > old || newTo > from)
            result.push_back({old, oldTo, from, newTo});
    };
    const std::vector<int> oldRows = rowsBefore(rows);
    for (int now = 0; now < newCount; ++now) {
        const int oldRow = oldRows[static_cast<std::size_t>(now)];
        if (oldRow < 0)
            continue;
        while (stays < oldCount && m_rows[static_cast<std::size_t>(stays)] < oldRow)
            ++stays;
        if (stays == oldCount || m_rows[static_cast<std::size_t>(stays)] != oldRow)
            continue;
        add(stays, now);
        old = ++stays;
        from = now + 1;
    }
    add(oldCount, newCount);
    return result;
}

/// Takes the views from m_rows to @p rows; whether there was anything to do.
bool RecordModel::show(std::vector<int> rows)
{
    const std::vector<Step> all = steps(rows);
    int ranges = 0;
    for (const Step& step : all)
        ranges += (step.oldTo > step.oldFrom) + (step.newTo > step.newFrom);
    if (ranges > kMostRanges) {
        beginResetModel();
        m_oldRows = std::exchange(m_rows, std::move(rows));
        endResetModel();
        return true;
    }

    m_oldRows = std::exchange(m_rows, std::move(rows));
    m_walking = true;
    for (const Step& step : all) {
        m_newEnd = step.newFrom;
        m_oldFrom = step.oldFrom;
        if (step.oldTo > step.oldFrom) {
            beginRemoveRows({}, m_newEnd, m_newEnd + step.oldTo - step.oldFrom - 1);
            m_oldFrom = step.oldTo;
            endRemoveRows();
        }
        if (step.newTo > step.newFrom) {
            beginInsertRows({}, m_newEnd, step.newTo - 1);
            m_newEnd = step.newTo;
            endInsertRows();
        }
    }
    m_walking = false;
    return ranges > 0;
}
