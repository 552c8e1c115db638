// EraseTest: erases, from a burned medium to a blank one; refusals and errors.
#import "Check.h"
#import "DRBurn.h"
#import "DRErase.h"
#import "DRFile.h"

#include <time.h>

static NSString* drives;

static void Nap(int milliseconds) {
    struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000l};
    nanosleep(&time, NULL);
}

// A drive whose medium is blank, as if it were new.
static DRDevice* FreshDevice(void) {
    [[NSFileManager defaultManager] removeFileAtPath:drives handler:nil];
    [[NSFileManager defaultManager] createDirectoryAtPath:drives attributes:nil];
    return [[DRDevice devices] objectAtIndex:0];
}

// The same with something on it.
static DRDevice* BurnedDevice(NSUInteger bytes) {
    DRDevice* device = FreshDevice();
    DRFolder* root = [DRFolder virtualFolderWithName:@"Old"];
    [root addChild:[DRFile virtualFileWithName:@"file" data:[NSMutableData dataWithLength:bytes]]];
    DRBurn* burn = [DRBurn burnForDevice:device];
    [burn setProperties:[NSDictionary dictionaryWithObjectsAndKeys:DRBurnCompletionActionMount,
                                                                   DRBurnCompletionActionKey,
                                                                   [NSNumber numberWithBool:YES],
                                                                   DRSynchronousBehaviorKey, nil]];
    [burn writeLayout:[DRTrack trackForRootFolder:root]];
    SAME("something is on the medium", [[burn status] objectForKey:DRStatusStateKey], DRStatusStateDone);
    PASS("so it isn't blank", ![device mediaIsBlank]);
    return device;
}

static NSDictionary* Await(DRErase* erase) {
    for (int i = 0; i < 60000; i++) {
        NSDictionary* status = [erase status];
        NSString* state = [status objectForKey:DRStatusStateKey];
        if ([state isEqual:DRStatusStateDone] || [state isEqual:DRStatusStateFailed])
            return status;
        Nap(1);
    }
    return nil;
}

static void ExpectError(NSDictionary* status, uint32_t code, NSString* words) {
    SAME("it failed", [status objectForKey:DRStatusStateKey], DRStatusStateFailed);
    NSDictionary* error = [status objectForKey:DRErrorStatusKey];
    SAME("with the code", [error objectForKey:DRErrorStatusErrorKey], [NSNumber numberWithInt:(int)code]);
    NSString* sentence = [error objectForKey:DRErrorStatusErrorStringKey];
    PASS("and a sentence", [sentence rangeOfString:words].length != 0);
    if ([sentence rangeOfString:words].length == 0)
        fprintf(stderr, "    got %s\n", [sentence UTF8String]);
}

static void TestProperties(void) {
    DRDevice* device = FreshDevice();
    DRErase* erase = [DRErase eraseForDevice:device];
    PASS("knows its drive", [erase device] == device);
    SAME("nothing has begun", [[erase status] objectForKey:DRStatusStateKey], DRStatusStateNone);
    SAME("not measurable", [[erase status] objectForKey:DRStatusPercentCompleteKey],
         [NSNumber numberWithFloat:-1]);
    SAME("no properties at first", [erase properties], [NSDictionary dictionary]);
    SAME("quick by itself", [erase eraseType], DREraseTypeQuick);
    SAME("and the status says so", [[erase status] objectForKey:DRStatusEraseTypeKey], DREraseTypeQuick);
    [erase setEraseType:DREraseTypeComplete];
    SAME("the type reads back", [erase eraseType], DREraseTypeComplete);
    SAME("under its key", [[erase properties] objectForKey:DREraseTypeKey], DREraseTypeComplete);
    SAME("in the status, too", [[erase status] objectForKey:DRStatusEraseTypeKey], DREraseTypeComplete);
    [erase setProperties:[NSDictionary dictionaryWithObject:@"x" forKey:@"other"]];
    SAME("the whole is replaced", [erase eraseType], DREraseTypeQuick);
    [erase setEraseType:DREraseTypeComplete];
    SAME("and the rest kept", [[erase properties] objectForKey:@"other"], @"x");
    [erase setEraseType:nil];
    SAME("nil removes the key", [erase properties], [NSDictionary dictionaryWithObject:@"x" forKey:@"other"]);
    [erase setProperties:nil];
    SAME("nil clears", [erase properties], [NSDictionary dictionary]);
}

static void TestErasing(NSString* type) {
    DRDevice* device = BurnedDevice(9000000);
    DRErase* erase = [DRErase eraseForDevice:device];
    [erase setEraseType:type];
    [erase start];
    NSDictionary* status = Await(erase);
    SAME("done", [status objectForKey:DRStatusStateKey], DRStatusStateDone);
    SAME("all of it", [status objectForKey:DRStatusPercentCompleteKey], [NSNumber numberWithFloat:1]);
    SAME("of that type", [status objectForKey:DRStatusEraseTypeKey], type);
    PASS("without an error", [status objectForKey:DRErrorStatusKey] == nil);
    PASS("blank", [device mediaIsBlank] && ![device mediaIsBusy] && [[device mediaSpaceUsed] sectors] == 0);
    RAISES("an erase is good for once", NSInternalInconsistencyException, @"started before", [erase start]);
}

static void TestRefusals(void) {
    DRErase* none = [DRErase eraseForDevice:nil];
    [none start];
    ExpectError(Await(none), 0x80020023, @"choose one");
    PASS("no drive", [none device] == nil);

    DRDevice* device = FreshDevice();
    DRErase* odd = [DRErase eraseForDevice:device];
    [odd setEraseType:@"thorough"];
    [odd start];
    ExpectError(Await(odd), 0x80020067, @"\"thorough\"");
    RAISES("nor again", NSInternalInconsistencyException, @"started before", [odd start]);

    [device ejectMedia];
    DRErase* empty = [DRErase eraseForDevice:device];
    [empty start];
    ExpectError(Await(empty), 0x80020041, @"put one in");
    [device closeTray];

    NSString* medium = [[device ioRegistryEntryPath] stringByAppendingPathComponent:@"medium.json"];
    [@"{\"format\": 1, \"kind\": \"CD-R\", \"capacityBlocks\": 359847, \"state\": \"blank\", "
     @"\"sessions\": []}" writeToFile:medium
                           atomically:YES];
    DRErase* once = [DRErase eraseForDevice:device];
    [once start];
    ExpectError(Await(once), 0x80020045, @"The CD-R in");
    PASS("what is written once is not erased", ![device mediaIsErasable]);
}

// The erase goes on without its object, and another one finds the drive busy or the medium blank.
static void TestDropping(void) {
    DRDevice* device = BurnedDevice(30000000);
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    DRErase* erase = [[DRErase alloc] initWithDevice:device];
    [erase setEraseType:DREraseTypeComplete];
    [erase start];
    [erase release];
    [pool release];
    for (int i = 0; i < 60000 && !([device mediaIsBlank] && ![device mediaIsBusy]); i++)
        Nap(1);
    PASS("blank after all", [device mediaIsBlank] && ![device mediaIsBusy]);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = NewFolder();
    drives = [place stringByAppendingPathComponent:@"drives"];
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    TestProperties();
    TestErasing(DREraseTypeQuick);
    TestErasing(DREraseTypeComplete);
    TestRefusals();
    TestDropping();
    [[NSFileManager defaultManager] removeFileAtPath:place handler:nil];
    [pool release];
    return Finish();
}
