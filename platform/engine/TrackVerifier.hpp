// Reads a track back and compares it, piece by piece.
#pragma once

#include "Drive.hpp"
#include "TrackSource.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace engine {

/// What is on the medium is not what was written.
struct Mismatch {
    uint64_t block; ///< of the medium
    std::string how;
};

/// Shares what it uses, so that it may outlive the burn on another thread.
class TrackVerifier {
  public:
    /// `bytes` were written, with one checksum for each piece that next() will be called for. The last
    /// `preGapBlocks` of the pre-gap are verified, too, when the source receives what was read.
    TrackVerifier(std::shared_ptr<MediumReader> reader, TrackInfo track, std::shared_ptr<TrackSource> source,
                  Verification way, std::vector<uint64_t> checksums, uint64_t bytes, uint64_t preGapBlocks);

    /// Reads the next piece into `buffer` and checks it; answers the bytes, 0 at the end. Throws Mismatch, or Failure
    /// when the producer fails by itself; nothing more is asked after that.
    size_t next(std::span<std::byte> buffer);

  private:
    size_t check(std::span<std::byte> buffer);
    void begin(std::span<std::byte> buffer);
    void end();
    void cleanUp() noexcept;
    size_t readFull(int64_t block, std::span<std::byte> buffer);
    bool isRight(std::span<const std::byte> bytes);
    [[noreturn]] void differs(uint64_t fromByte, uint64_t toByte, const std::string& how) const;

    std::shared_ptr<MediumReader> reader_;
    TrackInfo track_;
    std::shared_ptr<TrackSource> source_;
    Verification way_;
    std::vector<uint64_t> checksums_;
    uint64_t bytes_;
    uint64_t preGapBlocks_;
    size_t blockBytes_;
    uint64_t position_ = 0;
    size_t piece_ = 0;
    bool began_ = false, ended_ = false;
    std::vector<std::byte> again_; ///< what the producer gives when asked once more
};

} // namespace engine
