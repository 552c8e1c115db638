// AudioTrackTest: audio tracks: codes, index points, pre-gaps, discs of several tracks and sessions.
#import "Producers.h"

static void TestAudio(void) {
    DRDevice* device = Device("CD-R");
    Producer *first = [[Producer new] autorelease], *second = [[GapProducer new] autorelease];
    DRTrack *one = Audio(first, 400), *two = Audio(second, 500);
    SAME("the length is set", [one length], [DRMSF msfWithFrames:400]);
    SAME("an audio block", [[one properties] objectForKey:DRBlockSizeKey], [NSNumber numberWithInt:2352]);
    Set(one, DRTrackISRCKey, [@"DEABC2600001" dataUsingEncoding:NSASCIIStringEncoding]);
    Set(one, DRIndexPointsKey,
        [NSArray arrayWithObjects:[NSNumber numberWithInt:100], [NSNumber numberWithInt:200], nil]);
    Set(one, DRAudioPreEmphasisKey, [NSNumber numberWithBool:YES]);
    [two setPreGap:[DRMSF msfWithFrames:75]];
    NSDictionary* more =
        [NSDictionary dictionaryWithObject:[@"4006381333931" dataUsingEncoding:NSASCIIStringEncoding]
                                    forKey:DRMediaCatalogNumberKey];
    ExpectDone("two audio tracks", BurnOn(device, [NSArray arrayWithObjects:one, two, nil], more));
    SAME("no pre-gap of its own", first->calls, Words(@"prepare produce cleanup"));
    SAME("asked for the pre-gap", second->calls, Words(@"prepare preGap produce cleanup"));
    NSData* bin = Image(device, @"medium.bin");
    PASS("the first track is in the image", [bin length] == (400 + 75 + 500) * 2352);
    PASS("its samples", IsProduced(bin, 0, 400 * 2352, 0));
    const char* gap = (const char*)[bin bytes] + 400 * 2352;
    PASS("the pre-gap", gap[0] == 0x5A && gap[75 * 2352 - 1] == 0x5A);
    PASS("the second track", IsProduced(bin, 0, 500 * 2352, (400 + 75) * 2352));
    NSString* cue = [[[NSString alloc] initWithData:Image(device, @"medium.cue")
                                           encoding:NSUTF8StringEncoding] autorelease];
    NSString* words[] = {@"ISRC DEABC2600001", @"CATALOG 4006381333931", @"INDEX 02 00:01:25",
                         @"FLAGS DCP PRE", @"TRACK 02 AUDIO"};
    for (size_t i = 0; i < sizeof words / sizeof *words; i++) {
        PASS("the sheet says it", [cue rangeOfString:words[i]].length != 0);
        if ([cue rangeOfString:words[i]].length == 0)
            fprintf(stderr, "    no \"%s\" in\n%s", [words[i] UTF8String], [cue UTF8String]);
    }

    // What is on the disc is told by the drive, key by key.
    NSArray* tracks = [[device status] objectForKey:DRDeviceTrackRefsKey];
    PASS("two tracks are told", [tracks count] == 2);
    DRTrack* onDisc = [tracks objectAtIndex:0];
    NSDictionary* told = [onDisc properties];
    SAME("its length", [onDisc length], [DRMSF msfWithFrames:400]);
    SAME("audio", [told objectForKey:DRTrackModeKey], [NSNumber numberWithInt:1]);
    SAME("in audio blocks", [told objectForKey:DRBlockSizeKey], [NSNumber numberWithInt:2352]);
    SAME("with its code", [told objectForKey:DRTrackISRCKey], [[one properties] objectForKey:DRTrackISRCKey]);
    SAME("and its index points", [told objectForKey:DRIndexPointsKey],
         [[one properties] objectForKey:DRIndexPointsKey]);
    SAME("pre-emphasis", [told objectForKey:DRAudioPreEmphasisKey], [NSNumber numberWithBool:YES]);
    SAME("closed", [told objectForKey:DRTrackTypeKey], DRTrackTypeClosed);
    SAME("the second's pre-gap", [[tracks objectAtIndex:1] preGap], [DRMSF msfWithFrames:75]);

    struct {
        NSString* key;
        id value;
        uint32_t code;
    } wrong[] = {{DRTrackISRCKey, [NSData data], 0x80020203},
                 {DRTrackISRCKey, [@"deabc2600001" dataUsingEncoding:NSASCIIStringEncoding], 0x80020203},
                 {DRIndexPointsKey, @"1", 0x80020069},
                 {DRIndexPointsKey, [NSArray arrayWithObject:@"x"], 0x80020069},
                 {DRIndexPointsKey, [NSArray arrayWithObject:[NSNumber numberWithInt:9999]], 0x80020069},
                 {DRSerialCopyManagementStateKey, @"mine", 0x80020204},
                 {DRSubchannelDataFormKey, @"odd", 0x80020067},
                 {DRDVDTimestampKey, [NSData data], 0x80020067}};
    DRDevice* blank = Device("CD-R");
    for (size_t i = 0; i < sizeof wrong / sizeof *wrong; i++) {
        DRTrack* track = Audio([[Producer new] autorelease], 400);
        Set(track, wrong[i].key, wrong[i].value);
        ExpectError([wrong[i].key UTF8String], BurnOn(blank, track, nil), wrong[i].code, @"");
    }
    PASS("nothing was written", [blank mediaIsBlank]);
}

