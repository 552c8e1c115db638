// Registry.h: the process-wide table from platform object to the host object that wraps it.
#import <Foundation/Foundation.h>

typedef struct __CFDictionary* CFMutableDictionaryRef;

// One table for all plug-ins, made when first asked for and kept as long as the process. It refers and does
// not keep: keys are compared by identity, and neither a key nor a value is retained, because a wrapper takes
// its entry out before it lets go of its platform object.
CFMutableDictionaryRef instancesDictionary(void);

// The host object that is registered for the platform object, without a new reference, or null.
void* registeredWrapper(id object);
