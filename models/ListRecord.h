#pragma once

#include "models/Snapshot.h"

#include <QObject>

class RecordModel;

/// A record of a long list as the scene sees it: an object that its model makes for a row that is asked for,
/// and gives new values in a refresh. Child of its model. Lives on the UI thread.
class ListRecord : public QObject
{
    Q_OBJECT

public:
    explicit ListRecord(QObject* parent = nullptr) : QObject(parent) {}

    /// Takes over what @p record holds, and announces what differs.
    virtual void assign(const Record& record) = 0;

    /// The tick, which the model keeps.
    bool selected() const { return m_selected; }
    void setSelected(bool selected);
    /// Passes the filter in force.
    bool filtered() const { return m_filtered; }
    void setFiltered(bool filtered);
    /// Where the record stands in the full list, from 0: what a row shows while others are filtered away.
    int place() const { return m_place; }

    /// Keeps the object until @p user is gone, also when the record goes before: what shows it would be left
    /// without. Unused objects are deleted when there are many, and those of records that are gone in the
    /// refresh after.
    Q_INVOKABLE void keepFor(QObject* user);

signals:
    void selectedChanged();
    void filteredChanged();
    void placeChanged();

private:
    friend class RecordModel;

    void setPlace(int place);

    RecordModel* m_model = nullptr;
    /// In the model's snapshot; -1 once the record is gone. The place follows when all rows are known.
    int m_row = -1;
    int m_place = 0;
    int m_users = 0;
    /// Asked for since the model last looked for unused objects.
    bool m_fresh = true;
    bool m_selected = false;
    bool m_filtered = true;
};
