// The structure of a volume, field by field.
#include "Catalog.hpp"
#include "Failure.hpp"
#include "Image.hpp"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace test;

constexpr uint32_t hfsNow = 1'700'000'000u + 2'082'844'800u;

hfsplus::VolumeSettings settings(uint32_t start = 0) {
    hfsplus::VolumeSettings result;
    result.volumeName = "Holiday";
    result.created = Image::time;
    result.identifier = 0x0123456789ABCDEF;
    result.volumeStart = start;
    result.structureStart = start + 1;
    return result;
}

TEST(HfsVolume, TheHeaderStandsAtBothEnds) {
    Image image;
    image.file(image.folder(0, "folder"), "file", std::string(5000, 'x'));
    auto of = settings(32);
    of.secondsEast = 3600;
    const std::string whole = image.bytes(of), volume = whole.substr(32 * 2048);
    const std::string header = volume.substr(1024, 512);
    EXPECT_EQ(volume.substr(volume.size() - 1024, 512), header);
    EXPECT_EQ(volume.substr(0, 1024), std::string(1024, '\0'));
    EXPECT_EQ(header.substr(0, 2), "H+");
    EXPECT_EQ(number(header, 2, 2), 4u) << "the version";
    EXPECT_EQ(number(header, 4, 4), 0x8100u) << "unmounted, and locked";
    EXPECT_EQ(number(header, 16, 4), hfsNow + 3600) << "made, in local time";
    EXPECT_EQ(number(header, 20, 4), hfsNow) << "changed, in UTC";
    EXPECT_EQ(number(header, 24, 4), 0u) << "never backed up";
    EXPECT_EQ(number(header, 32, 4), 1u) << "files";
    EXPECT_EQ(number(header, 36, 4), 1u) << "folders, without the root";
    EXPECT_EQ(number(header, 40, 4), 2048u);
    EXPECT_EQ(number(header, 44, 4), volume.size() / 2048);
    EXPECT_EQ(number(header, 48, 4), 0u) << "nothing is free";
    EXPECT_EQ(number(header, 64, 4), 18u) << "the next number: the folder is 16, the file 17";
    EXPECT_EQ(number(header, 72, 8), 1u) << "text encodings";
    EXPECT_EQ(number(header, 104, 8), 0x0123456789ABCDEFu);
    EXPECT_EQ(number(header, 432, 8), 0u) << "no startup file";
}

TEST(HfsVolume, EveryBlockCountsAsUsed) {
    Image image;
    image.file(0, "file", std::string(20'000'000, 'x'));
    const std::string volume = image.bytes(settings());
    const uint64_t total = volume.size() / 2048;
    const uint64_t bytes = number(volume, 1024 + 112, 8), at = number(volume, 1024 + 112 + 16, 4);
    ASSERT_GE(bytes * 8, total);
    EXPECT_EQ((at + bytes / 2048 + 1) * 2048, volume.size()) << "in front of the last block";
    for (uint64_t bit = 0; bit < bytes * 8; ++bit) {
        const auto byte = static_cast<uint8_t>(volume[static_cast<size_t>(at * 2048 + bit / 8)]);
        ASSERT_EQ((byte >> (7 - bit % 8) & 1) != 0, bit < total) << bit;
    }
}

TEST(HfsVolume, TheBitmapGrowsWithTheVolume) {
    hfsplus::Volume volume(Image().tree(), settings(100));
    EXPECT_EQ(volume.endBlocks(1000), 2u);
    EXPECT_EQ(volume.endBlocks(100 + 8 * 2048 - 2), 2u) << "16384 blocks, one block of bits";
    EXPECT_EQ(volume.endBlocks(100 + 8 * 2048 - 1), 3u);
    EXPECT_EQ(volume.endBlocks(50'000'000), 3052u + 1) << "a hundred gigabytes";
}

TEST(HfsVolume, SaysWhichBlocksItMakes) {
    auto of = settings(10);
    of.structureStart = 20;
    hfsplus::Volume volume(Image().tree(), of);
    EXPECT_EQ(volume.structureBlocks(), 2u + 4 + 8) << "overflow, attributes, catalog with one leaf";
    volume.setContentsEnd(100);
    EXPECT_EQ(volume.end(), 102u);
    std::set<uint64_t> made, wanted{10, 100, 101};
    for (uint64_t at = 0; at < 200; ++at)
        if (volume.has(at)) made.insert(at);
    for (uint64_t at = 20; at < 34; ++at)
        wanted.insert(at);
    EXPECT_EQ(made, wanted);
}

