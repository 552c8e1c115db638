// System use entries, byte by byte: what they say, and how they are spread.
#include "iso/RockRidge.hpp"
#include "Image.hpp"

#include <gtest/gtest.h>

namespace {

using namespace test;
using iso::SystemUse;

// All entries as if they were in one place.
std::string entriesOf(SystemUse& use) {
    uint32_t cursor = 0;
    EXPECT_FALSE(use.fit(100'000, cursor));
    std::string bytes(use.parts()[0].bytes, '\0');
    use.put(0, 0, std::as_writable_bytes(std::span(bytes)));
    return bytes;
}
template <size_t Size>
std::string literal(const char (&text)[Size]) {
    return {text, Size - 1};
}

TEST(IsoRockRidge, AttributesOfRevision112) {
    iso::Node node;
    node.kind = iso::NodeKind::File;
    node.mode = 07654;
    node.owner = 0x01020304;
    node.group = 5;
    node.modified = 0;
    node.accessed = 1;
    node.changed = 2;
    SystemUse use;
    iso::rockRidge::addAttributes(use, node, nullptr, 3, 9, 4);
    EXPECT_EQ(entriesOf(use), literal("PX\x2C\x01"
                                      "\xAC\x8F\0\0\0\0\x8F\xAC"
                                      "\3\0\0\0\0\0\0\3"
                                      "\4\3\2\1\1\2\3\4"
                                      "\5\0\0\0\0\0\0\5"
                                      "\x9\0\0\0\0\0\0\x9"
                                      "TF\x1A\x01\x0E"
                                      "\x46\1\1\1\0\0\4"
                                      "\x46\1\1\1\0\1\4"
                                      "\x46\1\1\1\0\2\4"));
}

// In the order of their bits in the flags: creation, modification, access, attributes, backup, expiration, effect.
TEST(IsoRockRidge, MoreDatesStandAmongTheUsualOnes) {
    iso::Node node;
    node.modified = 1;
    node.accessed = 2;
    node.changed = 3;
    iso::MoreDates more;
    more.recorded = 50; // which is the record's
    more.created = 0;
    more.backedUp = 4;
    more.effective = 6;
    SystemUse use;
    iso::rockRidge::addAttributes(use, node, &more, 1, 1, 0);
    std::string wanted = literal("TF\x2F\x01\x5F");
    for (const char second : {'\0', '\1', '\2', '\3', '\4', '\6'})
        wanted += literal("\x46\1\1\0\0") + second + '\0';
    EXPECT_EQ(entriesOf(use).substr(44), wanted);
}

TEST(IsoRockRidge, NamesInPieces) {
    const auto entries = [](size_t length) {
        SystemUse use;
        iso::rockRidge::addName(use, std::string(length, 'n'));
        return entriesOf(use);
    };
    EXPECT_EQ(entries(3), literal("NM\x08\x01\0nnn"));
    EXPECT_EQ(entries(250), literal("NM\xFF\x01\0") + std::string(250, 'n'));
    EXPECT_EQ(entries(251), literal("NM\xFF\x01\x01") + std::string(250, 'n') + literal("NM\x06\x01\0n"));
}

TEST(IsoRockRidge, TargetsByComponents) {
    const auto entries = [](const std::string& target) {
        SystemUse use;
        iso::rockRidge::addTarget(use, target);
        return entriesOf(use);
    };
    EXPECT_EQ(entries("a"), literal("SL\x08\x01\0\0\1a"));
    EXPECT_EQ(entries("/"), literal("SL\x07\x01\0\x08\0"));
    EXPECT_EQ(entries("/a/../bc/./d"), literal("SL\x15\x01\0\x08\0\0\1a\4\0\0\2bc\2\0\0\1d"));
    EXPECT_EQ(entries("a//b/"), entries("a/b")) << "what is between is what counts";
    EXPECT_EQ(entries("..."), literal("SL\x0A\x01\0\0\3...")) << "a name";
    // A component that is longer than an entry goes on in the next one.
    EXPECT_EQ(entries(std::string(250, 'a')),
              literal("SL\xFF\x01\x01\x01\xF8") + std::string(248, 'a') + literal("SL\x09\x01\0\0\2aa"));
    // An entry ends within a component, also where one ends by itself.
    EXPECT_EQ(entries(std::string(246, 'a') + "/b"),
              literal("SL\xFF\x01\x01\0\xF6") + std::string(246, 'a') + literal("\1\0SL\x08\x01\0\0\1b"));
    EXPECT_EQ(entries(std::string(247, 'a') + "/b"),
              literal("SL\xFD\x01\x01\1\xF6") + std::string(246, 'a') + literal("SL\x0B\x01\0\0\1a\0\1b"));
}

// Entries that name themselves: the n-th has that size.
std::vector<SystemUse::Part> spread(const std::vector<size_t>& sizes, size_t room, uint32_t& cursor) {
    SystemUse use;
    for (const size_t size : sizes)
        use.add("XX", size);
    use.fit(room, cursor);
    return {use.parts().begin(), use.parts().end()};
}

TEST(IsoSystemUse, WhatFitsStaysInTheRecord) {
    uint32_t cursor = 100;
    const auto parts = spread({100, 50}, 150, cursor);
    ASSERT_EQ(parts.size(), 1u);
    EXPECT_EQ(parts[0].bytes, 150u);
    EXPECT_EQ(cursor, 100u);
}

TEST(IsoSystemUse, WhatDoesNotGoesOnElsewhere) {
    uint32_t cursor = 100;
    const auto parts = spread({100, 50, 5}, 154, cursor);
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[0].endEntry, 1u) << "with the second there would be no room for what leads on";
    EXPECT_EQ(parts[0].bytes, 128u);
    EXPECT_EQ(parts[1].offset, 100u);
    EXPECT_EQ(parts[1].bytes, 55u);
    EXPECT_EQ(cursor, 155u);
}

TEST(IsoSystemUse, APieceLiesWithinABlock) {
    uint32_t cursor = 2000;
    auto parts = spread({100, 48}, 128, cursor);
    EXPECT_EQ(parts[1].offset, 2000u) << "just fits";
    EXPECT_EQ(cursor, 2048u);
    cursor = 2000;
    parts = spread({100, 49}, 128, cursor);
    EXPECT_EQ(parts[1].offset, 2048u);
    EXPECT_EQ(cursor, 2097u);
}

TEST(IsoSystemUse, WhatIsLongerThanABlockGoesFromOneToTheNext) {
    uint32_t cursor = 10;
    const auto parts = spread(std::vector<size_t>(20, 255), 28, cursor);
    ASSERT_EQ(parts.size(), 4u);
    EXPECT_EQ(parts[0].bytes, 28u) << "nothing but what leads on";
    EXPECT_EQ(parts[1].offset, 2048u);
    EXPECT_EQ(parts[1].bytes, 7u * 255 + 28);
    EXPECT_EQ(parts[2].offset, 4096u);
    EXPECT_EQ(parts[3].offset, 6144u);
    EXPECT_EQ(parts[3].bytes, 6u * 255);
    uint32_t again = 2048; // where it came to lie: it lies there again
    EXPECT_EQ(spread(std::vector<size_t>(20, 255), 28, again)[1].offset, 2048u);
    EXPECT_EQ(again, cursor);
}

// SUSP 5.1: block, offset and length of the next area, in both orders.
TEST(IsoSystemUse, TheEntryThatLeadsOn) {
    SystemUse use;
    use.add("XX", 100);
    use.add("YY", 200);
    uint32_t cursor = 2048 + 7;
    ASSERT_TRUE(use.fit(130, cursor));
    std::string bytes(128, '\0');
    use.put(0, 0x1000, std::as_writable_bytes(std::span(bytes)));
    EXPECT_EQ(bytes.substr(0, 4), "XX\x64\x01");
    EXPECT_EQ(bytes.substr(100), literal("CE\x1C\x01"
                                         "\x01\x10\0\0\0\0\x10\x01"
                                         "\x07\0\0\0\0\0\0\x07"
                                         "\xC8\0\0\0\0\0\0\xC8"));
}

} // namespace
