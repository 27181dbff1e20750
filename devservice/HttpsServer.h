#pragma once

#include "devservice/Envelope.h"

#include <QHash>
#include <QStringList>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <thread>

namespace devservice {

struct Certificate;

/// One request as it arrived.
struct Request {
    QString method;
    QString path;
    /// Empty for a definitions push, whose content is summed up in the farm.
    QByteArray body;
    /// Values by name, in the spelling of the wire.
    QHash<QString, QString> headers;
    /// The same in the order of the wire, one "Name: value" a line.
    QStringList headerLines;
};

/// A request and the way back to its client, for the thread that serves the connection. Reading, waiting and
/// sending throw when the connection or the server ends; the server catches that.
class Exchange
{
public:
    virtual ~Exchange() = default;

    /// Without the body, which is still to be read.
    Request request;

    /// The value of a header, however its name is spelt.
    virtual QString header(const char* name) const = 0;
    /// The next piece of the body; empty after the last one.
    virtual QByteArray readSome() = 0;
    /// All of the body that has not been read.
    QByteArray readAll();
    /// Waits so many milliseconds.
    virtual void wait(int ms) = 0;
    /// What is sent of an answer: FirstHalf announces the whole body, Nothing leaves out the head, too.
    enum Part { Whole, FirstHalf, Nothing };
    /// Sends the answer when a round trip has passed; true when it was sent whole.
    virtual bool send(const Answer& answer, Part part) = 0;
};

/// An HTTPS server on the loopback address with a thread for each connection.
class HttpsServer
{
public:
    /// Serves one request, on any thread, and reads its body to the end; false breaks the connection off.
    using Handler = std::function<bool(Exchange&)>;

    HttpsServer();
    /// Ends every connection and waits for its thread.
    ~HttpsServer();

    /// Takes the port, 0 for any free one, and returns it. Throws a std::exception when that fails.
    int listen(const Certificate& certificate, int port);
    /// Begins to serve the connections that have come since.
    void start(Handler handler);
    /// The round trip in milliseconds: goes before every answer, and twice before a connection opens.
    void setLatency(int ms) { m_latencyMs = ms; }
    /// Connections accepted so far.
    int connections() const { return m_accepted; }

private:
    class Connection;
    struct Sockets;

    void accept();

    Handler m_handler;
    std::atomic<int> m_latencyMs{0};
    std::atomic<int> m_accepted{0};
    std::promise<void> m_stop;
    const std::future<void> m_stopped = m_stop.get_future();
    std::thread m_listener;
    /// Last, so that the connections have ended before anything that they use goes.
    std::unique_ptr<Sockets> m_sockets;
};

} // namespace devservice
