// DRDevice: finding drives, asking about their media, and moving these in and out.
#import "DRDevice.h"
#import "DRDevicePrivate.h"
#include "Elements.hpp"
#include "Notifications.hpp"
#include "PathStrings.hpp"

#include <algorithm>
#include <map>
#include <mutex>

struct DRDeviceInside {
    engine::DriveRef drive;
};

@interface DRDevice (Making)
- (id)initWithDrive:(engine::DriveRef)drive;
- (DRDeviceInside*)inside;
@end

namespace {

// The objects handed out, one for each drive, each retained once here.
struct Known {
    std::mutex mutex;
    std::map<engine::DriveRef, DRDevice*> devices;
};

// Never destroyed: drives may be asked for while the process ends.
Known& known() {
    static Known& all = *new Known;
    return all;
}

// The lock is held.
DRDevice* knownDevice(const engine::DriveRef& drive) {
    DRDevice*& device = known().devices[drive];
    if (device == nil)
        device = [[DRDevice alloc] initWithDrive:drive];
    return [[device retain] autorelease];
}

bool canWriteAtAll(const engine::Drive& drive) { return !drive.capabilities().writes.empty(); }

} // namespace

@implementation DRDevice

+ (NSArray*)devices {
    const auto found = engine::drives();
    if (!found.ok()) {
        NSLog(@"No drives can be found: %@", pathnames::textOf(found.error().message));
        return [NSArray array];
    }
    NSMutableArray* devices = [NSMutableArray array];
    const std::lock_guard lock(known().mutex);
    // Drives that are gone are forgotten when nobody else holds their object; whoever does sees that it is not
    // valid, and is told of its going with that object.
    std::erase_if(known().devices, [&found](const auto& entry) {
        if ([entry.second retainCount] > 1 ||
            std::find(found->begin(), found->end(), entry.first) != found->end())
            return false;
        [entry.second release];
        return true;
    });
    for (const engine::DriveRef& drive : *found) {
        if (canWriteAtAll(*drive))
            [devices addObject:knownDevice(drive)];
    }
    return [NSArray arrayWithArray:devices];
}

+ (DRDevice*)deviceForBSDName:(NSString*)bsdName {
    if (bsdName == nil)
        return nil;
    for (DRDevice* device : discrecording::Elements<DRDevice*>([self devices])) {
        if ([[device bsdName] isEqualToString:bsdName])
            return device;
    }
    return nil;
}

+ (DRDevice*)deviceForIORegistryEntryPath:(NSString*)path {
    if (path == nil)
        return nil;
    for (DRDevice* device : discrecording::Elements<DRDevice*>([self devices])) {
        if ([[device ioRegistryEntryPath] isEqualToString:path])
            return device;
    }
    return nil;
}

// An object that a program makes stands for no drive; every question about it answers no.
- (id)init {
    return [self initWithDrive:nullptr];
}

- (void)dealloc {
    delete _inside;
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain]; // a drive is one thing
}

- (BOOL)isValid {
    return _inside->drive != nullptr && _inside->drive->isValid();
}

- (BOOL)isEqualToDevice:(DRDevice*)otherDevice {
    if (otherDevice == nil)
        return NO;
    return self == otherDevice ||
           (_inside->drive != nullptr && _inside->drive == otherDevice->_inside->drive);
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[DRDevice class]] && [self isEqualToDevice:other];
}

- (NSUInteger)hash {
    return _inside->drive == nullptr ? 0 : std::hash<engine::DriveRef>{}(_inside->drive);
}

- (NSString*)description {
    return [NSString stringWithFormat:@"<%@ %p: %@>", [self class], self, [self displayName]];
}

// ---- who it is

- (NSString*)displayName {
    return _inside->drive == nullptr ? nil : pathnames::textOf(_inside->drive->displayName());
}

- (NSString*)ioRegistryEntryPath {
    return _inside->drive == nullptr ? nil : pathnames::textOf(_inside->drive->identity().id);
}

- (NSString*)bsdName {
    return [self mediaIsPresent] ? DRBSDNameOfDrive(*_inside->drive) : nil;
}

- (BOOL)writesCD {
    return _inside->drive != nullptr && _inside->drive->capabilities().canWriteAny(engine::MediumClass::CD);
}

- (BOOL)writesDVD {
    return _inside->drive != nullptr && _inside->drive->capabilities().canWriteAny(engine::MediumClass::DVD);
}

