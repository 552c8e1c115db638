// StringTest.cpp: host strings, their layout, and conversion between encodings.
#include "tests/host/Support.hpp"

namespace {

using namespace test;

class Strings : public NothingLeft {};

std::string converted(std::string_view bytes, uint32_t from, uint32_t to) {
    const auto source = String::adopt(newString(bytes, from));
    const auto result = String::adopt(convertString(source.get(), to));
    EXPECT_NE(result.get(), nullptr);
    return std::string(result.bytes());
}

TEST_F(Strings, TextBeginsOneByteAfterTheStartOfTheBufferAndAZeroFollows) {
    const auto string = String::adopt(newString("Grüße", kREALEncodingUTF8));
    const REALstring raw = string.get();
    EXPECT_EQ(raw->references, 1u);
    EXPECT_EQ(raw->length, 7u);
    EXPECT_EQ(raw->buffer[0], 7);
    EXPECT_EQ(raw->buffer[1], 'G');
    EXPECT_EQ(raw->buffer[8], 0);
    EXPECT_EQ(raw->encoding, static_cast<uintptr_t>(kREALEncodingUTF8));
    const auto large = String::adopt(newString(std::string(256, 'x')));
    EXPECT_EQ(large.get()->buffer[0], 0);
}

TEST_F(Strings, NullIsTheEmptyString) {
    EXPECT_EQ(bytesOf(nullptr), "");
    EXPECT_EQ(utf8Of(nullptr), "");
    retain(REALstring());
    release(REALstring());
    EXPECT_EQ(Value::adopt(REALstring()).toText(), "");
    EXPECT_TRUE(Value::adopt(REALstring()).isString());
}

TEST_F(Strings, ConversionGivesTheBytesOfEachEncoding) {
    const std::string_view text = "aä€";
    using namespace std::string_literals;
    EXPECT_EQ(converted(text, kREALEncodingUTF8, kREALEncodingDefault), "a\x8A\xDB");
    EXPECT_EQ(converted(text, kREALEncodingUTF8, 0x0500), "a\xE4\x80");
    EXPECT_EQ(converted(text, kREALEncodingUTF8, 0x0201), "a\xE4?");
    EXPECT_EQ(converted(text, kREALEncodingUTF8, kREALEncodingASCII), "a??");
    EXPECT_EQ(converted(text, kREALEncodingUTF8, 0x10000100), "\0a\0\xE4\x20\xAC"s);
    EXPECT_EQ(converted(text, kREALEncodingUTF8, 0x14000100), "a\0\xE4\0\xAC\x20"s);
    EXPECT_EQ(converted(text, kREALEncodingUTF8, 0x18000100).size(), 12u);
    EXPECT_EQ(converted("a\x8A\xDB", kREALEncodingDefault, kREALEncodingUTF8), text);
    EXPECT_EQ(converted("\xE4", 0x0201, kREALEncodingUTF8), "ä");
    EXPECT_EQ(converted("\x80", 0x0500, kREALEncodingUTF8), "€");
}

TEST_F(Strings, NativeUTF16IsThatOfTheMachine) {
    const char16_t units[] = u"x\U0001F4BF";
    const std::string_view bytes(reinterpret_cast<const char*>(units), 6);
    EXPECT_EQ(converted(bytes, kREALEncodingUTF16, kREALEncodingUTF8), "x\U0001F4BF");
    EXPECT_EQ(converted("x\U0001F4BF", kREALEncodingUTF8, kREALEncodingUTF16), bytes);
    const char32_t points[] = U"x\U0001F4BF";
    EXPECT_EQ(converted("x\U0001F4BF", kREALEncodingUTF8, kREALEncodingUTF32),
              std::string_view(reinterpret_cast<const char*>(points), 8));
}

TEST_F(Strings, WhatMeansNothingBecomesTheReplacementCharacter) {
    const auto damaged = String::adopt(newString("a\xC3z", kREALEncodingUTF8));
    EXPECT_EQ(damaged.utf8(), "a\uFFFDz");
    EXPECT_EQ(converted("ab\xFF", kREALEncodingUTF16, kREALEncodingUTF8).substr(3), "\uFFFD");
}

TEST_F(Strings, UnknownEncodingsAreReadAsUTF8IfTheyAreElseAsTheDefault) {
    EXPECT_EQ(String::adopt(newString("ä", kREALEncodingUnknown)).utf8(), "ä");
    EXPECT_EQ(String::adopt(newString("\x8A", kREALEncodingUnknown)).utf8(), "ä");
    EXPECT_EQ(converted("\x8A", kREALEncodingDefault, kREALEncodingUnknown), "\x8A");
    const auto source = String("x");
    EXPECT_EQ(convertString(source.get(), 0x12345678), nullptr);
}

TEST_F(Strings, UTF8IsCheckedStrictly) {
    for (const char* good : {"", "a", "ä", "€", "\U0001F4BF"})
        EXPECT_TRUE(isValidUTF8(good)) << good;
    for (const char* bad :
         {"\x80", "\xC0\x80", "\xC3", "\xE0\x80\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xFF"})
        EXPECT_FALSE(isValidUTF8(bad));
}

TEST_F(Strings, CaseIsFoldedBeyondASCII) { EXPECT_EQ(foldCase("GRÜSSE Ω"), "grüsse ω"); }

TEST_F(Strings, ReferencesAreCounted) {
    String first("text");
    {
        const String second = first;
        EXPECT_EQ(harness::references(first.get()), 2u);
    }
    EXPECT_EQ(harness::references(first.get()), 1u);
    const String moved = std::move(first);
    EXPECT_EQ(harness::references(moved.get()), 1u);
}

} // namespace
