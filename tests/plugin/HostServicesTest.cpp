// HostServicesTest.cpp: reaching the host's services by name, also on hosts that lack some.
#include "plugin/frame/Resolver.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <algorithm>
#include <cstring>

namespace {

using namespace test;

using HostServices = PluginTest;

long lookupsOf(const char* entry) {
    const auto names = harness::lookups();
    return std::count(names.begin(), names.end(), entry);
}

TEST_F(HostServices, AnEntryIsLookedUpOnceAndThenKept) {
    load();
    const Ref object = make("Dictionary");
    const long before = lookupsOf("PluginNewInstance");
    for (int i = 0; i < 5; ++i)
        make("Dictionary");
    EXPECT_EQ(before, 1);
    EXPECT_EQ(lookupsOf("PluginNewInstance"), 1);
}

TEST_F(HostServices, ALookUpThatFailedIsTriedAgainAtTheNextCall) {
    harness::withdraw("PluginNewInstance");
    load();
    EXPECT_FALSE(make("Dictionary"));
    EXPECT_FALSE(make("Dictionary"));
    EXPECT_EQ(lookupsOf("PluginNewInstance"), 2);
    harness::restore("PluginNewInstance");
    EXPECT_TRUE(make("Dictionary"));
}

TEST_F(HostServices, AMissingServiceIsASilentNothing) {
    for (const char* entry :
         {"REALLockObject", "REALGetStringEncoding", "RuntimeObjectIsa", "newMemoryBlock",
          "REALGetPropValueInt", "RuntimeArrayDirectGetInsertProc", "REALBuildString",
          "RuntimeRaiseException", "RuntimeUBound", "GetEventInstance", "REALLoadGlobalMethod"})
        harness::withdraw(entry);
    load();
    const Ref object = make("Dictionary");
    REALLockObject(object.get());
    EXPECT_EQ(harness::references(object.get()), 1u);
    const String text("text");
    EXPECT_EQ(REALGetStringEncoding(text.get()), 0u);
    EXPECT_FALSE(REALObjectIsA(object.get(), "Dictionary"));
    EXPECT_EQ(REALNewMemoryBlockOriginal(8), nullptr);
    int32_t count = 5;
    EXPECT_FALSE(REALGetPropValueInt32(object.get(), "Count", &count));
    EXPECT_EQ(count, 5);
    EXPECT_EQ(originalREALBuildString("x", 1), nullptr);
    EXPECT_EQ(REALGetArrayUBound(nullptr), 0);
    const REALevent event{"Action", 1};
    EXPECT_EQ(REALGetEventInstance(object.get(), &event), nullptr);
    EXPECT_EQ(REALLoadFrameworkMethod("LenB( s as string ) as integer"), nullptr);
    REALInsertArrayValueObject(nullptr, 0, nullptr);
    REALRaiseException(object.get());
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(HostServices, TestsForAClassByName) {
    load();
    const Ref dictionary = make("Dictionary");
    EXPECT_TRUE(REALObjectIsA(dictionary.get(), "Dictionary"));
    EXPECT_FALSE(REALObjectIsA(dictionary.get(), "MemoryBlock"));
    EXPECT_FALSE(REALObjectIsA(dictionary.get(), "NoSuchClass"));
    EXPECT_FALSE(REALObjectIsA(nullptr, "Dictionary"));
}

TEST_F(HostServices, RecognisesMemoryBlocksAndFolderItemsByAMethodThatOnlyTheyHave) {
    load();
    const Ref block = Ref::adopt(REALNewMemoryBlockOriginal(4));
    const Ref item = make("FolderItem");
    const Ref dictionary = make("Dictionary");
    EXPECT_TRUE(IsMemoryBlock(block.get()));
    EXPECT_FALSE(IsFolderItem(block.get()));
    EXPECT_TRUE(IsFolderItem(item.get()));
    EXPECT_FALSE(IsMemoryBlock(dictionary.get()));
    EXPECT_FALSE(IsFolderItem(dictionary.get()));
}

// ---- arrays: once through the host's procedures, once through the plug-in's own ----------------------

class Arrays : public PluginTest, public testing::WithParamInterface<bool> {
  protected:
    void SetUp() override {
        if (!GetParam()) harness::withdraw("RuntimeArrayDirectGetGetProc");
        load();
    }
};

// An array handle over elements that the test owns: what stands behind the handle's third word is what the
// plug-in's own procedures read.
template <class T, std::size_t N>
REALarrayStruct over(T (&elements)[N]) {
    REALarrayStruct array{};
    array.elements = elements;
    return array;
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutTheHostsProcedures, Arrays, testing::Bool());

TEST_P(Arrays, ObjectsAreReadWithOneAddedReference) {
    const Ref first = make("Dictionary");
    const auto array = reinterpret_cast<REALarray>(REALCreateArrayObject(-1));
    REALInsertArrayValue(array, 0, first.get());
    REALInsertArrayValue(array, 1, nullptr);
    EXPECT_EQ(REALGetArrayUBound(array), 1);
    EXPECT_EQ(harness::references(first.get()), 2u);
    REALobject read = nullptr;
    REALGetArrayValue(array, 0, &read);
    EXPECT_EQ(read, first.get());
    EXPECT_EQ(harness::references(first.get()), 3u);
    REALUnlockObject(read);
    read = first.get();
    REALGetArrayValue(array, 1, &read);
    EXPECT_EQ(read, nullptr);
    REALGetArrayValue(array, 0, static_cast<REALobject*>(nullptr));
    EXPECT_EQ(harness::references(first.get()), 2u);
    REALUnlockObject(reinterpret_cast<REALobject>(array));
    EXPECT_EQ(harness::references(first.get()), 1u);
}

using OwnProcedures = PluginTest;

TEST_F(OwnProcedures, ReadEveryElementTypeDirectly) {
    harness::withdraw("RuntimeArrayDirectGetGetProc");
    load();

    int32_t integers[] = {1, -2, 3};
    REALarrayStruct array = over(integers);
    int32_t integer = 0;
    REALGetArrayValue(&array, 1, &integer);
    EXPECT_EQ(integer, -2);

    uint8_t booleans[] = {0, 1, 0};
    array = over(booleans);
    uint8_t boolean = 9;
    REALGetArrayValue(&array, 1, &boolean); // one byte each: the neighbours are not read
    EXPECT_EQ(boolean, 1);
    REALGetArrayValue(&array, 2, &boolean);
    EXPECT_EQ(boolean, 0);

    float singles[] = {0.5f, 1.5f};
    array = over(singles);
    float single = 0;
    REALGetArrayValue(&array, 1, &single);
    EXPECT_EQ(single, 1.5f);

    double doubles[] = {0.25, 1e300};
    array = over(doubles);
    double real = 0;
    REALGetArrayValue(&array, 1, &real);
    EXPECT_EQ(real, 1e300);

    int64_t longs[] = {1, -5'000'000'000};
    array = over(longs);
    int64_t wide = 0;
    REALGetArrayValue(&array, 1, &wide);
    EXPECT_EQ(wide, -5'000'000'000);

    const String text("element");
    REALstring strings[] = {nullptr, text.get()};
    array = over(strings);
    REALstring read = nullptr;
    REALGetArrayValue(&array, 1, &read);
    EXPECT_EQ(read, text.get());
    EXPECT_EQ(harness::references(text.get()), 2u);
    REALUnlockString(read);
    REALGetArrayValue(&array, 0, &read);
    EXPECT_EQ(read, nullptr);
}

TEST_F(OwnProcedures, OnceChosenTheyStay) {
    harness::withdraw("RuntimeArrayDirectGetGetProc");
    load();
    int32_t integers[] = {7};
    REALarrayStruct array = over(integers);
    int32_t integer = 0;
    REALGetArrayValue(&array, 0, &integer);
    const long before = lookupsOf("RuntimeArrayDirectGetGetProc");
    harness::restore("RuntimeArrayDirectGetGetProc");
    REALGetArrayValue(&array, 0, &integer);
    EXPECT_EQ(integer, 7);
    EXPECT_EQ(lookupsOf("RuntimeArrayDirectGetGetProc"), before);
}

TEST_F(HostServices, AVariantArrayIsDeliberatelyAnObjectArray) {
    load();
    const Ref objects = Ref::adopt(reinterpret_cast<REALobject>(REALCreateArrayObject(-1)));
    const Ref variants = Ref::adopt(reinterpret_cast<REALobject>(REALCreateArrayVariant(-1)));
    EXPECT_EQ(&host::classOf(objects.get()), &host::classOf(variants.get()));
    const Ref element = make("Dictionary");
    REALInsertArrayValue(reinterpret_cast<REALarray>(variants.get()), 0, element.get());
    EXPECT_EQ(Ref::adopt(REALGetArrayObject(reinterpret_cast<REALarray>(variants.get()), 0)).get(),
              element.get());
}

// ---- string data -------------------------------------------------------------------------------------

class StringData : public PluginTest {
  protected:
    void loadWithoutStringData() {
        harness::withdraw("PluginGetStringData");
        load();
    }
};

TEST_F(StringData, ComesFromTheHostWhereItCan) {
    load();
    const String text("déjà");
    REALstringData record{};
    ASSERT_TRUE(REALGetStringData(text.get(), kREALEncodingUTF8, &record));
    EXPECT_EQ(std::string(static_cast<char*>(record.data), record.length), "déjà");
    REALDisposeStringData(&record);
    EXPECT_EQ(lookupsOf("StringGetCString"), 0);
}

TEST_F(StringData, IsCopiedHereOtherwiseAndEndsInFourZeroBytes) {
    loadWithoutStringData();
    const String text("burn");
    REALstringData record{};
    ASSERT_TRUE(REALGetStringData(text.get(), kREALEncodingUTF8, &record));
    EXPECT_EQ(record.length, 4u);
    EXPECT_EQ(record.encoding, static_cast<uintptr_t>(kREALEncodingUTF8));
    EXPECT_EQ(std::memcmp(record.data, "burn\0\0\0\0", 8), 0);
    REALDisposeStringData(&record);
    EXPECT_EQ(record.data, nullptr);
}

TEST_F(StringData, IsConvertedHereWhenAnotherEncodingIsAskedFor) {
    loadWithoutStringData();
    const String text("aé");
    REALstringData record{};
    ASSERT_TRUE(REALGetStringData(text.get(), kREALEncodingUTF16, &record));
    const uint16_t units[] = {'a', 0xE9, 0, 0};
    EXPECT_EQ(record.length, 4u);
    EXPECT_EQ(record.encoding, static_cast<uintptr_t>(kREALEncodingUTF16));
    EXPECT_EQ(std::memcmp(record.data, units, sizeof units), 0);
    REALDisposeStringData(&record);
    EXPECT_EQ(harness::references(text.get()), 1u);
    EXPECT_FALSE(REALGetStringData(text.get(), 0x7FFF0000, &record));
}

TEST_F(StringData, AnyEncodingTakesTheBufferSizeFromTheCallersRecord) {
    loadWithoutStringData();
    const String text("burner");
    REALstringData record{};
    EXPECT_FALSE(REALGetStringData(text.get(), kREALEncodingUnknown, &record))
        << "the record promised no room";
    record.length = 6;
    ASSERT_TRUE(REALGetStringData(text.get(), kREALEncodingUnknown, &record));
    EXPECT_EQ(record.length, 6u);
    EXPECT_EQ(std::memcmp(record.data, "burner\0\0\0\0", 10), 0);
    REALDisposeStringData(&record);
    record.length = 100;
    ASSERT_TRUE(REALGetStringData(text.get(), kREALEncodingUnknown, &record));
    EXPECT_EQ(record.length, 6u);
    std::memset(record.data, 'x', 104); // as large as the record promised, and four bytes more
    REALDisposeStringData(&record);
    REALPresetStringDataLength(text.get(), &record);
    EXPECT_EQ(record.length, 6u);
}

TEST_F(StringData, IsNotGivenForANullStringOrWithoutTheServicesItNeeds) {
    harness::withdraw("REALLoadGlobalMethod");
    loadWithoutStringData();
    REALstringData record{};
    const String text("burn");
    EXPECT_FALSE(REALGetStringData(text.get(), kREALEncodingUTF8, &record)) << "there is no LenB";
    harness::restore("REALLoadGlobalMethod");
    EXPECT_FALSE(REALGetStringData(nullptr, kREALEncodingUTF8, &record));
    EXPECT_TRUE(REALGetStringData(text.get(), kREALEncodingUTF8, &record));
    REALDisposeStringData(&record);
}

TEST_F(StringData, IsNotGivenWithoutTheBytesOfAString) {
    harness::withdraw("StringGetCString");
    loadWithoutStringData();
    REALstringData record{};
    EXPECT_FALSE(REALGetStringData(String("burn").get(), kREALEncodingUTF8, &record));
}

} // namespace
