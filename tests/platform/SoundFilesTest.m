// SoundFilesTest: tracks of sound files: their lengths, what is on the disc, and files that are other ones meanwhile.
#import "Producers.h"

// A WAV file of so many samples; the header is that of 44.1 kHz, stereo, 16 bits.
static NSData* Sound(unsigned samples) {
    const unsigned bytes = samples * 4, whole = bytes + 36;
    NSMutableData* wav = [NSMutableData dataWithLength:44 + bytes];
    unsigned char* at = [wav mutableBytes];
    memcpy(at,
           "RIFF\0\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0\x44\xAC\0\0\x10\xB1\x02\0\x04\0"
           "\x10\0data",
           40);
    for (int i = 0; i < 4; i++) {
        at[4 + i] = (unsigned char)(whole >> 8 * i);
        at[40 + i] = (unsigned char)(bytes >> 8 * i);
    }
    for (unsigned i = 0; i < bytes; i++)
        at[44 + i] = ByteAt(i);
    return wav;
}

static void TestAudioFiles(NSString* place) {
    PASS("nil for nil", [DRTrack trackForAudioFile:nil] == nil);
    NSString* none = [place stringByAppendingPathComponent:@"none.wav"];
    PASS("nil for no file", [DRTrack trackForAudioFile:none] == nil);
    [@"this is no sound" writeToFile:none atomically:NO];
    PASS("nil for no sound", [DRTrack trackForAudioFile:none] == nil);

    NSString* path = [place stringByAppendingPathComponent:@"sound.wav"];
    NSData* wav = Sound(3 * 588);
    const unsigned bytes = 3 * 2352;
    [wav writeToFile:path atomically:NO];
    DRTrack* track = [DRTrack trackForAudioFile:path];
    SAME("its exact length", [track length], [DRMSF msfWithFrames:3]);
    PASS("which is the estimate", [track estimateLength] == 3);
    Set(track, DRVerificationTypeKey, DRVerificationTypeProduceAgain);
    DRDevice* device = Device("CD-R");
    ExpectDone("a sound file", BurnOn(device, track, nil));
    NSData* bin = Image(device, @"medium.bin");
    PASS("bit by bit",
         [bin length] >= bytes && memcmp([bin bytes], (const char*)[wav bytes] + 44, bytes) == 0);

    // A shorter length is a part of the file; more than it holds there isn't.
    [track setProperties:[NSDictionary dictionaryWithDictionary:[track properties]]];
    Set(track, DRTrackLengthKey, [DRMSF msfWithFrames:2]);
    ExpectDone("the front of a sound file", BurnOn(device = Device("CD-R"), track, nil));
    bin = Image(device, @"medium.bin");
    PASS("so much of it", [bin length] == 2 * 2352);
    PASS("bit by bit", memcmp([bin bytes], (const char*)[wav bytes] + 44, [bin length]) == 0);
    Set(track, DRTrackLengthKey, [DRMSF msfWithFrames:4]);
    ExpectError("more than a sound file", BurnOn(device = Device("CD-R"), track, nil), 0x80020065,
                @"has only 3");
    PASS("nothing was written", [device mediaIsBlank]);
}

// Replaces a sound file while its disc is prepared.
@interface Replacing : Filler {
  @public
    NSString* path;
    NSData* with; // nil: takes it away
}
@end
@implementation Replacing
- (BOOL)prepareTrack:(DRTrack*)track forBurn:(DRBurn*)burn toMedia:(NSDictionary*)mediaInfo {
    if (with == nil)
        return [[NSFileManager defaultManager] removeFileAtPath:path handler:nil];
    return [with writeToFile:path atomically:YES];
}
@end

