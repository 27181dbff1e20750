#include "devservice/HttpsServer.h"

#include "devservice/Certificate.h"

#include <QScopeGuard>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <list>
#include <sstream>

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::ip::tcp;

namespace devservice {
namespace {

constexpr int pieceBytes = 64 * 1024;
constexpr std::uint64_t largestBody = 1024 * 1024 * 1024;
/// A slow answer is sent in so many pieces a second.
constexpr int piecesPerSecond = 20;

QString text(beast::string_view view)
{
    return QString::fromUtf8(view.data(), static_cast<int>(view.size()));
}

} // namespace

struct HttpsServer::Sockets {
    /// Of the connections. Never run: what arrives on them wakes nobody but their own threads. Goes after the
    /// other, which may still hold a connection that it was about to accept.
    asio::io_context idle;
    asio::io_context io;
    asio::ssl::context tls{asio::ssl::context::tls_server};
    tcp::acceptor acceptor{io};
    /// Used by the listening thread alone, and by the destructor after its end.
    std::list<Connection> connections;
};

class HttpsServer::Connection final : public Exchange
{
public:
    Connection(HttpsServer& server, tcp::socket socket)
        : m_server(server), m_stream(std::move(socket), server.m_sockets->tls)
    {
        m_thread = std::async(std::launch::async, [this] { serve(); });
    }

    bool hasEnded() const { return m_thread.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }

    /// Ends the connection, which the client and the thread notice at once. Any thread.
    void end() { ::shutdown(m_stream.next_layer().native_handle(), SHUT_RDWR); }

    QString header(const char* name) const override { return text(m_parser->get()[name]); }
    QByteArray readSome() override;
    void wait(int ms) override;
    bool send(const Answer& answer, Part part) override;

private:
    using Parser = http::request_parser<http::buffer_body>;

    void serve();
    bool serveRequest();

