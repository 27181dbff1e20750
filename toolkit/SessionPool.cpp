#include "toolkit/SessionPool.h"

#include <chrono>
#include <csignal>
#include <mutex>
#include <new>
#include <vector>

namespace toolkit {

using Clock = std::chrono::steady_clock;

struct Session {
    std::unique_ptr<CURLSH, decltype(&curl_share_cleanup)> tlsSessions{curl_share_init(),
                                                                       &curl_share_cleanup};
    /// Keeps one connection.
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> multi{curl_multi_init(), &curl_multi_cleanup};
    curl_socket_t kept = CURL_SOCKET_BAD;
    /// What it served last, and until when.
    Exchange lastExchange = Exchange::Write;
    Clock::time_point lastUse;
};

namespace {

constexpr std::size_t kMaxIdle = 8;

/// For how long after a read its connection is trusted with a write: less than common servers keep an idle
/// one, so that hardly a write meets a farewell that is still on its way.
constexpr std::chrono::seconds kMaxIdleBeforeWrite{3};

/// The idle sessions of the process.
struct Pool {
    Pool()
    {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        idle.reserve(kMaxIdle);
#ifdef SIGPIPE
        // With CURLOPT_NOSIGNAL a TLS library may still write to a connection that the peer has closed.
        const auto previous = std::signal(SIGPIPE, SIG_IGN);
        if (previous != SIG_DFL && previous != SIG_ERR)
            std::signal(SIGPIPE, previous);
#endif
    }

    std::mutex mutex;
    /// Guarded by the mutex.
    std::vector<std::unique_ptr<Session>> idle;
};

Pool& ThePool()
{
    // Never destroyed: a worker thread may still be in a transfer while the process ends.
    static auto* const pool = new Pool;
    return *pool;
}

std::unique_ptr<Session> TakeSession()
{
    Pool& pool = ThePool();
    const std::lock_guard<std::mutex> lock(pool.mutex);
    if (pool.idle.empty())
        return std::make_unique<Session>();
    auto session = std::move(pool.idle.back());
    pool.idle.pop_back();
    return session;
}

} // namespace

SessionLease::SessionLease() : m_session(TakeSession()), m_easy(curl_easy_init(), &curl_easy_cleanup)
{
    CURLSH* const share = m_session->tlsSessions.get();
    if (!m_easy || curl_multi_setopt(Multi(), CURLMOPT_MAXCONNECTS, 1L) != CURLM_OK ||
        curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION) != CURLSHE_OK ||
        curl_easy_setopt(Easy(), CURLOPT_SHARE, share) != CURLE_OK)
        throw std::bad_alloc();
}

SessionLease::~SessionLease()
{
    if (!m_keeps)
        m_session->kept = CURL_SOCKET_BAD;
    curl_multi_remove_handle(Multi(), Easy());
    m_easy.reset();
    Pool& pool = ThePool();
    const std::lock_guard<std::mutex> lock(pool.mutex);
    if (pool.idle.size() < kMaxIdle)
        pool.idle.push_back(std::move(m_session));
}

CURLM* SessionLease::Multi() const
{
    return m_session->multi.get();
}

bool SessionLease::MayReuse(Exchange exchange) const
{
    if (exchange == Exchange::Write && (m_session->lastExchange != Exchange::Read ||
                                        Clock::now() - m_session->lastUse > kMaxIdleBeforeWrite))
        return false;
    curl_waitfd kept{m_session->kept, CURL_WAIT_POLLIN, 0};
    // Not by the count of ready sockets: newer versions of libcurl count connections that they are closing.
    return kept.fd != CURL_SOCKET_BAD && curl_multi_wait(Multi(), &kept, 1, 0, nullptr) == CURLM_OK &&
           kept.revents == 0;
}

void SessionLease::KeepConnection(Exchange exchange)
{
    m_keeps = curl_easy_getinfo(Easy(), CURLINFO_ACTIVESOCKET, &m_session->kept) == CURLE_OK;
    m_session->lastExchange = exchange;
    m_session->lastUse = Clock::now();
}

} // namespace toolkit