// A sound file that is not the one that its track was made for is found before anything is written: by the burn when it
// begins, and when it is prepared.
static void TestReplacedAudioFiles(NSString* place) {
    NSString* path = [place stringByAppendingPathComponent:@"song.wav"];
    NSMutableData* damaged = [NSMutableData dataWithData:Sound(300 * 588)];
    [damaged replaceBytesInRange:NSMakeRange(0, 40) withBytes:"This was a sound once, and is a text now."];
    struct {
        const char* what;
        NSData* with;
        uint32_t code;
    } others[] = {{"a longer one", Sound(301 * 588), 0x80020100},
                  {"a shorter one", Sound(200 * 588), 0x80020100},
                  {"no sound", [@"a text" dataUsingEncoding:NSASCIIStringEncoding], 0x8002006C},
                  {"a damaged one", damaged, 0x8002006C},
                  {"an empty one", [NSData data], 0x8002006C},
                  {"none", nil, 0x8002006C}};
    for (size_t i = 0; i < sizeof others / sizeof *others; i++) {
        for (int late = 0; late < 2; late++) {
            [Sound(300 * 588) writeToFile:path atomically:YES];
            DRTrack* track = [DRTrack trackForAudioFile:path];
            Replacing* first = [[Replacing new] autorelease];
            first->path = path;
            first->with = others[i].with;
            if (late == 0)
                [first prepareTrack:nil forBurn:nil toMedia:nil];
            NSArray* layout = late == 0 ? [NSArray arrayWithObject:track]
                                        : [NSArray arrayWithObjects:Audio(first, 300), track, nil];
            DRDevice* device = Device("CD-R");
            ExpectError(others[i].what, BurnOn(device, layout, nil), others[i].code, @"song.wav\"");
            PASS("nothing was written", [device mediaIsBlank]);
        }
    }
    // Other sound of the same length is that sound.
    [Sound(300 * 588) writeToFile:path atomically:YES];
    DRTrack* track = [DRTrack trackForAudioFile:path];
    NSMutableData* other = [NSMutableData dataWithData:Sound(300 * 588)];
    ((char*)[other mutableBytes])[44 + 1000] ^= 1;
    [other writeToFile:path atomically:YES];
    DRDevice* device = Device("CD-R");
    ExpectDone("of the same length", BurnOn(device, track, nil));
    NSData* bin = Image(device, @"medium.bin");
    PASS("the new sound", [bin length] == 300 * 2352 &&
                              memcmp([bin bytes], (const char*)[other bytes] + 44, [bin length]) == 0);
}

// Tracks that bring their data themselves have properties, too: what they ask for is burned, or refused.
static void TestPropertiesOfOwnData(NSString* place) {
    NSString* path = [place stringByAppendingPathComponent:@"own.wav"];
    [Sound(300 * 588) writeToFile:path atomically:NO];
    NSString* keys[] = {DRBlockSizeKey,     DRBlockTypeKey, DRDataFormKey,
                        DRSessionFormatKey, DRTrackModeKey, DRTrackLengthKey};
    DRDevice* device = Device("CD-R");
    for (int folder = 0; folder < 2; folder++) {
        DRTrack* track = folder ? [DRTrack trackForRootFolder:[DRFolder virtualFolderWithName:@"x"]]
                                : [DRTrack trackForAudioFile:path];
        NSDictionary* whole = [track properties];
        // A folder's length is what it needs.
        for (size_t i = 0; i < sizeof keys / sizeof *keys - (folder ? 1 : 0); i++) {
            NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:whole];
            [properties removeObjectForKey:keys[i]];
            [track setProperties:properties];
            ExpectError("a missing key is named", BurnOn(device, track, nil), 0x80020065, keys[i]);
        }
        [track setProperties:whole];
        SetNumber(track, DRBlockSizeKey, folder ? 2352 : 2048);
        ExpectError("blocks that are none", BurnOn(device, track, nil), 0x80020065, @"don't go together");
        if (folder)
            SetKind(track, kDRBlockSizeMode2Form1Data, kDRBlockTypeMode2Form1Data, kDRDataFormMode2Form1Data,
                    kDRSessionFormatCDXA, kDRTrackMode2Form1Data);
        else
            SetKind(track, kDRBlockSizeMode1Data, kDRBlockTypeMode1Data, kDRDataFormMode1Data,
                    kDRSessionFormatMode1Data, kDRTrackMode1Data);
        ExpectError("blocks of others", BurnOn(device, track, nil), 0x80020065,
                    folder ? @"but a folder is burned in blocks" : @"but a sound file is burned in blocks");
        [track setProperties:whole];
        Set(track, DRSubchannelDataFormKey, DRSubchannelDataFormRaw);
        ExpectError("subchannel data", BurnOn(device, track, nil), 0x80020067, @"asks for subchannel data");
        PASS("nothing was written", [device mediaIsBlank]);
        Set(track, DRSubchannelDataFormKey, DRSubchannelDataFormNone);
        ExpectDone("none of them", BurnOn(Device("CD-R"), track, nil));
        device = Device("CD-R");
    }
    DRTrack* onDVD = [DRTrack trackForRootFolder:[DRFolder virtualFolderWithName:@"x"]];
    SetKind(onDVD, kDRBlockSizeDVDData, kDRBlockTypeDVDData, kDRDataFormDVDData, kDRSessionFormatDVDData,
            kDRTrackModeDVDData);
    ExpectDone("a folder in a DVD's blocks", BurnOn(Device("DVD+R"), onDVD, nil));
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = BeginBurning();
    TestAudioFiles(place);
    TestPropertiesOfOwnData(place);
    TestReplacedAudioFiles(place);
    return EndBurning(place, pool);
}
