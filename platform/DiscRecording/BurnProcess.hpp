// BurnProcess: a job of the engine, and what is done with the medium after it.
#pragma once

#include "BurnJob.hpp"

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

namespace discrecording {

struct BurnPlan {
    engine::Layout layout;
    engine::BurnOptions options;
    bool ejectWhenDone = true;
    bool ejectWhenFailed = true;
    std::chrono::milliseconds ejectPatience{3000}; ///< with whoever has the drive when the burn is over
};

/// Starts at once. status() and abort() may be called from any thread.
class BurnProcess {
  public:
    /// `refused`: why the plan can't be burned; the burn then fails with it. `observer` may be empty; it is called on
    /// the engine's threads with all that status() answers one after the other, and never after the destructor.
    BurnProcess(engine::DriveRef drive, BurnPlan plan, std::optional<engine::Error> refused = {},
                engine::BurnJob::Observer observer = {});
    BurnProcess(const BurnProcess&) = delete;
    BurnProcess& operator=(const BurnProcess&) = delete;
    /// Ends a running burn and waits until the medium is consistent.
    ~BurnProcess();

    /// Done and Failed are told only when the medium has been ejected, if it is to be: who sees them may use
    /// the drive.
    engine::BurnStatus status() const;
    void abort();
    /// Returns when status() is final.
    void wait();

  private:
    void finish();
    void eject() const;
    bool ejectsAfter(const engine::BurnStatus& end) const;

    engine::BurnJob::Observer observer_;
    engine::BurnJob job_;
    std::optional<engine::Error> refused_; // set before the thread starts, when no job was started
    bool ejectWhenDone_;
    bool ejectWhenFailed_;
    std::chrono::milliseconds ejectPatience_;
    std::atomic<bool> settled_ = false;
    std::thread finisher_;
};

} // namespace discrecording
