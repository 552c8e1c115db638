// The structure of a volume, field by field; and what is refused.
#include "Failure.hpp"
#include "Image.hpp"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace {

using namespace test;

std::string refusalOf(const Image& image) {
    try {
        image.volume();
    } catch (const engine::Failure& failure) {
        return failure.error().message;
    }
    return "none";
}

struct Record {
    uint32_t block, bytes, flags;
    std::string date, name;
    size_t length;
};
Record recordAt(std::span<const std::byte> block, size_t at) {
    const auto number = [&](size_t offset, size_t count) {
        const uint32_t value = little(block, at + offset, count);
        EXPECT_EQ(value, big(block, at + offset + count, count)) << "both orders";
        return value;
    };
    EXPECT_EQ(little(block, at + 1, 1), 0u) << "no extended attributes";
    EXPECT_EQ(little(block, at + 26, 2), 0u) << "not interleaved";
    EXPECT_EQ(number(28, 2), 1u) << "the one volume of the set";
    return {number(2, 4),
            number(10, 4),
            little(block, at + 25, 1),
            textAt(block, at + 18, 7),
            textAt(block, at + 33, little(block, at + 32, 1)),
            little(block, at, 1)};
}
std::vector<Record> recordsOf(const Block& block) {
    std::vector<Record> records;
    for (size_t at = 0; at < block.size() && little(block, at, 1) != 0; at += records.back().length)
        records.push_back(recordAt(block, at));
    return records;
}

Image plain() {
    Image image;
    image.settings.rules.rockRidge = false;
    image.joliet = false;
    return image;
}

// ECMA-119 8.4: every field at its place.
TEST(IsoVolume, ThePrimaryDescriptor) {
    Image image = plain();
    image.settings.system = "System";
    image.settings.volumeName = "Volume";
    image.settings.volumeSet = "Set";
    image.settings.publisher = "Publisher";
    image.settings.dataPreparer = "Preparer";
    image.settings.application = "Application";
    image.settings.copyrightFile = "COPY";
    image.settings.abstractFile = "ABSTRACT";
    image.settings.bibliographicFile = "BIBLIO";
    image.settings.recorded = 1'582'979'696;
    image.settings.expires = 0;
    image.settings.sessionStart = 1000;
    image.settings.structureStart = 100;
    image.folder(0, {"FOLDER", "", ""});
    iso::Volume volume = image.volume();
    volume.setTotalBlocks(5000);
    const Block block = blockOf(volume, 16);
    EXPECT_EQ(textAt(block, 0, 8), std::string("\1CD001\1\0", 8));
    const auto text = [&](size_t at, size_t size, const std::string& wanted) {
        EXPECT_EQ(textAt(block, at, size), wanted + std::string(size - wanted.size(), ' '));
    };
    text(8, 32, "System");
    text(40, 32, "Volume");
    EXPECT_EQ(little(block, 80, 4), 6000u) << "all addresses are within the volume";
    EXPECT_EQ(big(block, 84, 4), 6000u);
    EXPECT_EQ(textAt(block, 88, 32), std::string(32, '\0'));
    EXPECT_EQ(textAt(block, 120, 12), std::string("\1\0\0\1\1\0\0\1\0\x08\x08\0", 12));
    EXPECT_EQ(little(block, 132, 4), 24u) << "the path table: 10 bytes for the root, 14 for the folder";
    EXPECT_EQ(big(block, 136, 4), 24u);
    EXPECT_EQ(little(block, 140, 4), 1100u);
    EXPECT_EQ(little(block, 144, 4), 0u);
    EXPECT_EQ(big(block, 148, 4), 1101u);
    EXPECT_EQ(big(block, 152, 4), 0u);
    const Record root = recordAt(block, 156);
    EXPECT_EQ(root.length, 34u);
    EXPECT_EQ(root.block, 1102u);
    EXPECT_EQ(root.bytes, 2048u);
    EXPECT_EQ(root.flags, 2u);
    EXPECT_EQ(root.name, std::string(1, '\0'));
    text(190, 128, "Set");
    text(318, 128, "Publisher");
    text(446, 128, "Preparer");
    text(574, 128, "Application");
    text(702, 37, "COPY");
    text(739, 37, "ABSTRACT");
    text(776, 37, "BIBLIO");
    EXPECT_EQ(textAt(block, 813, 17), std::string("2020022912345600\0", 17));
    EXPECT_EQ(textAt(block, 830, 17), std::string("2020022912345600\0", 17));
    EXPECT_EQ(textAt(block, 847, 17), std::string("1970010100000000\0", 17));
    EXPECT_EQ(textAt(block, 864, 17), std::string("0000000000000000\0", 17));
    EXPECT_EQ(little(block, 881, 1), 1u);
    EXPECT_EQ(textAt(block, 882, 1166), std::string(1166, '\0'));
    EXPECT_EQ(textAt(blockOf(volume, 17), 0, 8), std::string("\xFF"
                                                             "CD001\1\0",
                                                             8));
}