// ---- what is in it

- (std::optional<engine::MediumInfo>)medium {
    return _inside->drive == nullptr ? std::nullopt : _inside->drive->mediumInfo();
}

- (BOOL)mediaIsPresent {
    return _inside->drive != nullptr && _inside->drive->hasMedium();
}

// Both virtual drives and those that the engine waits for answer only when they are ready.
- (BOOL)mediaIsTransitioning {
    return NO;
}

- (BOOL)mediaIsBusy {
    return _inside->drive != nullptr && _inside->drive->isBusy() && [self mediaIsPresent];
}

- (BOOL)mediaIsBlank {
    const auto medium = [self medium];
    return medium && medium->blank;
}

- (BOOL)mediaIsAppendable {
    const auto medium = [self medium];
    return medium && medium->appendable;
}

- (BOOL)mediaIsOverwritable {
    const auto medium = [self medium];
    return medium && medium->overwritable;
}

- (BOOL)mediaIsErasable {
    const auto medium = [self medium];
    return medium && medium->erasable;
}

- (BOOL)mediaIsReserved {
    return _inside->drive != nullptr && _inside->drive->holdsMediaReservation() && [self mediaIsBlank];
}

- (NSString*)mediaType {
    const auto medium = [self medium];
    return medium ? DRMediaTypeOfKind(medium->kind) : nil;
}

- (DRMSF*)mediaSpaceFree {
    const auto medium = [self medium];
    return DRMSFOfBlocks(medium ? medium->blocksFree : 0);
}

- (DRMSF*)mediaSpaceUsed {
    const auto medium = [self medium];
    return DRMSFOfBlocks(medium ? medium->blocksUsed : 0);
}

- (DRMSF*)mediaSpaceOverwritable {
    const auto medium = [self medium];
    return DRMSFOfBlocks(medium ? medium->blocksOverwritable : 0);
}

// ---- tray and access

- (BOOL)trayIsOpen {
    return _inside->drive != nullptr && _inside->drive->isTrayOpen();
}

- (BOOL)openTray {
    return _inside->drive != nullptr && _inside->drive->openTray().ok();
}

- (BOOL)closeTray {
    return _inside->drive != nullptr && _inside->drive->closeTray().ok();
}

- (BOOL)ejectMedia {
    return _inside->drive != nullptr && _inside->drive->eject().ok();
}

- (BOOL)acquireExclusiveAccess {
    const BOOL acquired = _inside->drive != nullptr && _inside->drive->acquireExclusiveAccess().ok();
    discrecording::drivesMayHaveChanged();
    return acquired;
}

- (void)releaseExclusiveAccess {
    if (_inside->drive != nullptr)
        _inside->drive->releaseExclusiveAccess();
    discrecording::drivesMayHaveChanged();
}

- (void)acquireMediaReservation {
    if (_inside->drive != nullptr)
        _inside->drive->acquireMediaReservation();
    discrecording::drivesMayHaveChanged();
}

- (void)releaseMediaReservation {
    if (_inside->drive != nullptr)
        _inside->drive->releaseMediaReservation();
    discrecording::drivesMayHaveChanged();
}

@end

@implementation DRDevice (Making)

- (id)initWithDrive:(engine::DriveRef)drive {
    self = [super init];
    if (self == nil)
        return nil;
    _inside = new DRDeviceInside;
    _inside->drive = std::move(drive);
    return self;
}

- (DRDeviceInside*)inside {
    return _inside;
}

@end

engine::DriveRef DRDriveOfDevice(DRDevice* device) {
    return device == nil ? nullptr : [device inside]->drive;
}

DRDevice* DRDeviceOfDrive(const engine::DriveRef& drive) {
    if (drive == nullptr)
        return nil;
    const std::lock_guard lock(known().mutex);
    return knownDevice(drive);
}

DRMSF* DRMSFOfBlocks(uint64_t blocks) {
    return [DRMSF msfWithFrames:static_cast<uint32_t>(std::min<uint64_t>(blocks, UINT32_MAX))];
}

NSString* DRBSDNameOfDrive(const engine::Drive& drive) {
    const std::string& id = drive.identity().id;
    const size_t slash = id.find_last_of('/');
    return pathnames::textOf(slash == std::string::npos ? id : id.substr(slash + 1));
}
