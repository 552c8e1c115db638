// Alias records and their resource forks, field by field.
#include "hfsplus/Alias.hpp"
#include "Catalog.hpp"
#include "Failure.hpp"
#include "Image.hpp"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace test;
using namespace std::string_literals;
using engine::hfsplus::AliasTarget;

std::map<uint64_t, std::string> tagsOf(const std::string& record) {
    std::map<uint64_t, std::string> tags;
    size_t at = 150;
    while (number(record, at, 2) != 0xFFFF) {
        const auto size = static_cast<size_t>(number(record, at + 2, 2));
        tags[number(record, at, 2)] = record.substr(at + 4, size);
        at += 4 + size + size % 2;
    }
    EXPECT_EQ(number(record, at + 2, 2), 0u);
    EXPECT_EQ(at + 4, record.size()) << "the end is the end";
    return tags;
}

AliasTarget target() {
    AliasTarget of;
    of.volumeName = u"Holiday";
    of.volumeCreated = Image::time;
    of.secondsEast = 3600;
    of.name = u"U\u0308bersee";
    of.id = 77;
    of.created = Image::time + 5;
    of.type = engine::hfsplus::fourCharacters("TEXT");
    of.creator = engine::hfsplus::fourCharacters("ttxt");
    of.folders = {{20, u"outer"}, {30, u"in ner"}};
    of.path = "/outer/in ner/Übersee";
    return of;
}

constexpr uint32_t hfsNow = 1'700'000'000u + 2'082'844'800u;

TEST(HfsAliases, TheRecordsFields) {
    const std::string record = aliasRecord(target());
    EXPECT_EQ(number(record, 0, 4), 0u);
    EXPECT_EQ(number(record, 4, 2), record.size());
    EXPECT_EQ(number(record, 6, 2), 2u) << "the version";
    EXPECT_EQ(number(record, 8, 2), 0u) << "a file";
    EXPECT_EQ(record.substr(10, 28), "\7Holiday" + std::string(20, '\0'));
    EXPECT_EQ(number(record, 38, 4), hfsNow + 3600) << "as the volume header has it";
    EXPECT_EQ(record.substr(42, 2), "H+");
    EXPECT_EQ(number(record, 44, 2), 5u) << "on what can be ejected";
    EXPECT_EQ(number(record, 46, 4), 30u) << "the folder";
    EXPECT_EQ(record.substr(50, 64), "\x08U?bersee" + std::string(55, '\0')) << "as ASCII has it";
    EXPECT_EQ(number(record, 114, 4), 77u);
    EXPECT_EQ(number(record, 118, 4), hfsNow + 5);
    EXPECT_EQ(record.substr(122, 8), "TEXTttxt");
    EXPECT_EQ(number(record, 130, 4), 0xFFFFFFFFu) << "no way from the alias";
    EXPECT_EQ(record.substr(134, 16), std::string(16, '\0'));
}

TEST(HfsAliases, TheTagsSayItInOtherWords) {
    const auto tags = tagsOf(aliasRecord(target()));
    EXPECT_EQ(tags.at(0), "in ner");
    EXPECT_EQ(tags.at(1), "\0\0\0\x1E\0\0\0\x14"s) << "from the inside";
    EXPECT_EQ(tags.at(2), "Holiday:outer:in ner:U?bersee");
    EXPECT_EQ(tags.at(14), "\0\x08\0U\x03\x08\0b\0e\0r\0s\0e\0e"s);
    EXPECT_EQ(tags.at(15), "\0\7\0H\0o\0l\0i\0d\0a\0y"s);
    EXPECT_EQ(number(tags.at(16), 0, 8), uint64_t{hfsNow} << 16) << "in UTC";
    EXPECT_EQ(number(tags.at(17), 0, 8), uint64_t{hfsNow + 5} << 16);
    EXPECT_EQ(tags.at(18), "/outer/in ner/Übersee");
    EXPECT_EQ(tags.at(19), "/Volumes/Holiday");
    EXPECT_EQ(tags.size(), 9u);
}

TEST(HfsAliases, OfAnItemInTheRoot) {
    AliasTarget of = target();
    of.folders.clear();
    of.isFolder = true;
    const std::string record = aliasRecord(of);
    EXPECT_EQ(number(record, 8, 2), 1u);
    EXPECT_EQ(number(record, 46, 4), 2u);
    const auto tags = tagsOf(record);
    EXPECT_EQ(tags.at(0), "Holiday");
    EXPECT_FALSE(tags.contains(1));
    EXPECT_EQ(tags.at(2), "Holiday:U?bersee");
}

TEST(HfsAliases, LongNamesAreCutInTheFixedFields) {
    AliasTarget of = target();
    of.volumeName = std::u16string(40, u'v');
    of.name = std::u16string(100, u'n');
    const std::string record = aliasRecord(of);
    EXPECT_EQ(record.substr(10, 28), "\x1B" + std::string(27, 'v'));
    EXPECT_EQ(record.substr(50, 64), "\x3F" + std::string(63, 'n'));
    EXPECT_EQ(tagsOf(record).at(14).size(), 202u) << "whole in the tag";
}

