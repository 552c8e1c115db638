// HostServices.hpp: every host service that the plug-in uses, each behind a function named after it.
//
// A service that the host lacks is a silent no-op: the function answers 0, null or false. Callers go on.
#pragma once

#include "plugin/frame/PluginInterface.h"

#include <utility>

// ---- one function per host entry: X(function, entry, result, (parameters), (arguments)) --------------
// The entries' own signatures stand in PluginInterface.h; HostServices.cpp checks
// these against them.

#define PLUGIN_HOST_SERVICES(X)                                                                              \
    X(REALRegisterClass, PluginRegisterClass, void, (REALclassDefinition * definition), (definition))        \
    X(REALnewInstance, PluginNewInstance, REALobject, (const char* className), (className))                  \
    X(REALGetClassRef, pluginObjectType, REALclassRef, (const char* className), (className))                 \
    X(REALObjectIsA, RuntimeObjectIsa, bool, (REALobject object, REALclassRef classRef), (object, classRef)) \
    X(REALLockObject, REALLockObject, void, (REALobject object), (object))                                   \
    X(REALUnlockObject, REALUnlockObject, void, (REALobject object), (object))                               \
    X(REALLockString, REALLockString, void, (REALstring string), (string))                                   \
    X(REALUnlockString, REALUnlockString, void, (REALstring string), (string))                               \
    X(originalREALBuildString, REALBuildString, REALstring, (const char* bytes, int32_t length),             \
      (bytes, length))                                                                                       \
    X(REALSetStringEncoding, REALSetStringEncoding, void, (REALstring string, uint32_t encoding),            \
      (string, encoding))                                                                                    \
    X(REALGetStringEncoding, REALGetStringEncoding, uint32_t, (REALstring string), (string))                 \
    X(REALConvertString, REALConvertString, REALstring, (REALstring string, uint32_t encoding),              \
      (string, encoding))                                                                                    \
    X(REALDisposeStringData, PluginDisposeStringData, void, (REALstringData * record), (record))             \
    X(REALGetStringCFString, REALGetStringCFString, CFStringRef, (REALstring string, int32_t flag),          \
      (string, flag))                                                                                        \
    X(REALNewMemoryBlockOriginal, newMemoryBlock, REALmemoryBlock, (int32_t size), (size))                   \
    X(REALMemoryBlockGetPtr, memoryBlockGetPtr, void*, (REALmemoryBlock block), (block))                     \
    X(REALMemoryBlockGetSize, memoryBlockGetSize, int32_t, (REALmemoryBlock block), (block))                 \
    X(REALPtrToMemoryBlock, PtrToMemoryBlock, REALmemoryBlock, (void* pointer), (pointer))                   \
    X(REALRaiseException, RuntimeRaiseException, void, (REALobject exception), (exception))                  \
    X(REALLoadObjectMethod, REALLoadObjectMethod, REALproc, (REALobject object, const char* declaration),    \
      (object, declaration))                                                                                 \
    X(REALGetPropValueInt32, REALGetPropValueInt, bool,                                                      \
      (REALobject object, const char* name, int32_t* value), (object, name, value))                          \
    X(REALGetPropValueInt64, REALGetPropValueInt64, bool,                                                    \
      (REALobject object, const char* name, int64_t* value), (object, name, value))                          \
    X(REALGetPropValueSingle, REALGetPropValueSingle, bool,                                                  \
      (REALobject object, const char* name, float* value), (object, name, value))                            \
    X(REALGetPropValueDouble, REALGetPropValueDouble, bool,                                                  \
      (REALobject object, const char* name, double* value), (object, name, value))                           \
    X(REALGetPropValueString, REALGetPropValueString, bool,                                                  \
      (REALobject object, const char* name, REALstring* value), (object, name, value))                       \
    X(REALGetPropValueObject, REALGetPropValueObject, bool,                                                  \
      (REALobject object, const char* name, REALobject* value), (object, name, value))                       \
    X(REALSetPropValueInt32, REALSetPropValueInt, bool,                                                      \
      (REALobject object, const char* name, int32_t value), (object, name, value))                           \
    X(REALSetPropValueString, REALSetPropValueString, bool,                                                  \
      (REALobject object, const char* name, REALstring value), (object, name, value))                        \
    X(REALNewVariantString, StringToVariant, REALvariant, (REALstring value), (value))                       \
    X(REALNewVariantInteger, Int32ToVariant, REALvariant, (int32_t value), (value))                          \
    X(REALNewVariantDouble, DoubleToVariant, REALvariant, (double value), (value))                           \
    X(REALNewVariantBoolean, BooleanToVariant, REALvariant, (uint8_t value), (value))                        \
    X(REALNewVariantUInt32, UInt32ToVariant, REALvariant, (uint32_t value), (value))                         \
    X(REALNewVariantInt64, Int64ToVariant, REALvariant, (int64_t value), (value))                            \
    X(REALNewVariantUInt64, UInt64ToVariant, REALvariant, (uint64_t value), (value))                         \
    X(REALNewVariantSingle, SingleToVariant, REALvariant, (float value), (value))                            \
    X(REALCreateArray, RuntimeArrayCreateSingleDimBoundedArray, REALarray,                                   \
      (int32_t elementType, int32_t upperBound), (elementType, upperBound))                                  \
    X(REALGetArrayUBound, RuntimeUBound, int32_t, (REALarray array), (array))                                \
    X(REALGetArrayObject, RuntimeDirectReadObjectArray, REALobject, (REALarray array, int32_t index),        \
      (array, index))                                                                                        \
    X(REALFolderItemFromFSSpec, FolderItemFromFSSpec, REALfolderItem, (const FSSpec* spec), (spec))          \
    X(REALFSSpecFromFolderItem, REALFSSpecFromFolderItem, bool, (REALfolderItem item, FSSpec * spec),        \
      (item, spec))                                                                                          \
    X(REALFSRefFromFolderItem, REALFSRefFromFolderItem, bool,                                                \
      (REALfolderItem item, FSRef * ref, HFSUniStr255 * leafName), (item, ref, leafName))                    \
    X(REALFolderItemFromParentFSRef, REALFolderItemFromParentFSRef, REALfolderItem,                          \
      (const FSRef* parent, const HFSUniStr255* leafName), (parent, leafName))

