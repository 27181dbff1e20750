#pragma once

#include <cstddef>
#include <string_view>

namespace toolkit {

/// What the header lines of a response tell about its end. libcurl also takes a header block that was cut, or
/// a body that ends with the connection, for a whole response.
class ResponseHead
{
public:
    /// Takes the next line, line end included. False when the head grows out of bounds.
    bool Add(std::string_view line);

    /// Whether the head was whole and a cut of the body would have been noticed.
    bool ShowsEndOfBody(int status) const;

private:
    std::size_t m_bytes = 0;
    bool m_complete = false;
    bool m_framed = false;
};

} // namespace toolkit
