#pragma once

#include "models/Property.h"

#include <QDate>
#include <QString>
#include <QVariantMap>

/// What the farm did on one day.
class ReportsByDate : public QObject
{
    Q_OBJECT
    /// In the form of dateText().
    NOTIFYING_PROPERTY(QString, date, setDate);
    /// Job name to number of jobs done.
    NOTIFYING_PROPERTY(QVariantMap, data, setData);
    /// Device id to a map like data.
    NOTIFYING_PROPERTY(QVariantMap, details, setDetails);

public:
    explicit ReportsByDate(QObject* parent = nullptr);

    /// Sets all three before it announces any, so that no listener sees one day's figures under another date.
    void assign(const QString& date, const QVariantMap& data, const QVariantMap& details);

    /// How the service writes a date: year, month and day without leading zeros, "2024-3-1".
    static QString dateText(const QDate& date);
};
