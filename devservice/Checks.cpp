#include "devservice/Checks.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <cmath>

namespace devservice {
namespace {

constexpr int badRequest = 400;

void requireMembers(const QJsonObject& object, const QJsonObject& shape, const QString& where)
{
    for (auto it = shape.begin(); it != shape.end(); ++it) {
        const bool optional = it.key().endsWith('?');
        const QString name = optional ? it.key().chopped(1) : it.key();
        if (object.contains(name)) {
            requireShape(object.value(name), it.value(), name);
        } else if (!optional) {
            throw Refusal{badRequest, QStringLiteral("%1: \"%2\" is missing").arg(where, name)};
        }
    }
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (!shape.isEmpty() && !shape.contains(it.key()) && !shape.contains(it.key() + '?')) {
            throw Refusal{badRequest, QStringLiteral("%1: unexpected \"%2\"").arg(where, it.key())};
        }
    }
}

} // namespace

void requireShape(const QJsonValue& value, const QJsonValue& shape, const QString& where)
{
    static const QStringList types{"null", "a boolean", "a number", "a string", "an array", "an object"};
    if (value.type() != shape.type()) {
        throw Refusal{badRequest, QStringLiteral("%1 is %2 and must be %3")
                                      .arg(where, types.value(value.type()), types.value(shape.type()))};
    }
    requireMembers(value.toObject(), shape.toObject(), where);
    const QJsonArray entries = value.toArray();
    for (const QJsonValue& entry : entries) {
        requireShape(entry, shape[0], "an entry of " + where);
    }
}

int requireInteger(const QJsonValue& value, const QString& where, int lowest, int highest)
{
    const double number = value.toDouble(std::nan(""));
    if (!(number >= lowest && number <= highest) || std::floor(number) != number) {
        throw Refusal{
            badRequest,
            QStringLiteral("%1 must be a whole number from %2 to %3").arg(where).arg(lowest).arg(highest)};
    }
    return static_cast<int>(number);
}

QString requireText(const QJsonValue& value, const QString& where)
{
    if (value.toString().isEmpty()) {
        throw Refusal{badRequest, QStringLiteral("%1 must be a text that is not empty").arg(where)};
    }
    return value.toString();
}

} // namespace devservice
