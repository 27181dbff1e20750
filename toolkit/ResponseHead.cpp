#include "toolkit/ResponseHead.h"

#include "toolkit/HttpText.h"

namespace toolkit {
namespace {

constexpr std::size_t kMaxHeadBytes = 256u << 10;

bool IsChunked(std::string_view transferEncoding)
{
    constexpr std::string_view last = "chunked";
    const std::size_t length = transferEncoding.find_last_not_of(" \t\r\n") + 1;
    return length >= last.size() &&
           EqualNoCase(transferEncoding.substr(length - last.size(), last.size()), last);
}

} // namespace

bool ResponseHead::Add(std::string_view line)
{
    m_bytes += line.size();
    if (StartsWithNoCase(line, "HTTP/")) {
        m_complete = false;
        m_framed = false;
    } else if (line == "\r\n" || line == "\n") {
        m_complete = true;
    } else if (StartsWithNoCase(line, "Content-Length:") ||
               (StartsWithNoCase(line, "Transfer-Encoding:") && IsChunked(line))) {
        m_framed = true;
    }
    return m_bytes <= kMaxHeadBytes;
}

bool ResponseHead::ShowsEndOfBody(int status) const
{
    return m_complete && (m_framed || status == 204 || status == 304);
}

} // namespace toolkit
