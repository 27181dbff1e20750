#pragma once

#include "models/Difference.h"
#include "models/ListRecord.h"

#include <QAbstractListModel>

#include <functional>

/// A long list for the scene's views: those records of a snapshot that pass a filter, in the list's order, as
/// objects in the single role "modelData". Objects exist only for rows that somebody asked for. Keeps the
/// ticks, which live as long as their records. Lives on the UI thread.
class RecordModel : public QAbstractListModel
{
    Q_OBJECT
    /// How many records are ticked, and how many of those do not pass the filter.
    Q_PROPERTY(int ticked READ ticked NOTIFY ticksChanged)
    Q_PROPERTY(int tickedHidden READ tickedHidden NOTIFY ticksChanged)

public:
    /// Makes an object for a row, as a child of @p parent.
    using Make = std::function<ListRecord*(QObject* parent)>;
    using Filter = std::function<bool(const Record& record)>;

    explicit RecordModel(Make make, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Never null.
    const SnapshotPtr& snapshot() const { return m_snapshot; }
    const Record& record(int row) const { return *m_snapshot->records[static_cast<std::size_t>(row)]; }
    /// The rows of the snapshot that pass the filter.
    const std::vector<int>& shownRows() const { return m_rows; }

    /// What a refresh or a filter has done to the records, or to those that pass: whether others are there,
    /// or in another order.
    struct Outcome {
        bool list = false;
        bool shown = false;
    };
    /// Shows the snapshot after @p difference.
    Outcome refresh(const Difference& difference);
    /// The same for a snapshot that has nothing in common with the present one.
    Outcome replace(SnapshotPtr snapshot);
    /// Shows the records that @p filter accepts; without one, all.
    Outcome setFilter(Filter filter);

    bool isTicked(int row) const { return m_marks[static_cast<std::size_t>(row)] & Ticked; }
    void setTicked(int row, bool ticked);
    /// Ticks or unticks every record that passes the filter.
    void tickShown(bool ticked);
    /// In the list's order.
    std::vector<int> tickedRows() const { return rowsWith(Ticked); }
    int ticked() const { return m_ticked; }
    int tickedHidden() const { return m_tickedHidden; }

    /// An object for every record of the list, or for every one that passes. All of them stay until others
    /// are in the list.
    QList<QObject*> objects();
    QList<QObject*> shownObjects();
    /// Calls @p visit for every object that there is and whose record is in the list.
    void visitObjects(const std::function<void(ListRecord* object, const Record& record)>& visit) const;

    /// The row of the view in which @p object stands; -1 without one.
    Q_INVOKABLE int rowOf(ListRecord* object) const;
    /// While refreshed() is emitted: where the record stands now that was shown in @p row before; if it is
    /// gone, the next one below that is left; -1 if none is.
    Q_INVOKABLE int rowNow(int row) const;

signals:
    void ticksChanged();
    /// Around a refresh that changes anything, so that a view can keep its place.
    void aboutToRefresh();
    void refreshed();

private:
    enum Mark : quint8 { Ticked = 1, Shown = 2 };
    /// Rows that go and rows that come between two that stay: [oldFrom, oldTo) by [newFrom, newTo).
    struct Step {
        int oldFrom, oldTo, newFrom, newTo;
    };

    ListRecord* object(int row) const;
    ListRecord* goneObject(int oldRow) const;
    ListRecord* makeObject(int row, const Record& record) const;
    QList<QObject*> listOf(const std::vector<int>& rows) const;
    quint8 marked(std::size_t row, quint8 before) const;
    std::vector<int> rowsWith(Mark mark) const;
    int newRow(int oldRow) const;
    std::vector<int> rowsBefore(const std::vector<int>& rows) const;
    std::vector<Step> steps(const std::vector<int>& rows) const;
    bool show(std::vector<int> rows);
    void tellObjects();
    void dropGone();
    void dropUnused();

    Make m_make;
    Filter m_filter;
    SnapshotPtr m_snapshot;
    /// By row of the snapshot.
    std::vector<quint8> m_marks;
    /// By row of the view, the row of the snapshot; ascending.
    std::vector<int> m_rows;
    int m_ticked = 0;
    int m_tickedHidden = 0;

    // While rows go and come. Those of the view below m_newEnd already are in m_rows; those from there on
    // still are the old ones, from m_oldFrom of m_oldRows on.
    const Difference* m_difference = nullptr;
    std::vector<int> m_oldRows;
    int m_newEnd = 0;
    int m_oldFrom = 0;
    bool m_walking = false;

    // Children, made when they are asked for, by row; and those whose records the refresh under way takes
    // away, by the row that they had.
    mutable QHash<int, ListRecord*> m_objects;
    mutable QHash<int, ListRecord*> m_gone;
    mutable int m_made = 0;
    /// Somebody has read a list of objects and may hold them all.
    bool m_listRead = false;
};
