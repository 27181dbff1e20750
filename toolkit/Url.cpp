#include "toolkit/Url.h"

#include <curl/curl.h>

#include <memory>
#include <new>
#include <stdexcept>

namespace toolkit {
namespace {

using UrlPtr = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

UrlPtr NewUrl()
{
    if (CURLU* const url = curl_url())
        return {url, &curl_url_cleanup};
    throw std::bad_alloc();
}

bool Set(const UrlPtr& url, CURLUPart part, const std::string& text)
{
    return text.find('\0') == std::string::npos &&
           curl_url_set(url.get(), part, text.c_str(), 0) == CURLUE_OK;
}

/// Empty when there is no such part.
std::string Get(const UrlPtr& url, CURLUPart part)
{
    char* text = nullptr;
    curl_url_get(url.get(), part, &text, CURLU_DEFAULT_PORT);
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
    return text ? text : "";
}

} // namespace

std::optional<Origin> OriginOf(const std::string& url)
{
    const UrlPtr parts = NewUrl();
    if (!Set(parts, CURLUPART_URL, url))
        return std::nullopt;
    const std::string scheme = Get(parts, CURLUPART_SCHEME);
    // libcurl would also take "http:/host".
    if ((scheme != "http" && scheme != "https") || url.compare(scheme.size(), 3, "://") != 0)
        return std::nullopt;
    return Origin{Get(parts, CURLUPART_HOST), std::stoi(Get(parts, CURLUPART_PORT)), scheme == "https"};
}

std::string UrlAt(const Origin& origin, const std::string& path)
{
    const std::string& host = origin.host;
    const bool bareIPv6 = host.find(':') != std::string::npos && host.front() != '[';
    const UrlPtr parts = NewUrl();
    if (path.empty() || path.front() != '/' || !Set(parts, CURLUPART_SCHEME, origin.tls ? "https" : "http") ||
        !Set(parts, CURLUPART_HOST, bareIPv6 ? "[" + host + "]" : host) ||
        !Set(parts, CURLUPART_PORT, std::to_string(origin.port)) || !Set(parts, CURLUPART_PATH, path))
        throw std::runtime_error("The host, the port or the path of the request is not valid");
    return Get(parts, CURLUPART_URL);
}

} // namespace toolkit
