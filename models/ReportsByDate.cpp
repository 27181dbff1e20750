#include "models/ReportsByDate.h"

ReportsByDate::ReportsByDate(QObject* parent) : QObject(parent) {}

void ReportsByDate::assign(const QString& date, const QVariantMap& data, const QVariantMap& details)
{
    const bool newDate = m_date != date;
    const bool newData = m_data != data;
    const bool newDetails = m_details != details;
    m_date = date;
    m_data = data;
    m_details = details;
    if (newDate)
        emit dateChanged();
    if (newData)
        emit dataChanged();
    if (newDetails)
        emit detailsChanged();
}

QString ReportsByDate::dateText(const QDate& date)
{
    return date.toString(QStringLiteral("yyyy-M-d"));
}
