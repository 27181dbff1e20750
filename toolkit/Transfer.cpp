#include "toolkit/Transfer.h"

#include "toolkit/Gunzip.h"
#include "toolkit/HttpText.h"
#include "toolkit/Multipart.h"
#include "toolkit/ResponseHead.h"
#include "toolkit/SessionPool.h"
#include "toolkit/Url.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>

#ifndef _WIN32
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#endif

namespace toolkit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr long kMaxRedirects = 5;

constexpr const char* kTooLarge = "The answer is too large";
constexpr const char* kCutOff = "The answer was cut off";
constexpr const char* kNoAnswer = "The connection ended before the answer came";

/// For how long an idle connection is trusted to be alive.
constexpr long kMaxIdleSeconds = 30;
constexpr long kMaxPollMs = 1000;

std::string Seconds(long ms)
{
    return std::to_string(ms / 1000) + (ms == 1000 ? " second" : " seconds");
}

class Transfer
{
public:
    explicit Transfer(const TransferOptions& options);

    CURLcode Drive();
    int Status() const { return static_cast<int>(Info<long>(CURLINFO_RESPONSE_CODE)); }
    /// Why there is no whole answer; empty when there is one.
    std::string FailureWords(CURLcode code) const;
    /// After an exchange that has ended whole.
    void KeepConnection() { m_session.KeepConnection(m_options.exchange); }

private:
    static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    static int OnSocket(void* self, curl_socket_t socket, curlsocktype) noexcept;
    static int OnRequestGoesOut(void* self, char*, char*, int, int) noexcept;

    CURL* Easy() const { return m_session.Easy(); }
    template <typename Value>
    void Set(CURLoption option, Value value);
    template <typename Value>
    Value Info(CURLINFO info) const;

    void SetProtocols();
    void SetTrust();
    void SetRequest();
    /// False, with the words of it, when the request of a write has gone out before.
    bool MayGoOut();
    bool Take(std::string_view bytes);
    bool Deliver(std::string_view bytes);
    void NoteProgress();
    /// Whether the whole answer is there although the request may not be out: a server need not wait for the
    /// end of an upload, and may leave the rest of it unread.
    bool IsAnsweredEarly() const;
    long ReadTimeLeftMs() const;

    const TransferOptions& m_options;
    std::string m_anchors;
    std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> m_headers{nullptr, &curl_slist_free_all};
    MimePtr m_form{nullptr, &curl_mime_free};
    char m_curlText[CURL_ERROR_SIZE] = "";

    ResponseHead m_head;
    /// There from the first byte of a compressed body.
    std::optional<Gunzip> m_gunzip;
    /// Bytes of the body, decoded.
    std::uint64_t m_bodyBytes = 0;
    /// Why this side ended the transfer; comes before libcurl's words.
    std::string m_fault;

    /// Bytes sent and received so far, and when that last changed.
    curl_off_t m_moved = 0;
    Clock::time_point m_lastMove;
    /// The hop whose request went out last: between the hops of a redirect the connect time-out holds.
    long m_hop = -1;

    /// The last, so that libcurl lets go of the others before they die.
    SessionLease m_session;
};

template <typename Value>
void Transfer::Set(CURLoption option, Value value)
{
    if (const CURLcode code = curl_easy_setopt(Easy(), option, value); code != CURLE_OK)
        throw std::runtime_error(curl_easy_strerror(code));
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
        m_fault = "The answer cannot be written";
    return m_fault.empty();
}

bool Transfer::MayGoOut()
{
    // libcurl sends a request again, unasked, when a kept connection dies under it; a write may have been
    // carried out by then. Asked for every socket and every request, so that not even a connection is opened.
    if (m_options.exchange == Exchange::Write && m_hop >= 0)
        m_fault = kNoAnswer;
    return m_fault.empty();
}

int Transfer::OnSocket(void* self, [[maybe_unused]] curl_socket_t socket, curlsocktype) noexcept
try {
#ifndef _WIN32
    // A program that is started meanwhile must not hold the connection open.
    fcntl(socket, F_SETFD, FD_CLOEXEC);
#ifdef TCP_NOTSENT_LOWAT
    // Otherwise the system may take megabytes of an upload at once and then, on a slow line, nothing for a
    // minute, which looks like a stalled transfer.
    const int bytes = 64 * 1024;
    setsockopt(socket, IPPROTO_TCP, TCP_NOTSENT_LOWAT, &bytes, sizeof bytes);
#endif
#endif
    return static_cast<Transfer*>(self)->MayGoOut() ? CURL_SOCKOPT_OK : CURL_SOCKOPT_ERROR;
} catch (...) {
    return CURL_SOCKOPT_ERROR;
}

