// BurnTest: burns from layout to disc, read back with another program; refusals, aborts and errors.
// One file, though long: the steps share the folder to burn, the drive and the words of the test.
#import "Check.h"
#import "DRBurn.h"
#import "DRFile.h"

#include <stdarg.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

static NSString* place; // everything of this test lies in it
static NSString* drives;

static BOOL Run(NSString* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    NSString* command = [[[NSString alloc] initWithFormat:format arguments:arguments] autorelease];
    va_end(arguments);
    return system([command UTF8String]) == 0;
}

static void Nap(int milliseconds) {
    struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000l};
    nanosleep(&time, NULL);
}

static double Now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

// A drive with a blank medium, as if it were new.
static DRDevice* FreshDevice(void) {
    Run(@"rm -rf '%@'; mkdir '%@'", drives, drives);
    return [[DRDevice devices] objectAtIndex:0];
}

static NSString* State(DRBurn* burn) { return [[burn status] objectForKey:DRStatusStateKey]; }

static BOOL IsOver(DRBurn* burn) {
    NSString* state = State(burn);
    return [state isEqual:DRStatusStateDone] || [state isEqual:DRStatusStateFailed];
}

// The states in the order in which they were seen.
static NSArray* Await(DRBurn* burn) {
    NSMutableArray* seen = [NSMutableArray array];
    double end = Now() + 60;
    for (;;) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        NSDictionary* status = [burn status];
        NSString* state = [status objectForKey:DRStatusStateKey];
        if (![[seen lastObject] isEqual:state])
            [seen addObject:state];
        float percent = [[status objectForKey:DRStatusPercentCompleteKey] floatValue];
        if (!(percent == -1 || (percent >= 0 && percent <= 1)))
            PASS("the percentage is -1 or between 0 and 1", NO);
        BOOL over = [state isEqual:DRStatusStateDone] || [state isEqual:DRStatusStateFailed];
        [pool release];
        if (over || Now() > end)
            return seen;
        Nap(1);
    }
}

static int ErrorOf(DRBurn* burn) {
    NSDictionary* error = [[burn status] objectForKey:DRErrorStatusKey];
    return [[error objectForKey:DRErrorStatusErrorKey] intValue];
}

static NSString* SentenceOf(DRBurn* burn) {
    NSDictionary* error = [[burn status] objectForKey:DRErrorStatusKey];
    return [error objectForKey:DRErrorStatusErrorStringKey];
}

static DRBurn* BurnThatStays(DRDevice* device) {
    DRBurn* burn = [DRBurn burnForDevice:device];
    [burn setProperties:[NSDictionary dictionaryWithObjectsAndKeys:DRBurnCompletionActionMount,
                                                                   DRBurnCompletionActionKey,
                                                                   DRBurnFailureActionNone,
                                                                   DRBurnFailureActionKey, nil]];
    return burn;
}

static DRTrack* VerifiedTrack(DRFolder* folder) {
    DRTrack* track = [DRTrack trackForRootFolder:folder];
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[track properties]];
    [properties setObject:DRVerificationTypeChecksum forKey:DRVerificationTypeKey];
    [track setProperties:properties];
    return track;
}

// Unpacks the drive's image with a program that knows nothing of this project.
static NSString* Unpacked(DRDevice* device) {
    NSString* target = [place stringByAppendingPathComponent:@"unpacked"];
    BOOL done = Run(@"chmod -R u+w '%@' 2>/dev/null; rm -rf '%@'; mkdir '%@' && cd '%@' && "
                    @"bsdtar -xpf \"$(find '%@' -name '*.iso' | head -n 1)\"",
                    target, target, target, target, [device ioRegistryEntryPath]);
    PASS("another program unpacks the image", done);
    return target;
}

