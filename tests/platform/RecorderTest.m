// RecorderTest: a recorder that is attached to the computer, as programs see it: its dictionaries, and what is told of it. The
// program starts itself again with a recorder preloaded that is not there.
#import "Check.h"
#import "DRBurn.h"
#import "DRFile.h"
#import "DRNotificationCenter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

static NSString* folder; // of the recorder

static void InsertMedium(NSString* state) {
    [[NSFileManager defaultManager] createFileAtPath:[folder stringByAppendingPathComponent:@"data"]
                                            contents:nil
                                          attributes:nil];
    // As a whole, since the recorder may be looked at.
    NSString* file = [folder stringByAppendingPathComponent:@"recorder.json"];
    NSString* next = [file stringByAppendingString:@".next"];
    [state writeToFile:next atomically:NO];
    rename([next UTF8String], [file UTF8String]);
}

@interface Listener : NSObject {
  @public
    NSMutableArray* heard;
}
- (void)hear:(NSNotification*)notification;
@end

@implementation Listener
- (id)init {
    self = [super init];
    heard = [NSMutableArray new];
    return self;
}
- (void)dealloc {
    [heard release];
    [super dealloc];
}
- (void)hear:(NSNotification*)notification {
    [heard addObject:notification];
}
@end

// The next notification of that name for which the key of the user information has that value; nil after a minute.
static NSNotification* HearOf(Listener* listener, NSString* name, NSString* key, id value) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:60];
    while ([end timeIntervalSinceNow] > 0) {
        while ([listener->heard count] > 0) {
            NSNotification* first = [[[listener->heard objectAtIndex:0] retain] autorelease];
            [listener->heard removeObjectAtIndex:0];
            if ([[first name] isEqual:name] && [[[first userInfo] objectForKey:key] isEqual:value])
                return first;
        }
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    }
    return nil;
}

static BOOL Says(NSDictionary* dictionary, NSString* key) {
    return [[dictionary objectForKey:key] boolValue];
}

static void TestInfo(DRDevice* device) {
    NSDictionary* info = [device info];
    struct {
        NSString *key, *value;
    } texts[] = {{DRDeviceSupportLevelKey, DRDeviceSupportLevelVendorSupported},
                 {DRDeviceIORegistryEntryPathKey, @"/dev/sr0"},
                 {DRDeviceVendorNameKey, @"TESTLAB"},
                 {DRDeviceProductNameKey, @"MMC RECORDER"},
                 {DRDeviceFirmwareRevisionKey, @"1.00"},
                 {DRDevicePhysicalInterconnectKey, DRDevicePhysicalInterconnectSCSI},
                 {DRDevicePhysicalInterconnectLocationKey, DRDevicePhysicalInterconnectLocationUnknown}};
    for (size_t i = 0; i < sizeof texts / sizeof *texts; i++)
        SAME("a text of the drive", [info objectForKey:texts[i].key], texts[i].value);
    PASS("its mechanism", Says(info, DRDeviceLoadingMechanismCanEjectKey) &&
                              Says(info, DRDeviceLoadingMechanismCanInjectKey) &&
                              Says(info, DRDeviceLoadingMechanismCanOpenKey));
    PASS("its buffer", [[info objectForKey:DRDeviceWriteBufferSizeKey] intValue] == 2048 * 1024);
    NSDictionary* can = [info objectForKey:DRDeviceWriteCapabilitiesKey];
    NSString* able[] = {DRDeviceCanWriteKey,
                        DRDeviceCanWriteCDKey,
                        DRDeviceCanWriteCDRKey,
                        DRDeviceCanWriteCDRWKey,
                        DRDeviceCanWriteDVDKey,
                        DRDeviceCanWriteDVDRKey,
                        DRDeviceCanWriteDVDRDualLayerKey,
                        DRDeviceCanWriteDVDRWKey,
                        DRDeviceCanWriteDVDRAMKey,
                        DRDeviceCanWriteDVDPlusRKey,
                        DRDeviceCanWriteDVDPlusRDoubleLayerKey,
                        DRDeviceCanWriteDVDPlusRWKey,
                        DRDeviceCanWriteBDKey,
                        DRDeviceCanWriteBDRKey,
                        DRDeviceCanWriteBDREKey,
                        DRDeviceCanWriteCDTextKey,
                        DRDeviceCanWriteISRCKey,
                        DRDeviceCanWriteCDSAOKey,
                        DRDeviceCanWriteCDTAOKey,
                        DRDeviceCanTestWriteCDKey,
                        DRDeviceCanTestWriteDVDKey,
                        DRDeviceCanUnderrunProtectCDKey,
                        DRDeviceCanUnderrunProtectDVDKey};
    for (size_t i = 0; i < sizeof able / sizeof *able; i++)
        SAME([able[i] UTF8String], [can objectForKey:able[i]], [NSNumber numberWithBool:YES]);
    SAME("raw writing is beyond it", [can objectForKey:DRDeviceCanWriteCDRawKey],
         [NSNumber numberWithBool:NO]);
    SAME("so is HD DVD", [can objectForKey:DRDeviceCanWriteHDDVDKey], [NSNumber numberWithBool:NO]);
    SAME("displayed", [device displayName], @"TESTLAB MMC RECORDER");
    PASS("found by path and name", [DRDevice deviceForIORegistryEntryPath:@"/dev/sr0"] == device &&
                                       [DRDevice deviceForBSDName:[device bsdName]] == device);
}

