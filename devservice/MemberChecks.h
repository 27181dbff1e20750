#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

namespace devservice {

/// Why a request is turned down; thrown by the checks and answered as an envelope.
struct Refusal {
    int status;
    QString message;
};

/// A member that an object must have, or may have.
struct Member {
    QString name;
    QJsonValue::Type type;
    bool optional = false;
};

/// Refuses an object that lacks one of @p members, has another one, or one of another type. @p where names
/// the object in the message.
void requireMembers(const QJsonObject& object, const QString& where, const std::vector<Member>& members);

/// The value as a whole number from @p lowest to @p highest; refuses anything else.
int requireInteger(const QJsonValue& value, const QString& where, int lowest, int highest);

/// The value as a text with at least one character; refuses anything else.
QString requireText(const QJsonValue& value, const QString& where);

/// The ids of an array of {"id": text}; refuses anything else.
QStringList requireIds(const QJsonArray& array);

} // namespace devservice