// A short state may pass between two looks; then another burn is watched.
static void TestStates(NSString* source) {
    NSSet* wanted = [NSSet setWithObjects:DRStatusStateTrackWrite, DRStatusStateVerifying, nil];
    NSMutableSet* met = [NSMutableSet set];
    for (int burns = 0; burns < 50 && ![wanted isSubsetOfSet:met]; burns++) {
        DRBurn* burn = BurnThatStays(FreshDevice());
        [burn writeLayout:VerifiedTrack([DRFolder folderWithPath:source])];
        [met addObjectsFromArray:Await(burn)];
    }
    PASS("it wrote", [met containsObject:DRStatusStateTrackWrite]);
    PASS("it verified", [met containsObject:DRStatusStateVerifying]);
}

static void TestRealFolder(NSString* source) {
    DRDevice* device = FreshDevice();
    DRTrack* track = VerifiedTrack([DRFolder folderWithPath:source]);
    uint64_t blocks = [track estimateLength];
    PASS("the length is estimated", blocks > 3000001 / 2048);
    PASS("the length is unset before", [[track length] sectors] == 0 && [[track preGap] sectors] == 0);
    DRBurn* burn = BurnThatStays(device);
    PASS("knows its drive", [burn device] == device);
    SAME("nothing has begun", State(burn), DRStatusStateNone);
    [burn abort];
    [burn writeLayout:track];
    Await(burn);
    NSDictionary* status = [burn status];
    SAME("is done", [status objectForKey:DRStatusStateKey], DRStatusStateDone);
    if (SentenceOf(burn) != nil)
        fprintf(stderr, "    %s\n", [SentenceOf(burn) UTF8String]);
    PASS("all of it", [[status objectForKey:DRStatusPercentCompleteKey] floatValue] == 1);
    PASS("no error", [status objectForKey:DRErrorStatusKey] == nil);
    NSString* keys[] = {DRStatusCurrentSessionKey, DRStatusCurrentTrackKey, DRStatusTotalSessionsKey,
                        DRStatusTotalTracksKey, DRStatusCurrentSpeedKey};
    for (size_t i = 0; i < sizeof keys / sizeof *keys; i++) {
        PASS("every key is there", [[status objectForKey:keys[i]] isKindOfClass:[NSNumber class]]);
    }
    PASS("the disc has what was burned",
         Run(@"diff -r --no-dereference '%@' '%@'", source, Unpacked(device)));
    PASS("with times and permissions",
         Run(@"cd '%@' && find . ! -name . -printf '%%P %%y %%m %%T@ %%s %%l\\n' | sed 's/\\.[0-9]* / /' | "
             @"grep -v ' d ' | sort > '%@/a' && "
             @"cd '%@/unpacked' && find . ! -name . -printf '%%P %%y %%m %%T@ %%s %%l\\n' | sed 's/\\.[0-9]* "
             @"/ /' | grep -v ' d ' | sort > '%@/b' && "
             @"diff '%@/a' '%@/b'",
             source, place, place, place, place, place));
    PASS("the volume is named as the folder",
         Run(@"isoinfo -d -i \"$(find '%@' -name '*.iso')\" | grep -qi 'Volume id: source'",
             [device ioRegistryEntryPath]));
    PASS("the medium is not blank", ![device mediaIsBlank] && [device mediaIsPresent]);
    PASS("as long as was estimated", [[device mediaSpaceUsed] sectors] >= blocks);
    NSArray* tracks = [[device status] objectForKey:DRDeviceTrackRefsKey];
    PASS("the disc has one track", [tracks count] == 1);
    NSDictionary* facts = [[[device status] objectForKey:DRDeviceTrackInfoKey] allValues].lastObject;
    PASS("that is told", [[facts objectForKey:DRTrackNumberKey] intValue] == 1 &&
                             [[facts objectForKey:DRSessionNumberKey] intValue] == 1 &&
                             [[facts objectForKey:DRTrackStartAddressKey] intValue] == 0);
    PASS("as long as estimated", [[(DRTrack*)[tracks lastObject] length] sectors] >= blocks);
    RAISES("one burn for one object", NSInternalInconsistencyException, @"used before",
           [burn writeLayout:track]);
    SAME("which changes nothing", State(burn), DRStatusStateDone);
}

