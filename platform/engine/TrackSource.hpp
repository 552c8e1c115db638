// Where the bytes of one track come from while it is burned, whatever the track is.
#pragma once

#include "BurnTarget.hpp"
#include "DataImage.hpp"
#include "Layout.hpp"
#include "Signal.hpp"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace engine {

/// Members are called one at a time, on the engine's threads; they throw Failure.
class TrackSource {
  public:
    TrackSource() = default;
    TrackSource(const TrackSource&) = delete;
    TrackSource& operator=(const TrackSource&) = delete;
    virtual ~TrackSource() = default;

    /// Answers the blocks of the track. `place` is where it will be.
    virtual uint64_t prepare(const MediumInfo& medium, const ImagePlace& place, const Signal& signal) = 0;
    /// Fills `buffer` with what comes next of the pre-gap; 0 at its end.
    virtual size_t readPreGap(std::span<std::byte> buffer, uint64_t blocks) = 0;
    /// Fills `buffer` with what comes next; less only at the end, then 0.
    virtual size_t read(std::span<std::byte> buffer) = 0;
    /// The first 32 blocks of a medium, when the place wanted them; known when all was read.
    virtual std::vector<std::byte> start() { return {}; }

    /// The way of verification that is possible: Checksum for what can't be asked.
    virtual Verification verification(Verification wanted) const noexcept { return wanted; }
    /// Whether the source is content with being verified, before and after it is. What its producer throws is a Failure,
    /// here and when it is asked again or shown what was read.
    virtual bool beginVerification() { return true; }
    virtual bool endVerification() { return true; }
    /// Whether these blocks, read from the medium, are right; in order, the pre-gap first.
    virtual bool verifyPreGap(uint64_t block, std::span<const std::byte> bytes) {
        (void)block, (void)bytes;
        return true;
    }
    virtual bool verify(uint64_t block, std::span<const std::byte> bytes) {
        (void)block, (void)bytes;
        return true;
    }

    /// Beside checksums: compares blocks that were read from the medium, in order, with what the source can give once more.
    virtual std::optional<Difference> compareAgain(std::span<const std::byte> bytes) {
        (void)bytes;
        return std::nullopt;
    }

    /// After the burn, once. Tells a producer that was asked to prepare, and answers what went wrong in it.
    virtual std::optional<Error> cleanUp() noexcept { return std::nullopt; }
};

/// `layout` holds the track and is kept as long as the source.
std::shared_ptr<TrackSource> makeTrackSource(std::shared_ptr<const Layout> layout, const Track& track,
                                             const PlannedTrack& planned);

} // namespace engine
