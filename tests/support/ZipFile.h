#pragma once

#include <QByteArray>
#include <QPair>
#include <QVector>

#include <archive.h>
#include <archive_entry.h>

#include <sys/stat.h>

/// Names and contents, in order; a name that ends in "/" is a folder.
using ZipMembers = QVector<QPair<QByteArray, QByteArray>>;

/// A zip of at most 4 MB with the given members deflated, names as they stand. With a password they are
/// encrypted in the way that @p encryption names: "zipcrypt", "aes128" or "aes256". Ends the process when it
/// cannot be made.
inline QByteArray packZip(const ZipMembers& members, const char* encryption = nullptr,
                          const char* password = nullptr)
{
    QByteArray bytes(4 << 20, '\0');
    size_t used = 0;
    archive* const zip = archive_write_new();
    archive_write_set_format_zip(zip);
    if (password) {
        archive_write_set_format_option(zip, "zip", "encryption", encryption);
        archive_write_set_passphrase(zip, password);
    }
    bool good = archive_write_open_memory(zip, bytes.data(), size_t(bytes.size()), &used) == ARCHIVE_OK;
    for (const auto& [name, content] : members) {
        archive_entry* const entry = archive_entry_new();
        archive_entry_set_pathname(entry, name.constData());
        archive_entry_set_mode(entry, (name.endsWith('/') ? S_IFDIR : S_IFREG) | 0755);
        archive_entry_set_size(entry, content.size());
        good = good && archive_write_header(zip, entry) == ARCHIVE_OK &&
               archive_write_data(zip, content.constData(), size_t(content.size())) == content.size();
        archive_entry_free(entry);
    }
    if (archive_write_close(zip) != ARCHIVE_OK || !good)
        qFatal("Cannot make the zip: %s", archive_error_string(zip));
    archive_write_free(zip);
    return bytes.left(int(used));
}