int Transfer::OnRequestGoesOut(void* self, char*, char*, int, int) noexcept
try {
    auto& transfer = *static_cast<Transfer*>(self);
    if (!transfer.MayGoOut())
        return CURL_PREREQFUNC_ABORT;
    transfer.m_lastMove = Clock::now();
    transfer.m_hop = transfer.Info<long>(CURLINFO_REDIRECT_COUNT);
    return CURL_PREREQFUNC_OK;
} catch (...) {
    return CURL_PREREQFUNC_ABORT;
}

Transfer::Transfer(const TransferOptions& options) : m_options(options)
{
    Set(CURLOPT_ERRORBUFFER, m_curlText);
    Set(CURLOPT_NOSIGNAL, 1L);
#if LIBCURL_VERSION_NUM >= 0x075700
    // A look-up that outlasts the connect time-out is left to its own thread.
    Set(CURLOPT_QUICK_EXIT, 1L);
#endif
    Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    Set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    Set(CURLOPT_SOCKOPTFUNCTION, &Transfer::OnSocket);
    Set(CURLOPT_SOCKOPTDATA, this);
    Set(CURLOPT_CONNECTTIMEOUT_MS, m_options.connectTimeoutMs);
    Set(CURLOPT_MAXAGE_CONN, kMaxIdleSeconds);
    Set(CURLOPT_FRESH_CONNECT, m_session.MayReuse(m_options.exchange) ? 0L : 1L);
    SetProtocols();
    SetTrust();
    SetRequest();

    Set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(m_options.maxBytes));
    Set(CURLOPT_HTTP_CONTENT_DECODING, 0L);
    Set(CURLOPT_HEADERFUNCTION, &Transfer::OnHeader);
    Set(CURLOPT_HEADERDATA, this);
    Set(CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
    Set(CURLOPT_WRITEDATA, this);
    Set(CURLOPT_PREREQFUNCTION, &Transfer::OnRequestGoesOut);
    Set(CURLOPT_PREREQDATA, this);
}

void Transfer::SetProtocols()
{
    const auto origin = OriginOf(m_options.url);
    if (!origin)
        throw std::runtime_error("The address is no whole http:// or https:// address");
    Set(CURLOPT_URL, m_options.url.c_str());
    // A redirect must pass both lists.
    const bool mayUpgrade = !origin->tls && m_options.download;
#if LIBCURL_VERSION_NUM >= 0x075500
    Set(CURLOPT_PROTOCOLS_STR, origin->tls ? "https" : mayUpgrade ? "http,https" : "http");
    Set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
#else
    Set(CURLOPT_PROTOCOLS, static_cast<long>((origin->tls || mayUpgrade ? CURLPROTO_HTTPS : 0) |
                                             (origin->tls ? 0 : CURLPROTO_HTTP)));
    Set(CURLOPT_REDIR_PROTOCOLS, static_cast<long>(CURLPROTO_HTTPS));
#endif
    Set(CURLOPT_FOLLOWLOCATION, m_options.download ? 1L : 0L);
    Set(CURLOPT_MAXREDIRS, kMaxRedirects);
}

void Transfer::SetTrust()
{
    Set(CURLOPT_SSL_VERIFYPEER, 1L);
    Set(CURLOPT_SSL_VERIFYHOST, 2L);
    Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));

#ifdef _WIN32
    // A revocation list that cannot be reached does not count as a refusal.
    Set(CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_REVOKE_BEST_EFFORT));
#else
    // libcurl keeps the parsed store between connections only when it is one file and no folder.
    static const char* const systemBundle = curl_version_info(CURLVERSION_NOW)->cainfo;
    if (systemBundle)
        Set(CURLOPT_CAINFO, systemBundle);
    if (systemBundle || !m_options.trustAnchors.empty())
        Set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
#endif
    if (m_options.trustAnchors.empty())
        return;
    // Not by the file's name, which says nothing about what is in it now: libcurl tells connections and TLS
    // sessions apart by the bytes.
    std::ifstream file(m_options.trustAnchors, std::ios::binary);
    m_anchors.assign(std::istreambuf_iterator<char>(file), {});
    if (m_anchors.empty())
        throw std::runtime_error("Cannot read the trust anchors in " + m_options.trustAnchors.u8string());
    curl_blob blob{m_anchors.data(), m_anchors.size(), CURL_BLOB_NOCOPY};
    Set(CURLOPT_CAINFO_BLOB, &blob);
}

