// The structure of a volume, block by block.
#include "Failure.hpp"
#include "Image.hpp"
#include "udf/Fields.hpp"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace {

using namespace test;

using Block = std::array<std::byte, udf::blockBytes>;

uint32_t number(const Block& block, size_t at, size_t count) {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value |= std::to_integer<uint32_t>(block[at + i]) << (8 * i);
    return value;
}

Block blockOf(const udf::Volume& volume, uint64_t at) {
    Block block;
    block.fill(std::byte{0xEE});
    volume.block(at, block);
    return block;
}

void expectTag(const Block& block, uint32_t kind, uint32_t location) {
    EXPECT_EQ(number(block, 0, 2), kind);
    EXPECT_EQ(number(block, 12, 4), location);
    uint32_t sum = 0;
    for (size_t i = 0; i < 16; ++i)
        sum += i == 4 ? 0 : number(block, i, 1);
    EXPECT_EQ(sum & 0xFF, number(block, 4, 1));
    const size_t length = number(block, 10, 2);
    EXPECT_EQ(udf::checksumOf(std::span(block).subspan(16, length)), number(block, 8, 2));
}

TEST(UdfVolume, EveryDescriptorsTagIsRight) {
    Image image;
    image.file(image.folder(0, "folder"), "file", "bytes");
    udf::Volume volume(image.tree(), {udf::Revision::V102, "Volume", "", {}, 1'700'000'000});
    volume.setTotalBlocks(1000);
    const uint32_t kinds[] = {1, 4, 5, 6, 7, 8};
    for (const uint32_t start : {32u, 48u})
        for (uint32_t i = 0; i < 6; ++i)
            expectTag(blockOf(volume, start + i), kinds[i], start + i);
    expectTag(blockOf(volume, 64), 9, 64);
    expectTag(blockOf(volume, 65), 8, 65);
    for (const uint32_t anchor : {256u, 999u}) {
        const Block block = blockOf(volume, anchor);
        expectTag(block, 2, anchor);
        EXPECT_EQ(number(block, 20, 4), 32u);
        EXPECT_EQ(number(block, 28, 4), 48u);
    }
    expectTag(blockOf(volume, 257), 256, 0);
    expectTag(blockOf(volume, 258), 8, 1);
    for (uint32_t node = 0; node < 3; ++node)
        expectTag(blockOf(volume, 259 + node), 261, 2 + node);
    EXPECT_EQ(volume.structureBlocks(), 2u + 3 + 2) << "two for the file set, three nodes, two folders";
}

TEST(UdfVolume, SaysWhichBlocksItMakes) {
    Image image;
    udf::Volume volume(image.tree(), {});
    volume.setTotalBlocks(500);
    std::set<uint64_t> made;
    for (uint64_t at = 0; at < 600; ++at)
        if (volume.has(at)) made.insert(at);
    std::set<uint64_t> wanted{256, 257, 258, 259, 260, 499};
    for (uint64_t at = 32; at <= 65; ++at)
        wanted.insert(at);
    EXPECT_EQ(made, wanted);
}

TEST(UdfVolume, StatesTheRevisionThatWasAskedFor) {
    for (const auto revision : {udf::Revision::V102, udf::Revision::V150}) {
        udf::Volume volume(Image().tree(), {revision, "Volume", "", {}, 0});
        volume.setTotalBlocks(500);
        const auto wanted = static_cast<uint32_t>(revision);
        EXPECT_EQ(number(blockOf(volume, 35), 240, 2), wanted) << "the logical volume's domain";
        EXPECT_EQ(number(blockOf(volume, 64), 88 + 32 + 8, 2), wanted) << "what it takes to read it";
    }
}

TEST(UdfVolume, ALargeFileIsSeveralExtentsOfLessThanAGibibyte) {
    Image image;
    const uint64_t size = (uint64_t{5} << 30) + 12345;
    const uint32_t node = image.file(0, "large", "");
    image.nodes[node].size = size;
    image.nodes[node].firstBlock = 3000;
    udf::Volume volume(image.tree(), {});
    volume.setTotalBlocks(4'000'000);
    const Block block = blockOf(volume, 259 + node);
    const uint32_t count = number(block, 172, 4) / 8;
    ASSERT_EQ(count, 6u);
    uint64_t bytes = 0;
    uint32_t expected = 3000 - udf::partitionStart;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t part = number(block, 176 + 8 * i, 4);
        EXPECT_LT(part, 1u << 30);
        EXPECT_EQ(number(block, 180 + 8 * i, 4), expected);
        expected += (part + 2047) / 2048;
        bytes += part;
    }
    EXPECT_EQ(bytes, size);
}

// They take the place of extents.
TEST(UdfVolume, MoreDatesOfTheLargestFileAreRefused) {
    for (const uint64_t less : {0u, 7u}) {
        Image image;
        const uint32_t node = image.file(0, "large", "");
        image.nodes[node].size = udf::largestFile - less * ((uint64_t{1} << 30) - 2048);
        udf::Tree tree = image.tree();
        tree.dates[node].created = 1;
        try {
            udf::Volume volume(std::move(tree), {});
            EXPECT_NE(less, 0u);
        } catch (const engine::Failure& failure) {
            EXPECT_EQ(less, 0u);
            EXPECT_EQ(failure.error().code, engine::ErrorCode::FilesystemsNotSupported);
            EXPECT_EQ(failure.error().message,
                      "A file of 251255.1 MB can have no date of creation, backup or effect "
                      "in UDF; leave out the date, or UDF.");
        }
    }
}

// ECMA-167 4/14.9.5: execute, write, read, change attributes and delete, for others, group and owner.
TEST(UdfVolume, ModesAreKeptAndWhoMayWriteMayDelete) {
    Image image;
    const uint32_t node = image.file(0, "file", "");
    image.nodes[node].mode = 04641;
    udf::Volume volume(image.tree(), {});
    volume.setTotalBlocks(1000);
    const Block block = blockOf(volume, 259 + node);
    EXPECT_EQ(number(block, 44, 4), 0b11110'00100'00001u);
    EXPECT_EQ(number(block, 16 + 18, 2), 1u << 6) << "set-user-id, in the entry's flags";
}

// ECMA-167 4/14.16: a byte for the kind, one for the length of the name, two zeros, the name.
TEST(UdfVolume, ALinksTargetIsPathComponents) {
    Image image;
    const uint32_t node = image.symbolicLink(0, "link", "/a/../ü/./b");
    udf::Volume volume(image.tree(), {});
    volume.setTotalBlocks(1000);
    const Block block = blockOf(volume, 259 + node);
    EXPECT_EQ(number(block, 16 + 11, 1), 12u) << "the kind of file";
    EXPECT_EQ(number(block, 16 + 18, 2) & 7, 3u) << "kept in the entry itself";
    const std::string wanted = {2, 0, 0, 0, 5, 2, 0, 0, 8, 'a',
                                3, 0, 0, 0, 5, 2, 0, 0, 8, static_cast<char>(0xFC),
                                4, 0, 0, 0, 5, 2, 0, 0, 8, 'b'};
    EXPECT_EQ(number(block, 56, 4), wanted.size());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(block.data()) + 176, wanted.size()), wanted);
}

