// BurnAbortTest: burns that are stopped in the middle, the last reference to one, and what becomes of the disc after a failure.
#import "FolderBurns.h"

// Slow enough to be met in the middle.
static DRBurn* SlowBurn(DRDevice* device, NSString* source) {
    DRBurn* burn = BurnThatStays(device);
    [burn setRequestedBurnSpeed:4000];
    [burn writeLayout:VerifiedTrack([DRFolder folderWithPath:source])];
    double end = Now() + 30;
    while (Now() < end && !IsOver(burn)) {
        NSDictionary* status = [burn status];
        if ([[status objectForKey:DRStatusStateKey] isEqual:DRStatusStateTrackWrite] &&
            [[status objectForKey:DRStatusPercentCompleteKey] floatValue] > 0.01f)
            break;
        Nap(5);
    }
    return burn;
}

static void TestAbort(NSString* source) {
    DRDevice* device = FreshDevice();
    DRBurn* burn = SlowBurn(device, source);
    SAME("is writing", State(burn), DRStatusStateTrackWrite);
    NSDictionary* status = [burn status];
    PASS("in the first track of the first session",
         [[status objectForKey:DRStatusCurrentTrackKey] intValue] == 1 &&
             [[status objectForKey:DRStatusCurrentSessionKey] intValue] == 1 &&
             [[status objectForKey:DRStatusTotalTracksKey] intValue] == 1);
    PASS("at a speed", [[status objectForKey:DRStatusCurrentSpeedKey] floatValue] > 0 &&
                           [[status objectForKey:DRStatusProgressInfoKey]
                               objectForKey:DRStatusProgressCurrentXFactor] != nil);
    PASS("the drive is busy", [device mediaIsBusy]);
    double start = Now();
    [burn abort];
    Await(burn);
    PASS("ends soon", Now() - start < 1);
    SAME("has failed", State(burn), DRStatusStateFailed);
    PASS("because it was told to", (unsigned)ErrorOf(burn) == 0x80020066);
    PASS("and says so", [SentenceOf(burn) length] > 10);
    PASS("the code is a signed number", ErrorOf(burn) < 0);
    PASS("the drive is free", ![device mediaIsBusy]);
    [burn abort];
    PASS("again changes nothing", (unsigned)ErrorOf(burn) == 0x80020066);

    // The medium is re-writable, so it is good for another burn.
    DRBurn* second = BurnThatStays(device);
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[second properties]];
    [properties setObject:[NSNumber numberWithBool:YES] forKey:DRBurnOverwriteDiscKey];
    [second setProperties:properties];
    [second writeLayout:VerifiedTrack([DRFolder folderWithPath:source])];
    Await(second);
    SAME("a burn over it works", State(second), DRStatusStateDone);
    PASS("and is right", Run(@"diff -r --no-dereference '%@' '%@'", source, Unpacked(device)));
}

static void TestLastReference(NSString* source) {
    DRDevice* device = FreshDevice();
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    SlowBurn(device, source);
    PASS("is burning", [device mediaIsBusy]);
    double start = Now();
    [pool release];
    PASS("the last release ends it soon", Now() - start < 1);
    PASS("and leaves the drive free", ![device mediaIsBusy]);
}

// A burn of the layout that is told nothing, or to leave the disc where it is, has failed; with which error.
static unsigned FailedOn(DRDevice* device, id layout, NSString* action) {
    DRBurn* burn = [DRBurn burnForDevice:device];
    if (action != nil) {
        [burn setProperties:[NSDictionary dictionaryWithObject:action forKey:DRBurnFailureActionKey]];
    }
    [burn writeLayout:layout];
    Await(burn);
    SAME("has failed", State(burn), DRStatusStateFailed);
    return (unsigned)ErrorOf(burn);
}

static void TestFailureAction(NSString* source) {
    DRTrack* track = [DRTrack trackForRootFolder:[DRFolder folderWithPath:source]];
    DRTrack* other = [DRTrack trackForRootFolder:[DRFolder folderWithPath:source]];
    struct {
        const char* what;
        id layout;
        unsigned code;
    } failing[] = {
        {"a track twice", [NSArray arrayWithObjects:track, track, nil], 0x8002006F},
        {"no such folder", [DRTrack trackForRootFolder:[DRFolder folderWithPath:@"/no/such"]], 0x80020101},
        {"no producer", [[[DRTrack alloc] initWithProducer:nil] autorelease], 0x80020062},
        {"two tracks on a DVD", [NSArray arrayWithObjects:track, other, nil], 0x80020064},
    };
    for (size_t i = 0; i < sizeof failing / sizeof *failing; i++) {
        DRDevice* device = FreshDevice();
        PASS(failing[i].what,
             FailedOn(device, failing[i].layout, DRBurnFailureActionNone) == failing[i].code);
        PASS("the disc stays when it is to", ![device trayIsOpen] && [device mediaIsBlank]);
        PASS(failing[i].what, FailedOn(device, failing[i].layout, nil) == failing[i].code);
        PASS("else it is ejected, however early the burn failed", [device trayIsOpen]);
    }
    DRDevice* device = FreshDevice();
    PASS("an action that nobody knows", FailedOn(device, track, @"Polish") == 0x80020067);
    PASS("moves nothing", ![device trayIsOpen]);
    PASS("one for the end that nobody knows", (unsigned)({
                                                  DRBurn* burn = [DRBurn burnForDevice:device];
                                                  [burn setCompletionAction:@"Polish"];
                                                  [burn writeLayout:track];
                                                  Await(burn);
                                                  ErrorOf(burn);
                                              }) == 0x80020067);
    PASS("is a failure like others", [device trayIsOpen]);

    [device closeTray];
    PASS("a drive without a disc",
         Run(@"rm '%@/medium.json'", [drives stringByAppendingPathComponent:@"drive-1"]));
    PASS("the burn says so", FailedOn(device, track, nil) == 0x80020041);
    PASS("and does not open the tray", ![device trayIsOpen]);
    PASS("nor does one that fails before", FailedOn(device, failing[0].layout, nil) == failing[0].code);
    PASS("it looks into the drive", ![device trayIsOpen]);

    // Somebody else's drive: what burns there goes on, and its disc stays.
    device = FreshDevice();
    DRBurn* slow = SlowBurn(device, source);
    PASS("one burn at a time", FailedOn(device, track, nil) == 0x80020021);
    PASS("and another layout's fault", FailedOn(device, failing[0].layout, nil) == failing[0].code);
    PASS("moves nothing either", ![device trayIsOpen] && !IsOver(slow));
    [slow abort];
    Await(slow);
    PASS("and the first ends as it was told to",
         (unsigned)ErrorOf(slow) == 0x80020066 && ![device trayIsOpen]);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* source = BeginTest();
    // More data, so that a burn can be met in the middle.
    PASS("the folder grows", Run(@"head -c 12000000 /dev/urandom > '%@/bigger.bin'", source));
    TestAbort(source);
    TestFailureAction(source);
    TestLastReference(source);
    return EndTest(pool);
}
