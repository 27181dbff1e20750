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
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at++]);
        if (lead < 0x80)
            continue;
        const int more = lead < 0xe0 ? 1 : lead < 0xf0 ? 2 : 3;
        std::uint32_t point = lead & (0x3fu >> more);
        for (int i = 0; i < more; ++i, ++at) {
            if (at == text.size() || (text[at] & 0xc0) != 0x80)
                return false;
            point = point << 6 | (text[at] & 0x3fu);
        }
        constexpr std::uint32_t smallest[] = {0x80, 0x800, 0x10000};
        if (lead < 0xc2 || lead > 0xf4 || point < smallest[more - 1] || point > 0x10ffff ||
            (point >= 0xd800 && point < 0xe000))
            return false;
    }
    return true;
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

std::optional<std::string> ZipEntry::UnzipToString(int lineEndingMode, const std::string& charset)
{
    std::optional<std::string> text;
    Attempt([&] {
        if (lineEndingMode != 0 || !EqualNoCase(charset, "utf-8"))
            throw std::runtime_error("Only UTF-8 text is offered, with its line endings as they are");
        if (!IsUtf8(m_content))
            throw std::runtime_error("The text is not UTF-8");
        text = m_content;
    });
    return text;
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
        RequireValid(data.IsValid());
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
        // The first pass writes nothing. The second checks everything again, since the file may have changed.
        for (const bool writes : {false, true}) {
            const auto reader = Reader();
            ZipRules rules;
            while (reader->Next()) {
                rules.Admit(reader->Name(), reader->Kind(), reader->Size());
                if (!writes) {
                    ZipRules::AdmitRatio(reader->Read([](std::string_view) {}), reader->Size());
                } else if (reader->Kind() == ZipKind::Directory) {
                    MakeFolders(directory, reader->Path());
                } else {
                    MakeFolders(directory, reader->Path().parent_path());
                    UnpackFile(reader.get(), directory / reader->Path());
                    ++files;
                }
            }
            fs::create_directories(directory);
        }
    });
    return done ? files : -1;
}

} // namespace toolkit
