// BurnOptionsTest: what a burn's properties ask of the drive: CD-Text, ways of writing, discs left open, tests, the layer
// break.
#import "DRCDTextBlock.h"
#import "Producers.h"

static NSNumber* Yes(void) { return [NSNumber numberWithBool:YES]; }

static NSDictionary* With(NSString* key, id value) {
    return [NSDictionary dictionaryWithObject:value forKey:key];
}

static DRTrack* TrackOf(int value, DRTrack* (*make)(id, int)) {
    Filler* producer = [[Filler new] autorelease];
    producer->value = value;
    return make(producer, 600); // no track keeps its producer; the pool does
}

static DRTrack* Data(int value) { return TrackOf(value, DataTrack); }
static DRTrack* Song(int value) { return TrackOf(value, Audio); }

// A drive that lacks an ability, with a blank medium.
static DRDevice* DeviceWithout(const char* lack, const char* kind) {
    MakeMedium(kind, 300000);
    NSString* description = [drives stringByAppendingPathComponent:@"drive-1/drive.json"];
    [[NSString stringWithFormat:@"{\"format\": 1, \"vendor\": \"Virtual\", \"product\": \"Disc Drive 1\", "
                                @"\"lacks\": [\"%s\"]}",
                                lack] writeToFile:description atomically:NO];
    return [[DRDevice devices] objectAtIndex:0];
}

// Every file of the drive, but for its locks, with its bytes.
static NSDictionary* Files(DRDevice* device) {
    NSMutableDictionary* files = [NSMutableDictionary dictionary];
    NSString* folder = [device ioRegistryEntryPath];
    NSArray* names = [[NSFileManager defaultManager] directoryContentsAtPath:folder];
    for (NSUInteger i = 0; i < [names count]; i++) {
        NSString* name = [names objectAtIndex:i];
        if ([name isEqual:@"lock"] || [name isEqual:@"reservation"])
            continue;
        [files setObject:[NSData dataWithContentsOfFile:[folder stringByAppendingPathComponent:name]]
                  forKey:name];
    }
    return files;
}

static DRCDTextBlock* Texts(void) {
    DRCDTextBlock* block = [DRCDTextBlock cdTextBlockWithLanguage:@"en"
                                                         encoding:DRCDTextEncodingISOLatin1Modified];
    [block setObject:@"Songs of the Sea" forKey:DRCDTextTitleKey ofTrack:0];
    [block setObject:@"Ebb" forKey:DRCDTextTitleKey ofTrack:1];
    [block setObject:@"Flóð" forKey:DRCDTextTitleKey ofTrack:2];
    [block setObject:@"The Tide" forKey:DRCDTextPerformerKey ofTrack:2];
    return block;
}

static void TestCDText(void) {
    DRDevice* device = Device("CD-R");
    NSArray* songs = [NSArray arrayWithObjects:Song(1), Song(2), nil];
    ExpectDone("texts", BurnOn(device, songs, With(DRCDTextKey, Texts())));
    NSArray* read = [DRCDTextBlock arrayOfCDTextBlocksFromPacks:[Files(device) objectForKey:@"medium.cdt"]];
    PASS("one block", [read count] == 1);
    DRCDTextBlock* block = [read lastObject];
    SAME("the disc's title", [block objectForKey:DRCDTextTitleKey ofTrack:0], @"Songs of the Sea");
    SAME("a track's", [block objectForKey:DRCDTextTitleKey ofTrack:2], @"Flóð");
    SAME("and who plays", [block objectForKey:DRCDTextPerformerKey ofTrack:2], @"The Tide");
    NSString* sheet = [[device ioRegistryEntryPath] stringByAppendingPathComponent:@"medium.cue"];
    NSString* look = [NSString stringWithFormat:@"cd-info --no-header --no-device-info --no-cddb -q "
                                                @"--cue-file='%@' > '%@.told' 2>&1; "
                                                @"grep -q 'TITLE: Songs of the Sea' '%@.told' && "
                                                @"grep -q 'TITLE: Ebb' '%@.told' && "
                                                @"grep -q 'PERFORMER: The Tide' '%@.told'",
                                                sheet, drives, drives, drives, drives];
    PASS("another program reads them, too", system([look UTF8String]) == 0);
    if (system([look UTF8String]) != 0)
        (void)!system([[NSString stringWithFormat:@"cat '%@.told' >&2", drives] UTF8String]);

    DRCDTextBlock* german = [DRCDTextBlock cdTextBlockWithLanguage:@"de"
                                                          encoding:DRCDTextEncodingISOLatin1Modified];
    [german setObject:@"Seelieder" forKey:DRCDTextTitleKey ofTrack:0];
    device = Device("CD-RW");
    ExpectDone("two languages",
               BurnOn(device, songs, With(DRCDTextKey, [NSArray arrayWithObjects:Texts(), german, nil])));
    read = [DRCDTextBlock arrayOfCDTextBlocksFromPacks:[Files(device) objectForKey:@"medium.cdt"]];
    PASS("two blocks", [read count] == 2);
    SAME("the other title", [[read lastObject] objectForKey:DRCDTextTitleKey ofTrack:0], @"Seelieder");

    ExpectError("a DVD", BurnOn(Device("DVD+RW"), Data(1), With(DRCDTextKey, Texts())), 0x80020201,
                @"CD-Text");
    ExpectError("a data CD", BurnOn(Device("CD-R"), Data(1), With(DRCDTextKey, Texts())), 0x80020201,
                @"audio tracks");
    device = DeviceWithout("cd-text", "CD-R");
    PASS("a drive that can't says so", ![[[[device info] objectForKey:DRDeviceWriteCapabilitiesKey]
                                           objectForKey:DRDeviceCanWriteCDTextKey] boolValue]);
    ExpectError("and refuses", BurnOn(device, songs, With(DRCDTextKey, Texts())), 0x80020201, @"CD-Text");
    PASS("with nothing written", [device mediaIsBlank]);
}

