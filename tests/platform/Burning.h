// Burning.h: what tests of burns share: drives with a medium of any kind, made by hand, tracks with properties, burns that
// are waited for, and what they must say.
#ifndef TESTS_PLATFORM_BURNING_H
#define TESTS_PLATFORM_BURNING_H

#import "Check.h"
#import "DRBurn.h"
#import "DRTrack.h"

static NSString* drives; // the folder of the test's drives

// A folder for the test with one for drives in it. EndBurning() takes it away, and answers the program's exit status.
static inline NSString* BeginBurning(void) {
    NSString* place = NewFolder();
    drives = [[place stringByAppendingPathComponent:@"drives"] retain];
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    return place;
}

static inline int EndBurning(NSString* place, NSAutoreleasePool* pool) {
    [[NSFileManager defaultManager] removeFileAtPath:place handler:nil];
    [drives release];
    [pool release];
    return Finish();
}

static inline void MakeMedium(const char* kind, unsigned blocks) {
    NSString* drive = [drives stringByAppendingPathComponent:@"drive-1"];
    [[NSFileManager defaultManager] removeFileAtPath:drives handler:nil];
    [[NSFileManager defaultManager] createDirectoryAtPath:drives attributes:nil];
    [[NSFileManager defaultManager] createDirectoryAtPath:drive attributes:nil];
    [@"{\"format\": 1, \"vendor\": \"Virtual\", \"product\": \"Disc Drive 1\", \"firmwareRevision\": "
     @"\"1.00\", "
     @"\"tray\": \"closed\"}" writeToFile:[drive stringByAppendingPathComponent:@"drive.json"]
                               atomically:NO];
    NSString* medium =
        [NSString stringWithFormat:@"{\"format\": 1, \"kind\": \"%s\", \"capacityBlocks\": %u, \"state\": "
                                   @"\"blank\", \"sessions\": []}",
                                   kind, blocks];
    [medium writeToFile:[drive stringByAppendingPathComponent:@"medium.json"] atomically:NO];
}

static inline DRDevice* Device(const char* kind) {
    MakeMedium(kind, 300000);
    return [[DRDevice devices] objectAtIndex:0];
}

static inline void Set(DRTrack* track, NSString* key, id value) {
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[track properties]];
    [properties setObject:value forKey:key];
    [track setProperties:properties];
}

static inline void SetNumber(DRTrack* track, NSString* key, int value) {
    Set(track, key, [NSNumber numberWithInt:value]);
}

static inline void SetKind(DRTrack* track, int size, int type, int form, int session, int mode) {
    SetNumber(track, DRBlockSizeKey, size);
    SetNumber(track, DRBlockTypeKey, type);
    SetNumber(track, DRDataFormKey, form);
    SetNumber(track, DRSessionFormatKey, session);
    SetNumber(track, DRTrackModeKey, mode);
}

static inline DRTrack* DataTrack(id producer, int blocks) {
    DRTrack* track = [[[DRTrack alloc] initWithProducer:producer] autorelease];
    SetNumber(track, DRTrackLengthKey, blocks);
    SetKind(track, kDRBlockSizeMode1Data, kDRBlockTypeMode1Data, kDRDataFormMode1Data,
            kDRSessionFormatMode1Data, kDRTrackMode1Data);
    return track;
}

static inline DRTrack* Audio(id producer, int blocks) {
    return [DRTrack trackForAudioOfLength:[DRMSF msfWithFrames:(uint32_t)blocks] producer:producer];
}

static inline NSDictionary* BurnOn(DRDevice* device, id layout, NSDictionary* more) {
    DRBurn* burn = [DRBurn burnForDevice:device];
    NSMutableDictionary* properties = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:DRBurnCompletionActionMount, DRBurnCompletionActionKey,
                                     DRBurnFailureActionNone, DRBurnFailureActionKey,
                                     [NSNumber numberWithBool:YES], DRSynchronousBehaviorKey, nil];
    [properties addEntriesFromDictionary:more];
    [burn setProperties:properties];
    [burn writeLayout:layout];
    return [burn status];
}

static inline void ExpectDone(const char* what, NSDictionary* status) {
    PASS("is done", [[status objectForKey:DRStatusStateKey] isEqual:DRStatusStateDone]);
    if (![[status objectForKey:DRStatusStateKey] isEqual:DRStatusStateDone])
        fprintf(stderr, "    %s: %s\n", what, [[status description] UTF8String]);
}

static inline void ExpectError(const char* what, NSDictionary* status, uint32_t code, NSString* words) {
    NSDictionary* error = [status objectForKey:DRErrorStatusKey];
    NSString* all = [NSString stringWithFormat:@"%@ (%@)", [error objectForKey:DRErrorStatusErrorStringKey],
                                               [error objectForKey:DRErrorStatusErrorInfoStringKey]];
    BOOL right = [[error objectForKey:DRErrorStatusErrorKey] intValue] == (int)code &&
                 ([words length] == 0 || [all rangeOfString:words].length != 0);
    PASS("fails as it must", right);
    if (!right)
        fprintf(stderr, "    %s: %s\n", what, [[status description] UTF8String]);
}

// A file of the drive's medium.
static inline NSData* Image(DRDevice* device, NSString* name) {
    return [NSData dataWithContentsOfFile:[[device ioRegistryEntryPath] stringByAppendingPathComponent:name]];
}

#endif
