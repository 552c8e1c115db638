// Compressed Unicode, and the checksum of descriptors.
#include "udf/Text.hpp"
#include "udf/Fields.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

using namespace engine::udf;
using namespace std::string_literals;

TEST(UdfText, LatinCharactersTakeAByteEach) {
    EXPECT_EQ(compressed("read me.txt", 255), "\x08read me.txt"s);
    EXPECT_EQ(compressed("ü\u00FF", 255), "\x08\xFC\xFF"s);
}

TEST(UdfText, OneOtherCharacterMakesAllOfThemTwoBytes) {
    EXPECT_EQ(compressed("a漢", 255), "\x10\0a\x6F\x22"s);
    EXPECT_EQ(compressed("𝄞", 255), "\x10\xD8\x34\xDD\x1E"s) << "a surrogate pair";
}

TEST(UdfText, WhatIsNoTextBecomesAnUnderscore) { EXPECT_EQ(compressed("a\xFF\xC3z", 255), "\x08"s + "a__z"); }

TEST(UdfText, IsCutBetweenCharacters) {
    EXPECT_EQ(compressed("abc", 3), "\x08"s + "ab");
    EXPECT_EQ(compressed("漢字", 4), "\x10\x6F\x22"s);
    EXPECT_EQ(compressed("a𝄞", 5), "\x10\0a"s);
    EXPECT_EQ(compressed("", 255), "");
    EXPECT_EQ(compressed(std::string(300, 'x'), nameLimit).size(), 255u);
}

TEST(UdfText, AFixedFieldEndsWithItsLength) {
    std::array<std::byte, 8> field;
    field.fill(std::byte{0xEE});
    putFixedText(field, "abcdefghij");
    EXPECT_EQ(std::memcmp(field.data(),
                          "\x08"
                          "abcdef\x07",
                          8),
              0);
    putFixedText(field, "");
    EXPECT_EQ(field, (std::array<std::byte, 8>{}));
}

TEST(UdfChecksum, IsThatOfTheStandardsExample) {
    // ECMA-167 1/7.2.6: the bytes 70, 6A and 77 (hexadecimal) have the checksum 3299.
    const std::array bytes = {std::byte{0x70}, std::byte{0x6A}, std::byte{0x77}};
    EXPECT_EQ(checksumOf(bytes), 0x3299);
    EXPECT_EQ(checksumOf({}), 0);
}

} // namespace
