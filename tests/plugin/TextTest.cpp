// TextTest.cpp: host strings and memory blocks to platform values and back, on hosts of every age.
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/DataView.hpp"
#include "plugin/bridge/Memory.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <cstring>

namespace {

using namespace test;

using Text = LoadedTest;

String inEncoding(std::string_view bytes, uint32_t encoding) {
    return String::adopt(host::newString(bytes, encoding));
}

std::string bytesOfUnits(std::u16string_view units) {
    return {reinterpret_cast<const char*>(units.data()), units.size() * 2};
}

std::string bytesOfPoints(std::u32string_view points) {
    return {reinterpret_cast<const char*>(points.data()), points.size() * 4};
}

// ---- host to platform, on every kind of host ---------------------------------------------------------

struct HostKind {
    const char* name;
    double version;
    bool hasCFString;
    bool hasStringData;

    friend void PrintTo(const HostKind& kind, std::ostream* out) { *out << kind.name; }
};

class ToPlatform : public PluginTest, public testing::WithParamInterface<HostKind> {
  protected:
    void SetUp() override {
        harness::setHostVersion(GetParam().version);
        if (!GetParam().hasCFString) harness::withdraw("REALGetStringCFString");
        if (!GetParam().hasStringData) harness::withdraw("PluginGetStringData");
        load();
    }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ToPlatform,
                         testing::Values(HostKind{"Current", 2013.0, true, true},
                                         HostKind{"CurrentWithoutPlatformStrings", 2013.0, false, true},
                                         HostKind{"CurrentWithoutStringData", 2013.0, false, false},
                                         HostKind{"Of2012", 2012.0, true, true},
                                         HostKind{"Of2012WithoutPlatformStrings", 2012.0, false, true},
                                         HostKind{"Of2011", 2011.4, true, true},
                                         HostKind{"Of2011WithoutPlatformStrings", 2011.4, false, false},
                                         HostKind{"WithoutVersion", 0, true, true},
                                         HostKind{"WithoutVersionOrPlatformStrings", 0, false, false}),
                         [](const auto& host) { return host.param.name; });

TEST_P(ToPlatform, TextOfEveryEncodingArrives) {
    EXPECT_EQ(text(NewNSString(String("plain").get())), "plain");
    EXPECT_EQ(text(NewNSString(String("Übergröße ♫").get())), "Übergröße ♫");
    EXPECT_EQ(text(NewNSString(inEncoding("ASCII", kREALEncodingASCII).get())), "ASCII");
    EXPECT_EQ(text(NewNSString(inEncoding("caf\xE9", 0x0201).get())), "café");
    EXPECT_EQ(text(NewNSString(inEncoding(bytesOfUnits(u"zwölf"), kREALEncodingUTF16).get())), "zwölf");
}

TEST_P(ToPlatform, NullGivesNil) {
    EXPECT_EQ(NewNSString(nullptr), nullptr);
    EXPECT_EQ(RBString2CFString(nullptr), nullptr);
}

TEST_P(ToPlatform, AnUnknownEncodingIsReadAsThePlatformsDefault) {
    // 0x8E is é in MacRoman, the platform's default 8-bit encoding.
    const String unknown = inEncoding("caf\x8E", kREALEncodingUnknown);
    EXPECT_EQ(text(NewNSString(unknown.get())), "café");
}

TEST_P(ToPlatform, TheResultOfRBString2CFStringBelongsToTheCaller) {
    const CFStringRef made = RBString2CFString(String("owned").get());
    EXPECT_EQ((objc::send<"retainCount", unsigned long>(asObject(made))), 1u);
    objc::release(asObject(made));
}

TEST_P(ToPlatform, NothingIsLeftLocked) {
    const String string("text");
    NewNSString(string.get());
    EXPECT_EQ(harness::references(string.get()), 1u);
}

class DecodedHere : public PluginTest {
  protected:
    void SetUp() override {
        harness::withdraw("REALGetStringCFString");
        load();
    }
};

TEST_F(DecodedHere, UTF16OfOddByteLengthLosesItsLastByte) {
    const String odd = inEncoding(bytesOfUnits(u"ab") + "c", kREALEncodingUTF16);
    EXPECT_EQ(text(NewNSString(odd.get())), "ab");
}

TEST_F(DecodedHere, BytesThatMeanNothingInTheEncodingGiveNil) {
    EXPECT_EQ(NewNSString(inEncoding("\xC3\x28", kREALEncodingUTF8).get()), nullptr);
}

TEST_F(Text, TheHostsOwnPlatformStringIsPreferred) {
    NewNSString(String("text").get());
    const auto names = harness::lookups();
    EXPECT_NE(std::find(names.begin(), names.end(), "REALGetStringCFString"), names.end());
    EXPECT_EQ(std::find(names.begin(), names.end(), "PluginGetStringData"), names.end());
}

// ---- platform to host --------------------------------------------------------------------------------

TEST_F(Text, AnEmptyPlatformStringAndNilBothGiveTheNullString) {
    EXPECT_EQ(NSStringRB(nsString("")), nullptr);
    EXPECT_EQ(NSStringRB(nullptr), nullptr);
    EXPECT_EQ(CFString2RBString(nullptr), nullptr);
}

TEST_F(Text, PlatformTextBecomesUTF8) {
    const String made = String::adopt(NSStringRB(nsString("Größe ♫ 𝄞")));
    EXPECT_EQ(made.bytes(), "Größe ♫ 𝄞");
    EXPECT_EQ(host::encodingOf(made.get()), static_cast<uint32_t>(kREALEncodingUTF8));
    EXPECT_EQ(harness::references(made.get()), 1u);
}

TEST_F(Text, NinetyNineAndAHundredUnitsOfTheWidestKindBothFit) {
    for (const int units : {98, 99, 100, 101, 200, 201, 400, 5000}) {
        std::string wide;
        for (int i = 0; i < units; ++i)
            wide += "\u20AC"; // three bytes of UTF-8 a unit
        EXPECT_EQ(textOf(NSStringRB(nsString(wide.c_str()))), wide) << units;
    }
}

TEST_F(Text, AZeroCharacterEndsThePlatformText) {
    const uint16_t units[] = {'a', 'b', 0, 'c'};
    const objc::Adopted string(CFStringCreateWithCharacters(nullptr, units, 4));
    EXPECT_EQ(textOf(CFString2RBString(string.get())), "ab");
}

// ---- strings from bytes ------------------------------------------------------------------------------

TEST_F(Text, BytesInAnyOtherEncodingAreKeptAndMarked) {
    const String made = String::adopt(REALBuildUnicodeString("caf\xE9", 4, 0x0201));
    EXPECT_EQ(made.bytes(), "caf\xE9");
    EXPECT_EQ(host::encodingOf(made.get()), 0x0201u);
}

TEST_F(Text, UTF16AndUTF32BytesBecomeUTF8) {
    const std::string wide = bytesOfUnits(u"zwölf"), wider = bytesOfPoints(U"zwölf");
    for (const auto& [bytes, encoding] :
         {std::pair(wide, kREALEncodingUTF16), std::pair(wider, kREALEncodingUTF32)}) {
        const String made = String::adopt(REALBuildUnicodeString(
            bytes.data(), static_cast<int64_t>(bytes.size()), static_cast<uint32_t>(encoding)));
        EXPECT_EQ(made.bytes(), "zwölf");
        EXPECT_EQ(host::encodingOf(made.get()), static_cast<uint32_t>(kREALEncodingUTF8));
    }
    EXPECT_EQ(host::harness::liveStrings(), 0u);
}

TEST_F(Text, UTF32CharactersBeyondSixteenBitsAreCutToTheirLowHalf) {
    const std::string bytes = bytesOfPoints(U"a\U00010041b"); // U+10041 becomes U+0041
    EXPECT_EQ(textOf(REALBuildUnicodeString(bytes.data(), 12, kREALEncodingUTF32)), "aAb");
}

TEST_F(Text, UTF32OnBothSidesOfTheStackBuffersSize) {
    for (const std::size_t points : {199u, 200u, 201u, 4000u}) {
        const std::string bytes = bytesOfPoints(std::u32string(points, U'é'));
        std::string expected;
        for (std::size_t i = 0; i < points; ++i)
            expected += "é";
        EXPECT_EQ(textOf(REALBuildUnicodeString(bytes.data(), static_cast<int64_t>(bytes.size()),
                                                kREALEncodingUTF32)),
                  expected)
            << points;
    }
}

TEST_F(Text, NoBytesAndLengthsOutOfRangeGiveNull) {
    EXPECT_EQ(REALBuildUnicodeString(nullptr, 4, kREALEncodingUTF8), nullptr);
    EXPECT_EQ(REALBuildUnicodeString("x", 0, kREALEncodingUTF8), nullptr);
    EXPECT_EQ(REALBuildUnicodeString("x", -1, kREALEncodingUTF8), nullptr);
    EXPECT_EQ(REALBuildUnicodeString("x", 0x7FFFFFFF, kREALEncodingUTF8), nullptr);
}

// ---- memory blocks -----------------------------------------------------------------------------------

TEST_F(Text, AMemoryBlockIsBuiltAsACopy) {
    char bytes[] = {1, 2, 3};
    const Ref block = Ref::adopt(REALBuildMemoryblock(bytes, 3));
    bytes[0] = 9;
    EXPECT_EQ(REALMemoryBlockGetSize(block.get()), 3);
    EXPECT_EQ(std::memcmp(REALMemoryBlockGetPtr(block.get()), "\1\2\3", 3), 0);
    EXPECT_EQ(harness::references(block.get()), 1u);
}

TEST_F(Text, AMemoryBlockOfNoLengthIsNilWithoutAWord) {
    EXPECT_EQ(REALBuildMemoryblock("x", 0), nullptr);
    EXPECT_EQ(REALBuildMemoryblock("x", -5), nullptr);
    EXPECT_EQ(REALBuildMemoryblock(nullptr, 5), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Text, AMemoryBlockThatTheHostCannotGiveRaisesWithTheSize) {
    harness::failNewMemoryBlock(true);
    EXPECT_EQ(REALBuildMemoryblock("abc", 3), nullptr);
    EXPECT_EQ(raised(),
              (Raised{"OutOfMemoryException", "Failed to allocate a memoryblock with 3 bytes in size."}));
}

TEST_F(Text, AMemoryBlockOfMoreThanTheRangeRaisesWithTheSize) {
    EXPECT_EQ(REALBuildMemoryblock("abc", 0x7FFFFFFF), nullptr);
    EXPECT_EQ(raised(), (Raised{"OutOfMemoryException",
                                "Failed to allocate a memoryblock with 2147483647 bytes in size."}));
    EXPECT_EQ(REALBuildMemoryblock("abc", int64_t{1} << 40), nullptr);
    EXPECT_EQ(raised(), (Raised{"OutOfMemoryException",
                                "Failed to allocate a memoryblock with 1099511627776 bytes in size."}));
}

TEST_F(Text, AViewOfABlockTakesOffsetAndLengthAndLocksTheBlockWhileItStands) {
    const Ref block = Ref::adopt(REALBuildMemoryblock("0123456789", 10));
    {
        const rbData part(block.get(), 3, 4);
        EXPECT_EQ(std::string(part.bytes(), static_cast<std::size_t>(part.length())), "3456");
        const rbData whole(block.get(), 0, 0);
        EXPECT_EQ(whole.length(), 10);
        EXPECT_EQ(harness::references(block.get()), 3u);
        const rbData beyond(block.get(), 8, 10); // deliberately unchecked: the caller is trusted
        EXPECT_EQ(beyond.length(), 10);
        EXPECT_EQ(beyond.bytes(), static_cast<const char*>(REALMemoryBlockGetPtr(block.get())) + 8);
    }
    EXPECT_EQ(harness::references(block.get()), 1u);
    const rbData none(static_cast<REALmemoryBlock>(nullptr), 0, 0);
    EXPECT_EQ(none.bytes(), nullptr);
    EXPECT_EQ(none.length(), 0);
}

class WithoutBytes : public PluginTest {
  protected:
    void loadWithout(const char* entry) {
        harness::withdraw(entry);
        load();
    }
};

TEST_F(WithoutBytes, ABlockThatGivesNoBytesIsAnEmptyViewAndIsNotBuilt) {
    loadWithout("memoryBlockGetPtr");
    const Ref block = Ref::adopt(REALNewMemoryBlockOriginal(4));
    {
        const rbData view(block.get(), 0, 0);
        EXPECT_EQ(view.bytes(), nullptr);
        EXPECT_EQ(view.length(), 0);
    }
    EXPECT_EQ(harness::references(block.get()), 1u);
    EXPECT_EQ(REALBuildMemoryblock("abc", 3), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(WithoutBytes, WhatTheHostCannotBuildOrConvertIsNull) {
    loadWithout("REALBuildString");
    EXPECT_EQ(REALBuildUnicodeString("text", 4, kREALEncodingUTF8), nullptr);
    EXPECT_EQ(REALBuildUnicodeString("text", 4, kREALEncodingUTF16), nullptr);
    EXPECT_EQ(REALBuildUnicodeString("text", 4, kREALEncodingUTF32), nullptr);
}

TEST_F(WithoutBytes, WideTextIsNullWhereTheHostDoesNotConvert) {
    loadWithout("REALConvertString");
    EXPECT_EQ(REALBuildUnicodeString("a\0b\0", 4, kREALEncodingUTF16), nullptr);
    EXPECT_EQ(REALBuildUnicodeString("a\0\0\0", 4, kREALEncodingUTF32), nullptr);
    EXPECT_EQ(harness::liveStrings(), 0u);
}

// ---- views of strings --------------------------------------------------------------------------------

class Views : public PluginTest, public testing::WithParamInterface<HostKind> {
  protected:
    void SetUp() override {
        harness::setHostVersion(GetParam().version);
        if (!GetParam().hasStringData) harness::withdraw("PluginGetStringData");
        load();
    }
};

INSTANTIATE_TEST_SUITE_P(Hosts, Views,
                         testing::Values(HostKind{"Current", 2013.0, true, true},
                                         HostKind{"CurrentWithoutStringData", 2013.0, true, false},
                                         HostKind{"Older", 2012.9, true, true}),
                         [](const auto& host) { return host.param.name; });

TEST_P(Views, ShowTheStringsOwnBytesUnconverted) {
    const String string = inEncoding(bytesOfUnits(u"ab"), kREALEncodingUTF16);
    {
        const rbData view(string.get());
        EXPECT_EQ(std::string(view.bytes(), static_cast<std::size_t>(view.length())), bytesOfUnits(u"ab"));
    }
    EXPECT_EQ(harness::references(string.get()), 1u);
}

TEST_P(Views, OfANullStringAreEmpty) {
    const rbData view(static_cast<REALstring>(nullptr));
    EXPECT_EQ(view.bytes(), nullptr);
    EXPECT_EQ(view.length(), 0);
}

TEST_F(PluginTest, ACurrentHostsStringIsReadFromACopyThatTheViewOwns) {
    load();
    const String string("text");
    const rbData view(string.get());
    EXPECT_NE(view.bytes(), reinterpret_cast<const char*>(string.get()->buffer) + 1);
    EXPECT_EQ(harness::references(string.get()), 1u);
}

TEST_F(PluginTest, AnOlderHostsStringIsReadInPlaceAndLockedMeanwhile) {
    harness::setHostVersion(2012.0);
    load();
    const String string("text");
    const rbData view(string.get());
    EXPECT_EQ(view.bytes(), reinterpret_cast<const char*>(string.get()->buffer) + 1);
    EXPECT_EQ(harness::references(string.get()), 2u);
}

// ---- memory ------------------------------------------------------------------------------------------

TEST(Memory, IsZeroFilledAndRefusedOutOfRange) {
    auto* memory = static_cast<char*>(AllocateClearMemory(64));
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(std::string(memory, 64), std::string(64, '\0'));
    std::memset(memory, 'x', 64);
    ClearMemory(memory, 32);
    EXPECT_EQ(std::string(memory, 64), std::string(32, '\0') + std::string(32, 'x'));
    FreeMemoryNow(memory);
    EXPECT_EQ(AllocateClearMemory(0), nullptr);
    EXPECT_EQ(AllocateClearMemory(-1), nullptr);
    EXPECT_EQ(AllocateClearMemory(int64_t{0x7FFFFFFF} + 1), nullptr);
}

} // namespace