TEST(HfsVolume, APlaceThatComesLaterCounts) {
    Image image;
    const uint32_t file = image.file(0, "file", "x");
    hfsplus::Volume volume(image.tree(), settings());
    volume.setContentsEnd(1000);
    const auto startOf = [&](uint32_t firstBlock) {
        volume.tree().extents[volume.tree().nodes[file].data.first].firstBlock = firstBlock;
        std::string bytes(volume.structureBlocks() * 2048 + 2048, '\0');
        for (size_t at = 0; at < bytes.size() / 2048; ++at) {
            const auto to = std::as_writable_bytes(std::span(bytes)).subspan(at * 2048).first<2048>();
            volume.block(at, to);
        }
        return number(Catalog(bytes).at(2, u"file"), 104, 4);
    };
    EXPECT_EQ(startOf(100), 100u);
    EXPECT_EQ(startOf(200), 200u);
}

TEST(HfsVolume, AForkInManyPiecesGoesOnInTheOverflowFile) {
    Image image;
    const uint32_t file = image.file(0, "file", std::string(20 * 2048, 'd'), 20);
    image.resourceFork(file, std::string(9 * 4096, 'r'), 9);
    image.file(0, "other", std::string(8 * 2048, 'o'), 8);
    const std::string volume = image.bytes(settings(0));
    const Tree overflow(volume, std::string_view(volume).substr(1024 + 192, 80));
    EXPECT_EQ(overflow.header(20, 2), 10u) << "the longest key";
    EXPECT_EQ(overflow.header(38, 4), 2u) << "big keys, of one length";
    const auto records = leavesOf(overflow);
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(number(records[0], 0, 4), 0x000A0000u) << "a data fork";
    EXPECT_EQ(number(records[0], 4, 8), 0x0000001000000008u) << "of 16, from its block 8 on";
    EXPECT_EQ(number(records[1], 4, 8), 0x0000001000000010u);
    EXPECT_EQ(number(records[2], 0, 4), 0x000AFF00u) << "a resource fork";
    EXPECT_EQ(number(records[2], 4, 8), 0x0000001000000010u) << "from its block 16 on";
    ASSERT_EQ(records[1].size(), 12u + 64);
    EXPECT_EQ(number(records[1], 12 + 3 * 8 + 4, 4), 1u) << "the twentieth piece";
    EXPECT_EQ(number(records[1], 12 + 4 * 8, 8), 0u) << "was the last";
    EXPECT_EQ(volume.substr(blockAt(records[1], 12 + 3 * 8), 2048), std::string(2048, 'd'));
}

TEST(HfsVolume, AFileMayBeLargerThanFourGigabytes) {
    Image image;
    const uint32_t file = image.file(0, "large", "x");
    hfsplus::Tree tree = image.tree();
    const uint64_t size = (uint64_t{9} << 30) + 1;
    tree.extents[tree.nodes[file].data.first] = {50'000, size};
    hfsplus::Volume volume(std::move(tree), settings(0));
    volume.setContentsEnd(10'000'000);
    std::string bytes(60 * 2048, '\0');
    for (uint64_t at = 0; at < 60; ++at)
        if (volume.has(at))
            volume.block(
                at, std::span<std::byte, 2048>(reinterpret_cast<std::byte*>(bytes.data()) + at * 2048, 2048));
    const Catalog catalog(bytes);
    const auto record = catalog.at(2, u"large");
    EXPECT_EQ(number(record, 88, 8), size);
    EXPECT_EQ(number(record, 104, 8), uint64_t{50'000} << 32 | ((9u << 19) + 1));
}

TEST(HfsVolume, NoAttributesIsAnEmptyTree) {
    const std::string volume = Image().bytes(settings());
    const Tree attributes(volume, std::string_view(volume).substr(1024 + 352, 80));
    EXPECT_EQ(attributes.bytes.size(), 8192u);
    EXPECT_EQ(attributes.header(0, 18), 0u) << "no depth, no root, no leaves";
    EXPECT_EQ(attributes.header(20, 2), 266u);
    EXPECT_EQ(attributes.header(22, 4), 1u) << "nodes";
    EXPECT_TRUE(leavesOf(attributes).empty());
}

TEST(HfsVolume, TwoNamesThatAreOneAreRefused) {
    Image image;
    image.file(0, "Read me", "");
    image.file(0, "read ME", "");
    try {
        hfsplus::Volume volume(image.tree(), settings());
        FAIL() << "both were taken";
    } catch (const engine::Failure& failure) {
        EXPECT_EQ(failure.error().code, engine::ErrorCode::FileLocationConflict);
        EXPECT_NE(failure.error().message.find("are the same name in HFS+"), std::string::npos)
            << failure.error().message;
    }
}

TEST(HfsVolume, AFolderOfTwoNamesIsRefused) {
    Image image;
    image.link(0, "another name", image.folder(0, "folder"));
    try {
        hfsplus::Volume volume(image.tree(), settings());
        FAIL() << "it was taken";
    } catch (const engine::Failure& failure) {
        EXPECT_EQ(failure.error().code, engine::ErrorCode::Internal);
    }
}

} // namespace
