// DRBurn: one burn of one disc.
#import "DRBurn.h"
#include "BurnProcess.hpp"
#import "DRDevicePrivate.h"
#include "Elements.hpp"
#include "LayoutReader.hpp"
#include "LivingObjects.hpp"
#include "Notifications.hpp"
#include "PathStrings.hpp"
#include "StatusDictionaries.hpp"

#include <memory>
#include <mutex>

// At most one of the two holds: a running or ended burn, or the reason why none was begun.
struct DRBurnInside {
    uint64_t number = 0; // as a living object
    std::mutex mutex;    // over the pointers; the run itself is safe for threads
    std::shared_ptr<discrecording::BurnProcess> run;
    std::optional<engine::Error> refused;
    bool used = false;
};

namespace {

using discrecording::BurnPlan;
using engine::Error;
using engine::ErrorCode;
using engine::Result;

bool flag(NSDictionary* properties, NSString* key, bool otherwise) {
    id value = [properties objectForKey:key];
    return [value respondsToSelector:@selector(boolValue)] ? [value boolValue] : otherwise;
}

Error refusal(ErrorCode code, NSString* sentence) { return {code, pathnames::bytesOf(sentence), {}}; }

// What a property asks for that can't be done yet is refused before anything is written.
Result<void> checkProperties(NSDictionary* properties) {
    struct Unknown {
        NSString* key;
        ErrorCode code;
    };
    const Unknown unknown[] = {
        {DRMediaCatalogNumberKey, ErrorCode::FunctionNotSupported},
        {DRCDTextKey, ErrorCode::CantWriteCDText},
        {DRBurnDoubleLayerL0DataZoneBlocksKey, ErrorCode::FunctionNotSupported},
    };
    for (const Unknown& row : unknown) {
        if ([properties objectForKey:row.key] == nil)
            continue;
        return refusal(row.code,
                       [NSString stringWithFormat:@"The burn asks for %@, which can't be burned yet; "
                                                  @"leave it out.",
                                                  row.key]);
    }
    if (flag(properties, DRBurnStrategyIsRequiredKey, false) &&
        [properties objectForKey:DRBurnStrategyKey] != nil) {
        return refusal(
            ErrorCode::StrategyNotAvailable,
            @"The burn insists on a strategy, and a strategy can't be chosen yet; let it be a wish.");
    }
    return {};
}

// YES to eject; a text that is neither of the two actions is an error.
Result<bool> ejects(NSDictionary* properties, NSString* key, NSString* ejectText, NSString* stayText) {
    id action = [properties objectForKey:key];
    if (action == nil || [action isEqual:ejectText])
        return true;
    if ([action isEqual:stayText])
        return false;
    return refusal(ErrorCode::FunctionNotSupported,
                   [NSString stringWithFormat:@"The burn's %@ is \"%@\"; use %@ or %@.", key, action,
                                              ejectText, stayText]);
}

// A medium of any kind but CD takes its tracks one to a session.
Result<void> checkTrackCount(const engine::Drive& drive, NSArray* sessions) {
    const auto medium = drive.mediumInfo();
    if (!medium || engine::factsOf(medium->kind).mediumClass == engine::MediumClass::CD)
        return {};
    for (NSArray* tracks : discrecording::Elements<NSArray*>(sessions)) {
        if ([tracks count] > 1) {
            return refusal(
                ErrorCode::TooManyTracksForDVD,
                [NSString stringWithFormat:@"The layout has %u tracks in a session, and a DVD takes one; "
                                           @"put everything into one track.",
                                           static_cast<unsigned>([tracks count])]);
        }
    }
    return {};
}

Result<BurnPlan> planOf(DRDevice* device, NSArray* sessions, NSDictionary* properties, float speed) {
    if (DRDriveOfDevice(device) == nullptr) {
        return refusal(ErrorCode::DeviceInvalid,
                       @"The burn has no drive; make it for one of the drives that are there.");
    }
    if (const auto allowed = checkProperties(properties); !allowed.ok())
        return allowed.error();
    const auto ejectsDone = ejects(properties, DRBurnCompletionActionKey, DRBurnCompletionActionEject,
                                   DRBurnCompletionActionMount);
    if (!ejectsDone.ok())
        return ejectsDone.error();
    const auto ejectsFailed =
        ejects(properties, DRBurnFailureActionKey, DRBurnFailureActionEject, DRBurnFailureActionNone);
    if (!ejectsFailed.ok())
        return ejectsFailed.error();
    auto layout = discrecording::layoutOfSessions(sessions);
    if (!layout.ok())
        return layout.error();
    if (const auto allowed = checkTrackCount(*DRDriveOfDevice(device), sessions); !allowed.ok())
        return allowed.error();

    BurnPlan plan;
    plan.layout = std::move(*layout);
    plan.options.verify = flag(properties, DRBurnVerifyDiscKey, true);
    plan.options.overwrite = flag(properties, DRBurnOverwriteDiscKey, false);
    plan.options.appendable = flag(properties, DRBurnAppendableKey, false);
    plan.options.testing = flag(properties, DRBurnTestingKey, false);
    plan.options.requestedSpeed = std::min(speed > 0 ? static_cast<double>(speed) : engine::maximumSpeed,
                                           discrecording::speedLimitOfSessions(sessions));
    plan.ejectWhenDone = *ejectsDone;
    plan.ejectWhenFailed = *ejectsFailed;
    return plan;
}

} // namespace

