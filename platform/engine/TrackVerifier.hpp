// Reads a track back and compares it, piece by piece.
#pragma once

#include "Drive.hpp"
#include "Pipeline.hpp"
#include "TrackSource.hpp"
#include "TrackSum.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace engine {

/// What is on the medium is not what was written.
struct Mismatch {
    uint64_t block; ///< of the medium
    std::string how;
};

/// One thread reads the medium while another compares, or asks the producer again. Shares what it uses, so that it may
/// outlive the burn.
class TrackVerifier {
  public:
    struct Written {
        TrackInfo track;
        uint64_t bytes = 0;
        uint64_t preGapBlocks = 0;  ///< the last so many are shown to a source that receives what was read
        std::vector<uint64_t> sums; ///< over all bytes up to the end of each piece
        size_t pieceBytes = 0;
    };

    TrackVerifier(Written written, SignalRef signal, std::shared_ptr<MediumReader> reader,
                  std::shared_ptr<TrackSource> source, Verification way);
    TrackVerifier(const TrackVerifier&) = delete;
    TrackVerifier& operator=(const TrackVerifier&) = delete;

    size_t pieceBytes() const noexcept { return written_.pieceBytes; }

    /// Checks the next piece, with `scratch` of pieceBytes() to work in; answers its bytes, 0 at the end. Throws Mismatch, or
    /// Failure when the producer fails by itself; nothing more is asked after that.
    size_t next(std::span<std::byte> scratch);

  private:
    size_t check(std::span<std::byte> scratch);
    void begin(std::span<std::byte> scratch);
    void end();
    void cleanUp() noexcept;
    bool isRight(std::span<const std::byte> bytes, std::span<std::byte> scratch);

    const Written written_;
    SignalRef signal_;
    std::shared_ptr<MediumReader> reader_;
    std::shared_ptr<TrackSource> source_;
    Verification way_;
    size_t blockBytes_;
    std::optional<Pipeline> read_; ///< pieces of the medium, from the first on
    TrackSum sum_;
    uint64_t position_ = 0;
    size_t piece_ = 0;
    bool ended_ = false;
};

} // namespace engine
