#pragma once

#include <QJsonValue>
#include <QString>

namespace devservice {

/// Why a request is turned down; thrown by the checks and answered as an envelope.
struct Refusal {
    int status;
    QString message;
};

/// Refuses a value that does not look like @p shape: one of the same type; an object with the same members,
/// and with those whose names end in "?" or without them; an array of entries that look like the first one of
/// the shape. An empty object stands for any object. @p where names the value in the message.
void requireShape(const QJsonValue& value, const QJsonValue& shape, const QString& where);

/// The value as a whole number from @p lowest to @p highest; refuses anything else.
int requireInteger(const QJsonValue& value, const QString& where, int lowest, int highest);

/// The value as a text with at least one character; refuses anything else.
QString requireText(const QJsonValue& value, const QString& where);

} // namespace devservice
