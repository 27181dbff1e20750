#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

namespace toolkit {

/// Whether @p path itself is a link of any kind: a symbolic link, or on Windows a junction.
bool IsLink(const std::filesystem::path& path);

/// Removes whatever is at @p path, a folder with all that is in it; a link itself, never what it points to.
/// True when nothing is left there.
bool RemoveAll(const std::filesystem::path& path);

/// A file that is written from its start and removed again unless it was finished. Only a process that dies
/// on the way leaves a part of it behind.
class FreshFile
{
public:
    /// A file or a link that lies there is removed first; the link is not followed. Throws std::runtime_error
    /// when the file cannot be created, as where a folder with something in it is in the way.
    explicit FreshFile(std::filesystem::path path);
    /// Removes the file unless it was finished.
    ~FreshFile();
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    /// False when the bytes cannot be written.
    bool Write(std::string_view bytes);
    /// Flushes and closes the file, then moves it to @p target, where one is given, replacing what is there.
    /// Throws std::runtime_error when that fails.
    void Finish(const std::filesystem::path& target = {});

private:
    std::filesystem::path m_path;
    std::ofstream m_stream;
    bool m_finished = false;
};

} // namespace toolkit
