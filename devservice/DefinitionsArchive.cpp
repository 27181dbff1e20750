#include "devservice/DefinitionsArchive.h"

#include <archive.h>
#include <archive_entry.h>

#include <memory>

namespace devservice {
namespace {

struct ArchiveFree {
    void operator()(archive* object) const { archive_write_free(object); }
    void operator()(archive_entry* object) const { archive_entry_free(object); }
};

la_ssize_t append(archive*, void* target, const void* data, size_t size)
{
    static_cast<QByteArray*>(target)->append(static_cast<const char*>(data), static_cast<int>(size));
    return static_cast<la_ssize_t>(size);
}

} // namespace

QByteArray makeDefinitionsArchive(const QByteArray& content)
{
    QByteArray result;
    const std::unique_ptr<archive, ArchiveFree> writer(archive_write_new());
    const std::unique_ptr<archive_entry, ArchiveFree> entry(archive_entry_new());
    archive_entry_set_pathname(entry.get(), "definitions.txt");
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_size(entry.get(), content.size());

    archive* const zip = writer.get();
    const bool ok =
        archive_write_set_format_zip(zip) == ARCHIVE_OK &&
        archive_write_set_options(zip, "zip:encryption=traditional") == ARCHIVE_OK &&
        archive_write_set_passphrase(zip, definitionsPassword) == ARCHIVE_OK &&
        archive_write_set_bytes_in_last_block(zip, 1) == ARCHIVE_OK &&
        archive_write_open(zip, &result, nullptr, append, nullptr) == ARCHIVE_OK &&
        archive_write_header(zip, entry.get()) == ARCHIVE_OK &&
        archive_write_data(zip, content.constData(), static_cast<size_t>(content.size())) == content.size() &&
        archive_write_close(zip) == ARCHIVE_OK;
    return ok ? result : QByteArray();
}

} // namespace devservice
