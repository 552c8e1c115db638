// CoreServices.h: the CoreFoundation, File Manager and application calls that the platform offers, in plain
// C.
#ifndef CORESERVICES_CORESERVICES_H
#define CORESERVICES_CORESERVICES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- base types ---------------------------------------------------------------------------------------- */

typedef signed long CFIndex;
typedef uint32_t CFStringEncoding;
typedef unsigned char Boolean;
typedef uint16_t UniChar;
typedef uint8_t UInt8;
typedef uint16_t UInt16;
typedef uint32_t UInt32;
typedef int16_t SInt16;
typedef int16_t OSErr;
typedef int32_t OSStatus;

/* Every reference is a Foundation object and may be sent its messages: a string is an NSString, a URL an
 * NSURL, a dictionary an NSMutableDictionary. What a function with Create or Copy in its name answers belongs
 * to the caller, who gives it up with CFRelease. Null answers null, and does nothing, everywhere. */
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef; /* ignored wherever it is taken */
typedef const struct __CFString* CFStringRef;
typedef struct __CFString* CFMutableStringRef;
typedef const struct __CFURL* CFURLRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;

typedef struct CFRange {
    CFIndex location;
    CFIndex length;
} CFRange;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);

/* ---- strings ------------------------------------------------------------------------------------------- */

enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingNextStepLatin = 0x0B01,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUnicode = 0x0100, /* UTF-16 in the machine's byte order */
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingNonLossyASCII = 0x0BFF,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32 = 0x0C000100, /* in the machine's byte order */
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1C000100
};

typedef enum {
    kCFStringNormalizationFormD = 0,
    kCFStringNormalizationFormKD = 1,
    kCFStringNormalizationFormC = 2,
    kCFStringNormalizationFormKC = 3
} CFStringNormalizationForm;

/* UTF-16 units as they are, surrogates without their partner included. */
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* characters, CFIndex count);
/* Bytes up to the first zero. Null for an encoding not in the list above, and for bytes that aren't text in
 * it. */
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);
/* As above with a length in bytes. A byte order mark is heeded and dropped only in an external
 * representation. */
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
/* maximumLength is ignored. */
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maximumLength,
                                             CFStringRef string);
/* A text that can't be normalised (surrogates without their partner) stays as it is. */
void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form);
/* In UTF-16 units. */
CFIndex CFStringGetLength(CFStringRef string);
/* A range that leaves the string copies nothing. */
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);
/* False, with an empty text in the buffer, when the text and its ending zero don't fit into `size` bytes or
 * can't be written in that encoding. */
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding);

/* ---- dictionaries -------------------------------------------------------------------------------------- */

typedef CFTypeRef (*CFDictionaryRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFDictionaryCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void* left, const void* right);
typedef unsigned long (*CFDictionaryHashCallBack)(const void* value);

typedef struct CFDictionaryKeyCallBacks {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
    CFDictionaryHashCallBack hash;
} CFDictionaryKeyCallBacks;

typedef struct CFDictionaryValueCallBacks {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
} CFDictionaryValueCallBacks;

/* Objects: retained, compared with isEqual:. */
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

/* Null call-backs, or null members of them: addresses, compared by identity and never retained; they need not
 * be objects then. Capacity is a hint. A null key is never found and never stored. Not for several threads at
 * once. The four functions below take Foundation's own dictionaries too. */
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks);
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);

/* ---- files --------------------------------------------------------------------------------------------- */

enum {
    noErr = 0,
    bdNamErr = -37,  /* no name, or one that can't be a file's */
    fnfErr = -43,    /* no such item */
    paramErr = -50,  /* a null or broken argument */
    dirNFErr = -120, /* no such folder */
    pathTooLongErr = -2110
};

/* Names one item on disk by its path, as long as the process lives. Copies of it are as good. */
typedef struct FSRef {
    UInt8 hidden[80];
} FSRef;

typedef struct HFSUniStr255 {
    UInt16 length; /* in UTF-16 units */
    UniChar unicode[255];
} HFSUniStr255;

#pragma pack(push, 2)
/* A volume, a folder on it and a name in it. Names longer than 63 bytes end in "#" and a number. */
typedef struct FSSpec {
    SInt16 vRefNum;
    int32_t parID;
    UInt8 name[64]; /* a length, then the bytes as they are on disk */
} FSSpec;

typedef struct UTCDateTime {
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
} UTCDateTime;

typedef struct FSCatalogInfo {
    UInt16 nodeFlags;
    SInt16 volume;
    UInt32 parentDirID;
    UInt32 nodeID;
    UInt8 sharingFlags;
    UInt8 userPrivileges;
    UInt8 reserved1;
    UInt8 reserved2;
    UTCDateTime createDate, contentModDate, attributeModDate, accessDate, backupDate;
    UInt32 permissions[4];
    UInt8 finderInfo[16];
    UInt8 extFinderInfo[16];
    uint64_t dataLogicalSize, dataPhysicalSize, rsrcLogicalSize, rsrcPhysicalSize;
    UInt32 valence;
    UInt32 textEncodingHint;
} FSCatalogInfo;
#pragma pack(pop)

typedef UInt32 FSCatalogInfoBitmap;
enum {
    kFSCatInfoNone = 0,
    kFSCatInfoNodeFlags = 0x00000002,
    kFSCatInfoVolume = 0x00000004,
    kFSCatInfoParentDirID = 0x00000008,
    kFSCatInfoNodeID = 0x00000010
};
enum { kFSNodeIsDirectoryMask = 0x0010 };
enum { fsRtParID = 1, fsRtDirID = 2 }; /* the parent of a volume's root folder, and that folder */

/* The item at an absolute path; bytes as on disk. A link is itself, not what it points to. isDirectory may be
 * null. fnfErr when there is no such item, dirNFErr when not even its folder is there. */
OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
/* The item's path; pathTooLongErr when it and its ending zero don't fit into `size` bytes. */
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size);
/* Answers what the pointers that aren't null ask for. Only the members of the catalogue information that have
 * a bit above can be asked; other bits are paramErr. Node IDs hold within this process; the root folder of a
 * volume is 2, and its parent reference is all zeros. */
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* info,
                       HFSUniStr255* name, FSSpec* spec, FSRef* parent);
/* The item that an FSSpec names. */
OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref);

/* ---- URLs ---------------------------------------------------------------------------------------------- */

typedef CFIndex CFURLPathStyle;
enum { kCFURLPOSIXPathStyle = 0 };

/* The names on disk are bytes, those in URLs are text: PathNames.hpp says how one becomes the other. */
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref);
/* False when the URL is not a file's, or no item is there. */
Boolean CFURLGetFSRef(CFURLRef url, FSRef* ref);
/* isDirectory puts a "/" behind the name. */
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef name,
                                               Boolean isDirectory);
CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);
/* Decoded, without "/". */
CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
/* Decoded, without "/" at its end except for the root. Null for any path style but POSIX. */
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);

/* ---- application --------------------------------------------------------------------------------------- */

/* Loads the user interface library if it is installed and a display answers; never ends the process. True
 * when the application class is there afterwards. Calls after the first success do nothing. */
Boolean NSApplicationLoad(void);

#ifdef __cplusplus
}
#endif

#endif
