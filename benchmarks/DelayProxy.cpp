#include "benchmarks/DelayProxy.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string>

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

namespace {

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

void sendWithoutDelay(int socket)
{
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

} // namespace

DelayProxy::DelayProxy(int servicePort, int roundTripMs)
    : m_servicePort(servicePort), m_roundTripMs(roundTripMs)
{
    m_listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof address;
    if (m_listener < 0 || bind(m_listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        listen(m_listener, 16) != 0 ||
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        std::perror("DelayProxy");
        std::abort();
    }
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread(&DelayProxy::accept, this);
}

DelayProxy::~DelayProxy()
{
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    for (int socket : m_sockets)
        shutdown(socket, SHUT_RDWR);
    for (std::thread& relay : m_relays)
        relay.join();
    for (int socket : m_sockets)
        close(socket);
    close(m_listener);
}

void DelayProxy::accept()
{
    for (;;) {
        const int client = ::accept(m_listener, nullptr, nullptr);
        if (client < 0)
            return;
        const int service = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = loopback(m_servicePort);
        if (service < 0 || connect(service, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            shutdown(client, SHUT_RDWR);
        sendWithoutDelay(client);
        sendWithoutDelay(service);
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_sockets.push_back(client);
        m_sockets.push_back(service);
        m_relays.emplace_back(&DelayProxy::relay, this, client, service, m_roundTripMs);
        m_relays.emplace_back(&DelayProxy::relay, this, service, client, 0);
    }
}

void DelayProxy::relay(int from, int to, int extraMs) const
{
    struct Piece {
        Clock::time_point due;
        std::string bytes;
    };
    std::deque<Piece> held;
    bool open = true;
    while (open || !held.empty()) {
        int waitMs = -1;
        if (!held.empty()) {
            const auto left = std::chrono::ceil<milliseconds>(held.front().due - Clock::now()).count();
            waitMs = static_cast<int>(std::max<long>(left, 0));
        }
        pollfd ready{from, static_cast<short>(open ? POLLIN : 0), 0};
        if (poll(&ready, open ? 1 : 0, waitMs) > 0) {
            std::string bytes(65536, '\0');
            const ssize_t got = recv(from, bytes.data(), bytes.size(), 0);
            open = got > 0;
            if (open) {
                bytes.resize(static_cast<std::size_t>(got));
                held.push_back({Clock::now() + milliseconds(m_roundTripMs / 2 + extraMs), std::move(bytes)});
                extraMs = 0;
            }
        }
        while (!held.empty() && held.front().due <= Clock::now()) {
            const std::string& bytes = held.front().bytes;
            if (send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0)
                return;
            held.pop_front();
        }
    }
    shutdown(to, SHUT_WR);
}
