// ProducerTest: tracks whose data an object produces, as the burn engine calls it; what arrives on the disc.
#import "Burning.h"
#import "DRTrack.h"

#include <pthread.h>
#include <unistd.h>

// Byte i of a track; no two blocks are alike.
static unsigned char ByteAt(uint64_t i) { return (unsigned char)(i * 2654435761u >> 13 ^ i >> 20); }

// Produces, and writes down in which order it was called. What it does wrong is told by its flags.
@interface Producer : NSObject {
  @public
    NSMutableArray* calls;
    uint64_t expected; // the byte that must be asked for next
    uint32_t atMost;   // bytes answered at once; 0: all that fit
    uint64_t endsAt;   // says then that there is no more
    uint64_t failsAt;  // answers 0 then
    uint64_t raisesAt;
    BOOL refusesToPrepare, refusesToVerify, differs, refusesCleanup;
    uint32_t lengthFromPrepare;
    uint32_t largest;
    BOOL onMainThread, outOfOrder;
    id burnSeen;
    NSDictionary* mediaSeen;
}
@end

@implementation Producer
- (id)init {
    self = [super init];
    calls = [NSMutableArray new];
    endsAt = failsAt = raisesAt = UINT64_MAX;
    return self;
}
- (void)dealloc {
    [calls release];
    [mediaSeen release];
    [super dealloc];
}
- (void)note:(NSString*)call {
    if (![[calls lastObject] isEqual:call])
        [calls addObject:call];
    if ([NSThread isMainThread])
        onMainThread = YES;
}
- (uint64_t)estimateLengthOfTrack:(DRTrack*)track {
    return 4321;
}
- (BOOL)prepareTrack:(DRTrack*)track forBurn:(DRBurn*)burn toMedia:(NSDictionary*)mediaInfo {
    [self note:@"prepare"];
    burnSeen = burn;
    mediaSeen = [mediaInfo retain];
    if (lengthFromPrepare != 0) {
        NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[track properties]];
        [properties setObject:[DRMSF msfWithFrames:lengthFromPrepare] forKey:DRTrackLengthKey];
        [track setProperties:properties];
    }
    return !refusesToPrepare;
}
- (void)cleanupTrackAfterBurn:(DRTrack*)track {
    [self note:@"cleanup"];
}
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags {
    [self note:@"produce"];
    if (address != expected / blockSize)
        outOfOrder = YES;
    if (length > largest)
        largest = length;
    uint64_t at = expected;
    if (at >= failsAt)
        return 0;
    if (at >= raisesAt)
        [NSException raise:@"OutOfPaper" format:@"at byte %llu", (unsigned long long)at];
    uint32_t count = atMost != 0 && atMost < length ? atMost : length;
    if (at + count >= endsAt) {
        count = (uint32_t)(endsAt - at);
        *flags |= DRFlagNoMoreData;
    }
    for (uint32_t i = 0; i < count; i++)
        buffer[i] = (char)ByteAt(at + i);
    expected += count;
    return count;
}
- (BOOL)prepareTrackForVerification:(DRTrack*)track {
    [self note:@"prepareVerification"];
    expected = 0;
    return !refusesToVerify;
}
- (BOOL)verifyDataForTrack:(DRTrack*)track
                  inBuffer:(const char*)buffer
                    length:(uint32_t)length
                 atAddress:(uint64_t)address
                 blockSize:(uint32_t)blockSize
                   ioFlags:(uint32_t*)flags {
    [self note:@"verify"];
    if (address != expected / blockSize)
        outOfOrder = YES;
    for (uint32_t i = 0; i < length; i++)
        if ((unsigned char)buffer[i] != ByteAt(expected + i))
            return NO;
    expected += length;
    return !differs;
}
- (BOOL)cleanupTrackAfterVerification:(DRTrack*)track {
    [self note:@"cleanupVerification"];
    return !refusesCleanup;
}
@end

// The same that makes its pre-gap itself.
@interface GapProducer : Producer
@end
@implementation GapProducer
- (uint32_t)producePreGapForTrack:(DRTrack*)track
                       intoBuffer:(char*)buffer
                           length:(uint32_t)length
                        atAddress:(uint64_t)address
                        blockSize:(uint32_t)blockSize
                          ioFlags:(uint32_t*)flags {
    [self note:@"preGap"];
    memset(buffer, 0x5A, length);
    return length;
}
@end

