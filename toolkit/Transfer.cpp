#include "toolkit/Transfer.h"

#include "toolkit/Gunzip.h"
#include "toolkit/HttpText.h"
#include "toolkit/Multipart.h"
#include "toolkit/ResponseHead.h"
#include "toolkit/SessionPool.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <optional>

#ifdef _WIN32
#include <fstream>
#include <iterator>
#else
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace toolkit {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr long kMaxRedirects = 5;

constexpr const char* kTooLarge = "The answer is too large";
constexpr const char* kNotWritten = "The answer cannot be written";
constexpr const char* kCutOff = "The answer was cut off";

/// Seconds for which an idle connection is trusted to be alive.
constexpr long kMaxIdleSeconds = 30;

struct SlistDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using SlistPtr = std::unique_ptr<curl_slist, SlistDeleter>;

std::string Seconds(long ms)
{
    return std::to_string(ms / 1000) + (ms == 1000 ? " second" : " seconds");
}

#ifndef _WIN32
int PrepareSocket(void*, curl_socket_t socket, curlsocktype) noexcept
{
    // A program that is started meanwhile must not hold the connection open.
    fcntl(socket, F_SETFD, FD_CLOEXEC);
#ifdef TCP_NOTSENT_LOWAT
    // Otherwise the system may take megabytes of an upload at once and then, on a slow line, nothing for a
    // minute, which looks like a stalled transfer.
    const int bytes = 64 * 1024;
    setsockopt(socket, IPPROTO_TCP, TCP_NOTSENT_LOWAT, &bytes, sizeof bytes);
#endif
    return CURL_SOCKOPT_OK;
}
#endif

class Transfer
{
public:
    explicit Transfer(const TransferOptions& options) : m_options(options) {}

    TransferResult Run();

private:
    static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    static int OnRequestGoesOut(void* self, char*, char*, int, int) noexcept;

    CURL* Easy() const { return m_session->Easy(); }
    template <typename Value>
    void Set(CURLoption option, Value value);
    template <typename Value>
    Value Info(CURLINFO info) const;

    void SetUp();
    void SetUpScheme();
    void SetUpTrust();
    void SetUpBody();
    bool Take(std::string_view bytes);
    bool Deliver(std::string_view bytes);
    bool Drive();
    bool ClockRuns() const { return m_hop == Info<long>(CURLINFO_REDIRECT_COUNT); }
    bool Stalled();
    int PollMs() const;
    std::string ErrorText(CURLcode code, int status) const;

    const TransferOptions& m_options;
    SessionLease m_session;
    SlistPtr m_headers;
    MimePtr m_mime;
    /// The first option that libcurl refused.
    CURLcode m_setUp = CURLE_OK;
    char m_curlText[CURL_ERROR_SIZE] = "";

    ResponseHead m_head;
    /// There from the first byte of a compressed body.
    std::optional<Gunzip> m_gunzip;
    /// Bytes of the body, decoded.
    std::uint64_t m_bodyBytes = 0;
    /// What went wrong on this side; comes before libcurl's words.
    std::string m_fault;

    /// Bytes sent and received so far, and when that last changed.
    curl_off_t m_moved = 0;
    Clock::time_point m_lastMove;
    /// The hop whose request went out last: between the hops of a redirect the connect time-out holds.
    long m_hop = -1;
};

template <typename Value>
void Transfer::Set(CURLoption option, Value value)
{
    if (m_setUp == CURLE_OK)
        m_setUp = curl_easy_setopt(Easy(), option, value);
}

template <typename Value>
Value Transfer::Info(CURLINFO info) const
{
    Value value = 0;
    curl_easy_getinfo(Easy(), info, &value);
    return value;
}

std::size_t Transfer::OnHeader(char* data, std::size_t size, std::size_t count, void* self) noexcept
try {
    auto& transfer = *static_cast<Transfer*>(self);
    if (transfer.m_head.Add({data, size * count}))
        return size * count;
    transfer.m_fault = kTooLarge;
    return 0;
} catch (...) {
    return 0;
}

std::size_t Transfer::OnBody(char* data, std::size_t size, std::size_t count, void* self) noexcept
try {
    return static_cast<Transfer*>(self)->Take({data, size * count}) ? size * count : 0;
} catch (...) {
    return 0;
}

bool Transfer::Take(std::string_view bytes)
{
    if (m_options.download || m_head.Coding() == ContentCoding::None)
        return Deliver(bytes);
    if (m_head.Coding() == ContentCoding::Unknown) {
        m_fault = "The answer has an encoding that was not asked for";
        return false;
    }
    if (!m_gunzip)
        m_gunzip.emplace();
    const bool sound = m_gunzip->Add(bytes, [this](std::string_view plain) { return Deliver(plain); });
    if (!sound && m_fault.empty())
        m_fault = "The compression of the answer is damaged";
    return sound;
}

bool Transfer::Deliver(std::string_view bytes)
{
    m_bodyBytes += bytes.size();
    if (m_bodyBytes > m_options.maxBytes)
        m_fault = kTooLarge;
    else if (!m_options.sink(bytes))
        m_fault = kNotWritten;
    return m_fault.empty();
}

int Transfer::OnRequestGoesOut(void* self, char*, char*, int, int) noexcept
{
    auto& transfer = *static_cast<Transfer*>(self);
    transfer.m_lastMove = Clock::now();
    transfer.m_hop = transfer.Info<long>(CURLINFO_REDIRECT_COUNT);
    return CURL_PREREQFUNC_OK;
}

void Transfer::SetUp()
{
    Set(CURLOPT_ERRORBUFFER, m_curlText);
    Set(CURLOPT_NOSIGNAL, 1L);
#if LIBCURL_VERSION_NUM >= 0x075700
    // A look-up that outlasts the connect time-out is left to its own thread.
    Set(CURLOPT_QUICK_EXIT, 1L);
#endif
    Set(CURLOPT_URL, m_options.url.c_str());
    Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    Set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
#ifndef _WIN32
    Set(CURLOPT_SOCKOPTFUNCTION, &PrepareSocket);
#endif
    Set(CURLOPT_CONNECTTIMEOUT_MS, m_options.connectTimeoutMs);
    Set(CURLOPT_MAXAGE_CONN, kMaxIdleSeconds);
    // libcurl sends a request again when a kept connection dies under it. A write may have been carried out
    // by then, so it gets a connection of its own.
    Set(CURLOPT_FRESH_CONNECT, m_options.exchange == Exchange::Write ? 1L : 0L);
    Set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(m_options.maxBytes));
    SetUpScheme();
    SetUpTrust();
    SetUpBody();

    Set(CURLOPT_HEADERFUNCTION, &Transfer::OnHeader);
    Set(CURLOPT_HEADERDATA, this);
    Set(CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
    Set(CURLOPT_WRITEDATA, this);
    Set(CURLOPT_PREREQFUNCTION, &Transfer::OnRequestGoesOut);
    Set(CURLOPT_PREREQDATA, this);
}

void Transfer::SetUpScheme()
{
    const bool tls = StartsWithNoCase(m_options.url, "https://");
    if (!tls && !StartsWithNoCase(m_options.url, "http://"))
        m_fault = "The address is neither http:// nor https://";
    else if (BreaksLine(m_options.url))
        m_fault = "The address holds a line break or a NUL";
    // A redirect must pass both lists.
    const bool mayUpgrade = !tls && m_options.download;
#if LIBCURL_VERSION_NUM >= 0x075500
    Set(CURLOPT_PROTOCOLS_STR, tls ? "https" : mayUpgrade ? "http,https" : "http");
    Set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
#else
    Set(CURLOPT_PROTOCOLS,
        static_cast<long>((tls || mayUpgrade ? CURLPROTO_HTTPS : 0) | (tls ? 0 : CURLPROTO_HTTP)));
    Set(CURLOPT_REDIR_PROTOCOLS, static_cast<long>(CURLPROTO_HTTPS));
#endif
    Set(CURLOPT_FOLLOWLOCATION, m_options.download ? 1L : 0L);
    Set(CURLOPT_MAXREDIRS, kMaxRedirects);
}

void Transfer::SetUpTrust()
{
    Set(CURLOPT_SSL_VERIFYPEER, 1L);
    Set(CURLOPT_SSL_VERIFYHOST, 2L);
    Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));

    const auto& anchors = m_options.trustAnchors;
    bool readable = true;