TEST(HfsAliases, AResourceForkWithOneResource) {
    const std::string fork = engine::hfsplus::aliasResourceFork("record!");
    ASSERT_EQ(fork.size(), 256u + 4 + 7 + 50);
    EXPECT_EQ(fork.substr(0, 16), "\0\0\1\0\0\0\1\x0B\0\0\0\x0B\0\0\0\x32"s);
    EXPECT_EQ(fork.substr(256, 11), "\0\0\0\7record!"s);
    const std::string map = fork.substr(267);
    EXPECT_EQ(map.substr(0, 16), fork.substr(0, 16)) << "the head once more";
    EXPECT_EQ(number(map, 24, 4), 28u << 16 | 50u) << "where types are, and names would be";
    const std::string types = map.substr(28);
    EXPECT_EQ(number(types, 0, 2), 0u) << "one type";
    EXPECT_EQ(types.substr(2, 4), "alis");
    EXPECT_EQ(number(types, 6, 2), 0u) << "one of it";
    EXPECT_EQ(number(types, 8, 2), 10u) << "right behind";
    EXPECT_EQ(types.substr(10), "\0\0\xFF\xFF\0\0\0\0\0\0\0\0"s) << "number 0, no name, data at 0";
}

TEST(HfsAliases, InAVolumeTheyTellTheTargetsPlace) {
    Image image;
    const uint32_t folder = image.folder(0, "folder"), file = image.file(folder, "file", "x");
    image.node(file).finder.type = engine::hfsplus::fourCharacters("TEXT");
    image.node(file).finder.creator = engine::hfsplus::fourCharacters("ttxt");
    const uint32_t plain = image.file(folder, "plain", "y");
    image.link(0, "again", plain);
    image.alias(0, "to file", file);
    image.alias(0, "to folder", folder);
    image.alias(folder, "to plain", plain);
    image.alias(folder, "to root", 0);
    hfsplus::VolumeSettings settings;
    settings.volumeName = "Holiday";
    settings.created = Image::time;
    const std::string volume = image.bytes(settings);
    const test::Catalog catalog(volume);
    const auto recordOf = [&](std::string_view file) {
        EXPECT_EQ(number(file, 56, 2), 0x8000u) << "is an alias";
        EXPECT_EQ(number(file, 88, 8), 0u) << "no data";
        const auto at = static_cast<size_t>(number(file, 168 + 16, 4)) * 2048;
        EXPECT_EQ(number(volume, at + 4, 4) + 50, number(file, 168, 8));
        return volume.substr(at + 260, static_cast<size_t>(number(volume, at + 256, 4)));
    };
    const auto toFile = catalog.at(2, u"to file"), toFolder = catalog.at(2, u"to folder");
    EXPECT_EQ(toFile.substr(48, 8), "TEXTttxt") << "it looks like the file";
    EXPECT_EQ(toFolder.substr(48, 8), "fdrpMACS");
    EXPECT_EQ(catalog.at(16, u"to plain").substr(48, 8), "alisMACS");
    std::string record = recordOf(toFile);
    EXPECT_EQ(number(record, 46, 4), 16u);
    EXPECT_EQ(number(record, 114, 4), number(catalog.at(16, u"file"), 8, 4));
    EXPECT_EQ(tagsOf(record).at(18), "/folder/file");
    record = recordOf(toFolder);
    EXPECT_EQ(number(record, 8, 2), 1u);
    EXPECT_EQ(number(record, 46, 4), 2u);
    EXPECT_EQ(number(record, 114, 4), 16u);
    record = recordOf(catalog.at(16, u"to plain"));
    const auto named = tagsOf(record).at(18) == "/again" ? catalog.at(2, u"again") : catalog.at(16, u"plain");
    EXPECT_EQ(number(record, 114, 4), number(named, 8, 4)) << "of a file with two names, one of the names";
    record = recordOf(catalog.at(16, u"to root"));
    EXPECT_EQ(number(record, 46, 4), 1u) << "what the root lies in";
    EXPECT_EQ(number(record, 114, 4), 2u);
    EXPECT_EQ(tagsOf(record).at(18), "/");
    EXPECT_EQ(tagsOf(record).at(2), "Holiday:");
}

// Its lengths have 16 bits.
TEST(HfsAliases, AWayThatIsTooLongIsRefused) {
    AliasTarget of = target();
    const std::string record = aliasRecord(of);
    of.path = "/" + std::string(of.path.size() - 1 + 0xFFFF - record.size() - 1, 'n');
    const std::string longest = aliasRecord(of);
    EXPECT_GE(longest.size(), 0xFFFEu);
    EXPECT_EQ(number(longest, 4, 2), longest.size());
    EXPECT_EQ(tagsOf(longest).at(18), of.path);
    of.path += "/way/the end";
    try {
        aliasRecord(of);
        FAIL();
    } catch (const engine::Failure& failure) {
        EXPECT_EQ(failure.error().code, engine::ErrorCode::FileLocationConflict);
        EXPECT_EQ(failure.error().message,
                  "A Finder alias can't lead to \"the end\", which lies too deep in the "
                  "tree; leave the alias out.");
    }
}

} // namespace