// Has the one method that is needed.
@interface Terse : NSObject
@end
@implementation Terse
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags {
    for (uint32_t i = 0; i < length; i++)
        buffer[i] = (char)ByteAt(address * blockSize + i);
    return length;
}
@end

// A track that produces its own data: it must not keep itself alive.
@interface OwnTrack : DRTrack
@end
static int ownTracks;
@implementation OwnTrack
- (id)init {
    ownTracks++;
    return [self initWithProducer:self];
}
- (void)dealloc {
    ownTracks--;
    [super dealloc];
}
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags {
    memset(buffer, 7, length);
    return length;
}
@end

static NSData* Image(DRDevice* device, NSString* name) {
    return [NSData dataWithContentsOfFile:[[device ioRegistryEntryPath] stringByAppendingPathComponent:name]];
}

static BOOL IsProduced(NSData* data, uint64_t from, uint64_t bytes, NSUInteger at) {
    const unsigned char* read = [data bytes];
    if ([data length] < at + bytes)
        return NO;
    for (uint64_t i = 0; i < bytes; i++)
        if (read[at + i] != ByteAt(from + i))
            return NO;
    return YES;
}

static NSArray* Words(NSString* text) { return [text componentsSeparatedByString:@" "]; }

static void TestOrder(void) {
    DRDevice* device = Device("DVD+RW");
    Producer* producer = [[Producer new] autorelease];
    DRTrack* track = DataTrack(producer, 1500);
    PASS("estimated by the producer", [track estimateLength] == 4321);
    ExpectDone("unverified", BurnOn(device, track, nil));
    SAME("in order", producer->calls, Words(@"prepare produce cleanup"));
    PASS("in sequence, and not on the main thread", !producer->outOfOrder && !producer->onMainThread);
    PASS("more than a block at once", producer->largest > 2048);
    PASS("told for what", producer->burnSeen != nil);
    SAME("and onto what", [producer->mediaSeen objectForKey:DRDeviceMediaStateKey],
         DRDeviceMediaStateMediaPresent);
    PASS("all of it is on the disc", IsProduced(Image(device, @"medium.iso"), 0, 1500 * 2048, 0));

    device = Device("DVD+RW");
    Terse* terse = [[Terse new] autorelease];
    ExpectDone("one method is enough", BurnOn(device, DataTrack(terse, 700), nil));
    PASS("its bytes, too", IsProduced(Image(device, @"medium.iso"), 0, 700 * 2048, 0));
}

static void TestVerification(void) {
    NSString* types[] = {DRVerificationTypeChecksum, DRVerificationTypeProduceAgain,
                         DRVerificationTypeReceiveData, DRVerificationTypeNone};
    NSString* orders[] = {@"prepare produce cleanup",
                          @"prepare produce prepareVerification produce cleanupVerification cleanup",
                          @"prepare produce prepareVerification verify cleanupVerification cleanup",
                          @"prepare produce cleanup"};
    for (int i = 0; i < 4; i++) {
        Producer* producer = [[Producer new] autorelease];
        DRTrack* track = DataTrack(producer, 1500);
        Set(track, DRVerificationTypeKey, types[i]);
        ExpectDone([types[i] UTF8String], BurnOn(Device("DVD+RW"), track, nil));
        SAME("in order", producer->calls, Words(orders[i]));
        PASS("in sequence", !producer->outOfOrder);
        Producer* unverified = [[Producer new] autorelease];
        track = DataTrack(unverified, 600);
        Set(track, DRVerificationTypeKey, types[i]);
        ExpectDone("the burn does not verify",
                   BurnOn(Device("DVD+RW"), track,
                          [NSDictionary dictionaryWithObject:[NSNumber numberWithBool:NO]
                                                      forKey:DRBurnVerifyDiscKey]));
        SAME("then nothing is verified", unverified->calls, Words(@"prepare produce cleanup"));
    }
    for (int i = 0; i < 3; i++) {
        Producer* producer = [[Producer new] autorelease];
        producer->differs = i == 0;
        producer->refusesToVerify = i == 1;
        producer->refusesCleanup = i == 2;
        DRTrack* track = DataTrack(producer, 600);
        Set(track, DRVerificationTypeKey, DRVerificationTypeReceiveData);
        ExpectError("not content", BurnOn(Device("DVD+RW"), track, nil), 0x80020063, @"");
        SAME("cleaned up all the same", [producer->calls lastObject], @"cleanup");
    }
    DRTrack* odd = DataTrack([[Producer new] autorelease], 600);
    Set(odd, DRVerificationTypeKey, @"by eye");
    ExpectError("an unknown type", BurnOn(Device("DVD+RW"), odd, nil), 0x80020067, @"\"by eye\"");
}

