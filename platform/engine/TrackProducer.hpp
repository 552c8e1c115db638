// Who gives the bytes of a track while it is burned.
#pragma once

#include "BlockForm.hpp"
#include "MediumKind.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

namespace engine {

struct MediumInfo;

/// Word of the engine to the producer, and back, for one call.
struct ProduceFlags {
    bool noMoreData = false;              ///< the producer sets it: the track ends with this answer
    bool subchannelDataRequested = false; ///< the engine sets it: 96 bytes stand behind each block's bytes
};

/// Called on the engine's threads, one call at a time, in the order below. What a member throws fails the burn with
/// DataProduction, a Failure with its own code. After an abort no new call begins but cleanupAfterBurn(), which waits for a call that sleeps.
///
///     prepare, [producePreGap...], produce..., and when the burn verifies:
///     prepareForVerification, [verifyPreGap...], verify... or produce..., cleanupAfterVerification;
///     at last, always, cleanupAfterBurn.
class TrackProducer {
  public:
    virtual ~TrackProducer() = default;

    /// Before anything is written; may change the length. False fails the burn with DataProduction.
    virtual bool prepare(uint64_t& blocks, const MediumInfo& medium) {
        (void)blocks, (void)medium;
        return true;
    }

    /// Whether producePreGap() is asked for the blocks in front of the track; else they are silence.
    virtual bool producesPreGap() { return false; }
    virtual size_t producePreGap(uint64_t block, std::span<std::byte> buffer, ProduceFlags& flags) {
        (void)block, (void)buffer, (void)flags;
        return 0;
    }

    /// Fills the front of `buffer`, which has room for whole blocks and, unless the end is near, for more than
    /// one; `block` counts from the track's start. Answers the bytes; 0 without noMoreData is a failure, as is
    /// more than the buffer holds. The engine asks on after a short answer; after one that ends inside a
    /// block, the buffer begins at that place in `block`.
    virtual size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags& flags) = 0;

    /// False fails the verification.
    virtual bool prepareForVerification() { return true; }
    /// For Verification::ReceiveData: whether that is what was produced. Whole blocks, in order.
    virtual bool verifyPreGap(uint64_t block, std::span<const std::byte> bytes) {
        (void)block, (void)bytes;
        return true;
    }
    virtual bool verify(uint64_t block, std::span<const std::byte> bytes) {
        (void)block, (void)bytes;
        return true;
    }
    /// After each prepareForVerification(), also when a difference was found; not after an abort. False fails the
    /// verification.
    virtual bool cleanupAfterVerification() { return true; }

    /// After success and failure, once for each prepare().
    virtual void cleanupAfterBurn() {}
};

} // namespace engine
