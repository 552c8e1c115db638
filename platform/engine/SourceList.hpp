// Where the contents of an image come from: every file in the order it lies on the disc, and every folder
// that was read.
#pragma once

#include "Content.hpp"
#include "Files.hpp"
#include "Signal.hpp"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace engine {

/// What tells whether a file or folder is still the one that was planned.
struct Fingerprint {
    uint64_t device = 0;
    uint64_t inode = 0;
    int64_t modified = 0; ///< ns since 1970
    int64_t changed = 0;
    uint64_t size = 0;

    static Fingerprint of(const struct stat& status) noexcept;
    bool operator==(const Fingerprint&) const = default;
};

/// A folder on disk whose names were read.
struct SourceFolder {
    std::string path;
    Fingerprint fingerprint;
};

/// A file's contents. Exactly one of data, producer and a file on disk.
struct SourceFile {
    Fingerprint fingerprint; ///< size is the planned size, for every sort of file
    const char* data = nullptr;
    FileProducer* producer = nullptr;
    uint32_t folder = 0; ///< index of the SourceFolder, or noFolder when nameAt is a whole path
    uint32_t nameAt = 0; ///< in SourceList::names, ends with a zero byte
};

struct SourceList {
    static constexpr uint32_t noFolder = UINT32_MAX;

    std::vector<SourceFolder> folders;
    std::vector<SourceFile> files;
    std::vector<SourceFile>
        emptyFiles; ///< of those on disk the ones that have nothing to read, once set aside
    std::string names;
    std::vector<std::shared_ptr<void>> prepared; ///< producers that are cleaned up when this goes

    std::string pathOf(const SourceFile& file) const;
    /// Leaves only what has bytes in `files`.
    void setEmptyAside();
};

/// Has the file's producer fill the front of `buffer` with what comes at `offset`; answers how many bytes, at least one. Throws
/// DataProduction.
size_t askProducer(const SourceList& list, const SourceFile& file, uint64_t offset,
                   std::span<std::byte> buffer);

/// Gives the contents of all files, each padded with zeros to whole blocks, in order and once. Throws
/// FileModifiedDuringBurn and DataProduction, naming the file.
class SourceReader {
  public:
    explicit SourceReader(const SourceList& list) : list_(list) {}

    /// Fills `buffer` (a multiple of the block size) as far as there is data; answers the bytes, 0 at the
    /// end.
    size_t read(std::span<std::byte> buffer);

    /// That no file got its first bytes since it was planned: nobody opens such a file in between.
    void checkEmptyFiles() const;
    /// That no folder has got or lost a name since it was read.
    void checkFolders() const;

  private:
    void begin(const SourceFile& file);
    size_t readSome(const SourceFile& file, std::span<std::byte> buffer);
    void end(const SourceFile& file);
    void expectUnchanged(const SourceFile& file, const struct stat& status) const;
    [[noreturn]] void modified(const SourceFile& file, const char* how) const;

    const SourceList& list_;
    size_t next_ = 0;
    uint64_t offset_ = 0; ///< in the present file
    Descriptor file_;
    Descriptor folder_;
    uint32_t openFolder_ = SourceList::noFolder;
};

} // namespace engine