@implementation DRBurn

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
    delete _inside; // first: the burn ends while everything that it reads is still there
    [_sessions release];
    [_properties release];
    [_device release];
    [super dealloc];
}

- (DRDevice*)device {
    return _device;
}

// ---- the burn

- (void)writeLayout:(id)layout {
    NSArray* sessions = discrecording::sessionsOfLayout(layout);
    {
        const std::lock_guard lock(_inside->mutex);
        if (_inside->used) {
            [NSException raise:NSInternalInconsistencyException
                        format:@"This burn has been used before; make a new DRBurn for every burn."];
        }
        _inside->used = true;
    }
    _sessions = [sessions retain];
    auto plan = planOf(_device, sessions, _properties, [self requestedBurnSpeed]);
    // Who waits for the end is told nothing on the way.
    const bool waits = flag(_properties, DRSynchronousBehaviorKey, false);
    if (!plan.ok()) {
        engine::BurnStatus failed;
        failed.state = engine::BurnState::Failed;
        failed.error = plan.error();
        {
            const std::lock_guard lock(_inside->mutex);
            _inside->refused = plan.error();
        }
        if (!waits)
            discrecording::postBurnStatus(_inside->number, failed);
        return;
    }
    engine::BurnJob::Observer observer;
    if (!waits) {
        const uint64_t number = _inside->number;
        observer = [=](const engine::BurnStatus& status) {
            discrecording::postBurnStatus(number, status);
            if (status.state == engine::BurnState::SessionOpen || status.isFinal())
                discrecording::drivesMayHaveChanged();
        };
    }
    const auto run = std::make_shared<discrecording::BurnProcess>(DRDriveOfDevice(_device), std::move(*plan),
                                                                  std::move(observer));
    {
        const std::lock_guard lock(_inside->mutex);
        _inside->run = run;
    }
    if (waits)
        run->wait();
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
        if (_inside->refused) {
            status.state = engine::BurnState::Failed;
            status.error = _inside->refused;
        } else if (_inside->used) {
            status.state = engine::BurnState::Preparing;
        }
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
    id value = [_properties objectForKey:DRBurnRequestedSpeedKey];
    return [value respondsToSelector:@selector(floatValue)] ? [value floatValue] : DRDeviceBurnSpeedMax;
}

- (void)setRequestedBurnSpeed:(float)speed {
    [self setProperty:[NSNumber numberWithFloat:speed] forKey:DRBurnRequestedSpeedKey];
}

- (BOOL)appendable {
    return flag(_properties, DRBurnAppendableKey, false);
}

- (void)setAppendable:(BOOL)appendable {
    [self setProperty:[NSNumber numberWithBool:appendable] forKey:DRBurnAppendableKey];
}

- (BOOL)verifyDisc {
    return flag(_properties, DRBurnVerifyDiscKey, true);
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
