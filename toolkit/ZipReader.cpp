#include "toolkit/ZipReader.h"

#include <archive.h>
#include <archive_entry.h>

#include <new>
#include <stdexcept>

#ifndef _WIN32
#include <locale.h>
#endif

namespace toolkit {
namespace {

constexpr std::size_t kBlockBytes = 64u << 10;

} // namespace

/// libarchive turns names into the locale's character set on their way. This thread's is UTF-8 while a reader
/// is in use, so that names survive in a process that was started with another one, the C locale for
/// instance.
class ZipReader::Utf8Scope
{
#ifndef _WIN32
public:
    Utf8Scope() : m_locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), m_previous(uselocale(m_locale)) {}
    ~Utf8Scope()
    {
        uselocale(m_previous);
        if (m_locale)
            freelocale(m_locale);
    }
    Utf8Scope(const Utf8Scope&) = delete;
    Utf8Scope& operator=(const Utf8Scope&) = delete;

private:
    locale_t m_locale;
    locale_t m_previous;
#endif
};

ZipReader::ZipReader(const std::string& password)
    : m_utf8(std::make_unique<Utf8Scope>()), m_archive(archive_read_new(), &archive_read_free)
{
    if (!m_archive)
        throw std::bad_alloc();
    // Only the reader that starts at the central directory: the streaming one takes a cut archive for whole.
    Require(archive_read_support_format_zip_seekable(m_archive.get()));
    if (!password.empty())
        Require(archive_read_add_passphrase(m_archive.get(), password.c_str()));
}

ZipReader::ZipReader(std::string_view bytes, const std::string& password) : ZipReader(password)
{
    Require(archive_read_open_memory(m_archive.get(), bytes.data(), bytes.size()));
}

ZipReader::ZipReader(const std::filesystem::path& file, const std::string& password) : ZipReader(password)
{
#ifdef _WIN32
    Require(archive_read_open_filename_w(m_archive.get(), file.c_str(), kBlockBytes));
#else
    Require(archive_read_open_filename(m_archive.get(), file.c_str(), kBlockBytes));
#endif
}

ZipReader::~ZipReader() = default;

void ZipReader::Require(int result)
{
    if (result == ARCHIVE_OK)
        return;
    const char* const words = archive_error_string(m_archive.get());
    throw std::runtime_error(words ? words : "The archive is damaged");
}

bool ZipReader::Next()
{
    const int result = archive_read_next_header(m_archive.get(), &m_entry);
    if (result == ARCHIVE_EOF)
        return false;
    Require(result);
    return true;
}

std::wstring ZipReader::Name() const
{
    const wchar_t* const name = archive_entry_pathname_w(m_entry);
    if (!name)
        throw std::runtime_error("The archive holds a name that cannot be read");
    return name;
}

std::filesystem::path ZipReader::Path() const
{
#ifdef _WIN32
    return Name();
#else
    // The standard library would turn wide text into the process's character set.
    const char* const name = archive_entry_pathname(m_entry);
    return name ? name : "";
#endif
}

ZipKind ZipReader::Kind() const
{
    switch (archive_entry_filetype(m_entry)) {
    case AE_IFREG:
        return ZipKind::File;
    case AE_IFDIR:
        return ZipKind::Directory;
    default:
        return ZipKind::Other;
    }
}

std::uint64_t ZipReader::Size() const
{
    return static_cast<std::uint64_t>(archive_entry_size(m_entry));
}

std::filesystem::perms ZipReader::ExecuteBits() const
{
    return static_cast<std::filesystem::perms>(archive_entry_perm(m_entry) & 0111);
}

std::uint64_t ZipReader::Read(const std::function<void(std::string_view)>& sink)
{
    const std::int64_t start = archive_filter_bytes(m_archive.get(), -1);
    std::uint64_t total = 0;
    for (;;) {
        const void* piece = nullptr;
        std::size_t bytes = 0;
        la_int64_t offset = 0;
        const int result = archive_read_data_block(m_archive.get(), &piece, &bytes, &offset);
        if (result == ARCHIVE_EOF)
            break;
        Require(result);
        total += bytes;
        if (total > Size())
            throw std::runtime_error("The archive holds a file that is larger than it claims");
        sink({static_cast<const char*>(piece), bytes});
    }
    if (total != Size())
        throw std::runtime_error("The archive holds a file that is smaller than it claims");
    return static_cast<std::uint64_t>(archive_filter_bytes(m_archive.get(), -1) - start);
}

} // namespace toolkit
