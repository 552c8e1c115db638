// NotificationQueue: who observes on which run loop, and what they have not been told yet.
#include "NotificationQueue.hpp"
#import "DRBurnConstants.h"
#import "DRDevicePrivate.h"
#import "DREraseConstants.h"
#include "LivingObjects.hpp"
#include "StatusDictionaries.hpp"

#include <algorithm>

namespace discrecording {
namespace {

// The same state of the same thing: the newer one says all.
bool replaces(const Event& newer, const Event& older) {
    if (newer.notice != older.notice || newer.source != older.source || newer.onlyFor != older.onlyFor)
        return false;
    if (const auto* burn = std::get_if<engine::BurnStatus>(&newer.status))
        return std::get<engine::BurnStatus>(older.status).state == burn->state;
    if (const auto* erase = std::get_if<engine::EraseStatus>(&newer.status))
        return std::get<engine::EraseStatus>(older.status).state == erase->state;
    return newer.notice == Notice::DeviceStatusChanged;
}

void post(const Event& event) {
    const std::lock_guard lock(queues().mutex);
    for (const QueueRef& queue : queues().all) {
        const std::lock_guard inner(queue->mutex);
        if (std::none_of(queue->observers.begin(), queue->observers.end(),
                         [&event](const Observer& each) { return each.wants(event); }))
            continue;
        const auto last = std::find_if(queue->events.rbegin(), queue->events.rend(),
                                       [&event](const Event& each) { return each.source == event.source; });
        if (last != queue->events.rend() && replaces(event, *last))
            *last = event;
        else
            queue->events.push_back(event);
        queue->signal();
    }
}

NSString* nameOfNotice(Notice notice) {
    switch (notice) {
    case Notice::DeviceAppeared:
        return DRDeviceAppearedNotification;
    case Notice::DeviceDisappeared:
        return DRDeviceDisappearedNotification;
    case Notice::DeviceStatusChanged:
        return DRDeviceStatusChangedNotification;
    case Notice::Burn:
        return DRBurnStatusChangedNotification;
    case Notice::Erase:
        return DREraseStatusChangedNotification;
    }
    return nil;
}

// Nil when what it is about is gone.
NSNotification* notificationOf(const Event& event) {
    id object = nil;
    NSDictionary* userInfo = nil;
    if (const auto* drive = std::get_if<engine::DriveRef>(&event.source)) {
        DRDevice* device = DRDeviceOfDrive(*drive);
        object = device;
        userInfo = event.notice == Notice::DeviceStatusChanged ? [device status] : [device info];
    } else {
        object = livingObject(std::get<uint64_t>(event.source));
        const auto* burn = std::get_if<engine::BurnStatus>(&event.status);
        userInfo = burn != nullptr ? statusDictionary(*burn)
                                   : statusDictionary(std::get<engine::EraseStatus>(event.status));
    }
    return object == nil ? nil
                         : [NSNotification notificationWithName:nameOfNotice(event.notice)
                                                         object:object
                                                       userInfo:userInfo];
}

} // namespace

// Never destroyed: jobs may end while the process does.
Queues& queues() {
    static Queues& instance = *new Queues;
    return instance;
}

DriveWatcher& watcher() {
    static DriveWatcher& instance = *new DriveWatcher([](DriveEvent what, const engine::DriveRef& drive) {
        const Notice notice = what == DriveEvent::Appeared      ? Notice::DeviceAppeared
                              : what == DriveEvent::Disappeared ? Notice::DeviceDisappeared
                                                                : Notice::DeviceStatusChanged;
        post({notice, drive, {}});
    });
    return instance;
}

std::optional<Notice> noticeNamed(NSString* name) {
    for (const Notice notice : {Notice::DeviceAppeared, Notice::DeviceDisappeared,
                                Notice::DeviceStatusChanged, Notice::Burn, Notice::Erase}) {
        if ([nameOfNotice(notice) isEqualToString:name])
            return notice;
    }
    return std::nullopt;
}

// The observers are asked for again before each call: a call may add and remove some.
void deliver(Queue& queue, const Event& event) {
    NSNotification* notification = notificationOf(event);
    if (notification == nil)
        return;
    std::vector<uint64_t> numbers;
    {
        const std::lock_guard lock(queue.mutex);
        for (const Observer& each : queue.observers) {
            if (each.wants(event) && (each.object == nil || each.object == [notification object]))
                numbers.push_back(each.number);
        }
    }
    for (const uint64_t number : numbers) {
        id observer = nil;
        SEL selector = nullptr;
        {
            const std::lock_guard lock(queue.mutex);
            for (const Observer& each : queue.observers) {
                if (each.number == number) {
                    observer = each.observer;
                    selector = each.selector;
                }
            }
        }
        if (observer != nil)
            [observer performSelector:selector withObject:notification];
    }
}

void postBurnStatus(uint64_t burn, const engine::BurnStatus& status) { post({Notice::Burn, burn, status}); }

void postEraseStatus(uint64_t erase, const engine::EraseStatus& status) {
    post({Notice::Erase, erase, status});
}

void drivesMayHaveChanged() { watcher().lookNow(); }

} // namespace discrecording
