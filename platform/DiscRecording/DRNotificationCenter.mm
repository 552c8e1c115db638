// DRNotificationCenter: hears of drives that come and go, and of burns and erases.
#import "DRNotificationCenter.h"
#include "NotificationQueue.hpp"

#include <unistd.h>

using discrecording::Observer;
using discrecording::QueueRef;

struct DRNotificationCenterInside {
    QueueRef queue;
};

@interface DRNotificationCenter (Watching) <RunLoopEvents>
@end

static NSArray* WatchedModes() {
    return [NSArray arrayWithObjects:NSDefaultRunLoopMode, @"NSModalPanelRunLoopMode",
                                     @"NSEventTrackingRunLoopMode", nil];
}

@implementation DRNotificationCenter

+ (DRNotificationCenter*)currentRunLoopCenter {
    NSMutableDictionary* ofThread = [[NSThread currentThread] threadDictionary];
    DRNotificationCenter* center = [ofThread objectForKey:@"DRNotificationCenter"];
    if (center == nil) {
        center = [[[self alloc] init] autorelease];
        [ofThread setObject:center forKey:@"DRNotificationCenter"];
    }
    return center;
}

- (id)init {
    self = [super init];
    if (self == nil)
        return nil;
    _inside = new DRNotificationCenterInside{std::make_shared<discrecording::Queue>()};
    _loop = [[NSRunLoop currentRunLoop] retain];
    for (NSUInteger i = 0; i < [WatchedModes() count]; i++) {
        [_loop addEvent:reinterpret_cast<void*>(static_cast<intptr_t>(_inside->queue->wake))
                   type:ET_RDESC
                watcher:self
                forMode:[WatchedModes() objectAtIndex:i]];
    }
    const std::lock_guard lock(discrecording::queues().mutex);
    discrecording::queues().all.push_back(_inside->queue);
    return self;
}

- (void)dealloc {
    {
        const std::lock_guard lock(discrecording::queues().mutex);
        std::erase(discrecording::queues().all, _inside->queue);
    }
    for (const Observer& each : _inside->queue->observers) {
        if (each.isOfDevices())
            discrecording::watcher().release();
    }
    for (NSUInteger i = 0; i < [WatchedModes() count]; i++) {
        [_loop removeEvent:reinterpret_cast<void*>(static_cast<intptr_t>(_inside->queue->wake))
                      type:ET_RDESC
                   forMode:[WatchedModes() objectAtIndex:i]
                       all:YES];
    }
    [_loop release];
    delete _inside;
    [super dealloc];
}

- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object {
    if (observer == nil || selector == nullptr) {
        [NSException raise:NSInvalidArgumentException
                    format:@"Notifications need an observer and a selector to send it."];
    }
    const auto notice = name == nil ? std::nullopt : discrecording::noticeNamed(name);
    if (name != nil && !notice) {
        NSLog(@"Nobody will ever post \"%@\" here; see DRNotificationCenter.h for the names.", name);
        return;
    }
    const QueueRef& queue = _inside->queue;
    Observer added{0, observer, selector, notice, object};
    {
        const std::lock_guard lock(discrecording::queues().mutex);
        added.number = ++discrecording::queues().lastObserver;
    }
    if (!added.isOfDevices()) {
        const std::lock_guard lock(queue->mutex);
        queue->observers.push_back(added);
        return;
    }
    // Added and told of what is there in one step, so that each drive is told once.
    discrecording::watcher().acquire([&](const std::vector<engine::DriveRef>& drives) {
        const std::lock_guard lock(queue->mutex);
        queue->observers.push_back(added);
        if (notice && *notice != discrecording::Notice::DeviceAppeared)
            return;
        for (const engine::DriveRef& drive : drives)
            queue->events.push_back({discrecording::Notice::DeviceAppeared, drive, {}, added.number});
        queue->signal();
    });
}

- (void)removeObserver:(id)observer name:(NSString*)name object:(id)object {
    const auto notice = name == nil ? std::nullopt : discrecording::noticeNamed(name);
    if (name != nil && !notice)
        return;
    size_t ofDevices = 0;
    {
        const std::lock_guard lock(_inside->queue->mutex);
        std::erase_if(_inside->queue->observers, [&](const Observer& each) {
            const bool goes = each.observer == observer && (name == nil || each.notice == notice) &&
                              (object == nil || each.object == object);
            ofDevices += goes && each.isOfDevices() ? 1 : 0;
            return goes;
        });
    }
    for (; ofDevices > 0; ofDevices--)
        discrecording::watcher().release();
}

// One event at a time: when an observer raises, the rest comes with the next turn of the loop.
- (void)receivedEvent:(void*)data type:(RunLoopEventType)type extra:(void*)extra forMode:(NSString*)mode {
    const QueueRef queue = _inside->queue;
    std::optional<discrecording::Event> event;
    {
        const std::lock_guard lock(queue->mutex);
        uint64_t count = 0;
        (void)!::read(queue->wake, &count, sizeof count);
        if (!queue->events.empty()) {
            event = std::move(queue->events.front());
            queue->events.pop_front();
        }
        if (!queue->events.empty())
            queue->signal();
    }
    if (event)
        discrecording::deliver(*queue, *event);
}

@end
