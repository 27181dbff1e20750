#include "toolkit/ResponseHead.h"

#include "toolkit/HttpText.h"

#include <algorithm>

namespace toolkit {
namespace {

constexpr std::size_t kMaxHeadBytes = 256u << 10;

std::string_view Trimmed(std::string_view text)
{
    const std::size_t start = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    return text.substr(start, text.find_last_not_of(" \t\r\n") + 1 - start);
}

/// The coding of a body that has the coding @p inner, and @p name on top of it.
ContentCoding Stacked(ContentCoding inner, std::string_view name)
{
    if (name.empty() || EqualNoCase(name, "identity"))
        return inner;
    const bool gzip = EqualNoCase(name, "gzip") || EqualNoCase(name, "x-gzip");
    return gzip && inner == ContentCoding::None ? ContentCoding::Gzip : ContentCoding::Unknown;
}

} // namespace

bool ResponseHead::Add(std::string_view line)
{
    m_bytes += line.size();
    const std::string_view name = line.substr(0, line.find(':'));
    const std::string_view value = Trimmed(line.substr(std::min(name.size() + 1, line.size())));
    if (EqualNoCase(line.substr(0, 5), "HTTP/")) {
        // What an interim answer says about a body does not count for the final one.
        m_complete = false;
        m_framed = false;
        m_coding = ContentCoding::None;
    } else if (line == "\r\n" || line == "\n") {
        m_complete = true;
    } else if (EqualNoCase(name, "Content-Length")) {
        m_framed = true;
    } else if (EqualNoCase(name, "Transfer-Encoding")) {
        // No other was offered, and libcurl would leave another one on the body.
        m_framed = EqualNoCase(value, "chunked");
    } else if (EqualNoCase(name, "Content-Encoding")) {
        m_coding = Stacked(m_coding, value);
    }
    return m_bytes <= kMaxHeadBytes;
}

bool ResponseHead::DelimitsBody(int status) const
{
    return m_complete && (m_framed || status == 204 || status == 304);
}

} // namespace toolkit
