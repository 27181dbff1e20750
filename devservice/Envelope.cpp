#include "devservice/Envelope.h"

#include <QJsonDocument>

#include <zlib.h>

namespace devservice {
namespace {

/// Below this an answer fits into one packet as it is.
constexpr int smallestGzip = 1400;

QByteArray gzip(const QByteArray& plain)
{
    constexpr int gzipWindow = 15 + 16;
    constexpr int defaultMemory = 8;
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipWindow, defaultMemory, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        return {};
    }
    const uLong bound = deflateBound(&stream, static_cast<uLong>(plain.size()));
    QByteArray packed(static_cast<int>(bound), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(plain.constData()));
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const bool whole = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    packed.truncate(static_cast<int>(stream.total_out));
    deflateEnd(&stream);
    return whole ? packed : QByteArray();
}

Answer envelope(int status, const QString& message, const QJsonValue& data)
{
    Answer answer;
    answer.status = status;
    const QJsonObject object{
        {"code", status}, {"success", status == 200}, {"message", message}, {"data", data}};
    answer.body = QJsonDocument(object).toJson(QJsonDocument::Compact);
    if (answer.body.size() > smallestGzip) {
        answer.gzip = gzip(answer.body);
    }
    return answer;
}

} // namespace

Answer done(const QJsonValue& data)
{
    return envelope(200, QString(), data);
}

Answer refused(int status, const QString& message)
{
    return envelope(status, message, QJsonObject());
}

} // namespace devservice
