// Registry.m: makes the table of wrappers.
#import "companion/Registry.h"

#import "CoreServices.h"

CFMutableDictionaryRef instancesDictionary(void) {
    // Host thread only, as all who use it.
    static CFMutableDictionaryRef instances = NULL;
    if (instances == NULL)
        instances = CFDictionaryCreateMutable(NULL, 0, NULL, NULL);
    return instances;
}

void* registeredWrapper(id object) { return (void*)CFDictionaryGetValue(instancesDictionary(), object); }
