#pragma once

#include "toolkit/HttpRequest.h"
#include "toolkit/HttpResponse.h"
#include "toolkit/Object.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

namespace toolkit {

struct TransferOptions;

/// Whether an exchange may be repeated on a new connection when a kept one turns out dead. A write is sent
/// once at most, whatever the connection does.
enum class Exchange { Read, Write };

/// One HTTP client for one request: settings in, outcome out. Synchronous; used on one thread. Connections
/// outlive the client in a process-wide pool. An operation that fails gives an absent or false result with
/// LastErrorText, not an exception; a setter throws std::bad_alloc at most.
class HttpClient : public Object<HttpClient>
{
public:
    /// Bounds name look-up, TCP and TLS together, for each connection that an operation opens. Whole seconds
    /// from 1 to a day; default 30.
    void SetConnectTimeout(int seconds) { m_connectTimeoutMs = Milliseconds(seconds); }
    int ConnectTimeoutMs() const { return m_connectTimeoutMs; }
    /// Longest time without a single byte of progress once the request goes out; what the system has taken to
    /// send counts as progress. Whole seconds from 1 to a day; default 60.
    void SetReadTimeout(int seconds) { m_readTimeoutMs = Milliseconds(seconds); }
    int ReadTimeoutMs() const { return m_readTimeoutMs; }
    /// A PEM file that is then the only trust anchor; empty (the default) means the system's store. When the
    /// file cannot be read, every request fails. A change of the file counts for new connections.
    void SetTrustAnchors(std::filesystem::path pemFile) { m_trustAnchors = std::move(pemFile); }
    /// A header for the requests of this client; a second call with the same name replaces the value. One
    /// that holds CR, LF or NUL makes every request fail.
    void SetRequestHeader(std::string name, std::string value);

    /// POSTs @p json to the absolute @p url. Null when there is no whole answer; an HTTP error status is an
    /// answer like any other.
    std::unique_ptr<HttpResponse> PostJson(const std::string& url, const std::string& json,
                                           Exchange exchange = Exchange::Write);

    /// Sends a prepared multipart request (a write) to @p domain. Null when there is no whole answer.
    std::unique_ptr<HttpResponse> SynchronousRequest(const std::string& domain, int port, bool tls,
                                                     const HttpRequest& request);

    /// GETs @p url into @p file: written to "<file>.part", renamed when whole. True only for status 200 and a
    /// whole body of at most 1 GiB; otherwise @p file is as it was and no part file remains. A file or a link
    /// at "<file>.part" is replaced, a folder with something in it fails the download. At most five redirects
    /// are followed, to https only.
    bool Download(const std::string& url, const std::filesystem::path& file);

    /// HTTP status of the last exchange; 0 when there was no response.
    int LastStatus() const { return IsValid() ? m_lastStatus : 0; }
    /// Outcome of the last operation on this object.
    bool LastCallSucceeded() const { return LastStatus() != 0 && LastErrorText().empty(); }

private:
    static int Milliseconds(int seconds) { return std::clamp(seconds, 1, 24 * 60 * 60) * 1000; }
    /// Carries out the exchange with this client's settings. Throws unless the answer is whole.
    void Run(TransferOptions options);
    std::unique_ptr<HttpResponse> RunForAnswer(TransferOptions options);

    int m_connectTimeoutMs = 30000;
    int m_readTimeoutMs = 60000;
    std::filesystem::path m_trustAnchors;
    HeaderList m_headers;
    int m_lastStatus = 0;
};

} // namespace toolkit
