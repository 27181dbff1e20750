#include "devservice/Transfers.h"

#include "devservice/TlsServer.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <memory>

namespace devservice {
namespace {

constexpr int chunkBytes = 64 * 1024;
/// A rate-limited download is sent in so many pieces a second.
constexpr int piecesPerSecond = 20;

/// What a client puts into the name of a file part in place of quotes and line ends.
QString unescapedFileName(const std::string& name)
{
    return QString::fromStdString(name)
        .replace(QLatin1String("%22"), QLatin1String("\""))
        .replace(QLatin1String("%0D"), QLatin1String("\r"))
        .replace(QLatin1String("%0A"), QLatin1String("\n"));
}

} // namespace

bool readPush(const httplib::Request& request, const httplib::ContentReader& reader, DefinitionsPush* push)
{
    if (!request.is_multipart_form_data()) {
        reader([](const char*, size_t) { return true; });
        return false;
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    bool inFile = false;
    push->token = QString::fromStdString(request.get_header_value("token"));
    const bool whole = reader(
        [&](const httplib::MultipartFormData& part) {
            inFile = !part.filename.empty();
            (inFile ? push->files : push->fields).append(QString::fromStdString(part.name));
            if (inFile) {
                push->fileName = unescapedFileName(part.filename);
            }
            return true;
        },
        [&](const char* data, size_t size) {
            if (inFile) {
                hash.addData(data, static_cast<int>(size));
                push->size += static_cast<qint64>(size);
            } else {
                push->version.append(data, static_cast<int>(size));
            }
            // Longer than any number: not worth keeping.
            return push->version.size() < chunkBytes;
        });
    push->sha256 = hash.result();
    return whole;
}

httplib::ContentProvider fileProvider(const QString& path, qint64 size, int bytesPerSecond)
{
    const auto file = std::make_shared<QFile>(path);
    const bool open = file->open(QIODevice::ReadOnly);
    const int piece =
        bytesPerSecond > 0 ? std::clamp(bytesPerSecond / piecesPerSecond, 1, chunkBytes) : chunkBytes;
    return [=](size_t offset, size_t length, httplib::DataSink& sink) {
        const qint64 wanted = std::min({qint64(length), qint64(piece), size - qint64(offset)});
        if (!open || wanted <= 0 || !file->seek(static_cast<qint64>(offset))) {
            return false;
        }
        const QByteArray data = file->read(wanted);
        const int pauseMs = bytesPerSecond > 0 ? static_cast<int>(1000LL * data.size() / bytesPerSecond) : 0;
        return !data.isEmpty() && sink.write(data.constData(), static_cast<size_t>(data.size())) &&
               (pauseMs == 0 || Connection::current()->pause(pauseMs));
    };
}

} // namespace devservice
