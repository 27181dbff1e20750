#include "api/VelstrandAPI.h"

#include "api/NativePath.h"
#include "logging/Log.h"
#include "toolkit/HttpClient.h"
#include "toolkit/HttpRequest.h"
#include "toolkit/ZipArchive.h"

#include <QUrl>

// The transfers of VelstrandAPI that are not JSON in, JSON out: the definitions both ways, and plain
// downloads.

namespace {

constexpr int kHttpsPort = 443;
constexpr char kDefinitionsPassword[] = "0417385926";
constexpr int kKeepLineEndings = 0;

QString lastError(const toolkit::HttpClient& client)
{
    return QString::fromStdString(client.LastErrorText());
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

    toolkit::HttpClient client;
    trust(&client);
    const QUrl origin(baseUrl());
    const auto response =
        client.SynchronousRequest(origin.host().toStdString(), origin.port(kHttpsPort), true, request);
    if (!client.LastCallSucceeded() || !response) {
        if (errorText)
            *errorText = lastError(client);
        return false;
    }
    const auto text = response->BodyStr();
    if (!text)
        return false;
    const auto json = QByteArray::fromRawData(text->data(), static_cast<int>(text->size()));
    return QJsonDocument::fromJson(json).object().value(QLatin1String("success")).toBool();
}

bool VelstrandAPI::getDefinition(const QString& token, int version) const
{
    toolkit::HttpClient client;
    configure(&client);
    client.SetRequestHeader("Content-Type", "application/json");
    const QByteArray body =
        QJsonDocument(QJsonObject{{"token", token}, {"version", version}}).toJson(QJsonDocument::Compact);
    const auto response =
        client.PostJson((baseUrl() + QStringLiteral("/api/v1/definitions/get")).toStdString(),
                        body.toStdString(), toolkit::Exchange::Read);
    if (!client.LastCallSucceeded() || !response)
        return false;

    toolkit::BinaryData archive;
    response->GetBodyBd(&archive);
    toolkit::ZipArchive zip;
    zip.SetPassword(kDefinitionsPassword);
    const auto entry = zip.OpenBd(archive) ? zip.GetEntryByIndex(0) : nullptr;
    if (!entry) {
        LOG_D << QString::fromStdString(zip.LastErrorText());
        return false;
    }
    const auto text = entry->UnzipToString(kKeepLineEndings, "utf-8");
    if (!text) {
        LOG_D << "The definitions are not UTF-8 text";
        return false;
    }
    LOG_D << "fileContents: " << QString::fromStdString(*text);
    return true;
}

bool VelstrandAPI::downloadFile(const QString& url, const QString& outputPath) const
{
    LOG_D << "path: " << url << " -- outputPah: " << outputPath;
    toolkit::HttpClient client;
    configure(&client);
    const bool whole = client.Download(url.toStdString(), nativePath(outputPath));
    if (whole)
        LOG_D << "Download " << url << " success";
    else
        LOG_D << "Download ERROR: " << lastError(client);
    return whole;
}
