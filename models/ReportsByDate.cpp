#include "models/ReportsByDate.h"

void ReportsByDate::assign(const QString& date, const DayReport& report)
{
    const bool newDate = m_date != date;
    const bool newData = m_data != report.data;
    const bool newDetails = m_details != report.details;
    m_date = date;
    m_data = report.data;
    m_details = report.details;
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

ReportDays ReportsByDate::readDays(const QJsonObject& answer)
{
    ReportDays days;
    for (auto it = answer.begin(); it != answer.end(); ++it) {
        const QJsonObject day = it.value().toObject();
        days.insert(it.key(), {day.value(QLatin1String("total")).toObject().toVariantMap(),
                               day.value(QLatin1String("device_details")).toObject().toVariantMap()});
    }
    return days;
}