static void TestBlankStatus(DRDevice* device) {
    NSDictionary* status = [device status];
    NSDictionary* media = [status objectForKey:DRDeviceMediaInfoKey];
    SAME("present", [status objectForKey:DRDeviceMediaStateKey], DRDeviceMediaStateMediaPresent);
    PASS("idle and closed", !Says(status, DRDeviceIsBusyKey) && !Says(status, DRDeviceIsTrayOpenKey));
    SAME("a CD-RW", [media objectForKey:DRDeviceMediaTypeKey], DRDeviceMediaTypeCDRW);
    SAME("a CD", [media objectForKey:DRDeviceMediaClassKey], DRDeviceMediaClassCD);
    PASS("blank", Says(media, DRDeviceMediaIsBlankKey) && Says(media, DRDeviceMediaIsAppendableKey) &&
                      Says(media, DRDeviceMediaIsOverwritableKey) &&
                      Says(media, DRDeviceMediaIsErasableKey) && !Says(media, DRDeviceMediaIsReservedKey));
    PASS("80 minutes", [[media objectForKey:DRDeviceMediaBlocksFreeKey] intValue] == 359847 &&
                           [[media objectForKey:DRDeviceMediaFreeSpaceKey] sectors] == 359847 &&
                           [[media objectForKey:DRDeviceMediaBlocksUsedKey] intValue] == 0);
    NSArray* speeds = [status objectForKey:DRDeviceBurnSpeedsKey];
    PASS("four speeds, ascending", [speeds count] == 4u && [[speeds objectAtIndex:0] intValue] == 4 * 176 &&
                                       [[speeds lastObject] intValue] == 24 * 176);
    SAME("here as well", [media objectForKey:DRDeviceBurnSpeedsKey], speeds);
    SAME("the fastest", [status objectForKey:DRDeviceMaximumWriteSpeedKey], [speeds lastObject]);
    PASS("the one that is set", [[status objectForKey:DRDeviceCurrentWriteSpeedKey] intValue] == 10 * 176);
    NSArray* tracks = [status objectForKey:DRDeviceTrackRefsKey];
    PASS("no tracks", tracks != nil && [tracks count] == 0 &&
                          [[media objectForKey:DRDeviceMediaTrackCountKey] intValue] == 0);
}

