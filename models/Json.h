#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

/// Reads values from the service's JSON. A value of an unexpected kind gives the default; it is never an
/// error.
namespace json {

/// A string as it is, a number as its decimal text; empty for anything else.
QString text(const QVariant& value);
/// A number without its fraction; 0 for anything else or a number that does not fit.
qint64 integer64(const QVariant& value);
int integer(const QVariant& value);

/// What is done with the value of each JSON key of a record.
template <class Record>
using Fields = QHash<QString, void (*)(Record* record, const QVariant& value)>;

template <auto setter, class Record>
void readText(Record* record, const QVariant& value)
{
    (record->*setter)(text(value));
}

template <auto setter, class Record>
void readInteger(Record* record, const QVariant& value)
{
    (record->*setter)(integer(value));
}

/// Fills @p record from the keys of @p object that @p fields knows.
template <class Record>
void readFields(const QVariantMap& object, const Fields<Record>& fields, Record* record)
{
    for (auto it = object.cbegin(); it != object.cend(); ++it) {
        const auto field = fields.constFind(it.key());
        if (field != fields.cend())
            (*field)(record, it.value());
    }
}

} // namespace json
