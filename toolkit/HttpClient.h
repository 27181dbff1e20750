#pragma once

#include "toolkit/HttpRequest.h"
#include "toolkit/HttpResponse.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace toolkit
{

/// Whether an exchange may be repeated on a new connection when a kept one turns out dead. A write is sent
/// once at most, whatever the connection does.
enum class Exchange { Read, Write };

/// One HTTP client for one request: settings in, outcome out. Synchronous; used on one thread. Connections
/// outlive the client in a process-wide pool. Never throws: a failure is an absent result with LastErrorText.
class HttpClient
{
public:
    /// Bounds name look-up, TCP and TLS together. Whole seconds; default 30.
    void SetConnectTimeout(int seconds);
    /// Longest time without a single byte of progress once the request goes out. Whole seconds; default 30.
    void SetReadTimeout(int seconds);
    /// A PEM file that is then the only trust anchor; empty (the default) means the system's store.
    void SetTrustAnchors(std::filesystem::path pemFile);
    /// A header for the requests of this client; a second call with the same name replaces the value.
    void SetRequestHeader(std::string name, std::string value);

    /// POSTs @p json to the absolute @p url. Null when there is no whole answer; an HTTP error status is an
    /// answer like any other.
    std::unique_ptr<HttpResponse> PostJson(const std::string& url, const std::string& json,
                                           Exchange exchange = Exchange::Write);

    /// Sends a prepared multipart request (a write) to @p domain. Null when there is no whole answer.
    std::unique_ptr<HttpResponse> SynchronousRequest(const std::string& domain, int port, bool tls,
                                                     const HttpRequest& request);

    /// GETs @p url into @p file: written to "<file>.part", renamed when whole. True only for status 200 and a
    /// whole body; otherwise @p file is as it was and no part file remains.
    bool Download(const std::string& url, const std::filesystem::path& file);

    /// HTTP status of the last response; 0 when there was none.
    int LastStatus() const { return m_lastStatus; }
    /// Outcome of the last operation on this object.
    bool LastCallSucceeded() const { return m_lastSucceeded; }
    /// Why the last operation failed, in words; empty after a success.
    const std::string& LastErrorText() const { return m_lastError; }

private:
    long m_connectTimeoutMs = 30000;
    long m_readTimeoutMs = 30000;
    std::filesystem::path m_trustAnchors;
    std::vector<std::pair<std::string, std::string>> m_headers;
    int m_lastStatus = 0;
    bool m_lastSucceeded = false;
    std::string m_lastError;
};

} // namespace toolkit
