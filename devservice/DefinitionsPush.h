#pragma once

#include <QByteArray>
#include <QString>

namespace devservice {

class Exchange;

/// Where a definitions push goes.
constexpr char definitionsPushPath[] = "/api/v1/definitions/push";

/// What a definitions push brought.
struct DefinitionsPush {
    QString token;
    /// True for a whole form of the field "version" and the file "definitions".
    bool isValid = false;
    QByteArray version;
    QString fileName;
    qint64 size = 0;
    QByteArray sha256;
};

/// Reads the body of the request to its end, without keeping the file in memory.
DefinitionsPush readPush(Exchange& exchange);

} // namespace devservice
