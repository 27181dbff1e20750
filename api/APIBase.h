#pragma once

#include "api/ApiResponse.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

namespace toolkit {
class HttpClient;
enum class Exchange;
} // namespace toolkit

/// Where the service lives and how one JSON request is made. Set up once; afterwards the requests may run on
/// several threads at once.
class APIBase : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Origin of the service: scheme, host and, if need be, port; no trailing slash.
    void setBaseUrl(const QString& baseUrl);
    QString baseUrl() const;
    /// A PEM file that is then the only trust anchor; empty means the system's store.
    void setTrustAnchors(const QString& pemFile);

    /// POSTs @p params as compact JSON to the base URL followed by @p path. Blocks; never throws, never
    /// retries a write. The caller puts every member into @p params, the token included.
    ApiResponse sendPostRequest(const QString& path, const QJsonObject& params,
                                toolkit::Exchange exchange) const;

protected:
    /// Gives a fresh client of one request the trust anchors.
    void trust(toolkit::HttpClient* client) const;
    /// The same with 30 s to connect, 30 s without progress: every request but the definitions push.
    void configure(toolkit::HttpClient* client) const;

private:
    QString m_baseUrl;
    QString m_trustAnchors;
};
