// Reading the contents of an image from their sources.
#pragma once

#include "Assistant.hpp"
#include "Files.hpp"
#include "SourceList.hpp"

#include <array>
#include <cstdint>
#include <span>

namespace engine {

/// Reads one file after the other, for one thread. Throws FileModifiedDuringBurn and DataProduction, naming the file.
class FileReader {
  public:
    explicit FileReader(const SourceList& list) : list_(list) {}

    /// Reads what comes of a file at `offset`; answers the bytes, at least one. Whoever begins at 0 goes on to the end, where
    /// the file is compared with what was planned.
    size_t read(const SourceFile& file, uint64_t offset, std::span<std::byte> buffer);
    /// Whole files, each padded with zeros to whole blocks.
    void readWhole(std::span<const SourceFile> files, std::span<std::byte> buffer);

    /// That a file on disk is what was planned. Throws FileModifiedDuringBurn.
    void expectUnchanged(const SourceFile& file, const struct stat& status) const;
    [[noreturn]] void modified(const SourceFile& file, const char* how) const;

  private:
    void begin(const SourceFile& file);
    size_t readSome(const SourceFile& file, uint64_t offset, std::span<std::byte> buffer);
    void end(const SourceFile& file);

    const SourceList& list_;
    Descriptor file_;
    Descriptor folder_;
    uint32_t openFolder_ = SourceList::noFolder;
};

/// Gives the contents of all files, each padded with zeros to whole blocks, in order and once. Small files on disk are read by
/// two threads, for they cost more calls than bytes; producers are asked in order. Throws FileModifiedDuringBurn and
/// DataProduction, naming the first file that is wrong.
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
    size_t readTogether(std::span<std::byte> buffer);

    const SourceList& list_;
    size_t next_ = 0;
    uint64_t offset_ = 0; ///< in the present file
    std::array<FileReader, 2> readers_{FileReader(list_), FileReader(list_)};
    Assistant assistant_;
};

} // namespace engine
