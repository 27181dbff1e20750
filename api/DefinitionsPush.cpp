#include "api/VelstrandAPI.h"

#include "api/NativePath.h"
#include "logging/Log.h"
#include "toolkit/HttpClient.h"
#include "toolkit/Url.h"

namespace {

/// The service's origin as the push needs it, which goes over TLS whatever the scheme. Without a host if the
/// base URL is none.
toolkit::Origin tlsOrigin(QString baseUrl)
{
    baseUrl.replace(QLatin1String("http://"), QLatin1String("https://"));
    return toolkit::OriginOf(baseUrl.toStdString()).value_or(toolkit::Origin{});
}

} // namespace

bool VelstrandAPI::pushDefinition(const QString& token, int version, const QString& filePath,
                                  QString* errorText) const
{
    toolkit::HttpRequest request;
    request.SetVerb("POST");
    request.Path("/api/v1/definitions/push");
    request.SetContentType("multipart/form-data");
    request.AddHeader("Connection", "Keep-Alive");
    request.AddHeader("token", token.toStdString());
    request.AddHeader("Accept", "text/html");
    request.AddParam("version", std::to_string(version));
    if (!request.AddFileForUpload("definitions", nativePath(filePath))) {
        const QString error = QString::fromStdString(request.LastErrorText());
        LOG_D << "AddFileForUpload error: " << error;
        if (errorText)
            *errorText = error;
        return false;
    }

    auto client = basicClient();
    const auto origin = tlsOrigin(baseUrl());
    const auto response = client.SynchronousRequest(origin.host, origin.port, true, request);
    if (!response) {
        if (errorText)
            *errorText = QString::fromStdString(client.LastErrorText());
        return false;
    }
    const auto text = response->BodyStr();
    return text && jsonObject(*text).value(QLatin1String("success")).toBool();
}