TEST(IsoVolume, JolietsDescriptorAndFolders) {
    Image image;
    image.settings.volumeName = "Übersee 𝄞 and much more";
    image.settings.copyrightFile = "copy";
    image.folder(0, {"FOLDER", "folder", "Földer"});
    const iso::Volume volume = image.volume();
    EXPECT_EQ(volume.descriptorBlocks(), 3u);
    const Block block = blockOf(volume, 17);
    EXPECT_EQ(textAt(block, 0, 8), std::string("\2CD001\1\0", 8));
    EXPECT_EQ(iso::utf8Of(textAt(block, 40, 32)), "Übersee 𝄞 and m") << "sixteen units";
    EXPECT_EQ(textAt(block, 88, 4), std::string("%/E\0", 4));
    EXPECT_EQ(iso::utf8Of(textAt(block, 702, 36)), "copy" + std::string(14, ' '));
    EXPECT_EQ(little(block, 738, 1), 0u);
    const uint32_t table = little(block, 140, 4);
    const Block path = blockOf(volume, table);
    EXPECT_EQ(textAt(path, 10, 1) + textAt(path, 16, 14), std::string("\x0C\1\0\0F\0\xF6\0l\0d\0e\0r", 15));
    const auto records = recordsOf(blockOf(volume, recordAt(block, 156).block));
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(iso::utf8Of(records[2].name), "Földer");
    EXPECT_EQ(records[2].length, 46u) << "no system use";
}

TEST(IsoVolume, SaysWhichBlocksItMakes) {
    Image image;
    image.settings.structureStart = 40;
    image.folder(0, {"FOLDER", "folder", "Folder"});
    const iso::Volume volume = image.volume();
    std::set<uint64_t> made, wanted{16, 17, 18};
    for (uint64_t at = 0; at < 600; ++at)
        if (volume.has(at)) made.insert(at);
    // Two path tables, the root with its continuation area, a folder; Joliet has no such area.
    EXPECT_EQ(volume.structureBlocks(), 2u + 3 + 2 + 2);
    for (uint64_t at = 40; at < 49; ++at)
        wanted.insert(at);
    EXPECT_EQ(made, wanted);
    EXPECT_EQ(image.volume().structureStart(), 40u);
    image.settings.structureStart = 0;
    EXPECT_EQ(image.volume().structureStart(), 19u);
}

// 6.9.1: by level, then by the parent's number, then by name.
TEST(IsoVolume, TheOrderOfThePathTable) {
    Image image = plain();
    const uint32_t b = image.folder(0, {"B", "", ""}), a = image.folder(0, {"A", "", ""});
    image.folder(b, {"A1", "", ""});
    const uint32_t last = image.folder(a, {"Z9", "", ""});
    image.folder(a, {"Z", "", ""});
    image.folder(last, {"AA", "", ""});
    const iso::Volume volume = image.volume();
    const Block block = blockOf(volume, volume.structureStart());
    const Block bigBlock = blockOf(volume, volume.structureStart() + 1);
    std::string order;
    std::vector<uint32_t> parents;
    for (size_t at = 0; little(block, at, 1) > 0;) {
        const size_t length = little(block, at, 1);
        EXPECT_EQ(little(block, at + 2, 4), big(bigBlock, at + 2, 4));
        EXPECT_EQ(little(block, at + 6, 2), big(bigBlock, at + 6, 2));
        EXPECT_EQ(textAt(block, at + 8, length), textAt(bigBlock, at + 8, length));
        const auto records = recordsOf(blockOf(volume, little(block, at + 2, 4)));
        ASSERT_GE(records.size(), 2u);
        EXPECT_EQ(records[0].block, little(block, at + 2, 4)) << "'.' is the folder itself";
        parents.push_back(little(block, at + 6, 2));
        order += (at == 0 ? "root" : textAt(block, at + 8, length)) + " ";
        at += (8 + length + 1) / 2 * 2;
    }
    EXPECT_EQ(order, "root A B Z Z9 A1 AA ");
    EXPECT_EQ(parents, (std::vector<uint32_t>{1, 1, 1, 2, 2, 3, 5}));
}

