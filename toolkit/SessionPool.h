#pragma once

#include <curl/curl.h>

#include <memory>
#include <mutex>
#include <vector>

namespace toolkit {

/// A libcurl easy handle and the multi handle that drives it. The two keep open connections, TLS sessions and
/// the parsed trust store from one exchange to the next. Used by one thread at a time.
class Session
{
public:
    /// Throws std::bad_alloc.
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    CURL* Easy() const { return m_easy; }
    CURLM* Multi() const { return m_multi; }

private:
    CURL* m_easy;
    CURLM* m_multi;
};

/// The idle sessions of the process. The last one returned goes out first, since its connections are the
/// freshest; at most eight stay. Any thread.
class SessionPool
{
public:
    static SessionPool& Instance();

    /// An idle session with every option back at its default, or a new one.
    std::unique_ptr<Session> Take();
    void Return(std::unique_ptr<Session> session);

private:
    SessionPool();

    std::mutex m_mutex;
    /// Guarded by m_mutex.
    std::vector<std::unique_ptr<Session>> m_idle;
};

/// A session that goes back to the pool at the end of the scope.
class SessionLease
{
public:
    SessionLease() : m_session(SessionPool::Instance().Take()) {}
    ~SessionLease() { SessionPool::Instance().Return(std::move(m_session)); }
    SessionLease(const SessionLease&) = delete;
    SessionLease& operator=(const SessionLease&) = delete;

    const Session* operator->() const { return m_session.get(); }

private:
    std::unique_ptr<Session> m_session;
};

} // namespace toolkit
