#pragma once

#include <QTemporaryFile>

#include <filesystem>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

struct ssl_st;
struct ssl_ctx_st;

/// A loopback server that sends exactly the bytes that a test gives it, with or without TLS: for answers that
/// no well-behaved server would send. Each connection runs the handler on a thread of its own.
class RawServer
{
public:
    /// One connection, on the server's side. Ends without a TLS close when the handler returns.
    class Connection
    {
    public:
        /// The next request, head and body by Content-Length; empty when the client has gone.
        std::string Receive();
        /// At most @p bytes more of the stream; empty when the client has gone.
        std::string ReceiveSome(std::size_t bytes);
        bool Send(std::string_view bytes);
        /// Sends the TLS close, as a server does that ends a body with the connection.
        void CloseTls();
        /// Blocks until the client has sent something, which stays unread; false when it has gone.
        bool AwaitBytes();
        /// Ends the connection at once, without a TLS close.
        void Die(bool byReset);
        /// Blocks until the client or the server ends the connection.
        void Hang();

    private:
        friend class RawServer;
        RawServer* m_server = nullptr;
        int m_socket = -1;
        ssl_st* m_tls = nullptr;
        std::string m_ahead;
        std::thread m_thread;
    };

    using Handler = std::function<void(Connection&)>;

    enum class Mode { Plain, Tls, TlsForOtherHost, NoHandshake };

    explicit RawServer(Handler handler, Mode mode = Mode::Plain);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    /// A handler that answers every request with @p response.
    static Handler Always(std::string response);
    /// A whole response with @p body.
    static std::string Ok(std::string_view body, std::string_view extraHeaders = {});

    int Port() const { return m_port; }
    /// "http://localhost:PORT" or "https://localhost:PORT"
    std::string Origin() const;
    /// The PEM file with the authority that signed its certificate; there while the server is.
    std::filesystem::path CaFile() const { return m_caFile.fileName().toStdString(); }
    int Connections() const;
    /// Everything that Receive() has returned so far, over all connections.
    std::vector<std::string> Requests() const;

private:
    void Accept();
    void Serve(Connection* connection);
    void MakeCertificate();

    Handler m_handler;
    Mode m_mode;
    int m_listener = -1;
    int m_port = 0;
    ssl_ctx_st* m_context = nullptr;
    QTemporaryFile m_caFile;
    mutable std::mutex m_mutex;
    /// Both guarded by m_mutex.
    std::list<Connection> m_connections;
    std::vector<std::string> m_requests;
    std::thread m_acceptor;
};
