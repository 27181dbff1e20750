#pragma once

#include "toolkit/HttpClient.h"

#include <curl/curl.h>

#include <memory>

namespace toolkit {

struct Session;

/// A fresh easy handle for one exchange, and an idle session of the process for it to run on: the multi
/// handle with what it keeps, open connections and the parsed trust store, and the TLS sessions. The session
/// used last goes out first, since its connections are the freshest; at most eight stay idle. Used on one
/// thread.
class SessionLease
{
public:
    /// Throws std::bad_alloc.
    SessionLease();
    ~SessionLease();
    SessionLease(const SessionLease&) = delete;
    SessionLease& operator=(const SessionLease&) = delete;

    CURL* Easy() const { return m_easy.get(); }
    CURLM* Multi() const;
    /// Whether @p exchange may run on the kept connection. On none with something to read: what comes before
    /// a request goes out was not asked for, and would be taken for the answer, or is the peer's farewell. A
    /// write, which nobody repeats when that connection turns out dead, only soon after a read.
    bool MayReuse(Exchange exchange) const;
    /// The exchange has ended whole: its connection may be used again.
    void KeepConnection(Exchange exchange);

private:
    std::unique_ptr<Session> m_session;
    bool m_keeps = false;
    /// libcurl 7.88 reads freed memory when a used one meets an answer that begins with a folded header.
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> m_easy;
};

} // namespace toolkit
