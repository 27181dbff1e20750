#include "tests/support/RawServer.h"

#include "devservice/Certificate.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace {

void Require(bool done)
{
    if (!done)
        qFatal("RawServer: %s", std::strerror(errno));
}

} // namespace

std::string RawServer::Connection::ReceiveSome(std::size_t bytes)
{
    std::string data(bytes, '\0');
    const auto got = m_tls ? SSL_read(m_tls, data.data(), static_cast<int>(bytes))
                           : static_cast<int>(recv(m_socket, data.data(), bytes, 0));
    data.resize(static_cast<std::size_t>(std::max(got, 0)));
    return data;
}

std::string RawServer::Connection::Receive()
{
    std::size_t wanted = std::string::npos;
    while (m_ahead.size() < wanted) {
        const std::string more = ReceiveSome(65536);
        if (more.empty())
            return {};
        m_ahead += more;
        const std::size_t head = m_ahead.find("\r\n\r\n");
        if (wanted == std::string::npos && head != std::string::npos) {
            const std::size_t length = m_ahead.find("Content-Length: ");
            wanted = head + 4 + (length < head ? std::stoul(m_ahead.substr(length + 16)) : 0);
        }
    }
    std::string request = m_ahead.substr(0, wanted);
    m_ahead.erase(0, wanted);
    const std::lock_guard<std::mutex> lock(m_server->m_mutex);
    m_server->m_requests.push_back(request);
    return request;
}

bool RawServer::Connection::Send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto sent = m_tls ? SSL_write(m_tls, bytes.data(), static_cast<int>(bytes.size()))
                                : static_cast<int>(send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL));
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void RawServer::Connection::CloseTls()
{
    if (m_tls)
        SSL_shutdown(m_tls);
}

bool RawServer::Connection::AwaitBytes()
{
    char byte;
    return (m_tls ? SSL_peek(m_tls, &byte, 1) : static_cast<int>(recv(m_socket, &byte, 1, MSG_PEEK))) > 0;
}

void RawServer::Connection::Die(bool byReset)
{
    sockaddr nobody{};
    nobody.sa_family = AF_UNSPEC;
    Require((byReset ? connect(m_socket, &nobody, sizeof nobody) : shutdown(m_socket, SHUT_RDWR)) == 0 ||
            errno == ENOTCONN);
}

void RawServer::Connection::Hang()
{
    char byte;
    while (recv(m_socket, &byte, 1, 0) > 0) {
    }
}

RawServer::RawServer(Handler handler, Mode mode) : m_handler(std::move(handler)), m_mode(mode)
{
    std::signal(SIGPIPE, SIG_IGN);
    if (mode != Mode::Plain)
        MakeCertificate();
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    Require(m_listener >= 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    // A small window, so that a slow reader is felt by the client at once.
    const int window = 64 * 1024;
    setsockopt(m_listener, SOL_SOCKET, SO_RCVBUF, &window, sizeof window);
    Require(bind(m_listener, generic, length) == 0 && listen(m_listener, 64) == 0 &&
            getsockname(m_listener, generic, &length) == 0);
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread(&RawServer::Accept, this);
}

RawServer::~RawServer()
{
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    for (Connection& connection : m_connections)
        shutdown(connection.m_socket, SHUT_RDWR);
    for (Connection& connection : m_connections) {
        connection.m_thread.join();
        close(connection.m_socket);
    }
    close(m_listener);
    SSL_CTX_free(m_context);
}

void RawServer::Accept()
{
    for (;;) {
        const int client = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            return;
        const int noDelay = 1;
        setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
        const std::lock_guard<std::mutex> lock(m_mutex);
        Connection& connection = m_connections.emplace_back();
        connection.m_server = this;
        connection.m_socket = client;
        connection.m_thread = std::thread(&RawServer::Serve, this, &connection);
    }
}

void RawServer::Serve(Connection* connection)
{
    if (m_mode == Mode::NoHandshake)
        return connection->Hang();
    if (m_context) {
        connection->m_tls = SSL_new(m_context);
        SSL_set_fd(connection->m_tls, connection->m_socket);
    }
    if (!connection->m_tls || SSL_accept(connection->m_tls) == 1)
        m_handler(*connection);
    // The socket itself is closed with the server, so that its number is not taken again meanwhile.
    shutdown(connection->m_socket, SHUT_RDWR);
    SSL_free(connection->m_tls);
}

void RawServer::MakeCertificate()
{
    const devservice::Certificate certificate =
        devservice::makeCertificate(m_mode == Mode::Tls ? "localhost" : "elsewhere.example");
    Require(certificate.isValid() && m_caFile.open() &&
            m_caFile.write(certificate.authorityPem) == certificate.authorityPem.size() && m_caFile.flush());
    m_context = SSL_CTX_new(TLS_server_method());
    Require(SSL_CTX_use_certificate(m_context, certificate.certificate.get()) == 1 &&
            SSL_CTX_use_PrivateKey(m_context, certificate.key.get()) == 1);
}

RawServer::Handler RawServer::Always(std::string response)
{
    return [response = std::move(response)](Connection& connection) {
        while (!connection.Receive().empty() && connection.Send(response)) {
        }
    };
}

std::string RawServer::Ok(std::string_view body, std::string_view extraHeaders)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
           std::string(extraHeaders) + "\r\n" + std::string(body);
}

std::string RawServer::Origin() const
{
    return (m_mode == Mode::Plain ? "http" : "https") + ("://localhost:" + std::to_string(m_port));
}

int RawServer::Connections() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_connections.size());
}

std::vector<std::string> RawServer::Requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}
