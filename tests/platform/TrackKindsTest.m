// TrackKindsTest: the numbers that say what a track's blocks are: which go together, and what the disc says of them.
#import "Producers.h"

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

// Every kind of track that the constants name, and what the disc says of it afterwards.
static void TestKinds(void) {
    struct {
        int size, type, form, session, mode;
    } kinds[] = {
        {kDRBlockSizeAudio, kDRBlockTypeAudio, kDRDataFormAudio, kDRSessionFormatAudio, kDRTrackModeAudio},
        {kDRBlockSizeDVDData, kDRBlockTypeDVDData, kDRDataFormDVDData, kDRSessionFormatDVDData,
         kDRTrackModeDVDData},
        {kDRBlockSizeMode1Data, kDRBlockTypeMode1Data, kDRDataFormMode1Data, kDRSessionFormatMode1Data,
         kDRTrackMode1Data},
        {kDRBlockSizeMode2Data, kDRBlockTypeMode2Data, kDRDataFormMode2Data, kDRSessionFormatCDXA,
         kDRTrackMode2Data},
        {kDRBlockSizeMode2Form1Data, kDRBlockTypeMode2Form1Data, kDRDataFormMode2Form1Data,
         kDRSessionFormatCDXA, kDRTrackMode2Form1Data},
        {kDRBlockSizeMode2Form2Data, kDRBlockTypeMode2Form2Data, kDRDataFormMode2Form2Data,
         kDRSessionFormatCDXA, kDRTrackMode2Form2Data},
        {kDRBlockSizeMode2Data, kDRBlockTypeMode2Data, kDRDataFormMode2Data, kDRSessionFormatCDI,
         kDRTrackMode2Data},
        {kDRBlockSizeMode2Form1Data, kDRBlockTypeMode2Form1Data, kDRDataFormMode2Form1Data,
         kDRSessionFormatCDI, kDRTrackMode2Form1Data},
        {kDRBlockSizeMode2Form2Data, kDRBlockTypeMode2Form2Data, kDRDataFormMode2Form2Data,
         kDRSessionFormatCDI, kDRTrackMode2Form2Data}};
    for (size_t i = 0; i < sizeof kinds / sizeof *kinds; i++) {
        const char* kind = kinds[i].mode == kDRTrackModeDVDData ? "DVD-R" : "CD-R";
        DRDevice* device = Device(kind);
        DRTrack* track = DataTrack([[Filler new] autorelease], 320);
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
        SAME("its mode", [told objectForKey:DRTrackModeKey], [NSNumber numberWithInt:kinds[i].mode]);
        // Of one constant's row with a size of another's.
        DRDevice* blank = Device(kind);
        SetNumber(track, DRBlockSizeKey, kinds[i].size + 4);
        ExpectError("a size that does not fit", BurnOn(blank, track, nil), 0x80020065, @"don't go together");
        PASS("nothing was written", [blank mediaIsBlank]);
    }
}

// A symbol a byte, whose P and Q are the drive's; of a block of so many bytes.
static unsigned char SymbolAt(uint64_t block, unsigned place) {
    return (unsigned char)((block * 7 + place) & 0x3F);
}

// Fills blocks of 2448 bytes, and compares what comes back.
@interface Singer : NSObject {
  @public
    uint32_t blockSize, flags, flagsOfVerification;
    uint64_t verified;
    BOOL differs;
}
@end

@implementation Singer
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)size
                        ioFlags:(uint32_t*)bits {
    blockSize = size;
    flags = *bits;
    for (uint32_t at = 0; at + size <= length; at += size, address++) {
        memset(buffer + at, (int)(address & 0xFF), 2352);
        for (unsigned place = 0; place + 2352 < size; place++)
            buffer[at + 2352 + place] = (char)(SymbolAt(address, place) | 0xC0);
    }
    return length / size * size;
}
- (BOOL)verifyDataForTrack:(DRTrack*)track
                  inBuffer:(const char*)buffer
                    length:(uint32_t)length
                 atAddress:(uint64_t)address
                 blockSize:(uint32_t)size
                   ioFlags:(uint32_t*)bits {
    flagsOfVerification = *bits;
    for (uint32_t at = 0; at + size <= length; at += size, address++, verified++) {
        differs = differs || (unsigned char)buffer[at + 2351] != (address & 0xFF);
        for (unsigned place = 0; place + 2352 < size; place++)
            differs = differs || (unsigned char)buffer[at + 2352 + place] != SymbolAt(address, place);
    }
    return !differs;
}
@end

// The size may count the subchannel data or leave them out.
static void TestSubchannel(void) {
    NSString* forms[] = {DRSubchannelDataFormPack, DRSubchannelDataFormRaw};
    for (int i = 0; i < 2; i++) {
        for (int counted = 0; counted < 2; counted++) {
            DRDevice* device = Device("CD-R");
            Singer* producer = [[Singer new] autorelease];
            DRTrack* track = DataTrack(producer, 400);
            SetKind(track, 2352 + 96 * counted, 0, 0, 0, 0);
            Set(track, DRSubchannelDataFormKey, forms[i]);
            PASS("they come", [track testProductionSpeedForLength:100 * 2448] > 0);
            PASS("96 bytes behind each block", producer->blockSize == 2448);
            PASS("when the flag asks for them", producer->flags == DRFlagSubchannelDataRequested);
            Set(track, DRVerificationTypeKey, DRVerificationTypeReceiveData);
            ExpectDone("a track with subchannel data", BurnOn(device, track, nil));
            PASS("in a burn, too",
                 producer->blockSize == 2448 && producer->flags == DRFlagSubchannelDataRequested);
            PASS("all was seen again", producer->verified == 400 && !producer->differs);
            PASS("as what it is", producer->flagsOfVerification == DRFlagSubchannelDataRequested);
            DRTrack* onDisc = [[[device status] objectForKey:DRDeviceTrackRefsKey] objectAtIndex:0];
            SAME("the disc says so", [[onDisc properties] objectForKey:DRSubchannelDataFormKey], forms[i]);
            SAME("and counts blocks without", [[onDisc properties] objectForKey:DRBlockSizeKey],
                 [NSNumber numberWithInt:2352]);
            PASS("a file has them", [Image(device, @"medium.sub") length] == 400 * 96);
            Set(track, DRSubchannelDataFormKey, DRSubchannelDataFormNone);
            BOOL fits = counted == 0;
            PASS("without a form there are none", ([track testProductionSpeedForLength:2352] > 0) == fits);
            PASS("nor a flag", !fits || (producer->blockSize == 2352 && producer->flags == 0));
        }
    }
    DRTrack* data = DataTrack([[Filler new] autorelease], 400);
    Set(data, DRSubchannelDataFormKey, DRSubchannelDataFormRaw);
    DRDevice* device = Device("DVD+RW");
    ExpectError("on a DVD", BurnOn(device, data, nil), 0x80020067,
                @"brings subchannel data, which a DVD+RW can't take; burn it without");
    PASS("nothing was written", [device mediaIsBlank]);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = BeginBurning();
    TestRequiredKeys();
    TestKinds();
    TestSubchannel();
    return EndBurning(place, pool);
}
