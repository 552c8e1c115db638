// ServicesTest.cpp: every service that plug-ins look up, called as a plug-in calls it.
#include "host/runtime/Date.hpp"
#include "host/runtime/Dictionary.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "host/runtime/Variant.hpp"
#include "tests/host/Support.hpp"

#include <cstring>

namespace {

using namespace test;

class ServiceCalls : public NothingLeft {
  protected:
    void TearDown() override { harness::reset(); }
    Services host;
};

TEST_F(ServiceCalls, EveryEntryIsThere) {
#define TEST_ENTRY(Result, name, parameters) EXPECT_NE(resolver()(#name), nullptr) << #name;
    REAL_HOST_ENTRIES(TEST_ENTRY)
#undef TEST_ENTRY
    EXPECT_EQ(resolver()("NoSuchEntry"), nullptr);
    EXPECT_EQ(resolver()(nullptr), nullptr);
}

TEST_F(ServiceCalls, CanBeWithdrawnAndRestoredAndLookupsAreLogged) {
    harness::reset();
    harness::withdraw("PluginGetStringData");
    EXPECT_EQ(resolver()("PluginGetStringData"), nullptr);
    EXPECT_NE(harness::service("PluginGetStringData"), nullptr);
    harness::restore("PluginGetStringData");
    EXPECT_NE(resolver()("PluginGetStringData"), nullptr);
    EXPECT_EQ(harness::lookups(), (std::vector<std::string>{"PluginGetStringData", "PluginGetStringData"}));
}

TEST_F(ServiceCalls, VersionsAreToldBothWays) {
    EXPECT_EQ(host.REALGetRBVersion(), 2013.0);
    harness::setHostVersion(2011.2);
    EXPECT_EQ(host.REALGetRBVersion(), 2011.2);
    harness::setHostVersion(0);
    EXPECT_EQ(resolver()("REALGetRBVersion"), nullptr);
    host.RegisterPluginVersion(9);
    EXPECT_EQ(harness::announcedPluginVersion(), 9);
}

TEST_F(ServiceCalls, ClassesAreRegisteredFoundHiddenAndFailOnDemand) {
    static REALevent event[] = {{"happened(a as integer)", 0}};
    static REALclassDefinition record{};
    record.version = kREALPluginVersion;
    record.name = "ServiceClass";
    record.dataSize = 16;
    record.events = event;
    record.eventCount = 1;
    harness::reset();
    host.PluginRegisterClass(&record);
    EXPECT_NE(event[0].identity, 0u);
    EXPECT_EQ(harness::registrations(), std::vector<std::string>{"ServiceClass"});
    EXPECT_EQ(harness::definition("serviceclass"), &record);
    REALobject object = host.PluginNewInstance("ServiceClass");
    EXPECT_EQ(host.RuntimeObjectIsa(object, host.pluginObjectType("ServiceClass")), 1);
    EXPECT_EQ(host.RuntimeObjectIsa(object, host.pluginObjectType("Date")), 0);
    EXPECT_EQ(host.RuntimeObjectIsa(nullptr, host.pluginObjectType("Date")), 0);
    host.REALLockObject(object);
    host.REALUnlockObject(object);
    host.REALUnlockObject(object);
    host.REALLockObject(nullptr);
    host.REALUnlockObject(nullptr);
    harness::hideClass("SERVICECLASS");
    EXPECT_EQ(host.PluginNewInstance("ServiceClass"), nullptr);
    EXPECT_EQ(host.pluginObjectType("ServiceClass"), nullptr);
    harness::reset();
    harness::failCreation("ServiceClass", 2);
    for (const bool succeeds : {true, false, true}) {
        REALobject made = host.PluginNewInstance("ServiceClass");
        EXPECT_EQ(made != nullptr, succeeds);
        host.REALUnlockObject(made);
    }
    EXPECT_EQ(host.PluginNewInstance("NoSuchClass"), nullptr);
    EXPECT_EQ(host.PluginNewInstance(nullptr), nullptr);
    EXPECT_EQ(host.pluginObjectType("NoSuchClass"), nullptr);
}

TEST_F(ServiceCalls, StringsAreBuiltMarkedConvertedAndRead) {
    REALstring built = host.REALBuildString("\x8A!", 2);
    EXPECT_EQ(host.REALGetStringEncoding(built), static_cast<uint32_t>(kREALEncodingUnknown));
    host.REALSetStringEncoding(built, kREALEncodingDefault);
    EXPECT_EQ(host.REALGetStringEncoding(built), 0u);
    REALstring converted = host.REALConvertString(built, kREALEncodingUTF8);
    EXPECT_STREQ(host.StringGetCString(converted), "ä!");
    EXPECT_EQ(host.REALGetStringEncoding(converted), static_cast<uint32_t>(kREALEncodingUTF8));
    host.REALLockString(converted);
    EXPECT_EQ(harness::references(converted), 2u);
    host.REALUnlockString(converted);
    host.REALUnlockString(converted);
    EXPECT_EQ(host.REALConvertString(nullptr, kREALEncodingUTF8), nullptr);
    EXPECT_EQ(host.REALBuildString("x", -1), nullptr);
    EXPECT_STREQ(host.StringGetCString(nullptr), "");
    host.REALSetStringEncoding(nullptr, 0);
    host.REALLockString(nullptr);
    host.REALUnlockString(nullptr);
    host.REALUnlockString(built);
}

TEST_F(ServiceCalls, StringDataAreACopyInTheEncodingThatIsAskedFor) {
    REALstring text = newString("aä");
    REALstringData record{};
    ASSERT_EQ(host.PluginGetStringData(text, kREALEncodingUTF16, &record), 1);
    EXPECT_EQ(record.length, 4u);
    EXPECT_EQ(record.encoding, static_cast<uintptr_t>(kREALEncodingUTF16));
    const char16_t expected[] = u"aä\0";
    EXPECT_EQ(std::memcmp(record.data, expected, 8), 0) << "four zero bytes follow";
    host.PluginDisposeStringData(&record);
    EXPECT_EQ(record.data, nullptr);
    ASSERT_EQ(host.PluginGetStringData(text, kREALEncodingUnknown, &record), 1);
    EXPECT_STREQ(static_cast<char*>(record.data), "aä");
    host.PluginDisposeStringData(&record);
    EXPECT_EQ(host.PluginGetStringData(nullptr, 0, &record), 0);
    EXPECT_EQ(host.PluginGetStringData(text, 0x7654321, &record), 0);
    host.PluginDisposeStringData(nullptr);
    host.REALUnlockString(text);
}

TEST_F(ServiceCalls, WithoutAPlatformThereAreNoPlatformStringsAndReferences) {
    const String text("x");
    EXPECT_EQ(host.REALGetStringCFString(text.get(), 0), nullptr);
    FSRef ref{};
    FSSpec spec{};
    HFSUniStr255 name{};
    const Value item = newFolderItem("/tmp");
    EXPECT_EQ(host.REALFSRefFromFolderItem(item.object(), &ref, nullptr), 0);
    EXPECT_EQ(host.REALFSRefFromFolderItem(item.object(), &ref, &name), 0);
    EXPECT_EQ(host.REALFSSpecFromFolderItem(item.object(), &spec), 0);
    EXPECT_EQ(host.FolderItemFromFSSpec(&spec), nullptr);
    EXPECT_EQ(host.REALFolderItemFromParentFSRef(&ref, &name), nullptr);
    EXPECT_EQ(host.REALFSRefFromFolderItem(nullptr, &ref, nullptr), 0);
}

TEST_F(ServiceCalls, MemoryBlocksOwnOrPoint) {
    REALmemoryBlock own = host.newMemoryBlock(8);
    EXPECT_EQ(host.memoryBlockGetSize(own), 8);
    const char zeros[8] = {};
    EXPECT_EQ(std::memcmp(host.memoryBlockGetPtr(own), zeros, 8), 0);
    int foreign = 0;
    REALmemoryBlock pointing = host.PtrToMemoryBlock(&foreign);
    EXPECT_EQ(host.memoryBlockGetPtr(pointing), &foreign);
    EXPECT_EQ(host.memoryBlockGetSize(pointing), 0);
    host.REALUnlockObject(own);
    host.REALUnlockObject(pointing);
    EXPECT_EQ(host.newMemoryBlock(-1), nullptr);
    EXPECT_EQ(host.memoryBlockGetPtr(nullptr), nullptr);
    EXPECT_EQ(host.memoryBlockGetSize(nullptr), 0);
    harness::failNewMemoryBlock(true);
    EXPECT_EQ(host.newMemoryBlock(8), nullptr);
}

TEST_F(ServiceCalls, ARaisedExceptionWaitsAndTheFirstOneStays) {
    REALobject first = host.PluginNewInstance("NilObjectException");
    const String message("device is nil");
    EXPECT_EQ(host.REALSetPropValueString(first, "Message", message.get()), 1);
    host.RuntimeRaiseException(first);
    EXPECT_EQ(harness::references(first), 2u);
    REALobject second = host.PluginNewInstance("IOException");
    host.RuntimeRaiseException(second);
    host.REALUnlockObject(first);
    host.REALUnlockObject(second);
    EXPECT_EQ(harness::takeException(), (harness::Raised{"NilObjectException", "device is nil"}));
    const Value date = newDate();
    host.RuntimeRaiseException(date.object());
    EXPECT_EQ(harness::takeException()->className, "RuntimeException");
}

TEST_F(ServiceCalls, EventsAndMethodsAreFoundAsFunctions) {
    testPlugin();
    static int32_t got;
    got = 0;
    defineClass({"Listener",
                 "TestBase",
                 {on("isReady As Boolean", [](REALobject, Arguments) -> Value { return ++got; })},
                 {},
                 {}});
    const Value listener = make("Listener", {1}), deaf = make("TestBase", {1});
    const auto* record = harness::definition("TestBase");
    const auto isReady = record->events[3].identity;
    const auto handler =
        reinterpret_cast<uint8_t (*)(REALobject)>(host.GetEventInstance(listener.object(), isReady));
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(handler(listener.object()), 1);
    EXPECT_EQ(got, 1);
    EXPECT_EQ(reinterpret_cast<REALproc>(handler), host.GetEventInstance(listener.object(), isReady));
    EXPECT_EQ(host.GetEventInstance(deaf.object(), isReady), nullptr);
    EXPECT_EQ(host.GetEventInstance(listener.object(), 0), nullptr);
    EXPECT_EQ(host.GetEventInstance(nullptr, isReady), nullptr);
    EXPECT_EQ(host.REALLoadObjectMethod(deaf.object(), "echoInt32(v As int32) As Int32"),
              harness::function("TestBase", "echoInt32(v as Int32) as Int32"));
}

TEST_F(ServiceCalls, TypesAreToldByAMethodThatOnlyOneClassHas) {
    testPlugin();
    const Value block = newMemoryBlock(1), item = newFolderItem("/"), base = make("TestBase", {1});
    const auto has = [&](const Value& value, const char* declaration) {
        return host.REALLoadObjectMethod(value.object(), declaration) != nullptr;
    };
    for (const auto* value : {&block, &item, &base}) {
        EXPECT_EQ(has(*value, "Constructor(bytes as Integer)"), value == &block);
        EXPECT_EQ(has(*value, "TrueItem(Index as integer) as Folderitem"), value == &item);
    }
    EXPECT_FALSE(has(block, "no good ("));
    EXPECT_FALSE(has(Value(), "x"));
}

TEST_F(ServiceCalls, DictionariesAreUsedByTheirDeclaredMethods) {
    const Value dictionary = newDictionary();
    const auto load = [&](const char* text) { return host.REALLoadObjectMethod(dictionary.object(), text); };
    const auto set = reinterpret_cast<void (*)(REALobject, REALvariant, REALvariant)>(
        load("Value(key As Variant, Assigns _value As Variant)"));
    const auto get =
        reinterpret_cast<REALvariant (*)(REALobject, REALvariant)>(load("Value(key As Variant) As Variant"));
    const auto key =
        reinterpret_cast<REALvariant (*)(REALobject, int32_t)>(load("Key(index As Integer) As Variant"));
    ASSERT_TRUE(set && get && key);
    const String name("name");
    REALvariant nameBox = host.StringToVariant(name.get()), seven = host.Int32ToVariant(7);
    set(dictionary.object(), nameBox, seven);
    set(dictionary.object(), seven, nullptr);
    int32_t count = 0;
    EXPECT_EQ(host.REALGetPropValueInt(dictionary.object(), "Count", &count), 1);
    EXPECT_EQ(count, 2);
    REALvariant read = get(dictionary.object(), nameBox);
    EXPECT_EQ(host.VariantToInt32(read), 7);
    EXPECT_EQ(get(dictionary.object(), seven), nullptr);
    REALvariant first = key(dictionary.object(), 0);
    REALstring text = host.VariantToString(first);
    EXPECT_STREQ(host.StringGetCString(text), "name");
    EXPECT_EQ(key(dictionary.object(), 5), nullptr);
    EXPECT_EQ(harness::takeException()->className, "OutOfBoundsException");
    for (REALobject object : {nameBox, seven, read, first})
        host.REALUnlockObject(object);
    host.REALUnlockString(text);
}

TEST_F(ServiceCalls, GlobalFunctionsAreFoundByDeclaration) {
    const auto varType = reinterpret_cast<int32_t (*)(REALvariant)>(
        host.REALLoadGlobalMethod(nullptr, "VarType(value As Variant) As Int32"));
    const auto lenB = reinterpret_cast<int32_t (*)(REALstring)>(
        host.REALLoadGlobalMethod(nullptr, "LenB( s as string ) as integer"));
    ASSERT_TRUE(varType && lenB);
    REALvariant box = host.BooleanToVariant(1);
    EXPECT_EQ(varType(box), 11);
    EXPECT_EQ(varType(nullptr), 0);
    host.REALUnlockObject(box);
    const String text("aä");
    EXPECT_EQ(lenB(text.get()), 3);
    EXPECT_EQ(lenB(nullptr), 0);
    EXPECT_EQ(host.REALLoadGlobalMethod(nullptr, "NoSuch(a as string)"), nullptr);
    EXPECT_EQ(host.REALLoadGlobalMethod(nullptr, "(("), nullptr);
}

TEST_F(ServiceCalls, PropertiesAreReadAndSetByName) {
    const Value date = make("Date", {2026, 3, 4, 5, 6, 7});
    int32_t year = 0;
    EXPECT_EQ(host.REALGetPropValueInt(date.object(), "year", &year), 1);
    EXPECT_EQ(year, 2026);
    EXPECT_EQ(host.REALSetPropValueInt(date.object(), "Minute", 30), 1);
    int64_t minute = 0;
    EXPECT_EQ(host.REALGetPropValueInt64(date.object(), "Minute", &minute), 1);
    EXPECT_EQ(minute, 30);
    REALstring text = nullptr;
    EXPECT_EQ(host.REALGetPropValueString(date.object(), "SQLDate", &text), 1);
    EXPECT_STREQ(host.StringGetCString(text), "2026-03-04");
    host.REALUnlockString(text);
    const String other("2001-02-03");
    EXPECT_EQ(host.REALSetPropValueString(date.object(), "SQLDate", other.get()), 1);
    double seconds = 0;
    EXPECT_EQ(host.REALGetPropValueDouble(date.object(), "TotalSeconds", &seconds), 1);
    EXPECT_GT(seconds, 3e9);
    float single = 0;
    REALvariant box = host.SingleToVariant(1.5f);
    EXPECT_EQ(host.REALGetPropValueSingle(box, "SingleValue", &single), 1);
    EXPECT_EQ(single, 1.5f);
    host.REALUnlockObject(box);
    REALobject object = nullptr;
    EXPECT_EQ(host.REALGetPropValueObject(date.object(), "DateValue", &object), 1);
    EXPECT_EQ(object, date.object());
    host.REALUnlockObject(object);
    EXPECT_EQ(host.REALGetPropValueInt(date.object(), "NoSuch", &year), 0);
    EXPECT_EQ(host.REALGetPropValueInt(date.object(), "SQLDate", &year), 0) << "a text is no number";
    EXPECT_EQ(host.REALSetPropValueString(date.object(), "SQLDate", String("bad").get()), 0);
    EXPECT_EQ(host.REALSetPropValueInt(date.object(), "DayOfWeek", 1), 0);
    EXPECT_EQ(host.REALGetPropValueInt(nullptr, "Year", &year), 0);
}

TEST_F(ServiceCalls, VariantsAreMadeAndReadOfEveryType) {
    struct Case {
        REALvariant variant;
        int32_t code;
        double number;
    };
    const String text("12.5");
    const Case cases[] = {{host.Int32ToVariant(-7), 2, -7},
                          {host.UInt32ToVariant(4000000000u), 3, 4000000000.0},
                          {host.Int64ToVariant(int64_t{-1} << 40), 3, -1099511627776.0},
                          {host.UInt64ToVariant(uint64_t{1} << 40), 3, 1099511627776.0},
                          {host.SingleToVariant(0.5f), 4, 0.5},
                          {host.DoubleToVariant(2.25), 5, 2.25},
                          {host.StringToVariant(text.get()), 8, 12.5},
                          {host.BooleanToVariant(1), 11, 1}};
    for (const auto& c : cases) {
        EXPECT_EQ(variantType(c.variant), c.code);
        EXPECT_EQ(host.VariantToDouble(c.variant), c.number);
        EXPECT_EQ(host.VariantToSingle(c.variant), static_cast<float>(c.number));
        EXPECT_EQ(host.VariantToInt64(c.variant), static_cast<int64_t>(c.number));
        if (c.code == 2 || c.code == 11) {
            EXPECT_EQ(host.VariantToInt32(c.variant), static_cast<int32_t>(c.number));
        }
        host.REALUnlockObject(c.variant);
    }
    EXPECT_EQ(host.VariantToString(nullptr), nullptr);
    EXPECT_EQ(host.VariantToInt32(nullptr), 0);
}

TEST_F(ServiceCalls, ArraysOfObjectsAreMadeFilledAndRead) {
    REALarray array = host.RuntimeArrayCreateSingleDimBoundedArray(kREALArrayOfObjects, -1);
    EXPECT_EQ(host.RuntimeUBound(array), -1);
    const auto insert = host.RuntimeArrayDirectGetInsertProc(array);
    const Value date = newDate();
    insert(array, 0, date.object());
    insert(array, 1, nullptr);
    EXPECT_EQ(host.RuntimeUBound(array), 1);
    EXPECT_EQ(harness::references(date.object()), 2u) << "the array's own";
    REALobject read = host.RuntimeDirectReadObjectArray(array, 0);
    EXPECT_EQ(read, date.object());
    EXPECT_EQ(harness::references(read), 3u) << "and the caller's";
    host.REALUnlockObject(read);
    EXPECT_EQ(host.RuntimeDirectReadObjectArray(array, 1), nullptr);
    EXPECT_EQ(host.RuntimeDirectReadObjectArray(array, 2), nullptr);
    insert(array, 9, nullptr);
    EXPECT_EQ(harness::takeException()->className, "OutOfBoundsException");
    EXPECT_EQ(host.RuntimeArrayCreateSingleDimBoundedArray(kREALArrayOfObjects, -2), nullptr);
    EXPECT_EQ(host.RuntimeArrayCreateSingleDimBoundedArray(99, 0), nullptr);
    EXPECT_EQ(host.RuntimeUBound(nullptr), -1);
    host.REALUnlockObject(reinterpret_cast<REALobject>(array));
}

template <class T>
void expectGot(const Services& host, const char* element, const Value& value, T expected) {
    const Ref array = newArray(typeNamed(element));
    arrayAppend(array.get(), value);
    const auto get = reinterpret_cast<T (*)(REALarray, int32_t)>(
        host.RuntimeArrayDirectGetGetProc(arrayHandle(array.get())));
    ASSERT_NE(get, nullptr) << element;
    EXPECT_EQ(get(arrayHandle(array.get()), 0), expected) << element;
    EXPECT_EQ(get(arrayHandle(array.get()), 1), T()) << element;
}

TEST_F(ServiceCalls, GetProceduresAnswerElementsOfEveryType) {
    expectGot<int32_t>(host, "Integer", -5, -5);
    expectGot<int64_t>(host, "Int64", int64_t{1} << 40, int64_t{1} << 40);
    expectGot<uint8_t>(host, "Boolean", true, 1);
    expectGot<float>(host, "Single", 0.5f, 0.5f);
    expectGot<double>(host, "Double", 0.1, 0.1);
    expectGot<uint16_t>(host, "UInt16", 7, 7);
    const Value text("t"), date = newDate();
    expectGot<REALstring>(host, "String", text, text.string());
    expectGot<REALobject>(host, "Date", date, date.object());
    EXPECT_EQ(harness::references(text.string()), 2u) << "the caller owns what a get procedure answers";
    EXPECT_EQ(harness::references(date.object()), 2u);
    host.REALUnlockString(text.string());
    host.REALUnlockObject(date.object());
    const Value numbers = newArray(typeNamed("Integer"));
    EXPECT_EQ(host.RuntimeArrayDirectGetInsertProc(arrayHandle(numbers.object())), nullptr)
        << "only for objects";
}

} // namespace
