#include "api/VelstrandAPI.h"

#include "logging/Log.h"
#include "toolkit/HttpClient.h"
#include "toolkit/ZipArchive.h"

namespace {

constexpr char kPassword[] = "0417385926";
constexpr int kKeepLineEndings = 0;

} // namespace

bool VelstrandAPI::getDefinition(const QString& token, int version) const
{
    auto client = this->client();
    const auto response = post(&client, QStringLiteral("/api/v1/definitions/get"),
                               {{"token", token}, {"version", version}}, toolkit::Exchange::Read);
    if (!response)
        return false;

    toolkit::BinaryData archive;
    response->GetBodyBd(&archive);
    toolkit::ZipArchive zip;
    zip.SetPassword(kPassword);
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
