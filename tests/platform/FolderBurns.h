// FolderBurns.h: what tests of burns of a folder share: the folder, a drive as if it were new, a burn that is waited for, and
// the disc read back with another program.
#ifndef TESTS_PLATFORM_FOLDER_BURNS_H
#define TESTS_PLATFORM_FOLDER_BURNS_H

#import "Check.h"
#import "DRBurn.h"
#import "DRFile.h"

#include <stdarg.h>
#include <time.h>

static NSString* place; // everything of this test lies in it
static NSString* drives;

static inline BOOL Run(NSString* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    NSString* command = [[[NSString alloc] initWithFormat:format arguments:arguments] autorelease];
    va_end(arguments);
    return system([command UTF8String]) == 0;
}

static inline void Nap(int milliseconds) {
    struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000l};
    nanosleep(&time, NULL);
}

static inline double Now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

// A drive with a blank medium, as if it were new.
static inline DRDevice* FreshDevice(void) {
    Run(@"rm -rf '%@'; mkdir '%@'", drives, drives);
    return [[DRDevice devices] objectAtIndex:0];
}

static inline NSString* State(DRBurn* burn) { return [[burn status] objectForKey:DRStatusStateKey]; }

static inline BOOL IsOver(DRBurn* burn) {
    NSString* state = State(burn);
    return [state isEqual:DRStatusStateDone] || [state isEqual:DRStatusStateFailed];
}

// The states in the order in which they were seen.
static inline NSArray* Await(DRBurn* burn) {
    NSMutableArray* seen = [NSMutableArray array];
    double end = Now() + 60;
    for (;;) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        NSDictionary* status = [burn status];
        NSString* state = [status objectForKey:DRStatusStateKey];
        if (![[seen lastObject] isEqual:state])
            [seen addObject:state];
        float percent = [[status objectForKey:DRStatusPercentCompleteKey] floatValue];
        if (!(percent == -1 || (percent >= 0 && percent <= 1)))
            PASS("the percentage is -1 or between 0 and 1", NO);
        BOOL over = [state isEqual:DRStatusStateDone] || [state isEqual:DRStatusStateFailed];
        [pool release];
        if (over || Now() > end)
            return seen;
        Nap(1);
    }
}

static inline int ErrorOf(DRBurn* burn) {
    NSDictionary* error = [[burn status] objectForKey:DRErrorStatusKey];
    return [[error objectForKey:DRErrorStatusErrorKey] intValue];
}

static inline NSString* SentenceOf(DRBurn* burn) {
    NSDictionary* error = [[burn status] objectForKey:DRErrorStatusKey];
    return [error objectForKey:DRErrorStatusErrorStringKey];
}

static inline DRBurn* BurnThatStays(DRDevice* device) {
    DRBurn* burn = [DRBurn burnForDevice:device];
    [burn setProperties:[NSDictionary dictionaryWithObjectsAndKeys:DRBurnCompletionActionMount,
                                                                   DRBurnCompletionActionKey,
                                                                   DRBurnFailureActionNone,
                                                                   DRBurnFailureActionKey, nil]];
    return burn;
}

static inline DRTrack* VerifiedTrack(DRFolder* folder) {
    DRTrack* track = [DRTrack trackForRootFolder:folder];
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[track properties]];
    [properties setObject:DRVerificationTypeChecksum forKey:DRVerificationTypeKey];
    [track setProperties:properties];
    return track;
}

// Unpacks the drive's image with a program that knows nothing of this project.
static inline NSString* Unpacked(DRDevice* device) {
    NSString* target = [place stringByAppendingPathComponent:@"unpacked"];
    BOOL done = Run(@"chmod -R u+w '%@' 2>/dev/null; rm -rf '%@'; mkdir '%@' && cd '%@' && "
                    @"bsdtar -xpf \"$(find '%@' -name '*.iso' | head -n 1)\"",
                    target, target, target, target, [device ioRegistryEntryPath]);
    PASS("another program unpacks the image", done);
    return target;
}

// Places for this test, and the folder that it burns. EndTest() takes them away, and answers the program's exit status.
static inline NSString* BeginTest(void) {
    place = NewFolder();
    drives = [place stringByAppendingPathComponent:@"drives"];
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    NSString* source = [place stringByAppendingPathComponent:@"source"];
    PASS("the folder to burn is made",
         Run(@"mkdir -p '%@/sub/deeper' && cd '%@' && echo hello > a.txt && head -c 3000001 /dev/urandom > "
             @"big.bin && "
             @": > empty && echo x > 'ümläut näme.txt' && ln -s a.txt link && echo y > sub/deeper/z && "
             @"touch -d '2001-02-03 04:05:06' a.txt && chmod 640 a.txt && chmod 755 big.bin",
             source, source));
    FreshDevice();
    return source;
}

static inline int EndTest(NSAutoreleasePool* pool) {
    Run(@"chmod -R u+w '%@'; rm -rf '%@'", place, place);
    [pool release];
    return Finish();
}

#endif
