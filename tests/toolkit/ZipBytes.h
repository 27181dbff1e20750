#pragma once

#include <zlib.h>

#include <cstdint>
#include <string>
#include <vector>

/// One entry of an archive that is put together byte by byte, stored without compression.
struct RawZipEntry {
    std::string name;
    std::string content;
    /// Unix type and permissions, as in st_mode.
    std::uint32_t mode = 0100644;
    /// The size in both headers; -1 for the true one.
    std::int64_t declaredSize = -1;
};

/// The archive, names as they stand and marked as UTF-8.
inline std::string RawZip(const std::vector<RawZipEntry>& entries)
{
    const auto number = [](std::uint64_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> (8 * i));
        return text;
    };
    std::string zip;
    std::string directory;
    for (const RawZipEntry& entry : entries) {
        const std::string& content = entry.content;
        const auto size = entry.declaredSize < 0 ? content.size() : std::uint64_t(entry.declaredSize);
        const auto crc = crc32(0, reinterpret_cast<const Bytef*>(content.data()), uInt(content.size()));
        const std::string shared = number(20, 2) + number(0x800, 2) + number(0, 2) + number(0x21000000, 4) +
                                   number(crc, 4) + number(content.size(), 4) + number(size, 4) +
                                   number(entry.name.size(), 2) + number(0, 2);
        directory += "PK\x01\x02" + number(0x0314, 2) + shared + number(0, 6) +
                     number(std::uint64_t(entry.mode) << 16, 4) + number(zip.size(), 4) + entry.name;
        zip += "PK\x03\x04" + shared + entry.name + content;
    }
    return zip + directory + "PK\x05\x06" + number(0, 4) + number(entries.size(), 2) +
           number(entries.size(), 2) + number(directory.size(), 4) + number(zip.size(), 4) + number(0, 2);
}