static void TestAnswers(void) {
    DRDevice* device = Device("DVD+RW");
    Producer* piecemeal = [[Producer new] autorelease];
    piecemeal->atMost = 5 * 2048;
    ExpectDone("short answers", BurnOn(device, DataTrack(piecemeal, 1500), nil));
    PASS("are asked on from", IsProduced(Image(device, @"medium.iso"), 0, 1500 * 2048, 0));

    device = Device("DVD+RW");
    Producer* ending = [[Producer new] autorelease];
    ending->endsAt = 1000 * 2048 + 100;
    ExpectDone("it ends earlier", BurnOn(device, DataTrack(ending, 1500), nil));
    PASS("with what there was", IsProduced(Image(device, @"medium.iso"), 0, 1000 * 2048 + 100, 0));
    PASS("the last block filled up", [[device mediaSpaceUsed] sectors] == 1001);

    device = Device("DVD+RW");
    Producer* longer = [[Producer new] autorelease];
    longer->lengthFromPrepare = 2222;
    ExpectDone("preparing changes the length", BurnOn(device, DataTrack(longer, 10), nil));
    PASS("and that counts", [[device mediaSpaceUsed] sectors] == 2222);

    Producer* refusing = [[Producer new] autorelease];
    refusing->refusesToPrepare = YES;
    device = Device("DVD+RW");
    ExpectError("no", BurnOn(device, DataTrack(refusing, 600), nil), 0x80020062, @"prepare");
    PASS("the disc is untouched", [device mediaIsBlank]);

    Producer* failing = [[Producer new] autorelease];
    failing->failsAt = 1 << 20;
    device = Device("DVD+RW");
    ExpectError("nothing more", BurnOn(device, DataTrack(failing, 1500), nil), 0x80020062, @"no data");
    SAME("cleaned up", [failing->calls lastObject], @"cleanup");
    PASS("and blank still", [device mediaIsBlank]);

    Producer* raising = [[Producer new] autorelease];
    raising->raisesAt = 1 << 20;
    ExpectError("raises", BurnOn(Device("DVD+RW"), DataTrack(raising, 1500), nil), 0x80020062,
                @"OutOfPaper: at byte 1048576");
    SAME("cleaned up", [raising->calls lastObject], @"cleanup");
}

static void TestRequiredKeys(void) {
    NSString* keys[] = {DRTrackLengthKey, DRBlockSizeKey,     DRBlockTypeKey,
                        DRDataFormKey,    DRSessionFormatKey, DRTrackModeKey};
    DRDevice* device = Device("DVD+RW");
    for (size_t i = 0; i < sizeof keys / sizeof *keys; i++) {
        DRTrack* track = DataTrack([[Producer new] autorelease], 600);
        NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[track properties]];
        [properties removeObjectForKey:keys[i]];
        [track setProperties:properties];
        ExpectError("a missing key is named", BurnOn(device, track, nil), 0x80020065, keys[i]);
    }
    DRTrack* mixed = DataTrack([[Producer new] autorelease], 600);
    SetNumber(mixed, DRBlockSizeKey, 2352);
    ExpectError("values of several kinds", BurnOn(device, mixed, nil), 0x80020065, @"don't go together");
    PASS("all that left it blank", [device mediaIsBlank]);
}

static void SetKind(DRTrack* track, int size, int type, int form, int session, int mode) {
    SetNumber(track, DRBlockSizeKey, size);
    SetNumber(track, DRBlockTypeKey, type);
    SetNumber(track, DRDataFormKey, form);
    SetNumber(track, DRSessionFormatKey, session);
    SetNumber(track, DRTrackModeKey, mode);
}

// Notes how it is asked, and fills its buffer.
@interface FlagProducer : NSObject {
  @public
    uint32_t blockSize, flags;
}
@end

@implementation FlagProducer
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)size
                        ioFlags:(uint32_t*)ioFlags {
    blockSize = size;
    flags = *ioFlags;
    memset(buffer, 7, length);
    return length;
}
@end

