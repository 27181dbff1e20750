#include "models/ListRecord.h"

#include "models/RecordModel.h"

void ListRecord::setSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    if (m_model && m_row >= 0)
        m_model->setTicked(m_row, selected);
    emit selectedChanged();
}

void ListRecord::setFiltered(bool filtered)
{
    if (m_filtered == filtered)
        return;
    m_filtered = filtered;
    emit filteredChanged();
}

void ListRecord::setPlace(int place)
{
    if (m_place == place)
        return;
    m_place = place;
    emit placeChanged();
}

void ListRecord::keepFor(QObject* user)
{
    ++m_users;
    connect(user, &QObject::destroyed, this, [this] { --m_users; });
}
