// How a job is told to end: one flag, and one condition that everything of the job waits on.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace engine {

/// Shared by the threads of one job. Whoever waits, waits on `changed` with `mutex`, so that canceling wakes
/// all.
class Signal {
  public:
    std::mutex mutex;
    std::condition_variable changed;

    void cancel() {
        {
            const std::lock_guard lock(mutex);
            canceled_ = true;
        }
        changed.notify_all();
    }
    bool isCanceled() const noexcept { return canceled_; }
    /// Throws UserCanceled when canceled.
    void check() const;

  private:
    std::atomic<bool> canceled_{false};
};

using SignalRef = std::shared_ptr<Signal>;

} // namespace engine
