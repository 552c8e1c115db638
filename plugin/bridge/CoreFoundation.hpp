// CoreFoundation.hpp: the few C functions of the platform that the plug-in calls, declared by itself.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

extern "C" {

using CFIndex = long;
using CFStringEncoding = uint32_t;
using CFAllocatorRef = const void*;
using CFMutableDictionaryRef = struct __CFDictionary*;

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const uint16_t* characters, CFIndex count);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);
CFIndex CFStringGetLength(CFStringRef string);
unsigned char CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding);

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
const void* CFDictionaryGetValue(CFMutableDictionaryRef dictionary, const void* key);

objc::Boolean NSApplicationLoad();
// Writes a line to the platform's log.
void NSLog(objc::Id format, ...);
}

// Platform strings are objects of both worlds: a CFStringRef is an NSString.
inline objc::Id asObject(CFStringRef string) {
    return reinterpret_cast<objc::Id>(const_cast<struct __CFString*>(string));
}
inline CFStringRef asString(objc::Id string) { return reinterpret_cast<CFStringRef>(string); }
