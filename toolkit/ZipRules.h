#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace toolkit {

/// Bounds of what is unpacked, in bytes.
constexpr std::uint64_t kMaxZipFileBytes = 256ull << 20;
constexpr std::uint64_t kMaxZipTotalBytes = 512ull << 20;
constexpr int kMaxZipEntries = 10000;
/// Characters of a name, folders included: Windows takes paths of 259, and the destination comes in front.
constexpr std::size_t kMaxZipNameChars = 240;

enum class ZipKind { File, Directory, Other };

/// What an archive may hold to be unpacked on any platform without leaving the destination, replacing one of
/// its own files or filling the disk. One object judges the entries of one archive, in their order.
class ZipRules
{
public:
    /// Throws std::runtime_error with the reason when the archive must be refused. @p name is the path inside
    /// the archive, @p size the declared size in bytes.
    void Admit(const std::wstring& name, ZipKind kind, std::uint64_t size);

    /// The same for the content of a file: @p packed bytes of the archive became @p unpacked bytes.
    static void AdmitRatio(std::uint64_t packed, std::uint64_t unpacked);

private:
    enum class Use { File, Directory, ImpliedDirectory };

    void AdmitUse(const std::wstring& path, Use use);

    int m_entries = 0;
    std::uint64_t m_totalBytes = 0;
    /// What each path is used for, by its name without regard to case.
    std::map<std::wstring, Use> m_uses;
};

} // namespace toolkit
