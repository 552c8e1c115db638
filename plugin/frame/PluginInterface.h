/* PluginInterface.h: the C types that a host and its plug-ins share, and every host entry by name.
 *
 * This is the only header that host/, companion/ and plugin/ have in common. It is plain C.
 *
 * A word is a machine word: 4 bytes in a 32-bit build, 8 in a 64-bit one. Every record below is made of words
 * in the order written; the host keeps the addresses of the records it is given, so a plug-in's records are
 * static and live as long as the process.
 *
 * References. A function that makes an object, string, memory block, folder item, array or variant gives it
 * with one reference that the caller owns. Arguments are borrowed. This holds in both directions: what a
 * plug-in function returns belongs to the host.
 */
#ifndef PLUGIN_FRAME_PLUGININTERFACE_H
#define PLUGIN_FRAME_PLUGININTERFACE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- handles ------------------------------------------------------------------------------------------ */

/* A host object: four words that belong to the host, then the instance data of its root plug-in class, then
 * whatever its subclasses keep. Objects, memory blocks, folder items, dictionaries and variants are all host
 * objects; the typedefs only say which one is meant. */
typedef struct REALobjectStruct {
    void* header[4];
} REALobjectStruct;
typedef REALobjectStruct REALmemoryBlockStruct;
typedef REALobjectStruct REALfolderItemStruct;
typedef REALobjectStruct _REALdictionary;
typedef REALobjectStruct* REALobject;
typedef REALmemoryBlockStruct* REALmemoryBlock;
typedef REALfolderItemStruct* REALfolderItem;
typedef _REALdictionary* REALdictionary;
/* A host value of any type, itself an object; null is the nil variant. */
typedef REALobjectStruct* REALvariant;

/* A host string: bytes with an encoding. The text begins one byte after the start of the buffer (the first
 * byte holds the length of texts below 256 bytes), is `length` bytes long, and a zero byte follows it.
 * Plug-ins read this record only on hosts older than version 2013.0; the null handle is the empty string. */
typedef struct REALstringStruct {
    uintptr_t references;
    unsigned char* buffer;
    uintptr_t length;
    uintptr_t encoding;
} REALstringStruct;
typedef REALstringStruct* REALstring;

/* A host array of one dimension, itself a host object (so it may stand where a variant is due). The third
 * word points to the packed elements: references of one word, 4-byte integers and singles, 1-byte booleans,
 * 8-byte integers and doubles. The other words are the host's. */
typedef struct REALarrayStruct {
    void* host[2];
    void* elements;
    void* hostLast;
} REALarrayStruct;
typedef REALarrayStruct* REALarray;
/* The same handle, by what its elements are. */
typedef REALarrayStruct _REALarrayObject;
typedef REALarrayStruct _REALarrayString;
typedef REALarrayStruct _REALarrayInteger;
typedef REALarrayStruct _REALarrayInt64;
typedef REALarrayStruct _REALarrayDouble;
typedef REALarrayStruct _REALarraySingle;
typedef REALarrayStruct _REALarrayBoolean;

/* A host boolean: one byte, crossing as it is. In C++ a type of its own, because a byte other than 0 and 1 is no
 * bool. */
#ifdef __cplusplus
enum REALboolean : uint8_t {};
#else
typedef uint8_t REALboolean;
#endif

/* A host class. */
typedef struct REALclassRefStruct* REALclassRef;

/* A heap copy of a string's bytes, filled by "PluginGetStringData" and freed by "PluginDisposeStringData". */
typedef struct REALstringData {
    void* data;
    uintptr_t length;
    uintptr_t encoding;
} REALstringData;

/* Encoding numbers, as the platform's strings have them. */
enum {
    kREALEncodingDefault = 0, /* the platform's default 8-bit encoding */
    kREALEncodingASCII = 0x0600,
    kREALEncodingUTF8 = 0x08000100,
    kREALEncodingUTF16 = 0x0100, /* in the machine's byte order */
    kREALEncodingUTF32 = 0x0C000100,
    kREALEncodingUnknown = 0xFFFF
};

/* ---- the records that declare a class ------------------------------------------------------------------ */

/* A plug-in function of any signature; the declaration beside it says which. */
typedef void (*REALproc)(void);

