// The steps of a burn, from the checks to the last sync.
#pragma once

#include "BurnJob.hpp"
#include "BurnTarget.hpp"
#include "Signal.hpp"
#include "TrackSource.hpp"
#include "TrackSum.hpp"
#include "TrackVerifier.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace engine {

/// Runs on the job's thread and tells all changes of status to `report`.
class BurnRun {
  public:
    using Report = std::function<void(const BurnStatus&)>;

    BurnRun(DriveRef drive, std::shared_ptr<const Layout> layout, const BurnOptions& options,
            SignalRef signal, Report report);
    ~BurnRun();

    /// The whole burn; returns when the medium is durable, the drive is free and the producers have cleaned up. Throws
    /// Failure; the drive is free then, too, and the medium consistent.
    void run();

  private:
    /// A track with its place in the plan.
    struct Item {
        size_t session, track;
        Verification verification;
        std::shared_ptr<TrackSource> source;
        uint64_t bytes = 0;         ///< that the source gave
        std::vector<uint64_t> sums; ///< over all bytes up to the end of each piece
    };
    PlannedTrack& planned(const Item& item) { return plan_.sessions[item.session][item.track]; }

    void burn();
    std::optional<Error> cleanUp() noexcept;
    void prepare(BurnTarget& target);
    void prepareTrack(BurnTarget& target, Item& item, const ImagePlace& wanted);
    ImagePlace previousFileSystem(const MediumInfo& medium) const;
    void writeSessions(BurnTarget& target);
    void writeTrack(BurnTarget& target, Item& item);
    void writePreGap(BurnTarget& target, const Item& item);
    void fillUp(BurnTarget& target, const PlannedTrack& track, uint64_t preGap, uint64_t from, TrackSum& sum);
    void verify(BurnTarget& target);
    void verifyTrack(const std::shared_ptr<TrackVerifier>& verifier, uint64_t before, BurnTarget& target);
    void enter(BurnState state, uint64_t bytesTotal = 0);
    void progress(uint64_t bytesDone);
    bool isPaced() const;
    void pace(uint64_t bytesDone);
    void wrote(uint64_t bytesDone); ///< of a track, its pre-gap first

    DriveRef drive_;
    std::shared_ptr<const Layout> layout_;
    BurnOptions options_;
    SignalRef signal_;
    Report report_;
    BurnStatus status_;
    BurnPlan plan_;
    std::vector<Item> items_;
    double singleSpeed_ = singleSpeedDVD;
    bool paces_ = true;

    using Clock = std::chrono::steady_clock;
    Clock::time_point stateBegan_, lastReport_;
    uint64_t lastReportedBytes_ = 0;
};

} // namespace engine
