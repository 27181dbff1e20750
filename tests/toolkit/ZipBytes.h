#pragma once

#include <archive.h>
#include <archive_entry.h>

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

inline std::uint32_t Crc32(const std::string& data)
{
    std::uint32_t crc = 0xffffffffu;
    for (unsigned char byte : data) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320u : 0);
    }
    return ~crc;
}

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
        const auto size = entry.declaredSize < 0 ? entry.content.size() : std::uint64_t(entry.declaredSize);
        const std::string shared = number(20, 2) + number(0x800, 2) + number(0, 2) + number(0x21000000, 4) +
                                   number(Crc32(entry.content), 4) + number(entry.content.size(), 4) +
                                   number(size, 4) + number(entry.name.size(), 2) + number(0, 2);
        directory += "PK\x01\x02" + number(0x0314, 2) + shared + number(0, 2) + number(0, 2) + number(0, 2) +
                     number(std::uint64_t(entry.mode) << 16, 4) + number(zip.size(), 4) + entry.name;
        zip += "PK\x03\x04" + shared + entry.name + entry.content;
    }
    return zip + directory + "PK\x05\x06" + number(0, 4) + number(entries.size(), 2) +
           number(entries.size(), 2) + number(directory.size(), 4) + number(zip.size(), 4) + number(0, 2);
}

/// An archive of one deflated file. @p encryption is "zipcrypt", "aes128", "aes256" or empty.
inline std::string PackedZip(const std::string& name, const std::string& content,
                             const std::string& encryption = {}, const std::string& password = {})
{
    std::string zip(content.size() + 4096, '\0');
    std::size_t used = 0;
    archive* const writer = archive_write_new();
    archive_write_set_format_zip(writer);
    if (!encryption.empty()) {
        archive_write_set_passphrase(writer, password.c_str());
        archive_write_set_options(writer, ("zip:encryption=" + encryption).c_str());
    }
    archive_write_open_memory(writer, zip.data(), zip.size(), &used);
    archive_entry* const entry = archive_entry_new();
    archive_entry_set_pathname(entry, name.c_str());
    archive_entry_set_mode(entry, AE_IFREG | 0644);
    archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
    archive_write_header(writer, entry);
    archive_write_data(writer, content.data(), content.size());
    archive_entry_free(entry);
    archive_write_close(writer);
    archive_write_free(writer);
    zip.resize(used);
    return zip;
}
