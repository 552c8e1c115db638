// Registry.m: makes the table of wrappers.
#import "companion/Registry.h"

#import "CoreServices.h"

CFMutableDictionaryRef instancesDictionary(void) {
    // Only threads that hold the host's lock come here: those in a program or handler, and destructors.
    static CFMutableDictionaryRef instances = NULL;
    if (instances == NULL)
        instances = CFDictionaryCreateMutable(NULL, 0, NULL, NULL);
    return instances;
}

void* registeredWrapper(id object) { return (void*)CFDictionaryGetValue(instancesDictionary(), object); }
