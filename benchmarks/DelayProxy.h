#pragma once

#include <list>
#include <mutex>
#include <thread>

/// Stands between a client and a loopback service as a line with a round-trip time would: every byte is held
/// half a round trip, and the first ones a whole one more, which is what opening a TCP connection costs.
class DelayProxy
{
public:
    DelayProxy(int servicePort, int roundTripMs);
    ~DelayProxy();
    DelayProxy(const DelayProxy&) = delete;
    DelayProxy& operator=(const DelayProxy&) = delete;

    int port() const { return m_port; }

private:
    void accept();
    void relay(int from, int to, int extraMs) const;

    const int m_servicePort;
    const int m_roundTripMs;
    int m_listener = -1;
    int m_port = 0;
    std::mutex m_mutex;
    /// Both guarded by m_mutex.
    std::list<int> m_sockets;
    std::list<std::thread> m_relays;
    std::thread m_acceptor;
};
