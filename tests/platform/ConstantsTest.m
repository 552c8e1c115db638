// ConstantsTest: every string constant is exported under the name that is its text.
#import "Check.h"
#import "DiscRecording.h"

#include <dlfcn.h>

static void CheckString(const char* name) {
    NSString* const* constant = (NSString* const*)dlsym(RTLD_DEFAULT, name);
    PASS("the constant is exported", constant != NULL);
    if (constant != NULL)
        SAME("its text is its name", *constant, [NSString stringWithUTF8String:name]);
}

#define CHECK(name) CheckString(#name);
#define COUNT(name) +1

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    DR_DEVICE_STRINGS(CHECK)
    DR_BURN_STRINGS(CHECK)
    DR_CDTEXT_STRINGS(CHECK)
    DR_STATUS_STRINGS(CHECK)
    DR_ERASE_STRINGS(CHECK)
    DR_TRACK_STRINGS(CHECK)
    DR_FSOBJECT_STRINGS(CHECK)
    DR_FILE_STRINGS(CHECK)
    PASS("all of a device's", (0 DR_DEVICE_STRINGS(COUNT)) == 119);
    PASS("all of CD-Text's", (0 DR_CDTEXT_STRINGS(COUNT)) == 20);
    PASS("all of a track's", (0 DR_TRACK_STRINGS(COUNT)) == 62);
    PASS("all of a file system object's", (0 DR_FSOBJECT_STRINGS(COUNT)) == 45);
    NSString* const* older = (NSString* const*)dlsym(RTLD_DEFAULT, "kDRPreGapIsRequiredKey");
    SAME("an older name has the newer text", older == NULL ? nil : *older, @"DRPreGapIsRequiredKey");
    PASS("speeds are singles", DRDeviceBurnSpeedCD1x == 176.4f && DRDeviceBurnSpeedDVD1x == 1385.0f &&
                                   DRDeviceBurnSpeedBD1x == 4496.0f && DRDeviceBurnSpeedHDDVD1x == 4496.0f &&
                                   DRDeviceBurnSpeedMax == 65535.0f);
    [pool release];
    return Finish();
}
