#include "api/APIBase.h"

#include "api/NativePath.h"
#include "logging/Log.h"
#include "toolkit/HttpClient.h"

#include <QJsonArray>

namespace {

constexpr int kTimeoutSeconds = 30;

/// Takes in what the service's envelope names; a member that is absent leaves what is there.
void readEnvelope(const QJsonObject& envelope, ApiResponse* response)
{
    if (envelope.contains(QLatin1String("code")))
        response->code = static_cast<quint8>(envelope.value(QLatin1String("code")).toInt() & 0xff);
    if (envelope.contains(QLatin1String("success")))
        response->success = envelope.value(QLatin1String("success")).toBool();
    if (envelope.contains(QLatin1String("message")))
        response->message = envelope.value(QLatin1String("message")).toString();

    const QJsonValue data = envelope.value(QLatin1String("data"));
    if (data.isArray())
        response->data = QJsonDocument(data.toArray());
    else if (data.isObject())
        response->data = QJsonDocument(data.toObject());
}

} // namespace

void APIBase::setBaseUrl(const QString& baseUrl)
{
    m_baseUrl = baseUrl;
}

QString APIBase::baseUrl() const
{
    return m_baseUrl;
}

void APIBase::setTrustAnchors(const QString& pemFile)
{
    m_trustAnchors = pemFile;
}

void APIBase::trust(toolkit::HttpClient* client) const
{
    client->SetTrustAnchors(nativePath(m_trustAnchors));
}

void APIBase::configure(toolkit::HttpClient* client) const
{
    trust(client);
    client->SetConnectTimeout(kTimeoutSeconds);
    client->SetReadTimeout(kTimeoutSeconds);
}

ApiResponse APIBase::sendPostRequest(const QString& path, const QJsonObject& params,
                                     toolkit::Exchange exchange) const
{
    toolkit::HttpClient client;
    configure(&client);
    client.SetRequestHeader("Content-Type", "application/json");

    ApiResponse response;
    const QString url = m_baseUrl + path;
    LOG_D << "url: " << url;
    LOG_D << "params: " << params;

    const QByteArray body = QJsonDocument(params).toJson(QJsonDocument::Compact);
    const auto answer = client.PostJson(url.toStdString(), body.toStdString(), exchange);
    response.code = static_cast<quint8>(client.LastStatus() & 0xff);
    if (!client.LastCallSucceeded() || !answer) {
        response.message = QString::fromStdString(client.LastErrorText());
        return response;
    }
    const auto text = answer->BodyStr();
    if (!text) {
        response.message = QStringLiteral("No response body");
        return response;
    }
    const auto json = QByteArray::fromRawData(text->data(), static_cast<int>(text->size()));
    readEnvelope(QJsonDocument::fromJson(json).object(), &response);
    return response;
}