static void TestVirtualFolder(NSString* source) {
    DRDevice* device = FreshDevice();
    DRFolder* root = [DRFolder virtualFolderWithName:@"My Disc"];
    DRFolder* sub = [DRFolder virtualFolderWithName:@"Ünder"];
    DRFile* renamed = [DRFile fileWithPath:[source stringByAppendingPathComponent:@"a.txt"]];
    [renamed setBaseName:@"renamed.txt"];
    [root addChild:sub];
    [sub addChild:renamed];
    [sub addChild:[DRFile virtualFileWithName:@"note.txt"
                                         data:[@"hello" dataUsingEncoding:NSUTF8StringEncoding]]];
    [sub addChild:[DRFile virtualFileWithName:@"empty" data:nil]];
    [root addChild:[DRFolder folderWithPath:[source stringByAppendingPathComponent:@"sub"]]];
    DRBurn* burn = BurnThatStays(device);
    [burn writeLayout:[NSArray arrayWithObject:[DRTrack trackForRootFolder:root]]];
    NSArray* seen = Await(burn);
    SAME("is done", [seen lastObject], DRStatusStateDone);
    PASS("a track without a verification type is not verified",
         ![seen containsObject:DRStatusStateVerifying]);
    NSString* target = Unpacked(device);
    PASS("a renamed file", Run(@"cmp '%@/a.txt' '%@/Ünder/renamed.txt'", source, target));
    PASS("a file from memory", Run(@"printf hello | cmp - '%@/Ünder/note.txt'", target));
    PASS("an empty file", Run(@"test -f '%@/Ünder/empty' -a ! -s '%@/Ünder/empty'", target, target));
    PASS("a real folder inside", Run(@"diff -r --no-dereference '%@/sub' '%@/sub'", source, target));
    PASS("nothing else",
         Run(@"test \"$(ls -A '%@' | wc -l)\" = 2 -a \"$(ls -A '%@/Ünder' | wc -l)\" = 3", target, target));
}

static void TestActions(NSString* source) {
    DRDevice* device = FreshDevice();
    DRBurn* burn = [DRBurn burnForDevice:device];
    [burn
        writeLayout:[NSArray
                        arrayWithObject:[NSArray
                                            arrayWithObject:[DRTrack trackForRootFolder:
                                                                         [DRFolder folderWithPath:source]]]]];
    Await(burn);
    SAME("an array of arrays burns too", State(burn), DRStatusStateDone);
    PASS("the disc is ejected unless told otherwise", [device trayIsOpen]);
    PASS("and comes in again", [device closeTray] && [device mediaIsPresent] && ![device mediaIsBlank]);

    DRFolder* folder = [DRFolder folderWithPath:source];
    DRBurn* failing = [DRBurn burnForDevice:FreshDevice()];
    [failing writeLayout:[NSArray arrayWithObjects:[DRTrack trackForRootFolder:folder],
                                                   [DRTrack trackForRootFolder:folder], nil]];
    Await(failing);
    SAME("two tracks on a DVD fail", State(failing), DRStatusStateFailed);
    PASS("and the disc is ejected unless told otherwise", [[failing device] trayIsOpen]);

    DRBurn* synchronous = BurnThatStays(FreshDevice());
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[synchronous properties]];
    [properties setObject:[NSNumber numberWithBool:YES] forKey:DRSynchronousBehaviorKey];
    [synchronous setProperties:properties];
    [synchronous writeLayout:[DRTrack trackForRootFolder:[DRFolder folderWithPath:source]]];
    SAME("a synchronous burn returns at its end", State(synchronous), DRStatusStateDone);
}

