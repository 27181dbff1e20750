#include "devservice/TlsServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace devservice {
namespace {

constexpr int keepAliveSeconds = 60;
constexpr int transferTimeoutSeconds = 60;
/// A kept connection occupies a thread, so this is the number of connections served at a time.
constexpr size_t threads = 64;

thread_local Connection* currentConnection = nullptr;

/// True when one of @p events or the end of the connection came within @p timeoutMs (negative: no limit).
bool waitFor(int socket, short events, int timeoutMs)
{
    pollfd entry{socket, events, 0};
    int result = 0;
    do {
        result = ::poll(&entry, 1, timeoutMs);
    } while (result < 0 && errno == EINTR);
    return result > 0;
}

template <typename GetName>
void addressOf(int socket, GetName getName, std::string* ip, int* port)
{
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    char text[INET_ADDRSTRLEN] = {};
    if (getName(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
        ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof(text))) {
        *ip = text;
        *port = ntohs(address.sin_port);
    }
}

} // namespace

Connection::Connection(SSL* ssl, int socket, int timeoutMs)
    : m_ssl(ssl), m_socket(socket), m_timeoutMs(timeoutMs)
{
    currentConnection = this;
}

Connection* Connection::current()
{
    return currentConnection;
}

void Connection::beginRequest()
{
    m_head.clear();
    m_headComplete = false;
}

QByteArrayList Connection::headLines() const
{
    QByteArrayList lines;
    for (const QByteArray& line : m_head.split('\n')) {
        const QByteArray text = line.endsWith('\r') ? line.chopped(1) : line;
        if (!text.isEmpty()) {
            lines.append(text);
        }
    }
    return lines;
}

bool Connection::pause(int ms) const
{
    return !waitFor(m_socket, POLLRDHUP, ms);
}

bool Connection::waitForRequest(int timeoutMs) const
{
    return m_bufferPosition < m_buffer.size() || SSL_pending(m_ssl) > 0 ||
           waitFor(m_socket, POLLIN, timeoutMs);
}

bool Connection::is_readable() const
{
    return waitForRequest(m_timeoutMs);
}

bool Connection::is_writable() const
{
    return !m_dropped && waitFor(m_socket, POLLOUT, m_timeoutMs);
}

ssize_t Connection::read(char* data, size_t size)
{
    if (m_bufferPosition == m_buffer.size()) {
        // The library reads a head byte by byte.
        m_bufferPosition = 0;
        m_buffer.resize(16 * 1024);
        const int count =
            is_readable() ? SSL_read(m_ssl, m_buffer.data(), static_cast<int>(m_buffer.size())) : -1;
        m_buffer.resize(count > 0 ? static_cast<size_t>(count) : 0);
        if (count <= 0) {
            return count;
        }
    }
    const size_t count = std::min(size, m_buffer.size() - m_bufferPosition);
    std::memcpy(data, m_buffer.data() + m_bufferPosition, count);
    m_bufferPosition += count;
    keepHead(data, count);
    return static_cast<ssize_t>(count);
}

void Connection::keepHead(const char* data, size_t size)
{
    for (size_t i = 0; i < size && !m_headComplete; ++i) {
        m_head.append(data[i]);
        m_headComplete = m_head.endsWith("\r\n\r\n");
    }
}

ssize_t Connection::write(const char* data, size_t size)
{
    if (m_dropped) {
        return -1;
    }
    return SSL_write(m_ssl, data, static_cast<int>(std::min<size_t>(size, 1 << 30)));
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const
{
    addressOf(m_socket, ::getpeername, &ip, &port);
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const
{
    addressOf(m_socket, ::getsockname, &ip, &port);
}

TlsServer::TlsServer(const Certificate& certificate) : m_context(SSL_CTX_new(TLS_server_method()))
{
    if (!m_context || !certificate.isValid() ||
        SSL_CTX_set_min_proto_version(m_context.get(), TLS1_2_VERSION) != 1 ||
        SSL_CTX_use_certificate(m_context.get(), certificate.certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(m_context.get(), certificate.key.get()) != 1) {
        m_context.reset();
    }
    set_tcp_nodelay(true);
    set_keep_alive_timeout(keepAliveSeconds);
    set_keep_alive_max_count(1000000);
    set_read_timeout(transferTimeoutSeconds);
    set_write_timeout(transferTimeoutSeconds);
    // The library's own choice lets two servers share a port, and each then gets half of the requests.
    set_socket_options([](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    });
    new_task_queue = [] { return new httplib::ThreadPool(threads); };
}

TlsServer::~TlsServer() = default;

int TlsServer::bindLoopback(int port)
{
    const char* const host = "127.0.0.1";
    if (port == 0) {
        port = bind_to_any_port(host);
    } else if (!bind_to_port(host, port)) {
        return -1;
    }
    if (port > 0) {
        // The library asks for a queue of 5: too short for a burst of connections, which would wait a second.
        ::listen(svr_sock_, SOMAXCONN);
    }
    return port;
}

void TlsServer::stopNow()
{
    stop();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stopping = true;
    for (const int socket : m_sockets) {
        ::shutdown(socket, SHUT_RDWR);
    }
}

bool TlsServer::process_and_close_socket(socket_t socket)
{
    ++m_connections;
    ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    if (enlist(socket)) {
        serveConnection(socket);
    }
    closeSocket(socket);
    return true;
}

void TlsServer::serveConnection(int socket)
{
    const std::unique_ptr<SSL, OpenSslFree<SSL_free>> ssl(SSL_new(m_context.get()));
    if (!ssl || SSL_set_fd(ssl.get(), socket) != 1) {
        return;
    }
    Connection connection(ssl.get(), socket, transferTimeoutSeconds * 1000);
    if (connection.pause(2 * m_handshakeLatencyMs) && SSL_accept(ssl.get()) == 1) {
        bool closed = false;
        while (!closed && connection.waitForRequest(keepAliveSeconds * 1000)) {
            connection.beginRequest();
            const auto setUp = [](httplib::Request& request) {
                // The service compresses by itself, once for many answers; the library would do it each time.
                request.headers.erase("Accept-Encoding");
            };
            closed = !process_request(connection, false, closed, setUp) || closed || connection.isDropped();
        }
        SSL_shutdown(ssl.get());
    }
    currentConnection = nullptr;
}

bool TlsServer::enlist(int socket)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_stopping) {
        m_sockets.insert(socket);
    }
    return !m_stopping;
}

void TlsServer::closeSocket(int socket)
{
    // Under the lock, so that stopping never shuts down a number that belongs to somebody else by then.
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sockets.erase(socket);
    ::close(socket);
}

} // namespace devservice
