// Fields, byte by byte.
#include "iso/Fields.hpp"
#include "iso/Tree.hpp"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

namespace iso = engine::iso;

template <typename Write>
std::string bytesOf(size_t size, Write write) {
    std::string bytes(size, '\0');
    iso::Fields fields(std::as_writable_bytes(std::span(bytes)));
    write(fields);
    EXPECT_EQ(fields.position(), size);
    return bytes;
}
std::string dateOf(std::time_t seconds, int8_t zone) {
    return bytesOf(7, [=](iso::Fields& fields) { fields.date(seconds, zone); });
}
std::string digitsOf(std::optional<std::time_t> seconds, int8_t zone) {
    return bytesOf(17, [=](iso::Fields& fields) { fields.digits(seconds, zone); });
}
template <size_t Size>
std::string literal(const char (&text)[Size]) {
    return {text, Size - 1};
}

TEST(IsoFields, NumbersStandInBothOrders) {
    EXPECT_EQ(bytesOf(4, [](auto& f) { f.both16(0x1234); }), "\x34\x12\x12\x34");
    EXPECT_EQ(bytesOf(8, [](auto& f) { f.both32(0x12345678); }), "\x78\x56\x34\x12\x12\x34\x56\x78");
    EXPECT_EQ(bytesOf(4, [](auto& f) { f.little32(0x12345678); }), "\x78\x56\x34\x12");
    EXPECT_EQ(bytesOf(4, [](auto& f) { f.big32(0x12345678); }), "\x12\x34\x56\x78");
}

// ECMA-119 9.1.5: years since 1900, month, day, hour, minute, second, quarters of an hour.
TEST(IsoFields, DatesOfRecords) {
    EXPECT_EQ(dateOf(0, 0), literal("\x46\x01\x01\x00\x00\x00\x00"));
    EXPECT_EQ(dateOf(1'582'979'696, 0), literal("\x78\x02\x1D\x0C\x22\x38\x00")); // 2020-02-29 12:34:56
    EXPECT_EQ(dateOf(1'582'979'696, 22), literal("\x78\x02\x1D\x12\x04\x38\x16")) << "5:30 east";
    EXPECT_EQ(dateOf(1'582'979'696, -52 + 4), literal("\x78\x02\x1D\x00\x22\x38\xD0")) << "12:00 west";
    EXPECT_EQ(dateOf(-1, 0), literal("\x45\x0C\x1F\x17\x3B\x3B\x00")) << "before 1970";
    if (sizeof(std::time_t) > 4) {
        const auto first = [](int64_t seconds) { return dateOf(static_cast<std::time_t>(seconds), 0)[0]; };
        EXPECT_EQ(first(-2'240'524'800), '\0') << "1899: there is no such year";
        EXPECT_EQ(first(32'503'680'000), '\xFF') << "nor is there 3000";
        EXPECT_EQ(first(std::numeric_limits<int64_t>::max()), '\xFF');
        EXPECT_EQ(first(std::numeric_limits<int64_t>::min()), '\0');
    }
}

// 8.4.26.1: digits to the hundredth, then the zone.
TEST(IsoFields, DatesOfVolumes) {
    EXPECT_EQ(digitsOf(1'582'979'696, 0), literal("2020022912345600\0"));
    EXPECT_EQ(digitsOf(1'582'979'696, -14), literal("2020022909045600\xF2"));
    EXPECT_EQ(digitsOf(0, 0), literal("1970010100000000\0"));
    EXPECT_EQ(digitsOf({}, 8), literal("0000000000000000\0")) << "not given";
}

TEST(IsoFields, TextsAreCutBetweenCharactersAndFilledUp) {
    const auto text = [](size_t size, const char* utf8) {
        return bytesOf(size, [=](auto& fields) { fields.text(size, utf8); });
    };
    EXPECT_EQ(text(5, ""), "     ");
    EXPECT_EQ(text(5, "abc"), "abc  ");
    EXPECT_EQ(text(5, "abcde"), "abcde");
    EXPECT_EQ(text(5, "abcdef"), "abcde");
    EXPECT_EQ(text(5, "abcdü"), "abcd ");
    EXPECT_EQ(text(6, "abcdü!"), "abcdü");
    const auto wide = [](size_t size, const char* utf8) {
        return bytesOf(size, [=](auto& fields) { fields.wideText(size, utf8); });
    };
    EXPECT_EQ(wide(7, "aü"), literal("\0a\0\xFC\0 \0"));
    EXPECT_EQ(wide(4, "abc"), literal("\0a\0b"));
    EXPECT_EQ(wide(4, "a𝄞"), literal("\0a\0 ")) << "a pair stays a pair";
    EXPECT_EQ(wide(6, "a𝄞"), literal("\0a\xD8\x34\xDD\x1E"));
}

TEST(IsoTree, AFileOf4GiBHasTwoSections) {
    iso::Tree tree;
    iso::Node file;
    tree.setSize(file, (uint64_t{1} << 32) + 5);
    ASSERT_EQ(file.count, 2u);
    tree.placeFile(file, 1000);
    const auto sections = tree.sectionsOf(file);
    EXPECT_EQ(sections[0].bytes, 0xFFFF'F800u) << "whole blocks, below 4 GiB";
    EXPECT_EQ(sections[0].firstBlock, 1000u);
    EXPECT_EQ(sections[1].bytes, 2048u + 5);
    EXPECT_EQ(sections[1].firstBlock, 1000u + 0xFFFF'F800u / 2048);
    EXPECT_EQ(tree.sizeOf(file), (uint64_t{1} << 32) + 5);
    tree.setSize(file, 0xFFFF'F800);
    EXPECT_EQ(file.count, 1u);
    tree.setSize(file, 0);
    EXPECT_EQ(file.count, 0u);
}

} // namespace
