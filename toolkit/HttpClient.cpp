#include "toolkit/HttpClient.h"

#include "toolkit/FreshFile.h"
#include "toolkit/HttpText.h"
#include "toolkit/Multipart.h"
#include "toolkit/Transfer.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace toolkit {
namespace {

constexpr std::uint64_t kMaxAnswerBytes = 256ull << 20;
constexpr std::uint64_t kMaxDownloadBytes = 1ull << 30;

long Milliseconds(int seconds)
{
    return std::clamp(seconds, 1, 24 * 60 * 60) * 1000L;
}

} // namespace

void HttpClient::SetConnectTimeout(int seconds)
{
    if (IsValid())
        m_connectTimeoutMs = Milliseconds(seconds);
}

void HttpClient::SetReadTimeout(int seconds)
{
    if (IsValid())
        m_readTimeoutMs = Milliseconds(seconds);
}

void HttpClient::SetTrustAnchors(std::filesystem::path pemFile)
{
    if (IsValid())
        m_trustAnchors = std::move(pemFile);
}

void HttpClient::SetRequestHeader(std::string name, std::string value)
{
    if (!IsValid())
        return;
    const auto same = std::find_if(m_headers.begin(), m_headers.end(),
                                   [&](const auto& header) { return EqualNoCase(header.first, name); });
    if (same == m_headers.end())
        m_headers.emplace_back(std::move(name), std::move(value));
    else
        same->second = std::move(value);
}

template <typename Operation>
bool HttpClient::Attempt(Operation operation)
{
    m_lastStatus = 0;
    m_lastSucceeded = false;
    try {
        if (!IsValid())
            throw std::runtime_error(kNotValid);
        operation();
        m_lastError.clear();
        m_lastSucceeded = true;
    } catch (const std::bad_alloc&) {
        m_lastError = "Out of memory";
    } catch (const std::exception& failure) {
        m_lastError = failure.what();
    }
    return m_lastSucceeded;
}

void HttpClient::Run(TransferOptions options, const HeaderList& headers)
{
    for (const auto& [name, value] : headers)
        options.headers.push_back(HeaderLine(name, value));
    options.connectTimeoutMs = m_connectTimeoutMs;
    options.readTimeoutMs = m_readTimeoutMs;
    options.trustAnchors = m_trustAnchors;
    const TransferResult result = RunTransfer(options);
    m_lastStatus = result.status;
    if (!result.error.empty())
        throw std::runtime_error(result.error);
}

std::unique_ptr<HttpResponse> HttpClient::RunForAnswer(TransferOptions options, const HeaderList& headers)
{
    std::string body;
    options.maxBytes = kMaxAnswerBytes;
    options.sink = [&body](std::string_view bytes) {
        body.append(bytes);
        return true;
    };
    Run(std::move(options), headers);
    return std::make_unique<HttpResponse>(std::move(body));
}

std::unique_ptr<HttpResponse> HttpClient::PostJson(const std::string& url, const std::string& json,
                                                   Exchange exchange)
{
    std::unique_ptr<HttpResponse> response;
    Attempt([&] {
        HeaderList headers = m_headers;
        if (!HasHeader(headers, "Content-Type"))
            headers.emplace_back("Content-Type", "application/json");
        TransferOptions options;
        options.url = url;
        options.text = &json;
        options.exchange = exchange;
        response = RunForAnswer(std::move(options), headers);
    });
    return response;
}

std::unique_ptr<HttpResponse> HttpClient::SynchronousRequest(const std::string& domain, int port, bool tls,
                                                             const HttpRequest& request)
{
    std::unique_ptr<HttpResponse> response;
    Attempt([&] {
        if (!request.IsValid())
            throw std::runtime_error(kNotValid);
        if (request.m_verb != "POST" || request.m_contentType != "multipart/form-data")
            throw std::runtime_error("Only a POST of multipart/form-data can be sent");

        // The request's own headers come last and in their order; the form brings its own content type.
        HeaderList headers;
        for (const auto& header : m_headers) {
            if (!HasHeader(request.m_headers, header.first) && !EqualNoCase(header.first, "Content-Type"))
                headers.push_back(header);
        }
        headers.insert(headers.end(), request.m_headers.begin(), request.m_headers.end());
        Multipart form(request);
        TransferOptions options;
        options.url = UrlOf(domain, port, tls, request.m_path);
        options.form = &form;
        response = RunForAnswer(std::move(options), headers);
    });
    return response;
}

bool HttpClient::Download(const std::string& url, const std::filesystem::path& file)
{
    return Attempt([&] {
        std::filesystem::path partPath = file;
        partPath += ".part";
        FreshFile part(partPath);

        TransferOptions options;
        options.url = url;
        options.exchange = Exchange::Read;
        options.download = true;
        options.maxBytes = kMaxDownloadBytes;
        options.sink = [&part](std::string_view bytes) { return part.Write(bytes); };
        Run(std::move(options), m_headers);
        if (m_lastStatus != 200)
            throw std::runtime_error("The server answered with status " + std::to_string(m_lastStatus));
        part.FinishAs(file);
    });
}

} // namespace toolkit
