#include "api/APIBase.h"

#include "api/NativePath.h"
#include "logging/Log.h"
#include "toolkit/HttpClient.h"

#include <QJsonArray>

namespace {

/// Reads the service's envelope; without a "code" the HTTP status stays.
void readEnvelope(const QJsonObject& envelope, ApiResponse* response)
{
    if (envelope.contains(QLatin1String("code")))
        response->code = static_cast<quint8>(envelope.value(QLatin1String("code")).toInt() & 0xff);
    response->success = envelope.value(QLatin1String("success")).toBool();
    response->message = envelope.value(QLatin1String("message")).toString();

    const QJsonValue data = envelope.value(QLatin1String("data"));
    if (data.isArray())
        response->data = QJsonDocument(data.toArray());
    else if (data.isObject())
        response->data = QJsonDocument(data.toObject());
}

// Under the name that these lines have in the log's form.
void logRequest(const QString& url, const QJsonObject& params)
{
    constexpr char operation[] = "sendPostRequest";
    logLine(operation, __LINE__) << "url: " << url;
    logLine(operation, __LINE__) << "params: " << params;
}

} // namespace

toolkit::HttpClient APIBase::basicClient() const
{
    toolkit::HttpClient client;
    client.SetTrustAnchors(nativePath(m_trustAnchors));
    return client;
}

toolkit::HttpClient APIBase::client() const
{
    toolkit::HttpClient client = basicClient();
    client.SetConnectTimeout(m_timeoutSeconds);
    client.SetReadTimeout(m_timeoutSeconds);
    return client;
}

std::unique_ptr<toolkit::HttpResponse> APIBase::post(toolkit::HttpClient* client, const QString& path,
                                                     const QJsonObject& params,
                                                     toolkit::Exchange exchange) const
{
    client->SetRequestHeader("Content-Type", "application/json");
    const QByteArray body = QJsonDocument(params).toJson(QJsonDocument::Compact);
    return client->PostJson((m_baseUrl + path).toStdString(), body.toStdString(), exchange);
}

ApiResponse APIBase::sendPostRequest(const QString& path, const QJsonObject& params,
                                     toolkit::Exchange exchange) const
{
    RawAnswer answer;
    ApiResponse response = sendRawRequest(path, params, exchange, &answer);
    if (answer.body)
        readEnvelope(jsonObject(answer.bytes), &response);
    return response;
}

ApiResponse APIBase::sendRawRequest(const QString& path, const QJsonObject& params,
                                    toolkit::Exchange exchange, RawAnswer* answer) const
{
    logRequest(m_baseUrl + path, params);
    auto client = this->client();
    const std::shared_ptr<const toolkit::HttpResponse> received = post(&client, path, params, exchange);

    ApiResponse response;
    response.code = static_cast<quint8>(client.LastStatus() & 0xff);
    if (!received)
        response.message = QString::fromStdString(client.LastErrorText());
    else if (const auto text = received->BodyStr())
        *answer = {*text, received};
    else
        response.message = QStringLiteral("No response body");
    return response;
}

bool APIBase::downloadFile(const QString& url, const QString& outputPath) const
{
    // "outputPah": the spelling is part of the log's form; kept.
    LOG_D << "path: " << url << " -- outputPah: " << outputPath;
    auto client = this->client();
    const bool whole = client.Download(url.toStdString(), nativePath(outputPath));
    if (whole)
        LOG_D << "Download " << url << " success";
    else
        LOG_D << "Download ERROR: " << QString::fromStdString(client.LastErrorText());
    return whole;
}

QJsonObject APIBase::jsonObject(std::string_view text)
{
    const auto bytes = QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
    return QJsonDocument::fromJson(bytes).object();
}
