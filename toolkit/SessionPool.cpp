#include "toolkit/SessionPool.h"

#include <csignal>
#include <new>

namespace toolkit {
namespace {

constexpr std::size_t kMaxIdle = 8;

} // namespace

Session::Session() : m_easy(curl_easy_init()), m_multi(curl_multi_init())
{
    if (m_easy && m_multi)
        return;
    curl_easy_cleanup(m_easy);
    curl_multi_cleanup(m_multi);
    throw std::bad_alloc();
}

Session::~Session()
{
    curl_easy_cleanup(m_easy);
    curl_multi_cleanup(m_multi);
}

SessionPool::SessionPool()
{
    curl_global_init(CURL_GLOBAL_DEFAULT);
    m_idle.reserve(kMaxIdle);
#ifdef SIGPIPE
    // With CURLOPT_NOSIGNAL a TLS library may still write to a connection that the peer has closed.
    const auto previous = std::signal(SIGPIPE, SIG_IGN);
    if (previous != SIG_DFL && previous != SIG_ERR)
        std::signal(SIGPIPE, previous);
#endif
}

SessionPool& SessionPool::Instance()
{
    // Never destroyed: a worker thread may still be in a transfer while the process ends.
    static auto* const pool = new SessionPool;
    return *pool;
}

std::unique_ptr<Session> SessionPool::Take()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_idle.empty()) {
            auto session = std::move(m_idle.back());
            m_idle.pop_back();
            return session;
        }
    }
    return std::make_unique<Session>();
}

void SessionPool::Return(std::unique_ptr<Session> session)
{
    curl_easy_reset(session->Easy());
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_idle.size() < kMaxIdle)
        m_idle.push_back(std::move(session));
}

} // namespace toolkit
