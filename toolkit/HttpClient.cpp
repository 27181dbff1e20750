#include "toolkit/HttpClient.h"

#include "toolkit/FreshFile.h"
#include "toolkit/HttpText.h"
#include "toolkit/Multipart.h"
#include "toolkit/Transfer.h"
#include "toolkit/Url.h"

#include <stdexcept>

namespace toolkit {
namespace {

constexpr std::uint64_t kMaxAnswerBytes = 256ull << 20;
constexpr std::uint64_t kMaxDownloadBytes = 1ull << 30;

} // namespace

void HttpClient::SetRequestHeader(std::string name, std::string value)
{
    RemoveHeader(&m_headers, name);
    m_headers.emplace_back(std::move(name), std::move(value));
}

void HttpClient::Run(TransferOptions options)
{
    options.connectTimeoutMs = m_connectTimeoutMs;
    options.readTimeoutMs = m_readTimeoutMs;
    options.trustAnchors = m_trustAnchors;
    m_lastStatus = 0;
    RunTransfer(options, &m_lastStatus);
}

std::unique_ptr<HttpResponse> HttpClient::RunForAnswer(TransferOptions options)
{
    std::string body;
    options.maxBytes = kMaxAnswerBytes;
    options.sink = [&body](std::string_view bytes) {
        body.append(bytes);
        return true;
    };
    Run(std::move(options));
    return std::make_unique<HttpResponse>(std::move(body));
}

std::unique_ptr<HttpResponse> HttpClient::PostJson(const std::string& url, const std::string& json,
                                                   Exchange exchange)
{
    std::unique_ptr<HttpResponse> response;
    Attempt([&] {
        TransferOptions options;
        options.url = url;
        options.headers = m_headers;
        if (!HasHeader(m_headers, "Content-Type"))
            options.headers.emplace_back("Content-Type", "application/json");
        options.text = &json;
        options.exchange = exchange;
        response = RunForAnswer(std::move(options));
    });
    return response;
}

std::unique_ptr<HttpResponse> HttpClient::SynchronousRequest(const std::string& domain, int port, bool tls,
                                                             const HttpRequest& request)
{
    std::unique_ptr<HttpResponse> response;
    Attempt([&] {
        RequireValid(request.IsValid());
        if (request.m_verb != "POST" || request.m_contentType != "multipart/form-data")
            throw std::runtime_error("Only a POST of multipart/form-data can be sent");

        Multipart form(request);
        TransferOptions options;
        options.url = UrlAt({domain, port, tls}, request.m_path);
        options.form = &form;
        // The request's own headers come last and in their order; the form brings its own content type.
        options.headers = m_headers;
        RemoveHeader(&options.headers, "Content-Type");
        for (const auto& header : request.m_headers)
            RemoveHeader(&options.headers, header.first);
        options.headers.insert(options.headers.end(), request.m_headers.begin(), request.m_headers.end());
        response = RunForAnswer(std::move(options));
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
        options.headers = m_headers;
        options.exchange = Exchange::Read;
        options.download = true;
        options.maxBytes = kMaxDownloadBytes;
        options.sink = [&part](std::string_view bytes) { return part.Write(bytes); };
        Run(std::move(options));
        if (m_lastStatus != 200)
            throw std::runtime_error("The server answered with status " + std::to_string(m_lastStatus));
        part.Finish(file);
    });
}

} // namespace toolkit
