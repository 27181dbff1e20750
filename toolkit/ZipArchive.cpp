#include "toolkit/ZipArchive.h"

#include "toolkit/FreshFile.h"
#include "toolkit/HttpText.h"
#include "toolkit/ZipReader.h"
#include "toolkit/ZipRules.h"

#include <new>
#include <stdexcept>

namespace fs = std::filesystem;

namespace toolkit {
namespace {

/// Whether @p text is well-formed UTF-8: no overlong forms, surrogates or code points above U+10FFFF.
bool IsUtf8(std::string_view text)
{
    const auto* byte = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const end = byte + text.size();
    while (byte < end) {
        const unsigned char lead = *byte++;
        if (lead < 0x80)
            continue;
        if (lead < 0xc2 || lead > 0xf4)
            return false;
        const int more = lead < 0xe0 ? 1 : lead < 0xf0 ? 2 : 3;
        if (end - byte < more)
            return false;
        const unsigned char low = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : 0x80;
        const unsigned char high = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : 0xbf;
        if (*byte < low || *byte > high)
            return false;
        for (int i = 1; i < more; ++i) {
            if ((byte[i] & 0xc0) != 0x80)
                return false;
        }
        byte += more;
    }
    return true;
}

/// Goes through the whole archive without writing: every name, size, checksum and ratio.
void RequireSound(ZipReader* reader)
{
    ZipRules rules;
    while (reader->Next()) {
        rules.Admit(reader->Name(), reader->Kind(), reader->Size());
        ZipRules::AdmitRatio(reader->Read([](std::string_view) {}), reader->Size());
    }
}

/// Makes the folder @p relative below @p directory, which is there. What is in the way is removed: a file of
/// an earlier attempt, or a link, which would lead the files to another place.
void MakeFolders(const fs::path& directory, const fs::path& relative)
{
    fs::path folder = directory;
    for (const fs::path& component : relative) {
        folder /= component;
        std::error_code error;
        const bool cleared = (!IsLink(folder) && fs::is_directory(folder, error)) || RemoveAll(folder);
        error.clear();
        if (cleared)
            fs::create_directory(folder, error);
        if (!cleared || error)
            throw std::runtime_error("Cannot create the folder " + folder.u8string());
    }
}

void UnpackFile(ZipReader* reader, const fs::path& path)
{
    // A folder of an earlier attempt may lie there; what cannot be removed fails the creation.
    RemoveAll(path);
    FreshFile file(path);
    const std::uint64_t packed = reader->Read([&](std::string_view bytes) {
        if (!file.Write(bytes))
            throw std::runtime_error("Cannot write the file " + path.u8string());
    });
    ZipRules::AdmitRatio(packed, reader->Size());
    file.Finish();
    if (const fs::perms execute = reader->ExecuteBits(); execute != fs::perms::none) {
        std::error_code error;
        fs::permissions(path, execute, fs::perm_options::add, error);
        if (error)
            throw std::runtime_error("Cannot make executable: " + path.u8string());
    }
}

} // namespace

std::optional<std::string> ZipEntry::UnzipToString(int lineEndingMode, const std::string& charset) const
try {
    if (!IsValid() || lineEndingMode != 0 || !EqualNoCase(charset, "utf-8") || !IsUtf8(m_content))
        return std::nullopt;
    return m_content;
} catch (const std::bad_alloc&) {
    return std::nullopt;
}

template <typename Operation>
bool ZipArchive::Attempt(Operation operation)
{
    try {
        if (!IsValid())
            throw std::runtime_error(kNotValid);
        operation();
        m_lastError.clear();
        return true;
    } catch (const std::bad_alloc&) {
        m_lastError = "Out of memory";
    } catch (const std::exception& failure) {
        m_lastError = failure.what();
    }
    return false;
}

std::unique_ptr<ZipReader> ZipArchive::Reader() const
{
    if (const auto* const bytes = std::get_if<std::string>(&m_source))
        return std::make_unique<ZipReader>(std::string_view(*bytes), m_password);
    if (const auto* const file = std::get_if<fs::path>(&m_source))
        return std::make_unique<ZipReader>(*file, m_password);
    throw std::runtime_error("No archive is open");
}

bool ZipArchive::OpenBd(const BinaryData& data)
{
    CloseZip();
    return Attempt([&] {
        if (!data.IsValid())
            throw std::runtime_error(kNotValid);
        ZipReader(std::string_view(data.bytes), {}).Next();
        m_source = data.bytes;
    });
}

bool ZipArchive::OpenZip(const fs::path& file)
{
    CloseZip();
    return Attempt([&] {
        ZipReader(file, {}).Next();
        m_source = file;
    });
}

void ZipArchive::SetPassword(std::string password)
{
    if (IsValid())
        m_password = std::move(password);
}

std::unique_ptr<ZipEntry> ZipArchive::GetEntryByIndex(int index)
{
    std::unique_ptr<ZipEntry> entry;
    Attempt([&] {
        const auto reader = Reader();
        bool found = index >= 0;
        for (int i = 0; found && i <= index; ++i)
            found = reader->Next();
        if (!found)
            throw std::runtime_error("Index out of range");
        if (reader->Size() > kMaxZipFileBytes)
            throw std::runtime_error("The archive holds a file that is too large");
        std::string content;
        reader->Read([&](std::string_view bytes) { content.append(bytes); });
        entry = std::make_unique<ZipEntry>(std::move(content));
    });
    return entry;
}

int ZipArchive::Unzip(const fs::path& directory)
{
    int files = 0;
    const bool done = Attempt([&] {
        RequireSound(Reader().get());

        const auto reader = Reader();
        ZipRules rules;
        fs::create_directories(directory);
        while (reader->Next()) {
            // Judged again: the file may have been exchanged since.
            rules.Admit(reader->Name(), reader->Kind(), reader->Size());
            const fs::path relative = reader->Path();
            if (reader->Kind() == ZipKind::Directory) {
                MakeFolders(directory, relative);
                continue;
            }
            MakeFolders(directory, relative.parent_path());
            UnpackFile(reader.get(), directory / relative);
            ++files;
        }
    });
    return done ? files : -1;
}

void ZipArchive::CloseZip()
{
    if (IsValid())
        m_source = std::monostate();
}

} // namespace toolkit
