// Where the contents of an image come from: every file in the order it lies on the disc, and every folder
// that was read.
#pragma once

#include "Content.hpp"
#include "Error.hpp"

#include <cstdint>
#include <memory>
#include <optional>
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

/// A producer that was asked to prepare its file.
struct PreparedFile {
    std::shared_ptr<FileProducer> producer;
    size_t nameAt; ///< in SourceList::names, as the file's
};

struct SourceList {
    static constexpr uint32_t noFolder = UINT32_MAX;

    std::vector<SourceFolder> folders;
    std::vector<SourceFile> files;
    std::vector<SourceFile>
        emptyFiles; ///< of those on disk the ones that have nothing to read, once set aside
    std::string names;
    std::vector<std::shared_ptr<FileProducer>> forks; ///< of produced files
    std::vector<PreparedFile> prepared;               ///< cleaned up when this goes, if not before

    SourceList() = default;
    SourceList(const SourceList&) = delete;
    SourceList& operator=(const SourceList&) = delete;
    ~SourceList() { cleanUp(); }

    /// Tells every producer that was asked to prepare that all is over, once and in order. Answers what went wrong first.
    std::optional<Error> cleanUp() noexcept;

    std::string pathOf(const SourceFile& file) const;
    /// Leaves only what has bytes in `files`.
    void setEmptyAside();
};

/// Has the file's producer fill the front of `buffer` with what comes at `offset`; answers how many bytes, at least one. Throws
/// DataProduction.
size_t askProducer(const SourceList& list, const SourceFile& file, uint64_t offset,
                   std::span<std::byte> buffer);

} // namespace engine
