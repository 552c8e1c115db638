// The steps of a burn, from the checks to the last sync.
#pragma once

#include "BurnJob.hpp"
#include "BurnTarget.hpp"
#include "Signal.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace engine {

class DataImage;

/// Runs on the job's thread and tells all changes of status to `report`.
class BurnRun {
  public:
    using Report = std::function<void(const BurnStatus&)>;

    BurnRun(DriveRef drive, std::shared_ptr<const Layout> layout, const BurnOptions& options,
            SignalRef signal, Report report);

    /// The whole burn; returns when the medium is durable and the drive is free. Throws Failure; the drive is
    /// free then, too, and the medium consistent.
    void run();

  private:
    const DataTrack& checkedTrack() const;
    void checkOptions() const;
    void checkMedium(const MediumInfo& medium) const;
    void checkSpace(const MediumInfo& medium, uint64_t blocks) const;
    void writeTrack(BurnTarget& target, const std::shared_ptr<DataImage>& image, bool isVerified);
    void verify(BurnTarget& target);
    void enter(BurnState state, uint64_t bytesTotal = 0);
    void progress(uint64_t bytesDone);
    bool isPaced() const;
    void pace(uint64_t bytesDone);

    DriveRef drive_;
    std::shared_ptr<const Layout> layout_;
    BurnOptions options_;
    SignalRef signal_;
    Report report_;
    BurnStatus status_;
    double singleSpeed_ = singleSpeedDVD;
    std::vector<uint64_t> checksums_; ///< XXH3 of each MiB written

    using Clock = std::chrono::steady_clock;
    Clock::time_point stateBegan_, lastReport_;
    uint64_t lastReportedBytes_ = 0;
};

} // namespace engine
