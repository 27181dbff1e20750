#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace devservice {

/// What the service answers.
struct Answer {
    int status = 200;
    QByteArray type = QByteArrayLiteral("application/json");
    QByteArray body;
    /// The body compressed; empty where that does not pay.
    QByteArray gzip = QByteArray();
    /// Rate at which it is sent; 0 for no limit.
    int bytesPerSecond = 0;
};

/// {"code":200,"success":true,"message":"","data":...}
Answer done(const QJsonValue& data = QJsonObject());

/// {"code":status,"success":false,"message":...,"data":{}}
Answer refused(int status, const QString& message);

} // namespace devservice
