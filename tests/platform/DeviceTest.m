// DeviceTest: drives, and what they tell about themselves and their media; on a virtual drive of the test's
// own.
#import "Check.h"
#import "DRDevice.h"
#import "DRTrack.h"

static NSString* drives;

static void TestFinding(void) {
    NSArray* devices = [DRDevice devices];
    PASS("the first drive is there by itself", [devices count] == 1);
    DRDevice* device = [devices objectAtIndex:0];
    PASS("one object for one drive", [[DRDevice devices] objectAtIndex:0] == device);
    PASS("is valid", [device isValid]);
    PASS("equals itself only", [device isEqualToDevice:device] && ![device isEqualToDevice:nil] &&
                                   [device isEqual:device] && ![device isEqual:@"x"]);
    RAISES("an index past the end", NSRangeException, @"out of range", [devices objectAtIndex:1]);
    PASS("found by its path", [DRDevice deviceForIORegistryEntryPath:[device ioRegistryEntryPath]] == device);
    PASS("found by its medium's name", [DRDevice deviceForBSDName:[device bsdName]] == device);
    PASS("not found by others",
         [DRDevice deviceForBSDName:@""] == nil && [DRDevice deviceForBSDName:@"disk99"] == nil &&
             [DRDevice deviceForBSDName:nil] == nil && [DRDevice deviceForIORegistryEntryPath:nil] == nil &&
             [DRDevice deviceForIORegistryEntryPath:@"/none"] == nil);
    PASS("has a name for people", [[device displayName] length] > 3);
    DRDevice* none = [[[DRDevice alloc] init] autorelease];
    PASS("an object for no drive answers no",
         ![none isValid] && ![none mediaIsPresent] && [none info] == nil && [none status] == nil &&
             ![none openTray] && ![none ejectMedia] && [none displayName] == nil &&
             [[none mediaSpaceFree] sectors] == 0);
}

static void TestInfo(DRDevice* device) {
    NSDictionary* info = [device info];
    NSString* texts[] = {DRDeviceSupportLevelKey,
                         DRDeviceIORegistryEntryPathKey,
                         DRDeviceVendorNameKey,
                         DRDeviceProductNameKey,
                         DRDeviceFirmwareRevisionKey,
                         DRDevicePhysicalInterconnectKey,
                         DRDevicePhysicalInterconnectLocationKey};
    for (size_t i = 0; i < sizeof texts / sizeof *texts; i++) {
        PASS("a text of the drive", [[info objectForKey:texts[i]] isKindOfClass:[NSString class]]);
    }
    SAME("the path is the drive's", [info objectForKey:DRDeviceIORegistryEntryPathKey],
         [device ioRegistryEntryPath]);
    PASS("the interconnect is a constant",
         [[info objectForKey:DRDevicePhysicalInterconnectKey] hasPrefix:@"DRDevicePhysicalInterconnect"]);
    PASS("can eject", [[info objectForKey:DRDeviceLoadingMechanismCanEjectKey] boolValue]);
    PASS("tells its buffer", [[info objectForKey:DRDeviceWriteBufferSizeKey] isKindOfClass:[NSNumber class]]);
    NSDictionary* can = [info objectForKey:DRDeviceWriteCapabilitiesKey];
    PASS("can write", [[can objectForKey:DRDeviceCanWriteKey] boolValue]);
    PASS("writesCD as the capabilities say",
         [device writesCD] == [[can objectForKey:DRDeviceCanWriteCDKey] boolValue]);
    PASS("writesDVD as the capabilities say",
         [device writesDVD] && [[can objectForKey:DRDeviceCanWriteDVDKey] boolValue]);
    PASS("knows DVD+RW", [[can objectForKey:DRDeviceCanWriteDVDPlusRWKey] boolValue]);
    PASS("knows no HD DVD", [can objectForKey:DRDeviceCanWriteHDDVDKey] != nil &&
                                ![[can objectForKey:DRDeviceCanWriteHDDVDKey] boolValue]);
    PASS("every capability is told", [can count] == 34);
}