static void TestBurned(DRDevice* device, Listener* listener) {
    DRFolder* root = [DRFolder virtualFolderWithName:@"DISC"];
    [root addChild:[DRFile virtualFileWithName:@"a file" data:[NSMutableData dataWithLength:800000]]];
    DRBurn* burn = [DRBurn burnForDevice:device];
    [burn setCompletionAction:DRBurnCompletionActionMount];
    [burn setAppendable:YES];
    [burn writeLayout:[DRTrack trackForRootFolder:root]];
    PASS("that the drive is busy is told", HearOf(listener, DRDeviceStatusChangedNotification,
                                                  DRDeviceIsBusyKey, [NSNumber numberWithBool:YES]) != nil);
    NSNotification* after =
        HearOf(listener, DRDeviceStatusChangedNotification, DRDeviceIsBusyKey, [NSNumber numberWithBool:NO]);
    SAME("and when it no longer is", [[burn status] objectForKey:DRStatusStateKey], DRStatusStateDone);
    PASS("of that drive", [after object] == device);
    NSDictionary* status = [device status];
    NSDictionary* media = [status objectForKey:DRDeviceMediaInfoKey];
    PASS("written and open", !Says(media, DRDeviceMediaIsBlankKey) &&
                                 Says(media, DRDeviceMediaIsAppendableKey) &&
                                 Says(media, DRDeviceMediaIsErasableKey));
    PASS("a session, a track", [[media objectForKey:DRDeviceMediaSessionCountKey] intValue] == 1 &&
                                   [[media objectForKey:DRDeviceMediaTrackCountKey] intValue] == 1);
    PASS("used and free", [[media objectForKey:DRDeviceMediaBlocksUsedKey] intValue] > 390 &&
                              [[media objectForKey:DRDeviceMediaBlocksFreeKey] intValue] < 359847 - 390);
    NSArray* tracks = [status objectForKey:DRDeviceTrackRefsKey];
    NSDictionary* facts = [[status objectForKey:DRDeviceTrackInfoKey] objectForKey:[tracks lastObject]];
    PASS("the track's own facts", [tracks count] == 1 &&
                                      [[facts objectForKey:DRTrackLengthKey] sectors] > 390 &&
                                      [[facts objectForKey:DRTrackModeKey] intValue] == kDRTrackMode1Data);
    PASS("what goes on behind it", [[facts objectForKey:DRNextWritableAddressKey] intValue] > 11400 + 390 &&
                                       [[facts objectForKey:DRFreeBlocksKey] intValue] ==
                                           359847 - [[facts objectForKey:DRNextWritableAddressKey] intValue]);
    SAME("as free as the medium", [facts objectForKey:DRFreeBlocksKey],
         [media objectForKey:DRDeviceMediaBlocksFreeKey]);
}