// What a cue sheet says of one of its tracks, or nil.
static NSString* FlagsOnSheet(DRDevice* device, NSUInteger number) {
    NSString* sheet = [[[NSString alloc] initWithData:Image(device, @"medium.cue")
                                             encoding:NSUTF8StringEncoding] autorelease];
    NSArray* tracks = [sheet componentsSeparatedByString:@"  TRACK "];
    if (number >= [tracks count])
        return @"no such track";
    NSArray* parts = [[tracks objectAtIndex:number] componentsSeparatedByString:@"    FLAGS "];
    if ([parts count] < 2)
        return nil;
    return [[[parts objectAtIndex:1] componentsSeparatedByString:@"\n"] objectAtIndex:0];
}

static void TestCopyStatesAndChannels(void) {
    struct {
        NSString* state;
        BOOL four;
        NSString* flags;
    } marks[] = {{DRSCMSCopyrightFree, NO, @"DCP"},
                 {DRSCMSCopyrightProtectedOriginal, NO, nil},
                 {DRSCMSCopyrightProtectedCopy, NO, @"SCMS"},
                 {DRSCMSCopyrightFree, YES, @"DCP 4CH"},
                 {DRSCMSCopyrightProtectedOriginal, YES, @"4CH"},
                 {DRSCMSCopyrightProtectedCopy, YES, @"4CH SCMS"}};
    const NSUInteger count = sizeof marks / sizeof *marks;
    NSMutableArray* tracks = [NSMutableArray array];
    for (NSUInteger i = 0; i < count; i++) {
        DRTrack* track = Audio([[Filler new] autorelease], 300);
        Set(track, DRSerialCopyManagementStateKey, marks[i].state);
        Set(track, DRAudioFourChannelKey, [NSNumber numberWithBool:marks[i].four]);
        [tracks addObject:track];
    }
    DRDevice* device = Device("CD-R");
    ExpectDone("tracks of every copy state", BurnOn(device, tracks, nil));
    NSArray* onDisc = [[device status] objectForKey:DRDeviceTrackRefsKey];
    PASS("all are told", [onDisc count] == count);
    for (NSUInteger i = 0; i < [onDisc count]; i++) {
        NSDictionary* told = [[onDisc objectAtIndex:i] properties];
        SAME("the copy state", [told objectForKey:DRSerialCopyManagementStateKey], marks[i].state);
        SAME("the channels", [told objectForKey:DRAudioFourChannelKey],
             [NSNumber numberWithBool:marks[i].four]);
        SAME("and the sheet says it", FlagsOnSheet(device, i + 1), marks[i].flags);
    }
}

// Who needs a pre-gap of a length gets it or an error; for others the disc's way is taken.
static void TestRequiredPreGaps(void) {
    NSDictionary* trackAtOnce = [NSDictionary
        dictionaryWithObjectsAndKeys:DRBurnStrategyCDTAO, DRBurnStrategyKey, [NSNumber numberWithBool:YES],
                                     DRBurnStrategyIsRequiredKey, nil];
    struct {
        NSUInteger track; // of two
        uint32_t frames, onDisc;
        NSDictionary* way;
        NSString* refusal;
    } gaps[] = {{0, 75, 150, nil, @"The first track of a session must have a pre-gap of at least 150"},
                {0, 170, 170, nil, nil},
                {1, 75, 75, nil, nil},
                {1, 75, 150, trackAtOnce, @"can't be written track at once"},
                {1, 150, 150, trackAtOnce, nil}};
    for (size_t i = 0; i < sizeof gaps / sizeof *gaps; i++) {
        for (int required = 0; required < 2; required++) {
            NSArray* tracks = [NSArray arrayWithObjects:Audio([[Filler new] autorelease], 300),
                                                        Audio([[Filler new] autorelease], 300), nil];
            for (NSUInteger j = 0; j < 2; j++)
                [[tracks objectAtIndex:j] setPreGap:[DRMSF msfWithFrames:150]];
            DRTrack* track = [tracks objectAtIndex:gaps[i].track];
            [track setPreGap:[DRMSF msfWithFrames:gaps[i].frames]];
            Set(track, DRPreGapIsRequiredKey, [NSNumber numberWithBool:required == 1]);
            DRDevice* device = Device("CD-R");
            NSDictionary* status = BurnOn(device, tracks, gaps[i].way);
            if (required && gaps[i].refusal != nil) {
                ExpectError("a pre-gap that must be", status, 0x80020205, gaps[i].refusal);
                PASS("nothing was written", [device mediaIsBlank]);
                continue;
            }
            ExpectDone("a pre-gap", status);
            NSArray* onDisc = [[device status] objectForKey:DRDeviceTrackRefsKey];
            PASS("two tracks", [onDisc count] == 2);
            SAME("its length on the disc", [[onDisc objectAtIndex:gaps[i].track] preGap],
                 [DRMSF msfWithFrames:gaps[i].onDisc]);
        }
    }
}

