// InterfaceLayout.cpp: freezes the records that cross between host and plug-in. Compiling this file is the
// check.
#include "plugin/frame/PluginInterface.h"

#include <cstddef>
#include <type_traits>

namespace {

constexpr std::size_t word = sizeof(void*);

template <class Record>
constexpr bool isRecordOf(std::size_t words) {
    return sizeof(Record) == words * word && std::is_standard_layout_v<Record> && std::is_trivial_v<Record>;
}

static_assert(isRecordOf<REALobjectStruct>(4));
static_assert(isRecordOf<REALarrayStruct>(4));
static_assert(isRecordOf<REALstringStruct>(4));
static_assert(isRecordOf<REALstringData>(3));
static_assert(isRecordOf<REALmethodDefinition>(4));
static_assert(isRecordOf<REALevent>(2));
static_assert(isRecordOf<REALconstant>(3));
static_assert(isRecordOf<REALclassDefinition>(25));
static_assert(sizeof(FSRef) == 80 && sizeof(FSSpec) == 70 && sizeof(HFSUniStr255) == 512);
static_assert(sizeof(bool) == 1);

#define AT(Record, field, index) static_assert(offsetof(Record, field) == (index)*word, #Record "." #field)

AT(REALarrayStruct, elements, 2);

AT(REALstringStruct, references, 0);
AT(REALstringStruct, buffer, 1);
AT(REALstringStruct, length, 2);
AT(REALstringStruct, encoding, 3);

AT(REALstringData, data, 0);
AT(REALstringData, length, 1);
AT(REALstringData, encoding, 2);

AT(REALmethodDefinition, function, 0);
AT(REALmethodDefinition, setter, 1);
AT(REALmethodDefinition, declaration, 2);
AT(REALmethodDefinition, flags, 3);

AT(REALevent, declaration, 0);
AT(REALevent, identity, 1);

AT(REALconstant, declaration, 0);
AT(REALconstant, reserved, 1);

AT(REALclassDefinition, version, 0);
AT(REALclassDefinition, name, 1);
AT(REALclassDefinition, superName, 2);
AT(REALclassDefinition, dataSize, 3);
AT(REALclassDefinition, reserved, 4);
AT(REALclassDefinition, constructor, 5);
AT(REALclassDefinition, destructor, 6);
AT(REALclassDefinition, properties, 7);
AT(REALclassDefinition, propertyCount, 8);
AT(REALclassDefinition, methods, 9);
AT(REALclassDefinition, methodCount, 10);
AT(REALclassDefinition, events, 11);
AT(REALclassDefinition, eventCount, 12);
AT(REALclassDefinition, eventInstances, 13);
AT(REALclassDefinition, eventInstanceCount, 14);
AT(REALclassDefinition, interfaces, 15);
AT(REALclassDefinition, attributes, 16);
AT(REALclassDefinition, attributeCount, 17);
AT(REALclassDefinition, constants, 18);
AT(REALclassDefinition, constantCount, 19);
AT(REALclassDefinition, flags, 20);
AT(REALclassDefinition, sharedProperties, 21);
AT(REALclassDefinition, sharedPropertyCount, 22);
AT(REALclassDefinition, sharedMethods, 23);
AT(REALclassDefinition, sharedMethodCount, 24);

static_assert(kREALPluginVersion == 9 && kREALMemberFlags == 4 && kREALClassFlags == 4);
static_assert((kREALMemberFlags | kREALMemberNotForPrograms) == 0x84);
static_assert(kREALArrayOfObjects == 4);

} // namespace