/* One method, property or shared method. A declaration that is a name followed by `as` and a type is a
 * property when there is a setter, and a method without arguments when there is none. */
typedef struct REALmethodDefinition {
    REALproc function; /* for a property, its getter */
    REALproc setter;   /* for a property: object, then any parameters, then the new value; else null */
    const char* declaration;
    uintptr_t flags;
} REALmethodDefinition;

/* One event. The host writes the event's identity into the second word when the class is registered; that
 * word is what "GetEventInstance" takes. */
typedef struct REALevent {
    const char* declaration;
    uintptr_t identity;
} REALevent;

/* One constant: a name, an equals sign, a value. */
typedef struct REALconstant {
    const char* declaration;
    uintptr_t reserved[2];
} REALconstant;

enum {
    kREALPluginVersion = 9,
    kREALMemberFlags = 4,
    kREALMemberNotForPrograms = 0x80, /* the host's mark for a member that programs are not to use */
    kREALClassFlags = 4
};

/* A class: 25 words. */
typedef struct REALclassDefinition {
    uintptr_t version;
    const char* name;
    const char* superName;
    uintptr_t dataSize; /* bytes of instance data, of this class alone */
    uintptr_t reserved;
    void (*constructor)(REALobject); /* run for every object of the class, before a declared constructor */
    void (*destructor)(REALobject);  /* run when the last reference goes */
    void* properties;
    uintptr_t propertyCount;
    REALmethodDefinition* methods;
    uintptr_t methodCount;
    REALevent* events;
    uintptr_t eventCount;
    void* eventInstances;
    uintptr_t eventInstanceCount;
    const char* interfaces;
    void* attributes;
    uintptr_t attributeCount;
    REALconstant* constants;
    uintptr_t constantCount;
    uintptr_t flags;
    void* sharedProperties;
    uintptr_t sharedPropertyCount;
    REALmethodDefinition* sharedMethods;
    uintptr_t sharedMethodCount;
} REALclassDefinition;

/* ---- platform types that cross by address ------------------------------------------------------------- */

typedef const struct __CFString* CFStringRef;

typedef struct FSRef {
    uint8_t hidden[80];
} FSRef;

#pragma pack(push, 2)
typedef struct FSSpec {
    int16_t vRefNum;
    int32_t parID;
    uint8_t name[64];
} FSSpec;
#pragma pack(pop)

typedef struct HFSUniStr255 {
    uint16_t length;
    uint16_t unicode[255];
} HFSUniStr255;

/* ---- the host's services ------------------------------------------------------------------------------- */

/* Maps an entry name to the address of a host service, or null. */
typedef REALproc (*REALresolver)(const char* entry);

/* The one function that a plug-in exports. */
typedef void (*REALPluginMainProc)(REALresolver);

/* What "RuntimeArrayDirectGetInsertProc" answers: inserts an object at an index; the array takes a reference.
 */
typedef void (*REALarrayInsertProc)(REALarray array, int32_t index, REALobject value);

/* Element types of "RuntimeArrayCreateSingleDimBoundedArray" that plug-ins use. */
enum { kREALArrayOfObjects = 4 };

/* Every entry that plug-ins look up: X(result, entry name, parameters). A host implements each with this
 * signature; a plug-in calls each with it. Booleans are one byte. */
