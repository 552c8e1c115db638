// How a job writes to a medium. One class stands for each sort of drive.
#pragma once

#include "BurnJob.hpp"
#include "Drive.hpp"
#include "Layout.hpp"
#include "Signal.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace engine {

/// A track as it will be on the medium.
struct PlannedTrack {
    TrackInfo info; ///< startBlock and preGapBlocks are set by place()
    bool preGapIsProduced = false;
    bool preGapIsRequired = false;

    size_t blockBytes() const noexcept { return info.blockBytes(); }
};

/// A burn as it will be, checked against drive and medium.
struct BurnPlan {
    std::vector<std::vector<PlannedTrack>> sessions;
    bool startsAgain = false; ///< what is on the medium goes
    bool appendable = false;
    bool isTest = false; ///< only where the drive can
    Strategy strategy = Strategy::CDSessionAtOnce;
    std::vector<Strategy> requiredStrategies; ///< one of them it must be; empty: any will do
    double speed = maximumSpeed;
    bool underrunProtection = true;
    std::string mediaCatalogNumber;
    std::vector<uint8_t> cdText;
    std::optional<double> doubleLayerL0DataZone;

    bool isLast(size_t session, size_t track) const noexcept {
        return session + 1 == sessions.size() && track + 1 == sessions[session].size();
    }
};

/// A medium that a job has for itself; the drive is free again when it is destroyed. Functions are called on
/// the job's thread, in the order below, and throw Failure. Destroyed before commit() has returned, a target
/// leaves a medium that can be written again as it was (an appended session on a sequential one excepted), and
/// any other, as soon as openSession() was called, openly incomplete. Of physical media see README.md: what is
/// overwritten there is gone, and those that take blocks in any order look blank.
class BurnTarget {
  public:
    BurnTarget() = default;
    BurnTarget(const BurnTarget&) = delete;
    BurnTarget& operator=(const BurnTarget&) = delete;
    virtual ~BurnTarget() = default;

    virtual const MediumInfo& medium() const noexcept = 0;
    /// Whether the job must hold the speed down, because nothing turns.
    virtual bool needsPacing() const noexcept { return true; }

    /// For calls that wait for a drive: they throw UserCanceled as soon as the signal says so. Called first.
    virtual void watch(const SignalRef& signal) { (void)signal; }

    /// How the medium is to be written; lengths and addresses are not known yet.
    virtual void begin(const BurnPlan& plan) = 0;
    /// Sets where a track will begin and how long its pre-gap will be. Called for all in order; those before it
    /// have their lengths by then.
    virtual void place(BurnPlan& plan, size_t session, size_t track) = 0;
    /// Whether the first 32 blocks of the medium shall be made new (writeStart()), because readers look for
    /// the newest file system there.
    virtual bool wantsStart() const noexcept { return false; }

    /// Makes room for a session, or for the tracks that follow one. `plan` is complete now. MediaWriteFailure
    /// when the computer's disk has too little.
    virtual void openSession(const BurnPlan& plan, size_t session) = 0;
    virtual void openTrack(const PlannedTrack& track) = 0;
    /// Only for pre-gaps that are produced: all of it, whole blocks, in order. Others are the target's to fill.
    virtual void writePreGap(std::span<std::byte> buffer) = 0;
    /// The next whole blocks, in order. `buffer` starts at a page and can be written to up to the end of its
    /// last page; when whole blocks can be whole pages, every call but a track's last has whole pages.
    virtual void write(std::span<std::byte> buffer) = 0;
    /// `blocks` were written: fewer than planned only for the last track of the plan. `sum` is the TrackSum of them.
    virtual void closeTrack(uint64_t blocks, uint64_t sum) = 0;
    virtual void closeSession() = 0;
    /// The first 32 blocks, to be put there with commit().
    virtual void writeStart(std::vector<std::byte> bytes) { (void)bytes; }
    /// All is written: it lasts when this returns. Throws UserCanceled as soon as the signal says so.
    virtual void flush(const SignalRef& signal) = 0;

    /// Reads back from the medium, not from memory. Shares what it uses, so that it may outlive the target on
    /// another thread.
    virtual std::shared_ptr<MediumReader> reader() = 0;
    /// Where the tracks are that were written, in the plan's order.
    virtual std::vector<std::vector<TrackInfo>> written() const = 0;
    /// Blocks of a produced pre-gap that the medium keeps: the last so many.
    virtual uint64_t keptPreGap(const TrackInfo& written, bool isFirstOfSession) const {
        (void)isFirstOfSession;
        return written.preGapBlocks;
    }
    /// The medium is the new one from here on. `intact` is false when verification failed: it is marked
    /// incomplete.
    virtual void commit(bool intact) = 0;
};

} // namespace engine
