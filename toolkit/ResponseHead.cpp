#include "toolkit/ResponseHead.h"

#include "toolkit/HttpText.h"

namespace toolkit {
namespace {

constexpr std::size_t kMaxHeadBytes = 256u << 10;

/// What follows the colon of @p line, without blanks around it and without the line end.
std::string_view ValueOf(std::string_view line)
{
    line.remove_prefix(line.find(':') + 1);
    const std::size_t start = line.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos)
        return {};
    return line.substr(start, line.find_last_not_of(" \t\r\n") + 1 - start);
}

/// The coding of a body that had the coding @p before and is then said to have @p name.
ContentCoding Together(ContentCoding before, std::string_view name)
{
    if (name.empty() || EqualNoCase(name, "identity"))
        return before;
    const bool gzip = EqualNoCase(name, "gzip") || EqualNoCase(name, "x-gzip");
    return gzip && before == ContentCoding::None ? ContentCoding::Gzip : ContentCoding::Unknown;
}

} // namespace

bool ResponseHead::Add(std::string_view line)
{
    m_bytes += line.size();
    if (StartsWithNoCase(line, "HTTP/")) {
        m_complete = false;
        m_framed = false;
        m_coding = ContentCoding::None;
    } else if (line == "\r\n" || line == "\n") {
        m_complete = true;
    } else if (StartsWithNoCase(line, "Content-Length:")) {
        m_framed = true;
    } else if (StartsWithNoCase(line, "Transfer-Encoding:")) {
        // No other was offered, and libcurl would leave another one on the body.
        m_framed = EqualNoCase(ValueOf(line), "chunked");
    } else if (StartsWithNoCase(line, "Content-Encoding:")) {
        m_coding = Together(m_coding, ValueOf(line));
    }
    return m_bytes <= kMaxHeadBytes;
}

bool ResponseHead::ShowsEndOfBody(int status) const
{
    return m_complete && (m_framed || status == 204 || status == 304);
}

} // namespace toolkit
