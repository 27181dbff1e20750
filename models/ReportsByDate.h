#pragma once

#include "models/Property.h"

#include <QDate>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QVariantMap>

/// The figures of one day.
struct DayReport {
    /// Job name to number of jobs done.
    QVariantMap data;
    /// Device id to a map like data.
    QVariantMap details;
};

/// The figures by day, in the form of ReportsByDate::dateText().
using ReportDays = QHash<QString, DayReport>;

/// What the farm did on one day.
class ReportsByDate : public QObject
{
    Q_OBJECT
    /// In the form of dateText().
    NOTIFYING_PROPERTY(QString, date, setDate);
    NOTIFYING_PROPERTY(QVariantMap, data, setData);
    NOTIFYING_PROPERTY(QVariantMap, details, setDetails);

public:
    using QObject::QObject;

    /// Sets all three before announcing any, so that no listener sees one day's figures under another date.
    void assign(const QString& date, const DayReport& report);

    /// How the service writes a date: year, month and day without leading zeros, "2024-3-1".
    static QString dateText(const QDate& date);
    /// The days in the service's answer; a day of another shape is empty. Any thread.
    static ReportDays readDays(const QJsonObject& answer);
};
