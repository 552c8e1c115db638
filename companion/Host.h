// Host.h: the host as the companion sees it: its services, its strings, and rows of its class tables.
//
// Plain Objective-C throughout the companion: GCC's Objective-C++ can't catch a platform exception.
#import <Foundation/Foundation.h>

#include "plugin/frame/PluginInterface.h"

// ---- services ------------------------------------------------------------------------------------------

#define COMPANION_SERVICE(Result, entry, parameters) Result(*entry) parameters;
struct HostServices {
    REAL_HOST_ENTRIES(COMPANION_SERVICE)
};
#undef COMPANION_SERVICE

// Only those that findHostServices() looks up are filled.
extern struct HostServices host;

// Looks up what the companion uses. NO when the host lacks any of it: then nothing is filled, and the companion
// stays out of the way rather than work by halves.
BOOL findHostServices(REALresolver resolver);
// Whether the above succeeded; platform classes of the companion's own may be met without.
BOOL hasHost(void);

// ---- strings -------------------------------------------------------------------------------------------

// A new host string in UTF-8; null for nil, for text that has no bytes to give, and for 2 GiB of them and more.
// Units that are no text (half a surrogate pair) are replaced.
REALstring hostString(NSString* text);
// A platform string of the current pool; the empty one for null.
NSString* platformString(REALstring text);

// ---- class tables --------------------------------------------------------------------------------------

#define COUNT_OF(rows) (sizeof(rows) / sizeof *(rows))
#define METHOD(function, declaration)                                                                        \
    { (REALproc)(function), NULL, (declaration), kREALMemberFlags }
#define PROPERTY(getter, setter, declaration)                                                                \
    { (REALproc)(getter), (REALproc)(setter), (declaration), kREALMemberFlags }
// What every class record says; name, data and members follow it.
#define CLASS_BASICS .version = kREALPluginVersion, .flags = kREALClassFlags

// Raises a host exception of that class with the message; a RuntimeException on a host without that class.
void raiseHostException(const char* className, NSString* message);
// Raised by a constructor that is called on an object that has its platform object already.
void raiseConstructedTwice(void);
