// DRBurn: one burn of one disc.
#import "DRBurn.h"
#include "Background.hpp"
#include "BurnProperties.hpp"
#import "DRDevicePrivate.h"
#import "DRImageLayout.h"
#include "EngineThread.hpp"
#include "LayoutReader.hpp"
#include "LivingObjects.hpp"
#include "Notifications.hpp"
#include "StatusDictionaries.hpp"
#include "WaitingThread.hpp"

#include <memory>
#include <mutex>
#include <optional>

struct DRBurnInside {
    uint64_t number = 0; // as a living object
    std::mutex mutex;    // over what follows; the run itself is safe for threads
    std::shared_ptr<discrecording::BurnProcess> run;
    bool used = false;
};

namespace {

using discrecording::BurnPlan;
using engine::Error;
using engine::ErrorCode;
using engine::Result;

// What is to be done; answers why it can't be.
Result<void> fillPlan(BurnPlan& plan, DRDevice* device, NSArray* sessions, DRImageLayout* image,
                      NSDictionary* properties, uint64_t burn) {
    // First, because they hold for a plan that fails, too.
    const auto actions = discrecording::readBurnActions(plan, properties);
    if (DRDriveOfDevice(device) == nullptr) {
        return Error{ErrorCode::DeviceInvalid,
                     "The burn has no drive; make it for one of the drives that are there.",
                     {}};
    }
    if (image != nil) {
        if (const auto read = DRReadImageLayout(image, plan); !read.ok())
            return read;
    } else {
        auto layout = discrecording::layoutOfSessions(sessions, {burn, DRDriveOfDevice(device)});
        if (!layout.ok())
            return layout.error();
        plan.layout = std::move(*layout);
    }
    if (!actions.ok())
        return actions;
    // Last, because they count more than what an image says.
    return discrecording::readBurnProperties(plan, properties);
}

} // namespace

@implementation DRBurn

+ (id)layoutForImageFile:(NSString*)path {
    return [DRImageLayout layoutForPath:path];
}

+ (DRBurn*)burnForDevice:(DRDevice*)device {
    return [[[self alloc] initWithDevice:device] autorelease];
}

- (id)initWithDevice:(DRDevice*)device {
    self = [super init];
    if (self == nil)
        return nil;
    _device = [device retain];
    _properties = [[NSDictionary alloc] init];
    _inside = new DRBurnInside;
    _inside->number = discrecording::enterLiving(self);
    return self;
}

- (id)init {
    return [self initWithDevice:nil];
}

- (oneway void)release {
    if (discrecording::releaseLiving(_inside->number, self))
        [self dealloc];
}

- (void)dealloc {
    if (discrecording::EngineThread::isInside()) {
        // The last reference went on a thread that the burn itself waits for: it is over now, and ends on another one.
        [self abort];
        DRBurnInside* inside = _inside;
        NSArray* sessions = _sessions;
        engine::runInBackground("disc-end", [=] {
            const discrecording::EngineThread thread;
            delete inside;
            [sessions release];
        });
    } else {
        delete _inside; // first: the burn ends while everything that it reads is still there
        [_sessions release];
    }
    [_properties release];
    [_device release];
    [super dealloc];
}

- (DRDevice*)device {
    return _device;
}

// ---- the burn

- (void)writeLayout:(id)layout {
    if (layout == nil)
        return;
    DRImageLayout* image = [layout isKindOfClass:[DRImageLayout class]] ? layout : nil;
    NSArray* sessions = image != nil ? nil : discrecording::sessionsOfLayout(layout);
    {
        const std::lock_guard lock(_inside->mutex);
        if (_inside->used) {
            [NSException raise:NSInternalInconsistencyException
                        format:@"This burn has been used before; make a new DRBurn for every burn."];
        }
        _inside->used = true;
    }
    _sessions = [sessions retain];
    BurnPlan plan;
    const auto filled = fillPlan(plan, _device, sessions, image, _properties, _inside->number);
    // Who waits for the end is told nothing on the way, but runs what the program has to do with it.
    const bool waits = discrecording::burnFlag(_properties, DRSynchronousBehaviorKey, false);
    std::optional<discrecording::WaitingThread> waiting;
    engine::BurnJob::Observer observer;
    if (waits) {
        waiting.emplace();
        observer = [&waiting](const engine::BurnStatus& status) {
            if (status.isFinal())
                waiting->end();
        };
    } else {
        const uint64_t number = _inside->number;
        observer = [=](const engine::BurnStatus& status) {
            discrecording::postBurnStatus(number, status);
            if (status.state == engine::BurnState::SessionOpen || status.isFinal())
                discrecording::drivesMayHaveChanged();
        };
    }
    std::shared_ptr<discrecording::BurnProcess> run;
    {
        // Held meanwhile, so that who is told of the end asks the run for it.
        const std::lock_guard lock(_inside->mutex);
        run = std::make_shared<discrecording::BurnProcess>(
            DRDriveOfDevice(_device), std::move(plan),
            filled.ok() ? std::nullopt : std::make_optional(filled.error()), std::move(observer));
        _inside->run = run;
    }
    if (!waits)
        return;
    // What a program's event does may give up the last reference to this burn.
    [self retain];
    waiting->run();
    run->wait();
    waiting.reset();
    [self release];
}

- (void)abort {
    std::shared_ptr<discrecording::BurnProcess> run;
    {
        const std::lock_guard lock(_inside->mutex);
        run = _inside->run;
    }
    if (run != nullptr)
        run->abort();
}

- (NSDictionary*)status {
    std::shared_ptr<discrecording::BurnProcess> run;
    engine::BurnStatus status;
    {
        const std::lock_guard lock(_inside->mutex);
        run = _inside->run;
        if (_inside->used)
            status.state = engine::BurnState::Preparing;
    }
    return discrecording::statusDictionary(run != nullptr ? run->status() : status);
}

// ---- properties

- (NSDictionary*)properties {
    return [[_properties retain] autorelease];
}

- (void)setProperties:(NSDictionary*)properties {
    NSDictionary* copy = properties == nil ? [[NSDictionary alloc] init]
                                           : [[NSDictionary alloc] initWithDictionary:properties];
    [_properties release];
    _properties = copy;
}

- (void)setProperty:(id)value forKey:(NSString*)key {
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:_properties];
    if (value == nil) {
        [properties removeObjectForKey:key];
    } else {
        [properties setObject:value forKey:key];
    }
    [self setProperties:properties];
}

- (float)requestedBurnSpeed {
    return discrecording::requestedSpeed(_properties);
}

- (void)setRequestedBurnSpeed:(float)speed {
    [self setProperty:[NSNumber numberWithFloat:speed] forKey:DRBurnRequestedSpeedKey];
}

- (BOOL)appendable {
    return discrecording::burnFlag(_properties, DRBurnAppendableKey, false);
}

- (void)setAppendable:(BOOL)appendable {
    [self setProperty:[NSNumber numberWithBool:appendable] forKey:DRBurnAppendableKey];
}

- (BOOL)verifyDisc {
    return discrecording::burnFlag(_properties, DRBurnVerifyDiscKey, true);
}

- (void)setVerifyDisc:(BOOL)verify {
    [self setProperty:[NSNumber numberWithBool:verify] forKey:DRBurnVerifyDiscKey];
}

- (NSString*)completionAction {
    id action = [_properties objectForKey:DRBurnCompletionActionKey];
    return action == nil ? DRBurnCompletionActionEject : action;
}

- (void)setCompletionAction:(NSString*)action {
    [self setProperty:[[action copy] autorelease] forKey:DRBurnCompletionActionKey];
}

@end
