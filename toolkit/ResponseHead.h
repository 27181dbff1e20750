#pragma once

#include <cstddef>
#include <string_view>

namespace toolkit {

/// What is done to a body on top of its framing.
enum class ContentCoding { None, Gzip, Unknown };

/// What the header lines of a response tell about its body and its end. libcurl also takes a header block
/// that was cut, or a body that ends with the connection, for a whole response.
class ResponseHead
{
public:
    /// Takes the next line, line end included. False when the head grows out of bounds.
    bool Add(std::string_view line);

    /// Whether the head was whole and a cut of the body would have been noticed.
    bool ShowsEndOfBody(int status) const;

    ContentCoding Coding() const { return m_coding; }

private:
    std::size_t m_bytes = 0;
    bool m_complete = false;
    bool m_framed = false;
    ContentCoding m_coding = ContentCoding::None;
};

} // namespace toolkit
