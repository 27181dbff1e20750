#include "toolkit/Gunzip.h"

#include <new>

namespace toolkit {

Gunzip::Gunzip()
{
    constexpr int gzipOnly = 16;
    if (inflateInit2(&m_stream, MAX_WBITS + gzipOnly) != Z_OK)
        throw std::bad_alloc();
}

Gunzip::~Gunzip()
{
    inflateEnd(&m_stream);
}

bool Gunzip::Add(std::string_view packed, const std::function<bool(std::string_view)>& sink)
{
    m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    m_stream.avail_in = static_cast<uInt>(packed.size());
    do {
        m_stream.next_out = m_buffer.data();
        m_stream.avail_out = static_cast<uInt>(m_buffer.size());
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        m_whole = result == Z_STREAM_END;
        // Z_BUF_ERROR: the last round filled the buffer with the last of the input.
        if (!m_whole && result != Z_OK && result != Z_BUF_ERROR)
            return false;
        const std::size_t bytes = m_buffer.size() - m_stream.avail_out;
        if (bytes > 0 && !sink({reinterpret_cast<const char*>(m_buffer.data()), bytes}))
            return false;
    } while (m_stream.avail_out == 0 && !m_whole);
    return m_stream.avail_in == 0;
}

} // namespace toolkit