// Every kind of track that the constants name, and what the disc says of it afterwards.
static void TestKinds(void) {
    struct {
        int size, type, form, session, mode;
    } kinds[] = {{kDRBlockSizeMode1Data, kDRBlockTypeMode1Data, kDRDataFormMode1Data,
                  kDRSessionFormatMode1Data, kDRTrackMode1Data},
                 {kDRBlockSizeMode2Data, kDRBlockTypeMode2Data, kDRDataFormMode2Data, kDRSessionFormatCDXA,
                  kDRTrackMode2Data},
                 {kDRBlockSizeMode2Form1Data, kDRBlockTypeMode2Form1Data, kDRDataFormMode2Form1Data,
                  kDRSessionFormatCDXA, kDRTrackMode2Form1Data},
                 {kDRBlockSizeMode2Form2Data, kDRBlockTypeMode2Form2Data, kDRDataFormMode2Form2Data,
                  kDRSessionFormatCDXA, kDRTrackMode2Form2Data},
                 {kDRBlockSizeMode2Data, kDRBlockTypeMode2Data, kDRDataFormMode2Data, kDRSessionFormatCDI,
                  kDRTrackMode2Data},
                 {kDRBlockSizeMode2Form1Data, kDRBlockTypeMode2Form1Data, kDRDataFormMode2Form1Data,
                  kDRSessionFormatCDI, kDRTrackMode2Form1Data}};
    for (size_t i = 0; i < sizeof kinds / sizeof *kinds; i++) {
        DRDevice* device = Device("CD-R");
        DRTrack* track = DataTrack([[FlagProducer new] autorelease], 320);
        SetKind(track, kinds[i].size, kinds[i].type, kinds[i].form, kinds[i].session, kinds[i].mode);
        Set(track, DRVerificationTypeKey, DRVerificationTypeChecksum);
        ExpectDone("a kind of track", BurnOn(device, track, nil));
        DRTrack* onDisc = [[[device status] objectForKey:DRDeviceTrackRefsKey] objectAtIndex:0];
        NSDictionary* told = [onDisc properties];
        SAME("its length", [onDisc length], [DRMSF msfWithFrames:320]);
        SAME("its size", [told objectForKey:DRBlockSizeKey], [NSNumber numberWithInt:kinds[i].size]);
        SAME("its type", [told objectForKey:DRBlockTypeKey], [NSNumber numberWithInt:kinds[i].type]);
        SAME("its form", [told objectForKey:DRDataFormKey], [NSNumber numberWithInt:kinds[i].form]);
        SAME("its session", [told objectForKey:DRSessionFormatKey],
             [NSNumber numberWithInt:kinds[i].session]);
        // Of one constant's row with a size of another's.
        DRDevice* blank = Device("CD-R");
        SetNumber(track, DRBlockSizeKey, kinds[i].size + 4);
        ExpectError("a size that does not fit", BurnOn(blank, track, nil), 0x80020065, @"don't go together");
        PASS("nothing was written", [blank mediaIsBlank]);
    }
}

// No medium here has a place for it, so a burn is refused; what a producer is asked shows without one.
static void TestSubchannel(void) {
    DRDevice* device = Device("CD-R");
    NSString* forms[] = {DRSubchannelDataFormPack, DRSubchannelDataFormRaw};
    for (int i = 0; i < 2; i++) {
        for (int counted = 0; counted < 2; counted++) {
            FlagProducer* producer = [[FlagProducer new] autorelease];
            DRTrack* track = DataTrack(producer, 400);
            SetKind(track, 2352 + 96 * counted, 0, 0, 0, 0);
            Set(track, DRSubchannelDataFormKey, forms[i]);
            ExpectError("subchannel data", BurnOn(device, track, nil), 0x80020067,
                        @"brings subchannel data, which the drive can't write; burn it without");
            PASS("nobody was asked for any", producer->blockSize == 0);
            PASS("they come", [track testProductionSpeedForLength:100 * 2448] > 0);
            PASS("96 bytes behind each block", producer->blockSize == 2448);
            PASS("when the flag asks for them", producer->flags == DRFlagSubchannelDataRequested);
            Set(track, DRSubchannelDataFormKey, DRSubchannelDataFormNone);
            BOOL fits = counted == 0;
            PASS("without a form there are none", ([track testProductionSpeedForLength:2352] > 0) == fits);
            PASS("nor a flag", !fits || (producer->blockSize == 2352 && producer->flags == 0));
        }
    }
    PASS("nothing was written", [device mediaIsBlank]);
}

