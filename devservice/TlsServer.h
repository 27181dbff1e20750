#pragma once

#include "devservice/Certificate.h"

#include <QByteArrayList>

#include <httplib.h>

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_set>

namespace devservice {

/// One TLS connection, used by the one thread that serves it. Keeps what the HTTP library throws away (the
/// head of a request as it came over the wire), and can break off at will.
class Connection : public httplib::Stream
{
public:
    Connection(SSL* ssl, int socket, int timeoutMs);

    /// The connection that the calling thread serves; null on any other thread.
    static Connection* current();

    /// Forgets the head of the request before.
    void beginRequest();
    /// Request line and headers of this request, as they came.
    QByteArrayList headLines() const;
    /// Nothing that is written from now on reaches the client.
    void drop() { m_dropped = true; }
    bool isDropped() const { return m_dropped; }
    /// Waits so many milliseconds; false at once when the connection ends.
    bool pause(int ms) const;
    /// Waits for the first byte of a request; false when none comes in time.
    bool waitForRequest(int timeoutMs) const;

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* data, size_t size) override;
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return m_socket; }

private:
    void keepHead(const char* data, size_t size);

    SSL* m_ssl;
    int m_socket;
    int m_timeoutMs;
    bool m_dropped = false;
    bool m_headComplete = false;
    QByteArray m_head;
    std::string m_buffer;
    size_t m_bufferPosition = 0;
};

/// The HTTP library's server over TLS connections of our own, so that it can count them, break them, and stop
/// while requests hang.
class TlsServer : public httplib::Server
{
public:
    explicit TlsServer(const Certificate& certificate);
    ~TlsServer() override;

    bool is_valid() const override { return m_context != nullptr; }
    /// Binds to the loopback address, 0 for any free port; the port, or -1 when it is taken.
    int bindLoopback(int port);
    /// Milliseconds that each of the two round trips takes that open a connection.
    void setHandshakeLatency(int ms) { m_handshakeLatencyMs = ms; }
    int connections() const { return m_connections; }
    /// Stops listening and ends every connection. Any thread.
    void stopNow();

private:
    bool process_and_close_socket(socket_t socket) override;
    void serveConnection(int socket);
    bool enlist(int socket);
    void closeSocket(int socket);

    std::unique_ptr<SSL_CTX, OpenSslFree<SSL_CTX_free>> m_context;
    std::atomic<int> m_handshakeLatencyMs{0};
    std::atomic<int> m_connections{0};
    /// Guards the two below: written by every connection's thread, read by whoever stops the server.
    std::mutex m_mutex;
    std::unordered_set<int> m_sockets;
    bool m_stopping = false;
};

} // namespace devservice