#define REAL_HOST_ENTRIES(X)                                                                                   \
    X(void, RegisterPluginVersion, (int32_t version))                                                          \
    X(double, REALGetRBVersion, (void))                                                                        \
    X(void, PluginRegisterClass, (REALclassDefinition * definition))                                           \
    X(REALobject, PluginNewInstance, (const char* className))                                                  \
    X(REALclassRef, pluginObjectType, (const char* className))                                                 \
    X(uint8_t, RuntimeObjectIsa, (REALobject object, REALclassRef classRef))                                   \
    X(void, REALLockObject, (REALobject object))                                                               \
    X(void, REALUnlockObject, (REALobject object))                                                             \
    X(void, REALLockString, (REALstring string))                                                               \
    X(void, REALUnlockString, (REALstring string))                                                             \
    X(REALstring, REALBuildString, (const char* bytes, int32_t length))                                        \
    X(void, REALSetStringEncoding, (REALstring string, uint32_t encoding))                                     \
    X(uint32_t, REALGetStringEncoding, (REALstring string))                                                    \
    X(REALstring, REALConvertString, (REALstring string, uint32_t encoding))                                   \
    X(uint8_t, PluginGetStringData, (REALstring string, uint32_t encoding, REALstringData * record))           \
    X(void, PluginDisposeStringData, (REALstringData * record))                                                \
    X(const char*, StringGetCString, (REALstring string))                                                      \
    X(CFStringRef, REALGetStringCFString, (REALstring string, int32_t flag))                                   \
    X(REALmemoryBlock, newMemoryBlock, (int32_t size))                                                         \
    X(void*, memoryBlockGetPtr, (REALmemoryBlock block))                                                       \
    X(int32_t, memoryBlockGetSize, (REALmemoryBlock block))                                                    \
    X(REALmemoryBlock, PtrToMemoryBlock, (void* pointer))                                                      \
    X(void, RuntimeRaiseException, (REALobject exception))                                                     \
    X(REALproc, GetEventInstance, (REALobject object, uintptr_t identity))                                     \
    X(REALproc, REALLoadObjectMethod, (REALobject object, const char* declaration))                            \
    X(REALproc, REALLoadGlobalMethod, (void* reserved, const char* declaration))                               \
    X(uint8_t, REALGetPropValueInt, (REALobject object, const char* name, int32_t* value))                     \
    X(uint8_t, REALGetPropValueInt64, (REALobject object, const char* name, int64_t* value))                   \
    X(uint8_t, REALGetPropValueSingle, (REALobject object, const char* name, float* value))                    \
    X(uint8_t, REALGetPropValueDouble, (REALobject object, const char* name, double* value))                   \
    X(uint8_t, REALGetPropValueString, (REALobject object, const char* name, REALstring* value))               \
    X(uint8_t, REALGetPropValueObject, (REALobject object, const char* name, REALobject* value))               \
    X(uint8_t, REALSetPropValueInt, (REALobject object, const char* name, int32_t value))                      \
    X(uint8_t, REALSetPropValueString, (REALobject object, const char* name, REALstring value))                \
    X(REALvariant, StringToVariant, (REALstring value))                                                        \
    X(REALvariant, Int32ToVariant, (int32_t value))                                                            \
    X(REALvariant, DoubleToVariant, (double value))                                                            \
    X(REALvariant, BooleanToVariant, (uint8_t value))                                                          \
    X(REALvariant, UInt32ToVariant, (uint32_t value))                                                          \
    X(REALvariant, Int64ToVariant, (int64_t value))                                                            \
    X(REALvariant, UInt64ToVariant, (uint64_t value))                                                          \
    X(REALvariant, SingleToVariant, (float value))                                                             \
    X(REALstring, VariantToString, (REALvariant value))                                                        \
    X(int32_t, VariantToInt32, (REALvariant value))                                                            \
    X(int64_t, VariantToInt64, (REALvariant value))                                                            \
    X(float, VariantToSingle, (REALvariant value))                                                             \
    X(double, VariantToDouble, (REALvariant value))                                                            \
    X(REALarray, RuntimeArrayCreateSingleDimBoundedArray, (int32_t elementType, int32_t upperBound))           \
    X(int32_t, RuntimeUBound, (REALarray array))                                                               \
    X(REALobject, RuntimeDirectReadObjectArray, (REALarray array, int32_t index))                              \
    X(REALarrayInsertProc, RuntimeArrayDirectGetInsertProc, (REALarray array))                                 \
    /* The get procedure takes the array and an index and answers the element; references carry a new one.   \
     */ \
    X(REALproc, RuntimeArrayDirectGetGetProc, (REALarray array))                                               \
    X(REALfolderItem, FolderItemFromFSSpec, (const FSSpec* spec))                                              \
    X(uint8_t, REALFSSpecFromFolderItem, (REALfolderItem item, FSSpec * spec))                                 \
    /* With a leaf name: the parent's reference and the item's name, also for an item that does not exist.   \
     */ \
    X(uint8_t, REALFSRefFromFolderItem, (REALfolderItem item, FSRef * ref, HFSUniStr255 * leafName))           \
    X(REALfolderItem, REALFolderItemFromParentFSRef, (const FSRef* parent, const HFSUniStr255* leafName))

#ifdef __cplusplus
}
#endif

#endif
