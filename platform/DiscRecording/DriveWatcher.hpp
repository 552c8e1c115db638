// DriveWatcher: tells of drives that come, go and change.
#pragma once

#include "Drive.hpp"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace discrecording {

enum class DriveEvent { Appeared, Disappeared, StatusChanged };

/// Watches on a thread of its own, as long as somebody wants it to: the folder of the virtual drives by what
/// the system tells of it, and everything else (who keeps a drive busy, physical drives) by looking from time
/// to time.
class DriveWatcher {
  public:
    /// Called on the watcher's thread, and in order.
    using Tell = std::function<void(DriveEvent, const engine::DriveRef&)>;

    explicit DriveWatcher(Tell tell) : tell_(std::move(tell)) {}
    DriveWatcher(const DriveWatcher&) = delete;
    DriveWatcher& operator=(const DriveWatcher&) = delete;

    /// Begins to watch, unless it does; counted. `known` is called once with the drives that are there; whatever
    /// comes and goes after that is told, and nothing is told meanwhile.
    using Known = std::function<void(const std::vector<engine::DriveRef>&)>;
    void acquire(const Known& known);
    /// Ends it when nobody wants it any more.
    void release();
    /// Looks at once: this process has changed something that the system does not tell of. Does nothing while
    /// nobody watches. From any thread.
    void lookNow();

  private:
    /// What can change while a drive is attached.
    struct Snapshot {
        bool trayOpen = false, busy = false, reserved = false, present = false;
        engine::MediumKind kind{};
        engine::MediumState state{};
        uint64_t capacity = 0, used = 0, free = 0;
        size_t sessions = 0, tracks = 0;

        bool operator==(const Snapshot&) const = default;
    };
    static Snapshot snapshotOf(engine::Drive& drive);

    void run();
    void look(bool tells);
    void watchFolders();
    void waitForNews();

    const Tell tell_;
    std::mutex mutex_; ///< over what is known
    std::map<engine::DriveRef, Snapshot> drives_;

    std::mutex starting_; ///< over who wants it
    uint32_t wanted_ = 0;
    std::thread thread_;

    // Of the thread, but for wake_, which lasts and is any thread's.
    int notify_ = -1;
    std::map<int, std::string> watched_;
    std::atomic<int> wake_ = -1;
    std::atomic<bool> stops_ = false;
};

} // namespace discrecording
