// What the catalog says of files, folders and links, field by field.
#include "Catalog.hpp"
#include "Image.hpp"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace test;

constexpr uint32_t hfsNow = 1'700'000'000u + 2'082'844'800u;

hfsplus::VolumeSettings settings() {
    hfsplus::VolumeSettings result;
    result.volumeName = "Holiday";
    result.created = Image::time;
    return result;
}

TEST(HfsCatalog, AFilesRecord) {
    Image image;
    const uint32_t file = image.file(0, "file", std::string(5000, 'd'));
    image.resourceFork(file, std::string(3000, 'r'));
    auto& node = image.node(file);
    node.mode = 04751;
    node.owner = 501;
    node.group = 20;
    node.textEncoding = 25;
    node.created = Image::time + 1;
    node.modified = Image::time + 2;
    node.changed = Image::time + 3;
    node.accessed = Image::time + 4;
    node.backedUp = Image::time + 5;
    node.finder.type = hfsplus::fourCharacters("TEXT");
    node.finder.creator = hfsplus::fourCharacters("ttxt");
    node.finder.flags = hfsplus::finder::isInvisible;
    node.finder.extendedFlags = 0x0004;
    node.finder.iconTop = -2;
    node.finder.iconLeft = 300;
    const std::string volume = image.bytes(settings());
    const auto record = Catalog(volume).at(2, u"file");
    ASSERT_EQ(record.size(), 248u);
    EXPECT_EQ(number(record, 0, 4), 0x00020002u) << "a file, which has a thread";
    EXPECT_EQ(number(record, 8, 4), 16u) << "its number";
    for (uint32_t i = 0; i < 5; ++i)
        EXPECT_EQ(number(record, 12 + 4 * i, 4), hfsNow + 1 + i) << i;
    EXPECT_EQ(number(record, 32, 4), 501u);
    EXPECT_EQ(number(record, 36, 4), 20u);
    EXPECT_EQ(number(record, 42, 2), 0104751u);
    EXPECT_EQ(number(record, 44, 4), 1u) << "one name";
    EXPECT_EQ(record.substr(48, 8), "TEXTttxt");
    EXPECT_EQ(number(record, 56, 2), 0x4000u);
    EXPECT_EQ(number(record, 58, 4), 0xFFFE012Cu) << "where its icon is";
    EXPECT_EQ(number(record, 72, 2), 4u);
    EXPECT_EQ(number(record, 80, 4), 25u);
    for (const auto& [at, byte, size] : {std::tuple(88, 'd', 5000), std::tuple(168, 'r', 3000)}) {
        const auto fork = record.substr(static_cast<size_t>(at), 80);
        const auto bytes = static_cast<size_t>(size);
        EXPECT_EQ(number(fork, 0, 8), bytes);
        EXPECT_EQ(number(fork, 12, 4), (bytes + 2047) / 2048);
        EXPECT_EQ(number(fork, 20, 4), (bytes + 2047) / 2048) << "all in the first extent";
        EXPECT_EQ(number(fork, 24, 8), 0u);
        EXPECT_EQ(volume.substr(blockAt(fork, 16), bytes), std::string(bytes, byte));
    }
    EXPECT_EQ(number(volume, 1024 + 72, 8), 1u | 1u << 25) << "the header knows of the encoding";
}

TEST(HfsCatalog, TheHeaderKnowsOfEveryTextEncoding) {
    Image image;
    for (const uint16_t encoding : std::initializer_list<uint16_t>{0, 1, 63, 140, 152, 700})
        image.node(image.file(0, std::to_string(encoding), "")).textEncoding = encoding;
    // Ukrainian and Farsi have bits of their own; what has none is only a hint in its record.
    EXPECT_EQ(number(image.bytes(settings()), 1024 + 72, 8),
              1u | 1u << 1 | uint64_t{1} << 63 | uint64_t{1} << 48 | uint64_t{1} << 49);
}

TEST(HfsCatalog, AFoldersRecord) {
    Image image;
    const uint32_t folder = image.folder(0, "folder");
    image.file(folder, "one", "");
    image.folder(folder, "two");
    image.file(folder, "three", "");
    auto& node = image.node(folder);
    node.mode = 0750;
    node.finder.windowTop = 1;
    node.finder.windowLeft = -2;
    node.finder.windowBottom = 3;
    node.finder.windowRight = 4;
    node.finder.flags = 0x0400;
    node.finder.view = 0x0102;
    node.finder.scrollTop = 5;
    node.finder.scrollLeft = -6;
    const std::string volume = image.bytes(settings());
    const Catalog catalog(volume);
    const auto record = catalog.at(2, u"folder");
    ASSERT_EQ(record.size(), 88u);
    EXPECT_EQ(number(record, 0, 4), 0x00010000u);
    EXPECT_EQ(number(record, 4, 4), 3u) << "items";
    EXPECT_EQ(number(record, 8, 4), 16u);
    EXPECT_EQ(number(record, 42, 2), 040750u);
    EXPECT_EQ(number(record, 48, 8), 0x0001FFFE00030004u);
    EXPECT_EQ(number(record, 56, 2), 0x0400u);
    EXPECT_EQ(number(record, 62, 2), 0x0102u);
    EXPECT_EQ(number(record, 64, 4), 0x0005FFFAu);
    EXPECT_EQ(number(catalog.at(1, u"Holiday"), 4, 4), 1u) << "items of the root";
    EXPECT_EQ(number(catalog.at(1, u"Holiday"), 8, 4), 2u);
    // The thread: kind, the folder around, the name.
    EXPECT_EQ(catalog.at(16, u""), std::string_view("\0\3\0\0\0\0\0\2\0\6\0f\0o\0l\0d\0e\0r", 22));
    EXPECT_EQ(number(catalog.at(2, u""), 4, 4), 1u);
    EXPECT_EQ(number(catalog.at(17, u""), 0, 8), 0x0004000000000010u) << "a file's";
}