static void TestProperties(void) {
    DRBurn* burn = [DRBurn burnForDevice:[[DRDevice devices] objectAtIndex:0]];
    SAME("no properties at first", [burn properties], [NSDictionary dictionary]);
    PASS("full speed", [burn requestedBurnSpeed] == DRDeviceBurnSpeedMax && DRDeviceBurnSpeedMax == 65535.0f);
    PASS("verifies, closes", [burn verifyDisc] && ![burn appendable]);
    SAME("ejects", [burn completionAction], DRBurnCompletionActionEject);
    [burn setRequestedBurnSpeed:1385];
    [burn setVerifyDisc:NO];
    [burn setAppendable:YES];
    [burn setCompletionAction:DRBurnCompletionActionMount];
    PASS("answers what was set", [burn requestedBurnSpeed] == 1385 && ![burn verifyDisc] &&
                                     [burn appendable] &&
                                     [[burn completionAction] isEqual:DRBurnCompletionActionMount]);
    PASS("under its keys", [[burn properties] count] == 4 &&
                               [[[burn properties] objectForKey:DRBurnRequestedSpeedKey] floatValue] == 1385);
    [burn setCompletionAction:nil];
    SAME("nil is the default again", [burn completionAction], DRBurnCompletionActionEject);
    [burn setProperties:[NSDictionary dictionaryWithObject:@"x" forKey:@"Own"]];
    PASS("replaced as a whole", [[burn properties] count] == 1 && [burn verifyDisc]);
    [burn setProperties:nil];
    SAME("nil clears", [burn properties], [NSDictionary dictionary]);

    DRTrack* track = [[[DRTrack alloc] initWithProducer:nil] autorelease];
    SAME("a track has none either", [track properties], [NSDictionary dictionary]);
    [track setPreGap:[DRMSF msfWithFrames:150]];
    SAME("the pre-gap", [track preGap], [DRMSF msfWithFrames:150]);
    SAME("its key", [[track properties] objectForKey:DRPreGapLengthKey], [DRMSF msfWithFrames:150]);
    [track setProperties:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:300]
                                                     forKey:DRTrackLengthKey]];
    PASS("a length as a number",
         [[track length] sectors] == 300 && [[track length] isKindOfClass:[DRMSF class]]);
    [track setPreGap:[DRMSF msf]];
    [track setPreGap:nil];
    PASS("nil takes the key away",
         [[track properties] objectForKey:DRPreGapLengthKey] == nil && [[track properties] count] == 1);
    PASS("an unknown length is 0", [track estimateLength] == 0);
    DRTrack* data = [DRTrack trackForRootFolder:[DRFolder virtualFolderWithName:@"d"]];
    NSDictionary* set = [data properties];
    PASS("a data track's keys", [[set objectForKey:DRBlockSizeKey] intValue] == 2048 &&
                                    [[set objectForKey:DRBlockTypeKey] intValue] == 8 &&
                                    [[set objectForKey:DRDataFormKey] intValue] == 16 &&
                                    [[set objectForKey:DRTrackModeKey] intValue] == 4 &&
                                    [[set objectForKey:DRSessionFormatKey] intValue] == 0);
    PASS("no folder, no track", [DRTrack trackForRootFolder:nil] == nil);
    RAISES("only folders", NSInvalidArgumentException, @"DRFolder",
           [DRTrack trackForRootFolder:(DRFolder*)[DRFile fileWithPath:@"/x"]]);
}

static void TestIllegalLayouts(NSString* source) {
    DRDevice* device = FreshDevice();
    DRTrack* track = [DRTrack trackForRootFolder:[DRFolder folderWithPath:source]];
    id illegal[] = {@"text",
                    [NSDictionary dictionary],
                    [NSArray array],
                    [NSArray arrayWithObject:[NSArray array]],
                    [NSArray arrayWithObject:@"text"],
                    [NSArray arrayWithObjects:track, [NSArray arrayWithObject:track], nil],
                    [NSArray arrayWithObjects:[NSArray arrayWithObject:track], [NSArray array], nil],
                    [NSArray arrayWithObject:[NSArray arrayWithObject:[NSArray arrayWithObject:track]]],
                    [NSArray arrayWithObject:[NSArray arrayWithObject:[NSNull null]]]};
    DRBurn* burn = BurnThatStays(device);
    for (size_t i = 0; i < sizeof illegal / sizeof *illegal; i++) {
        RAISES("an illegal layout raises", NSInvalidArgumentException, @"A burn can't write",
               [burn writeLayout:illegal[i]]);
    }
    [burn writeLayout:nil];
    SAME("and starts nothing, and nil does nothing", State(burn), DRStatusStateNone);
    PASS("so the medium stays blank", [device mediaIsBlank]);
    [burn writeLayout:track];
    Await(burn);
    SAME("and the burn can be used", State(burn), DRStatusStateDone);
}

