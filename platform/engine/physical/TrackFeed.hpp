// Hands a job's buffers to libburn's writing thread, which asks for one block at a time.
#pragma once

#include "../Signal.hpp"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <sys/types.h>

#include "LibBurn.hpp"

namespace engine {

/// One session's tracks, in order. The job gives, the library takes; a buffer is used in place.
class TrackFeed : public std::enable_shared_from_this<TrackFeed> {
  public:
    /// What the library reads a track from. The reference belongs to the caller.
    burn_source* sourceOf(size_t track, uint64_t bytes);

    /// Returns when the library has taken all of it. False when nobody takes any more: it was stopped, or `isIdle`
    /// says that the library has ended. Throws UserCanceled.
    template <typename IsIdle>
    bool give(size_t track, std::span<const std::byte> bytes, const Signal* signal, IsIdle isIdle) {
        std::unique_lock lock(mutex_);
        track_ = track;
        offered_ = bytes;
        changed_.notify_all();
        while (!offered_.empty() && !stopped_) {
            changed_.wait_for(lock, pollInterval);
            if (signal != nullptr && signal->isCanceled()) {
                offered_ = {};
                lock.unlock();
                signal->check();
            }
            if (!offered_.empty() && isIdle()) stopped_ = true;
        }
        const bool taken = offered_.empty();
        offered_ = {};
        return taken;
    }
    /// No more comes for a track.
    void end(size_t track);
    /// Nothing more comes at all.
    void stop();

    uint64_t bytesTaken() const;

    /// Waits until the library's thread has ended, if it ever asked for a block.
    void waitForTaker() const;

    static constexpr std::chrono::milliseconds pollInterval{10};

  private:
    friend struct TrackSourceCalls;
    int take(size_t track, std::span<std::byte> block);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::span<const std::byte> offered_; ///< what is left of the buffer given last
    size_t track_ = 0;                   ///< that `offered_` belongs to
    size_t ended_ = 0;                   ///< tracks below this have ended
    uint64_t taken_ = 0;
    bool stopped_ = false;
    std::atomic<pid_t> taker_ = 0; ///< the thread that asks
};

} // namespace engine
