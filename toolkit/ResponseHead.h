#pragma once

#include <cstddef>
#include <string_view>

namespace toolkit {

/// How a body is encoded inside its framing.
enum class ContentCoding { None, Gzip, Unknown };

/// What the header lines of a response say about its body. libcurl also takes a header block that was cut, or
/// a body that ends with the connection, for a whole response.
class ResponseHead
{
public:
    /// Takes the next line, line end included. False when the head grows out of bounds.
    bool Add(std::string_view line);

    /// Whether the head is whole and says where the body ends, so that a cut is noticed.
    bool DelimitsBody(int status) const;

    ContentCoding Coding() const { return m_coding; }

private:
    std::size_t m_bytes = 0;
    bool m_complete = false;
    bool m_framed = false;
    ContentCoding m_coding = ContentCoding::None;
};

} // namespace toolkit
