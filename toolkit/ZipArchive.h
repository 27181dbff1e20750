#pragma once

#include "toolkit/BinaryData.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace toolkit {

class ZipReader;

/// One member of an archive, read into memory when it was looked up. Owned by the caller.
class ZipEntry : public Object<ZipEntry>
{
public:
    explicit ZipEntry(std::string content) : m_content(std::move(content)) {}

    /// The content as UTF-8 text. Line-ending mode 0 keeps the line endings as they are stored; no other mode
    /// is offered. @p charset is that of the stored text; "utf-8" is offered. Nothing for any other value,
    /// for text that is not valid in the character set, or when there is no memory for a copy.
    std::optional<std::string> UnzipToString(int lineEndingMode, const std::string& charset);

private:
    std::string m_content;
};

/// A zip archive read from memory or from a file. Used on one thread. An operation that fails gives a false
/// or absent result with LastErrorText, not an exception.
class ZipArchive : public Object<ZipArchive>
{
public:
    /// Opens an archive that is held in memory (copied).
    bool OpenBd(const BinaryData& data);
    /// Opens an archive on the disk. Each operation reads the file anew.
    bool OpenZip(const std::filesystem::path& file);
    /// Password for encrypted entries; before or after opening.
    void SetPassword(std::string password) { m_password = std::move(password); }
    /// The entry at @p index, counted from 0 in the order of the archive. Null when there is none ("Index out
    /// of range"), when its content is damaged or above 256 MiB, or when the password is wrong.
    std::unique_ptr<ZipEntry> GetEntryByIndex(int index);
    /// Unpacks every entry below @p directory, paths kept, replacing what lies there under the same names.
    /// The number of files, or -1. An archive with a hostile or a damaged entry is refused before anything is
    /// written; when the disk fails half-way, what was unpacked so far stays.
    int Unzip(const std::filesystem::path& directory);
    void CloseZip() { m_source = std::monostate(); }

private:
    /// Throws when nothing is open.
    std::unique_ptr<ZipReader> Reader() const;

    /// Nothing, the bytes of an archive, or the file that holds one.
    std::variant<std::monostate, std::string, std::filesystem::path> m_source;
    std::string m_password;
};

} // namespace toolkit
