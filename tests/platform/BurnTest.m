// BurnTest: burns from layout to disc, read back with another program; the properties of burn and track.
#import "FolderBurns.h"

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

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* source = BeginTest();
    TestProperties();
    TestStates(source);
    TestRealFolder(source);
    TestVirtualFolder(source);
    TestActions(source);
    return EndTest(pool);
}