TEST(UdfVolume, ALongLinksTargetHasBlocksOfItsOwn) {
    Image image;
    std::string target;
    for (int i = 0; i < 300; ++i)
        target += "folder/../";
    const uint32_t node = image.symbolicLink(0, "link", target);
    udf::Volume volume(image.tree(), {});
    volume.setTotalBlocks(1000);
    const Block entry = blockOf(volume, 259 + node);
    EXPECT_EQ(number(entry, 16 + 18, 2) & 7, 0u) << "by short allocations";
    EXPECT_EQ(number(entry, 172, 4), 8u);
    const uint32_t bytes = number(entry, 176, 4), at = number(entry, 180, 4);
    ASSERT_EQ(bytes, 300u * (4 + 7 + 4));
    std::string stored;
    for (uint32_t i = 0; i < (bytes + 2047) / 2048; ++i) {
        const Block block = blockOf(volume, udf::partitionStart + at + i);
        stored.append(reinterpret_cast<const char*>(block.data()), block.size());
    }
    std::string wanted;
    for (int i = 0; i < 300; ++i)
        wanted += std::string("\x05\x07\0\0\x08"
                              "folder\x03\0\0\0",
                              15);
    EXPECT_EQ(stored.substr(0, bytes), wanted);
}

// The counts have 16 bits, of which a folder needs one for its own name.
TEST(UdfVolume, MoreLinksThanCanBeCountedAreRefused) {
    const auto told = [](uint32_t count, bool areFolders) -> std::string {
        Image image;
        const uint32_t parent = image.folder(0, "around");
        const uint32_t file = areFolders ? 0 : image.file(parent, "0", "bytes");
        for (uint32_t i = areFolders ? 0 : 1; i < count; ++i)
            if (areFolders)
                image.folder(parent, std::to_string(i));
            else
                image.link(parent, std::to_string(i), file);
        try {
            udf::Volume volume(image.tree(), {});
        } catch (const engine::Failure& failure) {
            EXPECT_EQ(failure.error().code, engine::ErrorCode::FilesystemsNotSupported);
            return failure.error().message;
        }
        return {};
    };
    EXPECT_EQ(told(65'535, false), "");
    EXPECT_EQ(told(65'536, false),
              "The file \"65535\" has more names than UDF can count, which is 65,535; leave "
              "some of its links out, or UDF.");
    EXPECT_EQ(told(65'534, true), "");
    EXPECT_EQ(told(65'535, true),
              "The folder that \"65534\" is in has more folders than UDF can count, which is "
              "65,534; leave out UDF.");
}

} // namespace