#ifdef _WIN32
    // A revocation list that cannot be reached does not count as a refusal.
    Set(CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_REVOKE_BEST_EFFORT));
    if (!anchors.empty()) {
        std::ifstream file(anchors, std::ios::binary);
        readable = file.is_open();
        std::string pem(std::istreambuf_iterator<char>(file), {});
        curl_blob blob{pem.data(), pem.size(), CURL_BLOB_COPY};
        Set(CURLOPT_CAINFO_BLOB, &blob);
    }
#else
    static const char* const systemBundle = curl_version_info(CURLVERSION_NOW)->cainfo;
    if (const char* const bundle = anchors.empty() ? systemBundle : anchors.c_str()) {
        // libcurl keeps the parsed store between connections only when it is one file and no folder.
        Set(CURLOPT_CAINFO, bundle);
        Set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    readable = anchors.empty() || access(anchors.c_str(), R_OK) == 0;
#endif
    if (!readable)
        m_fault = "Cannot read the trust anchors in " + anchors.u8string();
    if (!anchors.empty()) {
        // libcurl knows the file by its name alone: a new connection must see what is in it now, not a store
        // or a TLS session from before.
#if LIBCURL_VERSION_NUM >= 0x075700
        Set(CURLOPT_CA_CACHE_TIMEOUT, 0L);
#endif
        Set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
    }
}

