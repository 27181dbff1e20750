#include "toolkit/ZipArchive.h"

#include <archive.h>
#include <archive_entry.h>
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

// Unpacking an update, beside the least that it could cost: inflating every entry once and writing it, with
// no look at the archive beforehand.

namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 200;
constexpr std::size_t kFileBytes = 256 * 1024;

/// A folder with a package of about the size and the compressibility of a release.
class Workshop
{
public:
    Workshop()
        : m_folder(fs::temp_directory_path() / ("unzip-benchmark-" + std::to_string(std::random_device()())))
    {
        fs::create_directories(m_folder);
        archive* const writer = archive_write_new();
        archive_write_set_format_zip(writer);
        archive_write_open_filename(writer, package().c_str());
        std::mt19937 random;
        for (int i = 0; i < kFiles; ++i) {
            std::string content(kFileBytes, '\0');
            for (std::size_t at = 0; at < content.size(); at += 16)
                content[at] = static_cast<char>(random());
            archive_entry* const entry = archive_entry_new();
            archive_entry_set_pathname(entry, ("velstrand/" + std::to_string(i)).c_str());
            archive_entry_set_mode(entry, AE_IFREG | 0644);
            archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
            archive_write_header(writer, entry);
            archive_write_data(writer, content.data(), content.size());
            archive_entry_free(entry);
        }
        archive_write_close(writer);
        archive_write_free(writer);
    }
    ~Workshop() { fs::remove_all(m_folder); }
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    fs::path package() const { return m_folder / "package.zip"; }
    fs::path out() const { return m_folder / "out"; }

private:
    fs::path m_folder;
};

void unzipFloor(benchmark::State& state)
{
    const Workshop workshop;
    for (auto _ : state) {
        fs::create_directories(workshop.out() / "velstrand");
        archive* const reader = archive_read_new();
        archive_read_support_format_zip_seekable(reader);
        archive_read_open_filename(reader, workshop.package().c_str(), 65536);
        archive_entry* entry = nullptr;
        while (archive_read_next_header(reader, &entry) == ARCHIVE_OK) {
            std::ofstream file(workshop.out() / archive_entry_pathname(entry), std::ios::binary);
            const void* piece = nullptr;
            std::size_t bytes = 0;
            la_int64_t offset = 0;
            while (archive_read_data_block(reader, &piece, &bytes, &offset) == ARCHIVE_OK)
                file.write(static_cast<const char*>(piece), static_cast<std::streamsize>(bytes));
        }
        archive_read_free(reader);
        state.PauseTiming();
        fs::remove_all(workshop.out());
        state.ResumeTiming();
    }
}

void unzip(benchmark::State& state)
{
    const Workshop workshop;
    for (auto _ : state) {
        toolkit::ZipArchive archive;
        if (!archive.OpenZip(workshop.package()) || archive.Unzip(workshop.out()) != kFiles)
            return state.SkipWithError(archive.LastErrorText().c_str());
        state.PauseTiming();
        fs::remove_all(workshop.out());
        state.ResumeTiming();
    }
}

} // namespace

BENCHMARK(unzipFloor)->Name("50 MB package/inflate and write")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(unzip)->Name("50 MB package/Unzip")->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