static void TestMedium(DRDevice* device) {
    PASS("a medium is in it",
         [device mediaIsPresent] && ![device mediaIsTransitioning] && ![device mediaIsBusy]);
    SAME("a DVD+RW", [device mediaType], DRDeviceMediaTypeDVDPlusRW);
    PASS("blank, and so all else", [device mediaIsBlank] && [device mediaIsAppendable] &&
                                       [device mediaIsOverwritable] && [device mediaIsErasable]);
    PASS("all of it is free",
         [[device mediaSpaceFree] sectors] > 2000000 && [[device mediaSpaceUsed] sectors] == 0);
    SAME("and can be overwritten", [device mediaSpaceOverwritable], [device mediaSpaceFree]);

    NSDictionary* status = [device status];
    SAME("the state", [status objectForKey:DRDeviceMediaStateKey], DRDeviceMediaStateMediaPresent);
    PASS("idle", ![[status objectForKey:DRDeviceIsBusyKey] boolValue] &&
                     [status objectForKey:DRDeviceIsBusyKey] != nil);
    PASS("closed", ![[status objectForKey:DRDeviceIsTrayOpenKey] boolValue] &&
                       [status objectForKey:DRDeviceIsTrayOpenKey] != nil);
    NSDictionary* media = [status objectForKey:DRDeviceMediaInfoKey];
    SAME("its type", [media objectForKey:DRDeviceMediaTypeKey], DRDeviceMediaTypeDVDPlusRW);
    SAME("its class", [media objectForKey:DRDeviceMediaClassKey], DRDeviceMediaClassDVD);
    SAME("its name", [media objectForKey:DRDeviceMediaBSDNameKey], [device bsdName]);
    PASS("spaces are lengths", [[media objectForKey:DRDeviceMediaFreeSpaceKey] isKindOfClass:[DRMSF class]]);
    SAME("and blocks numbers", [media objectForKey:DRDeviceMediaBlocksFreeKey], [device mediaSpaceFree]);
    PASS("no tracks", [[media objectForKey:DRDeviceMediaTrackCountKey] intValue] == 0 &&
                          [[media objectForKey:DRDeviceMediaSessionCountKey] intValue] == 0);
    SAME("no tracks at all", [status objectForKey:DRDeviceTrackRefsKey], [NSArray array]);
    NSArray* speeds = [status objectForKey:DRDeviceBurnSpeedsKey];
    SAME("the speeds stand in both places", [media objectForKey:DRDeviceBurnSpeedsKey], speeds);
    PASS("ascending", [speeds count] > 0);
    for (NSUInteger i = 1; i < [speeds count]; i++) {
        PASS("ascending",
             [[speeds objectAtIndex:i - 1] compare:[speeds objectAtIndex:i]] == NSOrderedAscending);
    }
    SAME("the fastest is the maximum", [status objectForKey:DRDeviceMaximumWriteSpeedKey],
         [speeds lastObject]);
}

static void TestTray(DRDevice* device) {
    PASS("does not open on a medium", ![device openTray] && ![device trayIsOpen]);
    PASS("ejects", [device ejectMedia] && [device trayIsOpen]);
    PASS("then no medium", ![device mediaIsPresent] && [device mediaType] == nil && [device bsdName] == nil &&
                               ![device mediaIsBlank] && ![device mediaIsErasable]);
    PASS("and no space", [[device mediaSpaceFree] sectors] == 0 && [[device mediaSpaceUsed] sectors] == 0 &&
                             [[device mediaSpaceOverwritable] sectors] == 0);
    NSDictionary* status = [device status];
    SAME("the state says none", [status objectForKey:DRDeviceMediaStateKey], DRDeviceMediaStateNone);
    PASS("the tray is told open", [[status objectForKey:DRDeviceIsTrayOpenKey] boolValue]);
    PASS("no medium, no media keys", [status objectForKey:DRDeviceMediaInfoKey] == nil &&
                                         [status objectForKey:DRDeviceBurnSpeedsKey] == nil &&
                                         [status objectForKey:DRDeviceTrackRefsKey] == nil);
    PASS("closes", [device closeTray] && ![device trayIsOpen] && [device mediaIsPresent]);
}

static void TestAccess(DRDevice* device) {
    PASS("takes exclusive access", [device acquireExclusiveAccess]);
    PASS("again", [device acquireExclusiveAccess]);
    [device releaseExclusiveAccess];
    [device releaseExclusiveAccess];
    PASS("and gives it back", ![device mediaIsBusy]);

    PASS("reserves nothing by itself", ![device mediaIsReserved]);
    [device acquireMediaReservation];
    [device acquireMediaReservation];
    PASS("reserves blank media", [device mediaIsReserved]);
    PASS("and says so", [[[[device status] objectForKey:DRDeviceMediaInfoKey]
                            objectForKey:DRDeviceMediaIsReservedKey] boolValue]);
    [device releaseMediaReservation];
    PASS("counts", [device mediaIsReserved]);
    [device releaseMediaReservation];
    [device releaseMediaReservation];
    PASS("until all are released", ![device mediaIsReserved]);
    [device acquireMediaReservation];
    PASS("one release too many takes nothing away", [device mediaIsReserved]);
    [device releaseMediaReservation];
}

static void TestGoing(DRDevice* device) {
    NSString* none = [drives stringByAppendingPathComponent:@"none"];
    [[NSFileManager defaultManager] removeFileAtPath:[device ioRegistryEntryPath] handler:nil];
    PASS("no drives wanted", [@"" writeToFile:none atomically:NO]);
    SAME("no drives, an empty array", [DRDevice devices], [NSArray array]);
    PASS("what is gone is not valid", ![device isValid] && ![device mediaIsPresent]);
    [[NSFileManager defaultManager] removeFileAtPath:none handler:nil];
    PASS("another drive comes", [[DRDevice devices] count] == 1);
    PASS("with another object", [[DRDevice devices] objectAtIndex:0] != device && ![device isValid]);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    drives = NewFolder();
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    TestFinding();
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    TestInfo(device);
    TestMedium(device);
    TestTray(device);
    TestAccess(device);
    TestGoing(device);
    [[NSFileManager defaultManager] removeFileAtPath:drives handler:nil];
    [pool release];
    return Finish();
}
