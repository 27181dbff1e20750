#pragma once

#include <zlib.h>

#include <array>
#include <functional>
#include <string_view>

namespace toolkit {

/// Undoes gzip piece by piece. libcurl's own decoder takes a stream that breaks off for a whole one.
class Gunzip
{
public:
    /// Throws std::bad_alloc.
    Gunzip();
    ~Gunzip();
    Gunzip(const Gunzip&) = delete;
    Gunzip& operator=(const Gunzip&) = delete;

    /// Takes the next piece and hands what comes out of it to @p sink. False when the stream is damaged, when
    /// something follows its end, or when @p sink answers false.
    bool Add(std::string_view packed, const std::function<bool(std::string_view)>& sink);

    /// Whether the end was reached, and length and checksum were right.
    bool IsWhole() const { return m_whole; }

private:
    z_stream m_stream{};
    std::array<unsigned char, 32 * 1024> m_buffer;
    bool m_whole = false;
};

} // namespace toolkit
