#pragma once

#include "toolkit/BinaryData.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace toolkit
{

/// One member of an archive, read into memory when it was looked up.
class ZipEntry
{
public:
    /// The content as UTF-8 text. Line-ending mode 0 keeps the line endings as they are stored; no other mode
    /// is offered. @p charset is that of the stored text; "utf-8" is offered. Nothing for any other value, a
    /// wrong password, damaged data or text that is not valid in the character set.
    std::optional<std::string> UnzipToString(int lineEndingMode, const std::string& charset) const;
};

/// A zip archive read from memory or from a file. Used on one thread. Never throws: a failure is a false or
/// absent result with LastErrorText.
class ZipArchive
{
public:
    /// Opens an archive that is held in memory (copied).
    bool OpenBd(const BinaryData& data);
    bool OpenZip(const std::filesystem::path& file);
    /// Password for encrypted entries; before or after opening.
    void SetPassword(std::string password);
    /// The entry at @p index, counted from 0 in the order of the archive; null ("Index out of range").
    std::unique_ptr<ZipEntry> GetEntryByIndex(int index);
    /// Unpacks every entry below @p directory, paths kept. The number of files, or -1; an archive with a
    /// hostile entry is refused before anything is written.
    int Unzip(const std::filesystem::path& directory);
    void CloseZip();

    const std::string& LastErrorText() const { return m_lastError; }

private:
    std::string m_lastError;
};

} // namespace toolkit
