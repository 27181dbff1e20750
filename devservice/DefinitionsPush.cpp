#include "devservice/DefinitionsPush.h"

#include "devservice/HttpsServer.h"

#include <QCryptographicHash>
#include <QRegularExpression>

#include <functional>

namespace devservice {
namespace {

/// The body of a request, read from mark to mark.
class Body
{
public:
    explicit Body(Exchange& exchange) : m_exchange(exchange) {}

    bool hasEnded() const { return m_hasEnded; }

    /// Hands what comes before @p mark to @p sink, piece by piece, and skips the mark. The body has ended
    /// when there is no such mark in the rest of it.
    void readUntil(const QByteArray& mark, const std::function<void(const QByteArray&)>& sink)
    {
        int found = -1;
        while (!m_hasEnded && (found = m_ahead.indexOf(mark)) < 0) {
            // Half of the mark may have come already.
            const int ready = qMax(0, m_ahead.size() - mark.size() + 1);
            sink(m_ahead.left(ready));
            const QByteArray more = m_exchange.readSome();
            m_ahead = m_ahead.mid(ready) + more;
            m_hasEnded = more.isEmpty();
        }
        sink(m_ahead.left(found));
        m_ahead.remove(0, found + mark.size());
    }

    QByteArray readUntil(const QByteArray& mark)
    {
        QByteArray text;
        readUntil(mark, [&text](const QByteArray& piece) { text += piece; });
        return text;
    }

private:
    Exchange& m_exchange;
    /// What has been read and not handed on. The first boundary stands at the start of a line, too.
    QByteArray m_ahead = "\r\n";
    bool m_hasEnded = false;
};

/// A parameter of a header, with or without quotes; empty when there is none.
QString parameter(const QString& header, const QString& name)
{
    return QRegularExpression("\\b" + name + "=\"?([^\"\r\n]*)").match(header).captured(1);
}

} // namespace

DefinitionsPush readPush(Exchange& exchange)
{
    DefinitionsPush push;
    push.token = exchange.header("token");
    const QString boundary = parameter(exchange.header("Content-Type"), "boundary");
    const QByteArray mark = "\r\n--" + boundary.toUtf8();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    Body body(exchange);
    body.readUntil(mark);
    const QString field = QString::fromUtf8(body.readUntil("\r\n\r\n"));
    push.version = body.readUntil(mark);
    const QString file = QString::fromUtf8(body.readUntil("\r\n\r\n"));
    body.readUntil(mark, [&](const QByteArray& piece) {
        hash.addData(piece);
        push.size += piece.size();
    });
    push.sha256 = hash.result();
    // This is how clients escape quotes and line ends.
    push.fileName =
        parameter(file, "filename").replace("%22", "\"").replace("%0D", "\r").replace("%0A", "\n");
    push.isValid = body.readUntil("\r\n") == "--" && parameter(field, "name") == "version" &&
                   parameter(file, "name") == "definitions" && !push.fileName.isEmpty();
    exchange.readAll();
    return push;
}

} // namespace devservice
