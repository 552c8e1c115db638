// DRErase: one erase of a re-writable disc.
#import "DRErase.h"
#import "DRDevicePrivate.h"
#import "DRErasePrivate.h"
#include "LivingObjects.hpp"
#include "Notifications.hpp"
#include "PathStrings.hpp"
#include "StatusDictionaries.hpp"

#include <memory>
#include <mutex>

struct DREraseInside {
    uint64_t number = 0; // as a living object
    std::mutex mutex;    // over what follows; the job itself is safe for threads
    std::unique_ptr<engine::EraseJob> job;
    engine::DriveHold hold;               // until it is the job's
    std::optional<engine::Error> refused; // the reason why no job was begun
};

@implementation DRErase

+ (DRErase*)eraseForDevice:(DRDevice*)device {
    return [[[self alloc] initWithDevice:device] autorelease];
}

- (id)initWithDevice:(DRDevice*)device {
    self = [super init];
    if (self == nil)
        return nil;
    _device = [device retain];
    _properties = [[NSDictionary alloc] init];
    _inside = new DREraseInside;
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
    const bool held = static_cast<bool>(_inside->hold);
    delete _inside;
    if (held)
        discrecording::drivesMayHaveChanged();
    [_properties release];
    [_device release];
    [super dealloc];
}

- (DRDevice*)device {
    return _device;
}

- (BOOL)keepDevice {
    const std::lock_guard lock(_inside->mutex);
    if (_inside->job != nullptr || _inside->refused)
        return NO;
    if (!_inside->hold)
        _inside->hold = engine::DriveHold(DRDriveOfDevice(_device));
    discrecording::drivesMayHaveChanged();
    return static_cast<bool>(_inside->hold);
}

- (void)start {
    NSString* type = [self eraseType];
    const bool known = [type isEqual:DREraseTypeQuick] || [type isEqual:DREraseTypeComplete];
    {
        const std::lock_guard lock(_inside->mutex);
        if (_inside->job != nullptr || _inside->refused) {
            [NSException raise:NSInternalInconsistencyException
                        format:@"This erase has been started before; make a new DRErase for every erase."];
        }
        if (known) {
            _inside->job = std::make_unique<engine::EraseJob>(DRDriveOfDevice(_device));
            _inside->job->keep(std::move(_inside->hold));
        } else {
            _inside->hold = engine::DriveHold();
            _inside->refused = engine::Error{
                engine::ErrorCode::FunctionNotSupported,
                pathnames::bytesOf([NSString stringWithFormat:@"The erase's type is \"%@\"; use %@ or %@.",
                                                              type, DREraseTypeQuick, DREraseTypeComplete]),
                {}};
        }
    }
    if (!known) {
        engine::EraseStatus failed;
        failed.state = engine::EraseState::Failed;
        failed.error = _inside->refused;
        discrecording::postEraseStatus(_inside->number, failed);
        discrecording::drivesMayHaveChanged();
        return;
    }
    const uint64_t number = _inside->number;
    _inside->job->setObserver([=](const engine::EraseStatus& status) {
        discrecording::postEraseStatus(number, status);
        if (status.state == engine::EraseState::Erasing || status.isFinal())
            discrecording::drivesMayHaveChanged();
    });
    // Nothing that can go wrong goes past the status: the object is new.
    (void)_inside->job->start([type isEqual:DREraseTypeComplete] ? engine::EraseType::Complete
                                                                 : engine::EraseType::Quick);
}

- (NSDictionary*)status {
    engine::EraseStatus status;
    status.type = [[self eraseType] isEqual:DREraseTypeComplete] ? engine::EraseType::Complete
                                                                 : engine::EraseType::Quick;
    {
        const std::lock_guard lock(_inside->mutex);
        if (_inside->job != nullptr)
            status = _inside->job->status();
        if (_inside->refused) {
            status.state = engine::EraseState::Failed;
            status.error = _inside->refused;
        }
    }
    return discrecording::statusDictionary(status);
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

- (NSString*)eraseType {
    id type = [_properties objectForKey:DREraseTypeKey];
    return type == nil ? DREraseTypeQuick : type;
}

- (void)setEraseType:(NSString*)type {
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:_properties];
    if (type == nil)
        [properties removeObjectForKey:DREraseTypeKey];
    else
        [properties setObject:[[type copy] autorelease] forKey:DREraseTypeKey];
    [self setProperties:properties];
}

@end
