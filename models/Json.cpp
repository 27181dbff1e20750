#include "models/Json.h"

#include <QLocale>

#include <cmath>
#include <limits>

QString json::text(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::QString:
    case QMetaType::Int:
    case QMetaType::LongLong:
        return value.toString();
    case QMetaType::Double: {
        const double number = value.toDouble();
        // Never "1e+06": a version or an id that came as a number stays readable.
        if (number == std::trunc(number))
            return QString::number(number, 'f', 0);
        return QString::number(number, 'g', QLocale::FloatingPointShortest);
    }
    default:
        return {};
    }
}

qint64 json::integer64(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::Double: {
        constexpr double limit = 9223372036854775808.0; // 2^63, which itself does not fit
        const double number = value.toDouble();
        return number >= -limit && number < limit ? static_cast<qint64>(number) : 0;
    }
    default:
        return 0;
    }
}

int json::integer(const QVariant& value)
{
    const qint64 number = integer64(value);
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(number) : 0;
}
