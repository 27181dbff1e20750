#pragma once

#include "api/ApiResponse.h"
#include "api/RawAnswer.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

#include <memory>
#include <string_view>

namespace toolkit {
class HttpClient;
class HttpResponse;
enum class Exchange;
} // namespace toolkit

/// Where the service lives, how one JSON request is made, and how a file is fetched. Set up once; afterwards
/// the requests may run on several threads at once.
class APIBase : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Origin of the service: scheme, host and, if need be, port; no trailing slash.
    void setBaseUrl(const QString& baseUrl) { m_baseUrl = baseUrl; }
    const QString& baseUrl() const { return m_baseUrl; }
    /// A PEM file that is then the only trust anchor; empty means the system's store.
    void setTrustAnchors(const QString& pemFile) { m_trustAnchors = pemFile; }

    /// POSTs @p params as compact JSON to the base URL followed by @p path. Blocks; never throws, never
    /// retries a write. The caller puts every member into @p params, the token included.
    ApiResponse sendPostRequest(const QString& path, const QJsonObject& params,
                                toolkit::Exchange exchange) const;

    /// The same, without a look into the answer: @p answer receives it where there is one.
    /// @return the HTTP status and, without an answer, why there is none
    ApiResponse sendRawRequest(const QString& path, const QJsonObject& params, toolkit::Exchange exchange,
                               RawAnswer* answer) const;

    /// GETs @p url into the file @p outputPath, which appears only when it is complete.
    bool downloadFile(const QString& url, const QString& outputPath) const;

protected:
    /// A fresh client for one request, with this service's trust anchors and time-outs.
    toolkit::HttpClient client() const;
    /// The same with the toolkit's default time-outs: for the definitions push.
    toolkit::HttpClient basicClient() const;
    /// POSTs @p params to @p path of the service; null when there is no complete answer.
    std::unique_ptr<toolkit::HttpResponse> post(toolkit::HttpClient* client, const QString& path,
                                                const QJsonObject& params, toolkit::Exchange exchange) const;
    /// The object that @p text holds; empty for anything else.
    static QJsonObject jsonObject(std::string_view text);

    /// How long a request may take to connect, and how long it may then go without a byte. Tests shorten it.
    int m_timeoutSeconds = 30;

private:
    QString m_baseUrl;
    QString m_trustAnchors;
};
