#pragma once

#include <QJsonDocument>
#include <QString>

/// The service's answer to one request.
struct ApiResponse {
    /// Low 8 bits of the HTTP status, or of the answer's own code where it names one.
    quint8 code = 0;
    /// False unless the service said true.
    bool success = false;
    /// The service's message, or why there is no answer.
    QString message;
    /// The answer's array or object; null for anything else.
    QJsonDocument data;
};
