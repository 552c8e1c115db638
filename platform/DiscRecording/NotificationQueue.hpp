// NotificationQueue: who observes on which run loop, and what they have not been told yet.
#pragma once

#include "DriveWatcher.hpp"
#include "Notifications.hpp"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>
#include <vector>

#include <sys/eventfd.h>
#include <unistd.h>

namespace discrecording {

enum class Notice { DeviceAppeared, DeviceDisappeared, DeviceStatusChanged, Burn, Erase };

/// Plain values: made on any thread, and an NSNotification only where it is delivered.
struct Event {
    Notice notice;
    std::variant<engine::DriveRef, uint64_t> source;
    std::variant<std::monostate, engine::BurnStatus, engine::EraseStatus> status;
    uint64_t onlyFor = 0; // an observer's number, or 0 for all
};

struct Observer {
    uint64_t number;
    id observer; // not retained, nor is the object
    SEL selector;
    std::optional<Notice> notice; // none: all of them
    id object;

    bool wants(const Event& event) const {
        return (event.onlyFor == 0 || event.onlyFor == number) && (!notice || *notice == event.notice);
    }
    bool isOfDevices() const { return !notice || *notice < Notice::Burn; }
};

/// One run loop's observers, and what they have not been told yet.
struct Queue {
    std::mutex mutex;
    std::vector<Observer> observers;
    std::deque<Event> events;
    int wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

    ~Queue() {
        if (wake >= 0) ::close(wake);
    }
    void signal() const {
        const uint64_t one = 1;
        (void)!::write(wake, &one, sizeof one);
    }
};
using QueueRef = std::shared_ptr<Queue>;

/// All that there are.
struct Queues {
    std::mutex mutex;
    std::vector<QueueRef> all;
    uint64_t lastObserver = 0;
};
Queues& queues();

/// The watcher of drives, which posts what it sees.
DriveWatcher& watcher();

/// Empty for a name that is none of this framework's.
std::optional<Notice> noticeNamed(NSString* name);

/// Sends the notification to the queue's observers, on this thread.
void deliver(Queue& queue, const Event& event);

} // namespace discrecording