static NSDictionary* Way(id strategies, BOOL required) {
    return [NSDictionary dictionaryWithObjectsAndKeys:strategies, DRBurnStrategyKey,
                                                      [NSNumber numberWithBool:required],
                                                      DRBurnStrategyIsRequiredKey, nil];
}

static void TestStrategies(void) {
    struct {
        const char* kind;
        NSString *fits, *doesNot;
    } ways[] = {{"CD-R", DRBurnStrategyCDSAO, DRBurnStrategyDVDDAO},
                {"CD-RW", DRBurnStrategyCDTAO, DRBurnStrategyBDDAO},
                {"DVD-R", DRBurnStrategyDVDDAO, DRBurnStrategyCDSAO},
                {"BD-R", DRBurnStrategyBDDAO, DRBurnStrategyDVDDAO}};
    for (size_t i = 0; i < sizeof ways / sizeof *ways; i++) {
        ExpectDone(ways[i].kind, BurnOn(Device(ways[i].kind), Data(1), Way(ways[i].fits, YES)));
        ExpectDone("one of several",
                   BurnOn(Device(ways[i].kind), Data(1),
                          Way([NSArray arrayWithObjects:ways[i].doesNot, ways[i].fits, nil], YES)));
        ExpectDone("a wish is a hint", BurnOn(Device(ways[i].kind), Data(1), Way(ways[i].doesNot, NO)));
        DRDevice* device = Device(ways[i].kind);
        ExpectError("who insists is told", BurnOn(device, Data(1), Way(ways[i].doesNot, YES)), 0x80020200,
                    @"");
        PASS("before anything is written", [device mediaIsBlank]);
    }
    ExpectDone("nobody knows it", BurnOn(Device("CD-R"), Data(1), Way(@"Backwards", NO)));
    ExpectError("and it is insisted on", BurnOn(Device("CD-R"), Data(1), Way(@"Backwards", YES)), 0x80020200,
                @"Backwards");
    ExpectError("no virtual drive writes raw", BurnOn(Device("CD-R"), Data(1), Way(DRBurnStrategyCDRaw, YES)),
                0x80020200, @"");
    ExpectError("a drive that lacks it",
                BurnOn(DeviceWithout("session-at-once", "CD-R"), Data(1), Way(DRBurnStrategyCDSAO, YES)),
                0x80020200, @"");
    // Track at once knows no texts: as a wish it gives way, required it is an error.
    NSMutableDictionary* both = [NSMutableDictionary dictionaryWithDictionary:Way(DRBurnStrategyCDTAO, NO)];
    [both setObject:Texts() forKey:DRCDTextKey];
    ExpectDone("texts matter more than a wish",
               BurnOn(Device("CD-R"), [NSArray arrayWithObject:Song(1)], both));
    [both setObject:Yes() forKey:DRBurnStrategyIsRequiredKey];
    ExpectError("not more than what is required",
                BurnOn(Device("CD-R"), [NSArray arrayWithObject:Song(1)], both), 0x80020201,
                @"track at once");
}

static void TestAppendable(void) {
    const char* kinds[] = {"CD-R", "CD-RW", "DVD-R", "DVD-RW", "DVD+R", "DVD+RW", "BD-R", "BD-RE"};
    for (size_t i = 0; i < sizeof kinds / sizeof *kinds; i++) {
        DRDevice* device = Device(kinds[i]);
        ExpectDone(kinds[i], BurnOn(device, Data(1), With(DRBurnAppendableKey, Yes())));
        PASS("is left open", [device mediaIsAppendable] && ![device mediaIsBlank]);
        uint32_t room = [[device mediaSpaceFree] sectors];
        ExpectDone("a second session", BurnOn(device, Data(2), With(DRBurnAppendableKey, Yes())));
        PASS("takes room", [device mediaIsAppendable] && [[device mediaSpaceFree] sectors] + 600 <= room);
        ExpectDone("the last one", BurnOn(device, Data(3), nil));
        NSDictionary* media = [[device status] objectForKey:DRDeviceMediaInfoKey];
        PASS("closes the disc", ![device mediaIsAppendable] && [[device mediaSpaceFree] sectors] == 0);
        PASS("with three sessions", [[media objectForKey:DRDeviceMediaSessionCountKey] intValue] == 3 &&
                                        [[media objectForKey:DRDeviceMediaTrackCountKey] intValue] == 3);
        NSDictionary* before = Files(device);
        ExpectError("nothing more", BurnOn(device, Data(4), nil), 0x80020044, @"is not blank");
        SAME("and nothing changed", Files(device), before);
    }
}