void Transfer::SetUpBody()
{
    // With "Expect: 100-continue" a large POST waits a second for servers that do not know it.
    m_headers.reset(curl_slist_append(nullptr, "Expect:"));
    for (const std::string& line : m_options.headers) {
        if (!m_headers || !curl_slist_append(m_headers.get(), line.c_str()))
            throw std::bad_alloc();
    }
    Set(CURLOPT_HTTPHEADER, m_headers.get());

    if (m_options.text) {
        Set(CURLOPT_POST, 1L);
        Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_options.text->size()));
        Set(CURLOPT_POSTFIELDS, m_options.text->data());
    } else if (m_options.form) {
        m_mime = m_options.form->Build(Easy());
        Set(CURLOPT_MIMEPOST, m_mime.get());
    }
    if (m_options.download)
        Set(CURLOPT_FAILONERROR, 1L);
    else
        Set(CURLOPT_ACCEPT_ENCODING, "gzip");
    Set(CURLOPT_HTTP_CONTENT_DECODING, 0L);
}

bool Transfer::Stalled()
{
    const curl_off_t moved = Info<long>(CURLINFO_REQUEST_SIZE) + Info<long>(CURLINFO_HEADER_SIZE) +
                             Info<curl_off_t>(CURLINFO_SIZE_UPLOAD_T) +
                             Info<curl_off_t>(CURLINFO_SIZE_DOWNLOAD_T);
    if (moved != m_moved) {
        m_moved = moved;
        m_lastMove = Clock::now();
    }
    return ClockRuns() && Clock::now() - m_lastMove >= milliseconds(m_options.readTimeoutMs);
}

int Transfer::PollMs() const
{
    // libcurl cuts the wait where a time-out of its own comes first.
    constexpr long longestMs = 1000;
    if (!ClockRuns())
        return longestMs;
    const auto idle = std::chrono::duration_cast<milliseconds>(Clock::now() - m_lastMove).count();
    return static_cast<int>(
        std::clamp<long>(m_options.readTimeoutMs - static_cast<long>(idle), 1, longestMs));
}

bool Transfer::Drive()
{
    for (;;) {
        int running = 0;
        CURLMcode code = curl_multi_perform(m_session->Multi(), &running);
        if (code == CURLM_OK && running == 0)
            return true;
        if (code == CURLM_OK && Stalled()) {
            m_fault = "Timed out: no data for " + Seconds(m_options.readTimeoutMs);
            return false;
        }
        if (code == CURLM_OK)
            code = curl_multi_poll(m_session->Multi(), nullptr, 0, PollMs(), nullptr);
        if (code != CURLM_OK) {
            m_fault = curl_multi_strerror(code);
            return false;
        }
    }
}

std::string Transfer::ErrorText(CURLcode code, int status) const
{
    if (!m_fault.empty())
        return m_fault;
    if (m_options.form && !m_options.form->ErrorText().empty())
        return m_options.form->ErrorText();
    std::string words = m_curlText[0] ? m_curlText : curl_easy_strerror(code);
    switch (code) {
    case CURLE_OK:
        if (status < 200)
            return "The server gave no final answer";
        return m_head.ShowsEndOfBody(status) && (!m_gunzip || m_gunzip->IsWhole()) ? "" : kCutOff;
    case CURLE_OPERATION_TIMEDOUT:
        return "Timed out: no connection within " + Seconds(m_options.connectTimeoutMs);
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
        return std::string(kCutOff) + ": " + words;
    case CURLE_FILESIZE_EXCEEDED:
        return kTooLarge;
    default:
        return words;
    }
}

TransferResult Transfer::Run()
{
    SetUp();
    if (m_setUp != CURLE_OK || !m_fault.empty())
        return {0, ErrorText(m_setUp, 0)};

    if (curl_multi_add_handle(m_session->Multi(), Easy()) != CURLM_OK)
        return {0, "The transfer cannot be started"};
    CURLcode code = CURLE_ABORTED_BY_CALLBACK;
    const bool done = Drive();
    int pending = 0;
    if (const CURLMsg* const message = curl_multi_info_read(m_session->Multi(), &pending); done && message)
        code = message->data.result;
    const int status = static_cast<int>(Info<long>(CURLINFO_RESPONSE_CODE));
    curl_multi_remove_handle(m_session->Multi(), Easy());
    return {status, ErrorText(code, status)};
}

} // namespace

TransferResult RunTransfer(const TransferOptions& options)
{
    return Transfer(options).Run();
}

} // namespace toolkit
