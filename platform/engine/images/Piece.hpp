// What the tracks of an image are put together from: stretches of files, of sound, and of nothing.
#pragma once

#include "BlockForm.hpp"
#include "audio/AudioReader.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace engine {

/// So many bytes of a track, read in order by one thread. Nothing is open until open(); whatever can fail throws
/// Failure.
class ImagePiece {
  public:
    explicit ImagePiece(uint64_t bytes) : bytes_(bytes) {}
    virtual ~ImagePiece() = default;
    ImagePiece(const ImagePiece&) = delete;
    ImagePiece& operator=(const ImagePiece&) = delete;

    uint64_t bytes() const noexcept { return bytes_; }
    virtual void open() {}
    /// All of `out`, from byte `at` of the piece on.
    virtual void read(uint64_t at, std::span<std::byte> out) = 0;
    virtual void close() noexcept {}

  private:
    uint64_t bytes_;
};

using PieceRef = std::shared_ptr<ImagePiece>;

/// Zeros.
PieceRef nothing(uint64_t bytes);

/// Bytes of a file as they are: read into place, without a copy.
PieceRef bytesOfFile(std::string path, uint64_t offset, uint64_t bytes);

/// The same for sound of big-endian samples.
PieceRef swappedBytesOfFile(std::string path, uint64_t offset, uint64_t bytes);

/// A part of each unit of a file: the user data of its sectors, say.
struct Units {
    uint64_t unitBytes; ///< in the file
    uint64_t partAt, partBytes;
    bool isMode1 = false;            ///< units are mode 1 sectors, which must be right
    bool isMode2 = false;            ///< units are mode 2 sectors
    std::optional<BlockForm> form{}; ///< of mode 2 sectors whose codes must be right as well
};
PieceRef partsOfFile(std::string path, uint64_t offset, uint64_t count, const Units& units);

/// Another piece with the bytes of each pair changed about.
PieceRef swappedBytesOf(PieceRef whole);

/// The symbols of sectors whose subchannels stand in a file of their own, channel by channel (subchannel/Symbols.hpp).
PieceRef symbolsOfFile(std::string path, uint64_t offset, uint64_t sectors);

/// Blocks of so many bytes, with the subchannel data of each behind it.
PieceRef withSubchannel(PieceRef blocks, uint64_t blockBytes, PieceRef symbols);

/// Sectors with subchannel data behind each in the same file: parts of units (whose size counts the 96 bytes), or sound of
/// big-endian samples, of which only the samples are swapped.
PieceRef partsWithSubchannelOfFile(const std::string& path, uint64_t offset, uint64_t count,
                                   const Units& units);
PieceRef swappedSectorsOfFile(const std::string& path, uint64_t offset, uint64_t count);

/// A stretch of another piece.
PieceRef partOf(PieceRef whole, uint64_t from, uint64_t bytes);

/// Samples of a sound file, as a CD has them.
PieceRef soundOfFile(std::string path, uint64_t firstSample, uint64_t samples);

} // namespace engine
