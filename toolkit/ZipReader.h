#pragma once

#include "toolkit/ZipRules.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct archive;
struct archive_entry;

namespace toolkit {

/// One pass over the entries of a zip archive, in their order. Every warning of the library is a failure: a
/// wrong checksum and a forged entry arrive as warnings. Functions throw a std::exception. Changes its
/// thread's locale while it lives, so it is made and destroyed on one thread, the last made first.
class ZipReader
{
public:
    /// Reads @p bytes, which must outlive the reader.
    ZipReader(std::string_view bytes, const std::string& password);
    ZipReader(const std::filesystem::path& file, const std::string& password);
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    /// Goes to the next entry, whether or not the last one was read; false at the end.
    bool Next();

    // The current entry, as the archive's directory declares it; after Next() only.
    std::wstring Name() const;
    std::filesystem::path Path() const;
    ZipKind Kind() const;
    std::uint64_t Size() const;
    /// The execute bits of the entry's permissions; nothing else of them is wanted.
    std::filesystem::perms ExecuteBits() const;

    /// Hands the content of the current entry to @p sink piece by piece, and checks on the way that it has
    /// the declared size and the right checksum. Returns the bytes that it takes in the archive.
    std::uint64_t Read(const std::function<void(std::string_view)>& sink);

private:
    class Utf8Scope;

    explicit ZipReader(const std::string& password);
    void Require(int result);

    std::unique_ptr<Utf8Scope> m_utf8;
    std::unique_ptr<archive, int (*)(archive*)> m_archive;
    archive_entry* m_entry = nullptr;
};

} // namespace toolkit
