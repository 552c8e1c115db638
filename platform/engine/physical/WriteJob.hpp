// One session on its way to the disc: libburn's model of it, and the library's run.
#pragma once

#include "../BurnTarget.hpp"
#include "PhysicalDrive.hpp"
#include "TrackFeed.hpp"

namespace engine {

/// Is shared with the thread that clears up after an abort.
class WriteJob {
  public:
    /// Begins to write. Commands held. Throws what the library says before it begins.
    WriteJob(std::shared_ptr<PhysicalDrive::Hold> hold, const BurnPlan& plan, size_t session, bool anyOrder,
             bool atOnce);
    WriteJob(const WriteJob&) = delete;
    WriteJob& operator=(const WriteJob&) = delete;
    ~WriteJob();

    /// False when the library takes no more.
    bool give(size_t track, std::span<const std::byte> bytes, const Signal* signal);
    /// No more comes for it. Bytes that were announced and don't come, the library fills with zeros.
    void endTrack(size_t track, uint64_t missing) {
        bytes_ -= missing;
        feed_->end(track);
    }
    /// Waits until the session is on the disc. Throws UserCanceled, and what went wrong.
    void finish(const Signal* signal);
    /// Makes the library stop and waits until it has.
    void cancel() noexcept;
    /// What went wrong, once the library has stopped.
    Error problem() const;

  private:
    void addTrack(const PlannedTrack& track, size_t index, bool isFirst);
    void setOptions(const BurnPlan& plan, size_t session, bool anyOrder, bool atOnce);
    bool isIdle() const;

    std::shared_ptr<PhysicalDrive::Hold> hold_;
    std::shared_ptr<TrackFeed> feed_ = std::make_shared<TrackFeed>();
    Handle<burn_disc> disc_;
    Handle<burn_session> session_;
    Handle<burn_write_opts> options_;
    uint64_t bytes_ = 0;
};

} // namespace engine