static void TestTesting(void) {
    NSDictionary* test = With(DRBurnTestingKey, Yes());
    const char* kinds[] = {"CD-R", "CD-RW", "DVD-R", "DVD+RW", "BD-R"};
    for (size_t i = 0; i < sizeof kinds / sizeof *kinds; i++) {
        DRDevice* device = Device(kinds[i]);
        NSDictionary* blank = Files(device);
        ExpectDone(kinds[i], BurnOn(device, Data(1), test));
        SAME("a blank medium is byte for byte as before", Files(device), blank);
        PASS("and blank", [device mediaIsBlank]);
        ExpectDone("a session", BurnOn(device, Data(1), With(DRBurnAppendableKey, Yes())));
        NSDictionary* written = Files(device);
        PASS("which is more than a test", ![written isEqual:blank]);
        ExpectDone("another one as a test", BurnOn(device, Data(2), test));
        SAME("a written medium is byte for byte as before", Files(device), written);
    }
    DRDevice* device = Device("CD-R");
    ExpectDone("audio with texts", BurnOn(device, [NSArray arrayWithObjects:Song(1), Song(2), nil], test));
    PASS("is tested, too", [device mediaIsBlank] && [Files(device) objectForKey:@"medium.cdt"] == nil);
    // Deliberate: a drive that can't test does a real burn.
    device = DeviceWithout("test-write-cd", "CD-R");
    ExpectDone("a drive that can't", BurnOn(device, Data(1), test));
    PASS("burns", ![device mediaIsBlank]);
}

static void TestLayerBreak(void) {
    NSString* key = DRBurnDoubleLayerL0DataZoneBlocksKey;
    const char* kinds[] = {"DVD-R DL", "DVD+R DL"};
    for (size_t i = 0; i < sizeof kinds / sizeof *kinds; i++) {
        MakeMedium(kinds[i], 4000000);
        DRDevice* device = [[DRDevice devices] objectAtIndex:0];
        int wrong[] = {1, 0x40000 + 8, 0x40000 - 16, 4000016};
        for (size_t j = 0; j < sizeof wrong / sizeof *wrong; j++) {
            ExpectError("no such layer",
                        BurnOn(device, Data(1), With(key, [NSNumber numberWithInt:wrong[j]])), 0x8002006A,
                        @"first layer");
        }
        PASS("nothing is written", [device mediaIsBlank]);
        NSMutableDictionary* asked =
            [NSMutableDictionary dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:0x40010], key, Yes(),
                                                              DRBurnAppendableKey, nil];
        ExpectDone(kinds[i], BurnOn(device, Data(1), asked));
        NSDictionary* media = [[device status] objectForKey:DRDeviceMediaInfoKey];
        PASS("the medium tells",
             [[media objectForKey:DRDeviceMediaDoubleLayerL0DataZoneBlocksKey] intValue] == 0x40010);
        ExpectError("once and for all", BurnOn(device, Data(2), asked), 0x8002006B, @"262160");
        ExpectDone("a session without it", BurnOn(device, Data(2), nil));
        MakeMedium(kinds[i], 4000000);
        device = [[DRDevice devices] objectAtIndex:0];
        ExpectDone("a part", BurnOn(device, Data(1), With(key, [NSNumber numberWithDouble:0.5])));
    }
    ExpectDone("of no meaning for one layer",
               BurnOn(Device("DVD+R"), Data(1), With(key, [NSNumber numberWithInt:7])));
}

static double Now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

// The slower of what the burn and its track ask for. Only that it is never faster is looked at: a busy machine may take
// any time longer.
static void TestSpeeds(void) {
    const double slow = 2000, fast = 60000; // KB/s
    const double asked[][2] = {{slow, slow}, {fast, slow}, {slow, fast}, {slow, 0}, {slow, -1}, {0, slow}};
    for (size_t i = 0; i < sizeof asked / sizeof *asked; i++) {
        DRDevice* device = Device("DVD-R");
        DRTrack* track = Data(1);
        Set(track, DRMaxBurnSpeedKey, [NSNumber numberWithDouble:asked[i][1]]);
        Set(track, DRVerificationTypeKey, DRVerificationTypeNone);
        NSDictionary* more =
            asked[i][0] > 0 ? With(DRBurnRequestedSpeedKey, [NSNumber numberWithDouble:asked[i][0]]) : nil;
        const double start = Now();
        ExpectDone("at a speed", BurnOn(device, track, more));
        PASS("no faster than either asks", Now() - start >= 600 * 2048 / (slow * 1000));
    }
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = BeginBurning();
    TestCDText();
    TestStrategies();
    TestAppendable();
    TestTesting();
    TestLayerBreak();
    TestSpeeds();
    return EndBurning(place, pool);
}
