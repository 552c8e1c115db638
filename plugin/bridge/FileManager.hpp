// FileManager.hpp: the platform's C functions for files and their URLs, declared by the plug-in itself.
#pragma once

#include "plugin/bridge/CoreFoundation.hpp"

using CFURLRef = const struct __CFURL*;
using CFMutableStringRef = struct __CFString*;

struct CFRange {
    CFIndex location, length;
};

#pragma pack(push, 2)
// What the plug-in asks of it is the node's number alone.
struct FSCatalogInfo {
    uint16_t nodeFlags;
    int16_t volume;
    uint32_t parentDirID;
    uint32_t nodeID;
    uint8_t rest[132];
};
#pragma pack(pop)
static_assert(sizeof(FSCatalogInfo) == 144);

inline constexpr uint32_t kFSCatInfoNone = 0;
inline constexpr uint32_t kFSCatInfoNodeID = 0x10;
inline constexpr uint32_t fsRtDirID = 2; // the node of a volume's root folder
inline constexpr CFIndex kCFURLPOSIXPathStyle = 0;
inline constexpr CFIndex kCFStringNormalizationFormD = 0; // decomposed

extern "C" {
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref);
unsigned char CFURLGetFSRef(CFURLRef url, FSRef* ref);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef component,
                                               unsigned char isDirectory);
CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);
CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFIndex style);
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maxLength, CFStringRef string);
void CFStringNormalize(CFMutableStringRef string, CFIndex form);
void CFStringGetCharacters(CFStringRef string, CFRange range, uint16_t* buffer);
int16_t FSpMakeFSRef(const FSSpec* spec, FSRef* ref);
int16_t FSGetCatalogInfo(const FSRef* ref, uint32_t whichInfo, FSCatalogInfo* info, HFSUniStr255* name,
                         FSSpec* spec, FSRef* parent);
}

inline objc::Id asObject(CFURLRef url) {
    return reinterpret_cast<objc::Id>(const_cast<struct __CFURL*>(url));
}
inline CFURLRef asURL(objc::Id url) { return reinterpret_cast<CFURLRef>(url); }

// A name as the platform's file systems store names, given to the caller; the name itself if no copy can be
// made. Takes the name over; null is null.
CFStringRef createDecomposedName(CFStringRef name);
