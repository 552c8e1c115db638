// BurnRefusalTest: layouts that no burn can write, and what burns and tracks can't have: errors, and the medium stays blank.
#import "FolderBurns.h"

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
    NSString* filesystems[] = {DRISO9660, DRUDF, DRHFSPlus};
    for (int i = 0; i < 3; i++) {
        NSString* filesystem = filesystems[i];
        DRFolder* links = [DRFolder virtualFolderWithName:@"links"];
        [links setExplicitFilesystemMask:DRFilesystemInclusionMaskISO9660 | DRFilesystemInclusionMaskUDF |
                                         DRFilesystemInclusionMaskHFSPlus];
        DRFile* link = [DRFile symLinkPointingTo:elsewhere inFilesystem:filesystem];
        [links addChild:link];
        CheckRefused("a symbolic link to what is not on the disc", BurnThatStays(device),
                     [DRTrack trackForRootFolder:links], 0x80020101, @"points at nothing");
        [links addChild:elsewhere];
        [elsewhere setExplicitFilesystemMask:[links explicitFilesystemMask] & ~[link explicitFilesystemMask]];
        CheckRefused("a symbolic link to what is in other file systems only", BurnThatStays(device),
                     [DRTrack trackForRootFolder:links], 0x80020101, @"points at nothing");
        [links removeChild:elsewhere];
        [elsewhere setExplicitFilesystemMask:0];
        [links removeChild:link];
        // Links do not keep what they point at.
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        DRFile* passing = [[DRFile alloc] initWithName:@"passing" data:nil];
        [links addChild:[DRFile symLinkPointingTo:passing inFilesystem:filesystem]];
        [links addChild:[DRFile hardLinkPointingTo:passing inFilesystem:filesystem]];
        [passing release];
        [pool release];
        CheckRefused("links to what is gone", BurnThatStays(device), [DRTrack trackForRootFolder:links],
                     0x80020101, @"points at nothing");
    }
    DRFolder* mac = [DRFolder virtualFolderWithName:@"mac"];
    [mac setExplicitFilesystemMask:DRFilesystemInclusionMaskISO9660 | DRFilesystemInclusionMaskHFSPlus];
    DRFile* elsewhereOnly = [DRFile virtualFileWithName:@"iso" data:nil];
    [mac addChild:elsewhereOnly];
    [mac addChild:[DRFile finderAliasPointingTo:elsewhereOnly inFilesystem:DRHFSPlus]];
    [elsewhereOnly setExplicitFilesystemMask:DRFilesystemInclusionMaskISO9660];
    CheckRefused("a Finder alias to what is not in HFS+", BurnThatStays(device),
                 [DRTrack trackForRootFolder:mac], 0x80020101, @"not in HFS+");
    const unichar zero[] = {'a', 0, 'b'};
    DRFolder* named = [DRFolder virtualFolderWithName:@"named"];
    [named addChild:[DRFile virtualFileWithName:[NSString stringWithCharacters:zero length:3] data:nil]];
    CheckRefused("a zero character in a name", BurnThatStays(device), [DRTrack trackForRootFolder:named],
                 0x80020101, @"can't be the name");
    // Deliberate: what a mask leaves out is left out in silence, but for links, which have their mask from their making.
    [aliases setExplicitFilesystemMask:DRFilesystemInclusionMaskISO9660 | DRFilesystemInclusionMaskUDF];
    CheckRefused("a Finder alias without HFS+", BurnThatStays(device), [DRTrack trackForRootFolder:aliases],
                 0x80020103, @"\"elsewhere\" is for HFS+");
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
                     {DRISOMacExtensions, @"yes", 0x80020065},
                     {DRISOLevel, [NSNumber numberWithInt:4], 0x80020065},
                     {DRPublisher, [NSNumber numberWithInt:1], 0x80020065},
                     {DRDefaultDate, @"today", 0x80020065}};
    for (size_t i = 0; i < sizeof trackAsks / sizeof *trackAsks; i++) {
        DRTrack* asking = [DRTrack trackForRootFolder:folder];
        NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[asking properties]];
        [properties setObject:trackAsks[i].value forKey:trackAsks[i].key];
        [asking setProperties:properties];
        CheckRefused("what has a wrong type, or is no level", BurnThatStays(device), asking,
                     trackAsks[i].code, @"The track");
    }
    PASS("after all that the medium is blank", [device mediaIsBlank] && ![device trayIsOpen]);

    [device ejectMedia];
    CheckRefused("no medium", BurnThatStays(device), track, 0x80020041, @"");
    NSDictionary* error = [[BurnThatStays(nil) status] objectForKey:DRErrorStatusKey];
    PASS("no failure, no error", error == nil);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* source = BeginTest();
    TestIllegalLayouts(source);
    TestRefusals(source);
    return EndTest(pool);
}
