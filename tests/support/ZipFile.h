#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QVector>

#include <archive.h>
#include <archive_entry.h>

#include <sys/stat.h>

/// One entry of an archive that a test makes. A name that ends in "/" is a folder.
struct ZipMember {
    QByteArray name;
    QByteArray content;
    int mode = 0755;
};

/// A zip with the given members deflated, in order, names as they stand; empty when it cannot be made. With a
/// password they are encrypted in the way that @p encryption names: "zipcrypt", "aes128" or "aes256".
inline QByteArray packZip(const QVector<ZipMember>& members, const QByteArray& encryption = QByteArray(),
                          const char* password = nullptr)
{
    int room = 4096;
    for (const ZipMember& member : members)
        room += 4096 + member.content.size();
    QByteArray bytes(room, '\0');
    size_t used = 0;
    archive* const zip = archive_write_new();
    archive_write_set_format_zip(zip);
    if (password) {
        archive_write_set_options(zip, ("zip:encryption=" + encryption).constData());
        archive_write_set_passphrase(zip, password);
    }
    bool good = archive_write_open_memory(zip, bytes.data(), size_t(room), &used) == ARCHIVE_OK;
    for (const ZipMember& member : members) {
        archive_entry* const entry = archive_entry_new();
        archive_entry_set_pathname(entry, member.name.constData());
        archive_entry_set_mode(entry, (member.name.endsWith('/') ? S_IFDIR : S_IFREG) | member.mode);
        archive_entry_set_size(entry, member.content.size());
        good = good && archive_write_header(zip, entry) == ARCHIVE_OK &&
               archive_write_data(zip, member.content.constData(), size_t(member.content.size())) ==
                   member.content.size();
        archive_entry_free(entry);
    }
    good = archive_write_close(zip) == ARCHIVE_OK && good;
    archive_write_free(zip);
    return good ? bytes.left(int(used)) : QByteArray();
}

/// The same into a file.
inline bool writeZip(const QString& path, const QVector<ZipMember>& members,
                     const QByteArray& encryption = QByteArray(), const char* password = nullptr)
{
    const QByteArray bytes = packZip(members, encryption, password);
    QFile file(path);
    return !bytes.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
