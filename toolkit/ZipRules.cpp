#include "toolkit/ZipRules.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#else
#include <cwctype>
#endif

namespace toolkit {
namespace {

constexpr std::uint64_t kMaxRatio = 100;
constexpr std::uint64_t kRatioFreeBytes = 1u << 20;

/// The name without regard to case, near to how Windows compares names: NTFS has a table of its own.
/// Elsewhere the locale must be a UTF-8 one.
std::wstring Fold(std::wstring name)
{
#ifdef _WIN32
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, name.c_str(), static_cast<int>(name.size()),
                  name.data(), static_cast<int>(name.size()), nullptr, nullptr, 0);
#else
    std::transform(name.begin(), name.end(), name.begin(), [](wchar_t c) {
        return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(c)));
    });
#endif
    return name;
}

bool IsForbiddenChar(wchar_t c)
{
    constexpr std::wstring_view reserved = L"<>:\"|?*\\";
    return c < 0x20 || (c >= 0x7f && c < 0xa0) || reserved.find(c) != std::wstring_view::npos;
}

/// Whether Windows takes @p component for a device, whatever extension follows.
bool IsDeviceName(const std::wstring& component)
{
    std::wstring stem = Fold(component.substr(0, component.find(L'.')));
    stem.erase(stem.find_last_not_of(L' ') + 1);
    for (const wchar_t* name : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"}) {
        if (stem == name)
            return true;
    }
    constexpr std::wstring_view digits = L"0123456789\u00b9\u00b2\u00b3";
    const std::wstring port = stem.substr(0, 3);
    return stem.size() == 4 && (port == L"COM" || port == L"LPT") &&
           digits.find(stem[3]) != std::wstring_view::npos;
}

/// Whether @p component has the form of a short name ("VELSTR~1.EXE"), by which Windows would find another
/// file.
bool IsShortName(const std::wstring& component)
{
    const std::wstring stem = component.substr(0, component.find(L'.'));
    const std::size_t digit = stem.rfind(L'~') + 1;
    return stem.size() <= 8 && digit > 0 && digit < stem.size() && stem[digit] >= L'0' && stem[digit] <= L'9';
}

void RequirePlainComponent(const std::wstring& component)
{
    if (component.empty())
        throw std::runtime_error("The archive holds an absolute or an empty name");
    if (component == L"..")
        throw std::runtime_error("The archive holds a name that leads out of its folder");
    if (std::any_of(component.begin(), component.end(), IsForbiddenChar))
        throw std::runtime_error("The archive holds a name with characters that are not allowed");
    if (component.back() == L'.' || component.back() == L' ')
        throw std::runtime_error("The archive holds a name that ends in a dot or a blank");
    if (IsShortName(component))
        throw std::runtime_error("The archive holds a name that Windows takes for a short one");
    if (IsDeviceName(component))
        throw std::runtime_error("The archive holds a name that Windows reserves");
}

} // namespace

void ZipRules::Admit(const std::wstring& name, ZipKind kind, std::uint64_t size)
{
    if (++m_entries > kMaxZipEntries)
        throw std::runtime_error("The archive holds too many entries");
    if (kind == ZipKind::Other)
        throw std::runtime_error("The archive holds a link or a special file");
    if (size > kMaxZipFileBytes)
        throw std::runtime_error("The archive holds a file that is too large");
    if (name.size() > kMaxZipNameChars)
        throw std::runtime_error("The archive holds a name that is too long");
    m_totalBytes += size;
    if (m_totalBytes > kMaxZipTotalBytes)
        throw std::runtime_error("The files of the archive are too large together");

    std::wstring path = name;
    if (kind == ZipKind::Directory && !path.empty() && path.back() == L'/')
        path.pop_back();
    for (std::size_t start = 0;;) {
        const std::size_t slash = path.find(L'/', start);
        RequirePlainComponent(path.substr(start, slash - start));
        if (slash == std::wstring::npos)
            break;
        AdmitUse(path.substr(0, slash), Use::ImpliedDirectory);
        start = slash + 1;
    }
    AdmitUse(path, kind == ZipKind::File ? Use::File : Use::Directory);
}

void ZipRules::AdmitUse(const std::wstring& path, Use use)
{
    const auto [known, isNew] = m_uses.emplace(Fold(path), use);
    if (m_uses.size() > 2 * std::size_t(kMaxZipEntries))
        throw std::runtime_error("The archive holds too many entries");
    if (isNew)
        return;
    const bool sameFolder = use == Use::ImpliedDirectory && known->second != Use::File;
    const bool nowNamed = use == Use::Directory && known->second == Use::ImpliedDirectory;
    if (nowNamed)
        known->second = Use::Directory;
    else if (!sameFolder)
        throw std::runtime_error("The archive holds two entries of one name");
}

void ZipRules::AdmitRatio(std::uint64_t packed, std::uint64_t unpacked)
{
    if (unpacked > kRatioFreeBytes && unpacked > kMaxRatio * packed)
        throw std::runtime_error("The archive holds a file that is packed beyond belief");
}

} // namespace toolkit