TEST(HfsCatalog, TimesThatItCannotTellAreTheNearestOnes) {
    Image image;
    auto& node = image.node(image.file(0, "file", ""));
    node.created = hfsplus::never;
    node.modified = hfsplus::never - 1;
    node.changed = 0;
    const std::string volume = image.bytes(settings());
    const auto record = Catalog(volume).at(2, u"file");
    EXPECT_EQ(number(record, 12, 4), 0u);
    EXPECT_EQ(number(record, 16, 4), 0u);
    EXPECT_EQ(number(record, 20, 4), 2'082'844'800u);
    if constexpr (sizeof(std::time_t) > 4) {
        EXPECT_EQ(hfsplus::hfsTime(static_cast<std::time_t>(2'212'122'495)), UINT32_MAX) << "in 2040";
        EXPECT_EQ(hfsplus::hfsTime(static_cast<std::time_t>(2'212'122'496)), UINT32_MAX);
    }
}

TEST(HfsCatalog, AFileWithTwoNamesLiesInThePrivateFolder) {
    Image image;
    const uint32_t folder = image.folder(0, "folder"), file = image.file(0, "one", "bytes");
    image.link(folder, "two", file);
    image.node(file).created = 1; // a link isn't known by its file's date
    const std::string volume = image.bytes(settings());
    const Catalog catalog(volume);
    const std::u16string name(u"\0\0\0\0HFS+ Private Data", 21);
    const auto hidden = catalog.at(2, name);
    ASSERT_EQ(hidden.size(), 88u);
    EXPECT_EQ(number(hidden, 4, 4), 1u);
    EXPECT_EQ(number(hidden, 56, 2), 0x5000u) << "invisible, name locked";
    EXPECT_EQ(number(hidden, 58, 4), 0x57BC57BCu) << "22460, 22460";
    const auto id = static_cast<uint32_t>(number(hidden, 8, 4));
    EXPECT_EQ(id, 18u);
    const auto indirect = catalog.at(id, u"iNode17");
    EXPECT_EQ(number(indirect, 8, 4), 17u);
    EXPECT_EQ(number(indirect, 44, 4), 2u) << "names";
    EXPECT_EQ(number(indirect, 88, 8), 5u) << "bytes";
    std::set<uint64_t> ids;
    for (const auto& link : {catalog.at(2, u"one"), catalog.at(16, u"two")}) {
        EXPECT_EQ(link.substr(48, 8), "hlnkhfs+");
        EXPECT_EQ(number(link, 44, 4), 17u) << "which file";
        EXPECT_EQ(number(link, 12, 4), number(hidden, 12, 4)) << "created when the folder was";
        EXPECT_EQ(number(link, 88, 8), 0u);
        ids.insert(number(link, 8, 4));
    }
    EXPECT_EQ(ids, (std::set<uint64_t>{19, 20}));
    EXPECT_EQ(number(catalog.at(20, u""), 4, 4), 16u) << "the thread of the link in the folder";
    EXPECT_EQ(number(catalog.at(17, u""), 4, 4), 18u) << "and the file's own";
    EXPECT_EQ(number(catalog.at(1, u"Holiday"), 4, 4), 3u);
    EXPECT_EQ(number(volume, 1024 + 32, 4), 3u) << "files, links among them";
    EXPECT_EQ(number(volume, 1024 + 36, 4), 2u) << "folders";
    EXPECT_EQ(number(volume, 1024 + 64, 4), 21u);
}

TEST(HfsCatalog, ASymbolicLinksTargetIsItsBytes) {
    Image image;
    image.symbolicLink(0, "link", "../Übersee/file");
    image.symbolicLink(0, "nowhere", "");
    const std::string volume = image.bytes(settings());
    const Catalog catalog(volume);
    const auto link = catalog.at(2, u"link");
    EXPECT_EQ(link.substr(48, 8), "slnkrhap");
    EXPECT_EQ(number(link, 42, 2), 0120644u);
    EXPECT_EQ(number(link, 88, 8), 16u);
    EXPECT_EQ(volume.substr(blockAt(link, 104), 16), "../Übersee/file");
    EXPECT_EQ(number(catalog.at(2, u"nowhere"), 88, 8), 0u);
    EXPECT_EQ(number(catalog.at(2, u"nowhere"), 100, 4), 0u) << "and no blocks";
}

} // namespace
