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

// No medium here has a place for it, so a burn is refused; what a producer is asked shows without one.
static void TestSubchannel(void) {
    DRDevice* device = Device("CD-R");
    NSString* forms[] = {DRSubchannelDataFormPack, DRSubchannelDataFormRaw};
    for (int i = 0; i < 2; i++) {
        for (int counted = 0; counted < 2; counted++) {
            Filler* producer = [[Filler new] autorelease];
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

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = BeginBurning();
    TestRequiredKeys();
    TestKinds();
    TestSubchannel();
    return EndBurning(place, pool);
}
