#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace devservice {

/// What the service answers; the body is @p file when that is not empty.
struct Answer {
    int status = 200;
    QByteArray type = QByteArrayLiteral("application/json");
    QByteArray body;
    /// The body compressed; empty where that does not pay.
    QByteArray gzip;
    QString file;
};

/// {"code":200,"success":true,"message":"","data":...}
Answer done(const QJsonValue& data = QJsonObject());

/// {"code":status,"success":false,"message":...,"data":{}}
Answer refused(int status, const QString& message);

} // namespace devservice
