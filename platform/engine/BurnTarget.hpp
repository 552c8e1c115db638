// How a job writes to a medium. One class stands for each way of writing.
#pragma once

#include "Drive.hpp"
#include "Signal.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace engine {

/// A medium that a job has for itself; the drive is free again when it is destroyed. Functions are called on
/// the job's thread, in the order below, and throw Failure. Destroyed before commit() has returned, a target
/// leaves a re-writable medium as it was and a write-once medium, as soon as openTrack() was called, openly
/// incomplete.
class BurnTarget {
  public:
    BurnTarget() = default;
    BurnTarget(const BurnTarget&) = delete;
    BurnTarget& operator=(const BurnTarget&) = delete;
    virtual ~BurnTarget() = default;

    virtual const MediumInfo& medium() const noexcept = 0;

    /// Makes room for the track. MediaWriteFailure when the computer's disk has too little.
    virtual void openTrack(const TrackInfo& track) = 0;
    /// The next bytes, in order. Every call but the last has whole pages; `buffer` starts at a page,
    /// and can be written to up to the end of its last page.
    virtual void write(std::span<std::byte> buffer) = 0;
    /// All is written: it lasts when this returns. Throws UserCanceled as soon as the signal says so.
    virtual void flush(const SignalRef& signal) = 0;
    /// Reads back from the medium, not from memory. Offsets are multiples of 1 MiB, the buffer starts at a
    /// page and has whole pages; answers the bytes, fewer only at the end of the track. It shares what it
    /// uses, so that it may outlive the target on another thread.
    using Reader = std::function<size_t(uint64_t offset, std::span<std::byte> buffer)>;
    virtual Reader reader() = 0;
    /// The medium is the new one from here on. `intact` is false when verification failed: it is marked
    /// incomplete.
    virtual void commit(bool intact) = 0;
};

} // namespace engine