static void CheckRefused(const char* sentence, DRBurn* burn, id layout, unsigned code, NSString* text) {
    [burn writeLayout:layout];
    Await(burn);
    BOOL right = [State(burn) isEqual:DRStatusStateFailed] && (unsigned)ErrorOf(burn) == code &&
                 ([text length] == 0 || [SentenceOf(burn) rangeOfString:text].length != 0);
    PASS(sentence, right);
    if (!right)
        fprintf(stderr, "    got %s %x %s\n", [State(burn) UTF8String], ErrorOf(burn),
                [SentenceOf(burn) UTF8String]);
}

static void TestRefusals(NSString* source) {
    DRDevice* device = FreshDevice();
    DRFolder* folder = [DRFolder folderWithPath:source];
    DRTrack* track = [DRTrack trackForRootFolder:folder];
    CheckRefused("no drive", BurnThatStays(nil), track, 0x80020023, @"no drive");
    CheckRefused("a producer that produces nothing", BurnThatStays(device),
                 [[[DRTrack alloc] initWithProducer:@"x"] autorelease], 0x80020062, @"no method");
    CheckRefused("neither folder nor producer", BurnThatStays(device),
                 [[[DRTrack alloc] initWithProducer:nil] autorelease], 0x80020062, @"make it for one");
    CheckRefused("the same track twice", BurnThatStays(device), [NSArray arrayWithObjects:track, track, nil],
                 0x8002006F, @"twice");
    CheckRefused("two tracks on a DVD", BurnThatStays(device),
                 [NSArray arrayWithObjects:track, [DRTrack trackForRootFolder:folder], nil], 0x80020064, @"");
    CheckRefused("a folder that is not there", BurnThatStays(device),
                 [DRTrack trackForRootFolder:[DRFolder folderWithPath:@"/no/such/folder"]], 0x80020101,
                 @"/no/such/folder");
    CheckRefused(
        "a file as a folder", BurnThatStays(device),
        [DRTrack
            trackForRootFolder:[DRFolder folderWithPath:[source stringByAppendingPathComponent:@"a.txt"]]],
        0x80020101, @"is no folder");
    DRFolder* virtual = [DRFolder virtualFolderWithName:@"v"];
    [virtual addChild:[DRFile fileWithPath:source]];
    CheckRefused("a folder as a file", BurnThatStays(device), [DRTrack trackForRootFolder:virtual],
                 0x80020101, @"is a folder");
    DRFolder* deep = [DRFolder virtualFolderWithName:@"deep"];
    DRFolder* deepest = deep;
    for (int level = 0; level < 1001; level++) {
        DRFolder* next = [DRFolder virtualFolderWithName:@"d"];
        [deepest addChild:next];
        deepest = next;
    }
    CheckRefused("a tree without end", BurnThatStays(device), [DRTrack trackForRootFolder:deep], 0x80020065,
                 @"too deep");
    DRFolder* lost = [DRFolder virtualFolderWithName:@"lost"];
    DRFile* elsewhere = [DRFile virtualFileWithName:@"elsewhere" data:nil];
    [lost addChild:[DRFile hardLinkPointingTo:elsewhere inFilesystem:DRISO9660]];
    CheckRefused("a hard link to what is not on the disc", BurnThatStays(device),
                 [DRTrack trackForRootFolder:lost], 0x80020101, @"points at nothing");
    DRFolder* aliases = [DRFolder virtualFolderWithName:@"aliases"];
    [aliases addChild:[DRFile finderAliasPointingTo:elsewhere inFilesystem:DRHFSPlus]];
    CheckRefused("a Finder alias to what is not on the disc", BurnThatStays(device),
                 [DRTrack trackForRootFolder:aliases], 0x80020101, @"points at nothing");
    CheckRefused(
        "a long volume name", BurnThatStays(device),
        [DRTrack
            trackForRootFolder:[DRFolder virtualFolderWithName:@"a name longer than thirty-two characters"]],
        0x80020065, @"at most 32");
    CheckRefused("no volume name", BurnThatStays(device),
                 [DRTrack trackForRootFolder:[DRFolder virtualFolderWithName:@""]], 0x80020065, @"name");

    struct {
        NSString* key;
        id value;
        unsigned code;
    } burnAsks[] = {{DRBurnCompletionActionKey, @"Polish", 0x80020067},
                    {DRBurnFailureActionKey, DRBurnCompletionActionEject, 0x80020067},
                    {DRMediaCatalogNumberKey, [NSData data], 0x80020065},
                    {DRCDTextKey, @"no block", 0x80020201},
                    {DRBurnDoubleLayerL0DataZoneBlocksKey, @"half", 0x8002006A}};
    for (size_t i = 0; i < sizeof burnAsks / sizeof *burnAsks; i++) {
        DRBurn* burn = BurnThatStays(device);
        NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[burn properties]];
        [properties setObject:burnAsks[i].value forKey:burnAsks[i].key];
        [burn setProperties:properties];
        CheckRefused("what a burn can't do", burn, track, burnAsks[i].code, @"");
    }
    struct {
        NSString* key;
        id value;
        unsigned code;
    } trackAsks[] = {{DRVolumeCheckedDate, @"today", 0x80020065},
                     {DRISOMacExtensions, [NSNumber numberWithBool:YES], 0x80020067},
                     {DRISOLevel, [NSNumber numberWithInt:4], 0x80020065},
                     {DRPublisher, [NSNumber numberWithInt:1], 0x80020065},
                     {DRDefaultDate, @"today", 0x80020065}};
    for (size_t i = 0; i < sizeof trackAsks / sizeof *trackAsks; i++) {
        DRTrack* asking = [DRTrack trackForRootFolder:folder];
        NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[asking properties]];
        [properties setObject:trackAsks[i].value forKey:trackAsks[i].key];
        [asking setProperties:properties];
        CheckRefused("what a track can't have yet", BurnThatStays(device), asking, trackAsks[i].code,
                     @"The track");
    }
    PASS("after all that the medium is blank", [device mediaIsBlank] && ![device trayIsOpen]);

    [device ejectMedia];
    CheckRefused("no medium", BurnThatStays(device), track, 0x80020041, @"");
    NSDictionary* error = [[BurnThatStays(nil) status] objectForKey:DRErrorStatusKey];
    PASS("no failure, no error", error == nil);
}

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
    place = NewFolder();
    drives = [place stringByAppendingPathComponent:@"drives"];
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    NSString* source = [place stringByAppendingPathComponent:@"source"];
    PASS("the folder to burn is made",
         Run(@"mkdir -p '%@/sub/deeper' && cd '%@' && echo hello > a.txt && head -c 3000001 /dev/urandom > "
             @"big.bin && "
             @": > empty && echo x > 'ümläut näme.txt' && ln -s a.txt link && echo y > sub/deeper/z && "
             @"touch -d '2001-02-03 04:05:06' a.txt && chmod 640 a.txt && chmod 755 big.bin",
             source, source));
    FreshDevice();
    TestProperties();
    TestStates(source);
    TestRealFolder(source);
    TestVirtualFolder(source);
    TestActions(source);
    TestIllegalLayouts(source);
    TestRefusals(source);
    // More data, so that a burn can be met in the middle.
    PASS("the folder grows", Run(@"head -c 12000000 /dev/urandom > '%@/bigger.bin'", source));
    TestAbort(source);
    TestFailureAction(source);
    TestLastReference(source);
    Run(@"chmod -R u+w '%@'; rm -rf '%@'", place, place);
    [pool release];
    return Finish();
}
