// Text.hpp: host strings to platform strings and back, and new host strings and memory blocks from bytes.
//
// Every string argument of a member goes through NewNSString, and every string result through NSStringRB.
// Null gives null everywhere; only REALBuildMemoryblock raises.
#pragma once

#include "plugin/bridge/CoreFoundation.hpp"
#include "plugin/frame/PluginInterface.h"

// A new platform string that the caller releases; null when the platform can't decode the bytes.
CFStringRef RBString2CFString(REALstring string);

// A platform string that belongs to the current autorelease pool.
objc::Id NewNSString(REALstring string);

// A new host string in UTF-8; null for nil and for an empty platform string. A zero character ends the text:
// it crosses as a C string, and that is kept.
REALstring CFString2RBString(CFStringRef string);

// The same for an NSString; programs see null as "".
REALstring NSStringRB(objc::Id string);

// Bytes in a given encoding as a new host string. UTF-16 and UTF-32 come back as UTF-8, anything else as it
// is. Null for no bytes, for a length below 1 and from 0x7FFFFFFF on.
REALstring REALBuildUnicodeString(const void* bytes, int64_t length, uint32_t encoding);

// A new memory block with a copy of the bytes; null without a word for no bytes or a length of 0 or less.
// Raises "OutOfMemoryException" when the host can't give a block of that size.
REALmemoryBlock REALBuildMemoryblock(const void* bytes, int64_t length);