TEST(IsoVolume, RecordsOfAFolder) {
    Image image = plain();
    image.settings.zone = 4;
    const uint32_t file = image.file(0, {"FILE.TXT;1", "", ""}, std::string(3000, 'x'));
    image.link(0, {"AGAIN.TXT;1", "", ""}, file, true);
    image.folder(0, {"G", "", ""});
    image.nodes[file].modified = 1'582'979'696;
    iso::Volume volume = image.volume();
    volume.tree().placeFile(volume.tree().nodes[file], 777);
    const auto records = recordsOf(blockOf(volume, volume.structureStart() + 2));
    ASSERT_EQ(records.size(), 5u);
    EXPECT_EQ(records[0].name, std::string(1, '\0'));
    EXPECT_EQ(records[1].name, std::string(1, '\1'));
    EXPECT_EQ(records[1].block, records[0].block) << "the root is its own parent";
    EXPECT_EQ(records[2].name, "AGAIN.TXT;1");
    EXPECT_EQ(records[2].flags, 1u) << "hidden";
    EXPECT_EQ(records[3].name, "FILE.TXT;1");
    EXPECT_EQ(records[3].flags, 0u);
    EXPECT_EQ(records[3].length, 44u) << "33, the name, and one that makes it even";
    EXPECT_EQ(records[3].date, std::string("\x78\x02\x1D\x0D\x22\x38\x04", 7));
    for (const size_t index : {2u, 3u}) {
        EXPECT_EQ(records[index].block, 777u);
        EXPECT_EQ(records[index].bytes, 3000u);
    }
    EXPECT_EQ(records[4].flags, 2u);
    EXPECT_EQ(recordsOf(blockOf(volume, records[4].block))[1].block, records[0].block);
}

// 6.5.1 and 9.1.6: a record for each section, all but the last with a flag.
TEST(IsoVolume, AFileOfManySections) {
    Image image = plain();
    const uint32_t node = image.file(0, {"LARGE", "", ""}, "");
    iso::Tree tree = image.tree();
    tree.setSize(tree.nodes[node], (uint64_t{100} << 32) + 1);
    tree.placeFile(tree.nodes[node], 1000);
    const iso::Volume volume(std::move(tree), std::nullopt, image.settings);
    std::vector<Record> records = recordsOf(blockOf(volume, volume.structureStart() + 2));
    EXPECT_EQ(records.size(), (2048u - 68) / 38 + 2) << "records don't go over a block's end";
    for (const Record& record : recordsOf(blockOf(volume, volume.structureStart() + 3)))
        records.push_back(record);
    uint64_t bytes = 0, next = 1000;
    ASSERT_EQ(records.size(), 2u + 101);
    for (size_t i = 2; i < records.size(); ++i) {
        EXPECT_EQ(records[i].flags, i + 1 < records.size() ? 128u : 0u);
        EXPECT_EQ(records[i].block, next);
        EXPECT_EQ(records[i].name, "LARGE");
        next += (records[i].bytes + 2047) / 2048;
        bytes += records[i].bytes;
    }
    EXPECT_EQ(bytes, (uint64_t{100} << 32) + 1);
    EXPECT_EQ(recordAt(blockOf(volume, 16), 156).bytes, 4096u);
}

TEST(IsoVolume, RefusesWithASentenceThatNamesTheItem) {
    Image image;
    const uint32_t folder = image.folder(0, {"FOLDER", "folder", "Folder"});
    const auto with = [&](const Names& names, iso::Rules rules = {}) {
        Image changed = image;
        changed.settings.rules = rules;
        changed.file(folder, names, "x");
        return refusalOf(changed);
    };
    EXPECT_EQ(with({"GOOD", "good", "Good"}), "none");
    EXPECT_EQ(with({"bad", "good", "Good"}),
              "\"folder/good\" can't be on the disc: in ISO 9660 level 3 names are "
              "made of A to Z, 0 to 9 and _.");
    EXPECT_EQ(
        with({"bad", "", "Good"}, {.rockRidge = false}),
        "\"FOLDER/bad\" can't be on the disc: in ISO 9660 level 3 names are made of A to Z, 0 to 9 and _.");
    EXPECT_EQ(with({"GOOD", "a/b", "Good"}),
              "\"folder/a/b\" can't be on the disc: in Rock Ridge names have no / and no zeros.");
    EXPECT_EQ(with({"GOOD", "good", "a?b"}),
              "\"Folder/a?b\" can't be on the disc: in Joliet names have no control "
              "characters, and none of * / ; ? \\.");
    image.file(folder, {"TAKEN.;1", "taken", "Täken"}, "x");
    EXPECT_EQ(
        with({"TAKEN", "new", "New"}),
        "\"folder/new\" can't be on the disc: in ISO 9660 another item of that folder has the same name.");
    EXPECT_EQ(with({"TAKEN.;2", "new", "New"}), "none") << "another version";
    EXPECT_EQ(with({"NEW", "taken", "New"}), "\"folder/taken\" can't be on the disc: in Rock Ridge another "
                                             "item of that folder has the same name.");
    EXPECT_EQ(
        with({"NEW", "new", "Täken;1"}),
        "\"Folder/Täken;1\" can't be on the disc: in Joliet another item of that folder has the same name.");
}

