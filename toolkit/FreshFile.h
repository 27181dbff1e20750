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

/// A file that is written from its start and is there as a whole or not at all. Whatever lies in its place is
/// removed first; a link is never followed.
class FreshFile
{
public:
    /// Throws std::runtime_error when the file cannot be created.
    explicit FreshFile(std::filesystem::path path);
    /// Removes the file unless it was finished.
    ~FreshFile();
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    bool Write(std::string_view bytes);
    /// Flushes and closes the file. Throws std::runtime_error when that fails.
    void Finish();
    /// The same, then moves it to @p target, replacing what is there.
    void FinishAs(const std::filesystem::path& target);

private:
    void Close();

    std::filesystem::path m_path;
    std::ofstream m_stream;
    bool m_finished = false;
};

} // namespace toolkit