#define PLUGIN_DECLARE_SERVICE(function, entry, Result, parameters, arguments) Result function parameters;
PLUGIN_HOST_SERVICES(PLUGIN_DECLARE_SERVICE)
#undef PLUGIN_DECLARE_SERVICE

// ---- services that are more than a forward -----------------------------------------------------------

// Fills the record with a heap copy of the text in that encoding (0xFFFF: the bytes as they are), freed by
// REALDisposeStringData. On a host without "PluginGetStringData" the copy is made here; then a caller that
// asks for 0xFFFF has set the record's length to at least the string's byte length.
bool REALGetStringData(REALstring string, uint32_t encoding, REALstringData* record);

// Sets the record's length as the call above wants it for 0xFFFF; does nothing where the host makes the copy.
void REALPresetStringDataLength(REALstring string, REALstringData* record);

// A new platform string that the caller releases. The same entry as REALGetStringCFString, with flag 0.
CFStringRef REALCopyStringCFString(REALstring string);

// The object's implementation of an event, or null. The entry of the class's event table is given; what the host
// takes is the identity that it wrote into it.
REALproc REALGetEventInstance(REALobject object, const REALevent* event);

// A global function of the host by its declaration, or null.
REALproc REALLoadFrameworkMethod(const char* declaration);

// ---- variants ----------------------------------------------------------------------------------------
// Each asks the host's own function first, and a property of the variant where the host has none.

int32_t GetVariantType(REALvariant variant); // 0 where the host can't tell
// With a reference that the caller owns; null for the nil variant.
REALstring GetVariantString(REALvariant variant);
int32_t GetVariantInteger(REALvariant variant);
int64_t GetVariantLong(REALvariant variant);
float GetVariantSingle(REALvariant variant);
double GetVariantDouble(REALvariant variant);

// ---- arrays ------------------------------------------------------------------------------------------

void REALInsertArrayValueObject(REALarray array, int32_t index, REALobject value);

// Each stores the element in *out; objects and strings come with a reference that the caller owns.
void REALGetArrayValueObject(REALarray array, int32_t index, REALobject* out);
void REALGetArrayValueString(REALarray array, int32_t index, REALstring* out);
void REALGetArrayValueInt32(REALarray array, int32_t index, int32_t* out);
void REALGetArrayValueUInt8(REALarray array, int32_t index, uint8_t* out);
void REALGetArrayValueSingle(REALarray array, int32_t index, float* out);
void REALGetArrayValueDouble(REALarray array, int32_t index, double* out);
void REALGetArrayValueInt64(REALarray array, int32_t index, int64_t* out);

inline void REALGetArrayValue(REALarray a, int32_t i, REALobject* out) { REALGetArrayValueObject(a, i, out); }
inline void REALGetArrayValue(REALarray a, int32_t i, REALstring* out) { REALGetArrayValueString(a, i, out); }
inline void REALGetArrayValue(REALarray a, int32_t i, int32_t* out) { REALGetArrayValueInt32(a, i, out); }
// Booleans are read as one byte.
inline void REALGetArrayValue(REALarray a, int32_t i, uint8_t* out) { REALGetArrayValueUInt8(a, i, out); }
inline void REALGetArrayValue(REALarray a, int32_t i, float* out) { REALGetArrayValueSingle(a, i, out); }
inline void REALGetArrayValue(REALarray a, int32_t i, double* out) { REALGetArrayValueDouble(a, i, out); }
inline void REALGetArrayValue(REALarray a, int32_t i, int64_t* out) { REALGetArrayValueInt64(a, i, out); }

inline void REALInsertArrayValue(REALarray array, int32_t index, REALobject value) {
    REALInsertArrayValueObject(array, index, value);
}

inline REALarray REALCreateArrayObject(int32_t count) { return REALCreateArray(kREALArrayOfObjects, count); }
// Deliberately an object array: variants are objects, and the host takes either for the other.
inline REALarray REALCreateArrayVariant(int32_t count) { return REALCreateArray(kREALArrayOfObjects, count); }

// ---- type tests --------------------------------------------------------------------------------------

// By class name; false for a null object and for a class that the host does not know.
bool REALObjectIsA(REALobject object, const char* className);

// Both probe for a method that only the host's own class has.
bool IsFolderItem(REALobject object);
bool IsMemoryBlock(REALobject object);