void Transfer::SetRequest()
{
    // With "Expect: 100-continue" a large POST waits a second for servers that do not know it.
    m_headers.reset(curl_slist_append(nullptr, "Expect:"));
    for (const auto& [name, value] : m_options.headers) {
        if (!m_headers || !curl_slist_append(m_headers.get(), HeaderLine(name, value).c_str()))
            throw std::bad_alloc();
    }
    Set(CURLOPT_HTTPHEADER, m_headers.get());

    if (m_options.text) {
        Set(CURLOPT_POST, 1L);
        Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_options.text->size()));
        Set(CURLOPT_POSTFIELDS, m_options.text->data());
    } else if (m_options.form) {
        m_form = m_options.form->Build(Easy());
        Set(CURLOPT_MIMEPOST, m_form.get());
    }
    if (m_options.download)
        Set(CURLOPT_FAILONERROR, 1L);
    else
        Set(CURLOPT_ACCEPT_ENCODING, "gzip");
}

void Transfer::NoteProgress()
{
    const curl_off_t moved = Info<long>(CURLINFO_REQUEST_SIZE) + Info<long>(CURLINFO_HEADER_SIZE) +
                             Info<curl_off_t>(CURLINFO_SIZE_UPLOAD_T) +
                             Info<curl_off_t>(CURLINFO_SIZE_DOWNLOAD_T);
    if (moved != m_moved)
        m_lastMove = Clock::now();
    m_moved = moved;
}

bool Transfer::IsAnsweredEarly() const
{
    return m_options.exchange == Exchange::Write &&
           Info<curl_off_t>(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T) == Info<curl_off_t>(CURLINFO_SIZE_DOWNLOAD_T);
}

long Transfer::ReadTimeLeftMs() const
{
    if (m_hop != Info<long>(CURLINFO_REDIRECT_COUNT))
        return m_options.readTimeoutMs;
    const auto idle = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_lastMove);
    return m_options.readTimeoutMs - static_cast<long>(idle.count());
}

CURLcode Transfer::Drive()
{
    const auto require = [](CURLMcode code) {
        if (code != CURLM_OK)
            throw std::runtime_error(curl_multi_strerror(code));
    };
    require(curl_multi_add_handle(m_session.Multi(), Easy()));
    for (;;) {
        int running = 0;
        require(curl_multi_perform(m_session.Multi(), &running));
        if (running == 0) {
            const CURLMsg* const outcome = curl_multi_info_read(m_session.Multi(), &running);
            return outcome ? outcome->data.result : CURLE_FAILED_INIT;
        }
        NoteProgress();
        const long leftMs = ReadTimeLeftMs();
        if (leftMs <= 0) {
            if (!IsAnsweredEarly())
                m_fault = "Timed out: no data for " + Seconds(m_options.readTimeoutMs);
            return CURLE_OPERATION_TIMEDOUT;
        }
        // libcurl cuts the wait where a time-out of its own comes first.
        const int waitMs = static_cast<int>(std::min(leftMs, kMaxPollMs));
        require(curl_multi_poll(m_session.Multi(), nullptr, 0, waitMs, nullptr));
    }
}

std::string Transfer::FailureWords(CURLcode code) const
{
    if (!m_fault.empty())
        return m_fault;
    if (m_options.form && !m_options.form->ReadError().empty())
        return m_options.form->ReadError();
    if ((code == CURLE_SEND_ERROR || code == CURLE_OPERATION_TIMEDOUT) && IsAnsweredEarly())
        code = CURLE_OK;
    std::string words = m_curlText[0] ? m_curlText : curl_easy_strerror(code);
    switch (code) {
    case CURLE_OK:
        if (Status() < 200)
            return "The server gave no final answer";
        return m_head.DelimitsBody(Status()) && (!m_gunzip || m_gunzip->IsWhole()) ? "" : kCutOff;
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

} // namespace

void RunTransfer(const TransferOptions& options, int* status)
{
    Transfer transfer(options);
    const CURLcode code = transfer.Drive();
    *status = transfer.Status();
    const std::string words = transfer.FailureWords(code);
    if (!words.empty())
        throw std::runtime_error(words);
    if (code == CURLE_OK)
        transfer.KeepConnection();
}

} // namespace toolkit