    HttpsServer& m_server;
    asio::ssl::stream<tcp::socket> m_stream;
    beast::flat_buffer m_buffer;
    /// A new one for each request.
    std::unique_ptr<Parser> m_parser;
    /// Last, so that the thread has ended before anything that it uses goes.
    std::future<void> m_thread;
};

void HttpsServer::Connection::serve()
{
    // What is thrown, because the client has left or the server stops, ends the thread: the future takes it.
    const auto atEnd = qScopeGuard([this] { end(); });
    m_stream.next_layer().set_option(tcp::no_delay(true));
    wait(2 * m_server.m_latencyMs);
    m_stream.handshake(asio::ssl::stream_base::server);
    while (serveRequest()) {
    }
    // Nothing more is read, so that the TLS close does not wait for the client's.
    m_stream.next_layer().shutdown(tcp::socket::shutdown_receive);
    m_stream.shutdown();
}

bool HttpsServer::Connection::serveRequest()
{
    m_parser = std::make_unique<Parser>();
    m_parser->body_limit(largestBody);
    beast::error_code error;
    http::read_header(m_stream, m_buffer, *m_parser, error);
    const beast::error_code clientLeft = http::error::end_of_stream;
    if (error && error != clientLeft && error.category() == clientLeft.category()) {
        send(refused(400, "the request cannot be read"), Whole);
        return false;
    }
    if (error) {
        throw beast::system_error(error);
    }
    const auto& message = m_parser->get();
    request = {};
    request.method = text(message.method_string());
    request.path = text(message.target()).section('?', 0, 0);
    for (const auto& field : message) {
        const QString name = text(field.name_string());
        const QString value = text(field.value());
        request.headers.insert(name, value);
        request.headerLines.append(name + ": " + value);
    }
    return m_server.m_handler(*this) && message.keep_alive();
}

QByteArray HttpsServer::Connection::readSome()
{
    if (m_parser->is_done()) {
        return {};
    }
    QByteArray piece(pieceBytes, Qt::Uninitialized);
    auto& rest = m_parser->get().body();
    rest.data = piece.data();
    rest.size = static_cast<std::size_t>(piece.size());
    beast::error_code error;
    http::read(m_stream, m_buffer, *m_parser, error);
    if (error && error != http::error::need_buffer) {
        throw beast::system_error(error);
    }
    piece.chop(static_cast<int>(rest.size));
    return piece;
}

void HttpsServer::Connection::wait(int ms)
{
    if (m_server.m_stopped.wait_for(std::chrono::milliseconds(ms)) == std::future_status::ready) {
        throw beast::system_error(asio::error::operation_aborted);
    }
}

bool HttpsServer::Connection::send(const Answer& answer, Part part)
{
    wait(m_server.m_latencyMs);
    if (part == Nothing) {
        return false;
    }
    const bool packed = !answer.gzip.isEmpty() && header("Accept-Encoding").contains("gzip");
    const QByteArray body = packed ? answer.gzip : answer.body;
    http::response<http::empty_body> head;
    head.result(static_cast<unsigned>(answer.status));
    head.set(http::field::content_type, answer.type.toStdString());
    if (packed) {
        head.set(http::field::content_encoding, "gzip");
    }
    head.keep_alive(m_parser->get().keep_alive());
    head.content_length(static_cast<std::uint64_t>(body.size()));
    std::ostringstream headText;
    headText << head;

    const int size = part == FirstHalf ? body.size() / 2 : body.size();
    const QByteArray bytes = QByteArray::fromStdString(headText.str()) + body.left(size);
    const int rate = answer.bytesPerSecond;
    const int step = rate > 0 ? std::max(1, rate / piecesPerSecond) : bytes.size();
    for (int at = 0; at < bytes.size(); at += step) {
        const QByteArray piece = bytes.mid(at, step);
        asio::write(m_stream, asio::buffer(piece.constData(), static_cast<std::size_t>(piece.size())));
        wait(rate > 0 ? static_cast<int>(1000LL * step / rate) : 0);
    }
    return part == Whole;
}

QByteArray Exchange::readAll()
{
    QByteArray all;
    for (QByteArray piece = readSome(); !piece.isEmpty(); piece = readSome()) {
        all += piece;
    }
    return all;
}

HttpsServer::HttpsServer() : m_sockets(std::make_unique<Sockets>()) {}

HttpsServer::~HttpsServer()
{
    m_sockets->io.stop();
    if (m_listener.joinable()) {
        m_listener.join();
    }
    m_stop.set_value();
    for (Connection& connection : m_sockets->connections) {
        connection.end();
    }
}

int HttpsServer::listen(const Certificate& certificate, int port)
{
    SSL_CTX* const context = m_sockets->tls.native_handle();
    if (SSL_CTX_use_certificate(context, certificate.certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(context, certificate.key.get()) != 1) {
        throw std::runtime_error("unusable certificate");
    }
    tcp::acceptor& acceptor = m_sockets->acceptor;
    const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), static_cast<unsigned short>(port));
    acceptor = tcp::acceptor(m_sockets->io, endpoint);
    // Programs that a test starts must not keep the port.
    ::fcntl(acceptor.native_handle(), F_SETFD, FD_CLOEXEC);
    return acceptor.local_endpoint().port();
}

void HttpsServer::start(Handler handler)
{
    m_handler = std::move(handler);
    accept();
    m_listener = std::thread([this] { m_sockets->io.run(); });
}

void HttpsServer::accept()
{
    const auto serve = [this](const beast::error_code& error, tcp::socket socket) {
        auto& connections = m_sockets->connections;
        connections.remove_if([](const Connection& connection) { return connection.hasEnded(); });
        if (!error) {
            ++m_accepted;
            connections.emplace_back(*this, std::move(socket));
        }
        accept();
    };
    m_sockets->acceptor.async_accept(m_sockets->idle, serve);
}

} // namespace devservice