static int Test(void) {
    folder = [NSString stringWithUTF8String:getenv("DISC_RECORDER")];
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    TestInfo(device);
    TestBlankStatus(device);

    Listener* listener = [[[Listener alloc] init] autorelease];
    DRNotificationCenter* center = [DRNotificationCenter currentRunLoopCenter];
    [center addObserver:listener selector:@selector(hear:) name:nil object:nil];
    NSNotification* there =
        HearOf(listener, DRDeviceAppearedNotification, DRDeviceProductNameKey, @"MMC RECORDER");
    PASS("told of the drive that is there", [there object] == device);
    SAME("with its info", [there userInfo], [device info]);
    TestBurned(device, listener);

    // As the system gives it to somebody exclusively.
    int holder = open("/dev/sr0", O_RDWR | O_EXCL);
    PASS("another program has it", holder >= 0);
    NSNotification* taken =
        HearOf(listener, DRDeviceStatusChangedNotification, DRDeviceIsBusyKey, [NSNumber numberWithBool:YES]);
    SAME("which is told, and no disc goes", [[taken userInfo] objectForKey:DRDeviceMediaStateKey],
         DRDeviceMediaStateMediaPresent);
    sleep(2); // what was seen of the disc is old by now
    PASS("its medium is busy", [device mediaIsBusy] && [device mediaIsPresent]);
    SAME("and the one that was seen", [device mediaType], DRDeviceMediaTypeCDRW);
    PASS("with what is on it", [[device mediaSpaceUsed] sectors] > 390 &&
                                   [[device status] objectForKey:DRDeviceMediaInfoKey] != nil);
    PASS("it stays inside", ![device ejectMedia] && ![device trayIsOpen]);
    close(holder);
    PASS("and is free again", ![device mediaIsBusy] && [device mediaIsPresent]);

    PASS("it ejects", [device ejectMedia] && [device trayIsOpen]);
    NSNotification* open = HearOf(listener, DRDeviceStatusChangedNotification, DRDeviceIsTrayOpenKey,
                                  [NSNumber numberWithBool:YES]);
    SAME("which is told", [[open userInfo] objectForKey:DRDeviceMediaStateKey], DRDeviceMediaStateNone);
    PASS("without a medium", [[open userInfo] objectForKey:DRDeviceMediaInfoKey] == nil &&
                                 [[open userInfo] objectForKey:DRDeviceBurnSpeedsKey] == nil);

    InsertMedium(@"{\"gone\": true}");
    NSNotification* gone =
        HearOf(listener, DRDeviceDisappearedNotification, DRDeviceProductNameKey, @"MMC RECORDER");
    PASS("a drive that goes is told", [gone object] == device && ![device isValid]);
    InsertMedium(
        @"{\"medium\": \"DVD+R DL\", \"product\": \"OTHER\", \"loadingMechanism\": 0, \"canEject\": false}");
    NSNotification* comes = HearOf(listener, DRDeviceAppearedNotification, DRDeviceProductNameKey, @"OTHER");
    DRDevice* other = [comes object];
    PASS("and another that comes", other != nil && ![other isEqualToDevice:device] && [other isValid]);
    PASS("which has neither tray nor motor", !Says([other info], DRDeviceLoadingMechanismCanEjectKey) &&
                                                 !Says([other info], DRDeviceLoadingMechanismCanInjectKey) &&
                                                 !Says([other info], DRDeviceLoadingMechanismCanOpenKey) &&
                                                 ![other openTray] && ![other closeTray]);
    SAME("with what is in it", [other mediaType], DRDeviceMediaTypeDVDPlusRDoubleLayer);
    [center removeObserver:listener name:nil object:nil];
    return Finish();
}

int main(int count, char** arguments) {
    (void)count;
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    if (getenv("DISC_RECORDER") != NULL) {
        int result = Test();
        [pool release];
        return result;
    }
    NSString* place = NewFolder();
    folder = [place stringByAppendingPathComponent:@"sr0"];
    mkdir([folder UTF8String], 0700);
    mkdir([[place stringByAppendingPathComponent:@"drives"] UTF8String], 0700);
    InsertMedium(@"{\"medium\": \"CD-RW\", \"writeSpeed\": 1760}");
    setenv("DISC_RECORDER", [folder UTF8String], 1);
    setenv("DISC_DRIVES", [[place stringByAppendingPathComponent:@"drives"] UTF8String], 1);
    setenv("DISC_PHYSICAL", "1", 1);
    setenv("XDG_RUNTIME_DIR", [place UTF8String], 1);
    setenv("LD_PRELOAD", RECORDER, 1);
    // The library comes before a sanitizer's runtime, which it has no part in.
    NSString* options = [NSString stringWithFormat:@"verify_asan_link_order=0:%s",
                                                   getenv("ASAN_OPTIONS") ? getenv("ASAN_OPTIONS") : ""];
    setenv("ASAN_OPTIONS", [options UTF8String], 1);
    pid_t child = fork();
    if (child == 0) {
        execv("/proc/self/exe", arguments);
        _exit(127);
    }
    int status = 1;
    waitpid(child, &status, 0);
    unsetenv("LD_PRELOAD");
    [[NSFileManager defaultManager] removeFileAtPath:place handler:nil];
    [pool release];
    LOOK_FOR_LEAKS();
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