static DRTrack* Audio(id producer, unsigned blocks) {
    return [DRTrack trackForAudioOfLength:[DRMSF msfWithFrames:blocks] producer:producer];
}

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
    NSString* words[] = {@"ISRC DEABC2600001", @"CATALOG 4006381333931", @"INDEX 02 00:01:25", @"FLAGS",
                         @"TRACK 02 AUDIO"};
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

static void TestOwnProducer(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    OwnTrack* own = [[OwnTrack alloc] init];
    [own setProperties:[DataTrack(nil, 600) properties]];
    ExpectDone("a track that is its own producer", BurnOn(Device("DVD+RW"), own, nil));
    [own release];
    [pool release];
    PASS("goes when it is released", ownTracks == 0);
}

static void TestSpeed(void) {
    Producer* producer = [[Producer new] autorelease];
    DRTrack* track = DataTrack(producer, 2000);
    PASS("a speed for so many bytes", [track testProductionSpeedForLength:1 << 20] > 0);
    SAME("as in a burn", producer->calls, Words(@"prepare produce cleanup"));
    PASS("no more than that", producer->expected == 1 << 20);
    PASS("with no burn", producer->burnSeen == nil);
    Terse* terse = [[Terse new] autorelease];
    NSDate* start = [NSDate date];
    PASS("a speed for so long", [DataTrack(terse, 3000000) testProductionSpeedForInterval:0.2] > 0);
    PASS("not longer", -[start timeIntervalSinceNow] < 10);
    Producer* refusing = [[Producer new] autorelease];
    refusing->refusesToPrepare = YES;
    PASS("0 when there is no data", [DataTrack(refusing, 600) testProductionSpeedForLength:2048] == 0);
    DRTrack* folder = [DRTrack trackForRootFolder:[DRFolder virtualFolderWithName:@"x"]];
    PASS("of a folder, too", [folder testProductionSpeedForLength:1 << 20] > 0);
}

static void TestAudioFiles(NSString* place) {
    PASS("nil for nil", [DRTrack trackForAudioFile:nil] == nil);
    NSString* none = [place stringByAppendingPathComponent:@"none.wav"];
    PASS("nil for no file", [DRTrack trackForAudioFile:none] == nil);
    [@"this is no sound" writeToFile:none atomically:NO];
    PASS("nil for no sound", [DRTrack trackForAudioFile:none] == nil);

    // 3 blocks of samples in a WAV file; the header is that of 44.1 kHz, stereo, 16 bits.
    unsigned char wav[44 + 3 * 2352] =
        "RIFF\0\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0\x44\xAC\0\0\x10\xB1\x02\0\x04\0"
        "\x10\0data";
    unsigned bytes = 3 * 2352, whole = bytes + 36;
    for (int i = 0; i < 4; i++) {
        wav[4 + i] = (unsigned char)(whole >> 8 * i);
        wav[40 + i] = (unsigned char)(bytes >> 8 * i);
    }
    for (unsigned i = 0; i < bytes; i++)
        wav[44 + i] = ByteAt(i);
    NSString* path = [place stringByAppendingPathComponent:@"sound.wav"];
    [[NSData dataWithBytes:wav length:sizeof wav] writeToFile:path atomically:NO];
    DRTrack* track = [DRTrack trackForAudioFile:path];
    SAME("its exact length", [track length], [DRMSF msfWithFrames:3]);
    PASS("which is the estimate", [track estimateLength] == 3);
    Set(track, DRVerificationTypeKey, DRVerificationTypeProduceAgain);
    DRDevice* device = Device("CD-R");
    ExpectDone("a sound file", BurnOn(device, track, nil));
    NSData* bin = Image(device, @"medium.bin");
    PASS("bit by bit", [bin length] >= bytes && memcmp([bin bytes], wav + 44, bytes) == 0);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = NewFolder();
    drives = [place stringByAppendingPathComponent:@"drives"];
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    TestOrder();
    TestVerification();
    TestAnswers();
    TestRequiredKeys();
    TestKinds();
    TestSubchannel();
    TestAudio();
    TestLayouts();
    TestOwnProducer();
    TestSpeed();
    TestAudioFiles(place);
    [[NSFileManager defaultManager] removeFileAtPath:place handler:nil];
    [pool release];
    return Finish();
}
