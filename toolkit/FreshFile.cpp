#include "toolkit/FreshFile.h"

#include <stdexcept>

#ifdef _WIN32
#include <windows.h>
#endif

namespace fs = std::filesystem;

namespace toolkit {

bool IsLink(const fs::path& path)
{
#ifdef _WIN32
    // The standard library takes junctions and symbolic links for what they point to.
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
#else
    std::error_code error;
    return fs::is_symlink(fs::symlink_status(path, error));
#endif
}

bool RemoveAll(const fs::path& path)
{
    std::error_code error;
    // Not remove_all: on Windows it would go through a junction.
    if (!IsLink(path) && fs::is_directory(path, error)) {
        for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error))
            RemoveAll(entry->path());
    }
    error.clear();
    fs::remove(path, error);
    return !error;
}

FreshFile::FreshFile(fs::path path) : m_path(std::move(path))
{
    std::error_code error;
    fs::remove(m_path, error);
    if (!error)
        m_stream.open(m_path, std::ios::binary | std::ios::trunc);
    if (error || !m_stream)
        throw std::runtime_error("Cannot create the file " + m_path.u8string());
}

FreshFile::~FreshFile()
{
    if (m_finished)
        return;
    m_stream.close();
    std::error_code error;
    fs::remove(m_path, error);
}

bool FreshFile::Write(std::string_view bytes)
{
    return static_cast<bool>(m_stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size())));
}

void FreshFile::Finish(const fs::path& target)
{
    m_stream.close();
    if (!m_stream)
        throw std::runtime_error("Cannot write the file " + m_path.u8string());
    std::error_code error;
    if (!target.empty())
        fs::rename(m_path, target, error);
    if (error)
        throw std::runtime_error("Cannot replace the file " + target.u8string());
    m_finished = true;
}

} // namespace toolkit
