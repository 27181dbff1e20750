#include "devservice/MemberChecks.h"

#include <algorithm>
#include <cmath>

namespace devservice {
namespace {

constexpr int badRequest = 400;

QString typeName(QJsonValue::Type type)
{
    switch (type) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("a boolean");
    case QJsonValue::Double:
        return QStringLiteral("a number");
    case QJsonValue::String:
        return QStringLiteral("a string");
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("nothing");
}

} // namespace

void requireMembers(const QJsonObject& object, const QString& where, const std::vector<Member>& members)
{
    for (const Member& member : members) {
        const QJsonValue value = object.value(member.name);
        if (value.isUndefined() && member.optional) {
            continue;
        }
        if (value.isUndefined()) {
            throw Refusal{badRequest, QStringLiteral("%1: \"%2\" is missing").arg(where, member.name)};
        }
        if (value.type() != member.type) {
            throw Refusal{badRequest,
                          QStringLiteral("%1: \"%2\" is %3 and must be %4")
                              .arg(where, member.name, typeName(value.type()), typeName(member.type))};
        }
    }
    for (auto it = object.begin(); it != object.end(); ++it) {
        const auto isIt = [&it](const Member& member) { return member.name == it.key(); };
        if (std::none_of(members.begin(), members.end(), isIt)) {
            throw Refusal{badRequest, QStringLiteral("%1: unexpected \"%2\"").arg(where, it.key())};
        }
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

QStringList requireIds(const QJsonArray& array)
{
    QStringList ids;
    ids.reserve(array.size());
    for (const QJsonValue value : array) {
        requireMembers(value.toObject(), QStringLiteral("an entry of clones"),
                       {{QStringLiteral("id"), QJsonValue::String}});
        ids.append(value.toObject().value(QStringLiteral("id")).toString());
    }
    return ids;
}

} // namespace devservice
