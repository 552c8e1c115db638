// Registry.m: makes the table of wrappers.
#import "companion/Registry.h"

#import "CoreServices.h"

CFMutableDictionaryRef instancesDictionary(void) {
    // Only threads that hold the host's lock come here: those in a program or handler, and destructors. Plug-ins
    // that have the table also use it on the threads that events come on, and that is safe: each call on it is whole.
    static CFMutableDictionaryRef instances = NULL;
    if (instances == NULL)
        instances = CFDictionaryCreateMutable(NULL, 0, NULL, NULL);
    return instances;
}

void* registeredWrapper(id object) { return (void*)CFDictionaryGetValue(instancesDictionary(), object); }