// Who gets what was read to compare it gets his pre-gap, too: the part that the disc keeps.
static void TestVerifiedPreGap(void) {
    for (int i = 0; i < 2; i++) {
        GapProducer *one = [[GapProducer new] autorelease], *two = [[GapProducer new] autorelease];
        DRTrack* tracks[] = {Audio(one, 400), Audio(two, 400)};
        // Of the first pre-gap a disc image keeps what is longer than usual.
        [tracks[0] setPreGap:[DRMSF msfWithFrames:170]];
        [tracks[1] setPreGap:[DRMSF msfWithFrames:75]];
        for (int j = 0; j < 2; j++)
            Set(tracks[j], DRVerificationTypeKey, DRVerificationTypeReceiveData);
        two->gapDiffers = i == 1;
        DRDevice* device = Device("CD-R");
        NSDictionary* status = BurnOn(device, [NSArray arrayWithObjects:tracks count:2], nil);
        if (i == 0)
            ExpectDone("pre-gaps that are right", status);
        else
            ExpectError("a pre-gap that is not", status, 0x80020063, @"");
        SAME("first the pre-gap", one->calls,
             Words(@"prepare preGap produce prepareVerification verifyPreGap verify cleanupVerification "
                   @"cleanup"));
        PASS("what the disc keeps of it", one->gapVerified == 20 * 2352);
        PASS("all of one between tracks", i == 1 || two->gapVerified == 75 * 2352);
        SAME("after NO nothing more is shown", two->calls,
             Words(i == 0 ? @"prepare preGap produce prepareVerification verifyPreGap verify "
                            @"cleanupVerification cleanup"
                          : @"prepare preGap produce prepareVerification verifyPreGap "
                            @"cleanupVerification cleanup"));
    }
    // A producer that can't compare its pre-gap has it compared by nobody.
    Producer* without = [[Producer new] autorelease];
    DRTrack* track = Audio(without, 400);
    [track setPreGap:[DRMSF msfWithFrames:170]];
    Set(track, DRVerificationTypeKey, DRVerificationTypeReceiveData);
    ExpectDone("a silent pre-gap", BurnOn(Device("CD-R"), track, nil));
    SAME("is not asked about", without->calls,
         Words(@"prepare produce prepareVerification verify cleanupVerification cleanup"));
}

static void TestLayouts(void) {
    DRDevice* device = Device("CD-R");
    NSArray* sessions =
        [NSArray arrayWithObjects:[NSArray arrayWithObject:DataTrack([[Producer new] autorelease], 400)],
                                  [NSArray arrayWithObjects:DataTrack([[Producer new] autorelease], 400),
                                                            Audio([[Producer new] autorelease], 400), nil],
                                  nil];
    ExpectDone("two sessions", BurnOn(device, sessions, nil));
    NSDictionary* media = [[device status] objectForKey:DRDeviceMediaInfoKey];
    SAME("are told", [media objectForKey:DRDeviceMediaSessionCountKey], [NSNumber numberWithInt:2]);
    SAME("with three tracks", [media objectForKey:DRDeviceMediaTrackCountKey], [NSNumber numberWithInt:3]);

    DRDevice* dvd = Device("DVD-R");
    ExpectError("two tracks on a DVD",
                BurnOn(dvd,
                       [NSArray arrayWithObjects:DataTrack([[Producer new] autorelease], 400),
                                                 DataTrack([[Producer new] autorelease], 400), nil],
                       nil),
                0x80020064, @"");
    ExpectError("sound on a DVD", BurnOn(dvd, Audio([[Producer new] autorelease], 400), nil), 0x80020065,
                @"");
    PASS("nothing was written", [dvd mediaIsBlank]);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = BeginBurning();
    TestAudio();
    TestCopyStatesAndChannels();
    TestRequiredPreGaps();
    TestVerifiedPreGap();
    TestLayouts();
    return EndBurning(place, pool);
}