TEST(IsoVolume, RefusesWhatTheRulesDoNotAllow) {
    Image link = plain();
    link.symbolicLink(0, {"LINK", "link", ""}, "target");
    EXPECT_EQ(refusalOf(link), "\"LINK\" can't be on the disc: symbolic links need Rock Ridge.");
    link.settings.rules.rockRidge = true;
    EXPECT_EQ(refusalOf(link), "none");
    link.targets.begin()->second.clear();
    EXPECT_EQ(refusalOf(link), "\"link\" can't be on the disc: a symbolic link has a target.");

    Image parts = plain();
    parts.file(0, {"PARTS", "", ""}, std::string(5000, 'x'), {2048});
    EXPECT_EQ(refusalOf(parts), "none");
    parts.settings.rules.level = 2;
    EXPECT_EQ(refusalOf(parts),
              "\"PARTS\" can't be on the disc: files of 4 GiB and more need ISO 9660 level 3.");
    parts.settings.rules.level = 3;
    parts.parts.begin()->second = {2000};
    EXPECT_EQ(refusalOf(parts),
              "\"PARTS\" can't be on the disc: all parts of a file but the last are whole blocks.");

    Image twice = plain();
    twice.link(0, {"AGAIN", "", ""}, twice.folder(0, {"FOLDER", "", ""}));
    EXPECT_EQ(refusalOf(twice), "\"FOLDER\" can't be on the disc: a folder has only one name.");

    Image deep = plain();
    uint32_t folder = 0;
    for (int level = 2; level <= 9; ++level)
        folder = deep.folder(folder, {"L" + std::to_string(level), "", ""});
    EXPECT_EQ(refusalOf(deep), "none");
    deep.settings.rules.allowDeepPaths = false;
    EXPECT_EQ(refusalOf(deep),
              "\"L2/L3/L4/L5/L6/L7/L8/L9\" can't be on the disc: ISO 9660 has no more than eight "
              "levels of folders, and paths of 255 characters.");

    Image odd = plain();
    odd.settings.rules.level = 4;
    EXPECT_EQ(refusalOf(odd), "There is no ISO 9660 level 4; the levels are 1 to 3.");
    odd.settings.rules.level = 1;
    odd.settings.zone = 53;
    EXPECT_EQ(refusalOf(odd), "A disc's time zone is 12 hours west to 13 hours east of Greenwich.");
    odd.settings.zone = 0;
    odd.settings.structureStart = 17;
    EXPECT_EQ(refusalOf(odd), "A disc's folders lie behind its descriptors.");
}

// Blocks are made in any order, and each alone is what it is in a row.
TEST(IsoVolume, BlocksDoNotDependOnEachOther) {
    Image image;
    const uint32_t folder = image.folder(0, {"FOLDER", "folder", "Folder"});
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string(i);
        image.file(folder,
                   {"F" + number, std::string(static_cast<size_t>(i % 240), 'n') + number, "f" + number}, "");
        image.symbolicLink(folder, {"L" + number, "l" + number, ""},
                           std::string(static_cast<size_t>(1 + i * 37), 't'));
    }
    const iso::Volume volume = image.volume();
    std::vector<Block> row;
    for (uint32_t at = 0; at < volume.structureBlocks(); ++at)
        row.push_back(blockOf(volume, volume.structureStart() + at));
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        const size_t at = random() % row.size();
        ASSERT_EQ(blockOf(volume, volume.structureStart() + at), row[at]) << at;
    }
}

} // namespace
