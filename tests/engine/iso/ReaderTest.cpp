// Reading a volume that is there: what was written comes back, and what is damaged does no harm.
#include "iso/Reader.hpp"
#include "Failure.hpp"
#include "Maker.hpp"
#include "Scratch.hpp"

#include <algorithm>

namespace {

using namespace test;

class IsoReader : public Scratch {
  protected:
    std::string imageOf(const Image& image) {
        image.write((base / "volume.iso").string());
        return bytesOf(base / "volume.iso");
    }
    static iso::BlockReader from(const std::string& bytes) {
        return [&bytes](uint64_t address, std::span<std::byte, 2048> block) {
            if ((address + 1) * block.size() > bytes.size()) return false;
            std::memcpy(block.data(), bytes.data() + address * block.size(), block.size());
            return true;
        };
    }
    enum What { IsoNames, RockRidge, Joliet };
    /// A line for each name, sorted.
    static std::string listOf(const iso::Tree& tree, What what, bool isWide = false) {
        std::vector<std::string> lines;
        list(tree, what, isWide, 0, "", lines);
        std::ranges::sort(lines);
        std::string result;
        for (const std::string& line : lines)
            result += line + "\n";
        return result;
    }

  private:
    static void list(const iso::Tree& tree, What what, bool isWide, uint32_t folder, const std::string& path,
                     std::vector<std::string>& lines) {
        for (uint32_t i = tree.firstEntry[folder]; i < tree.firstEntry[folder + 1]; ++i) {
            const iso::Entry& entry = tree.entries[i];
            const iso::Node& node = tree.nodes[entry.node];
            const std::string name(what == RockRidge ? tree.rockRidgeOf(entry) : tree.nameOf(entry));
            const std::string inside = path + "/" + (isWide ? iso::utf8Of(name) : name);
            std::string line = inside + " " + std::to_string(static_cast<int>(node.kind));
            line += " " + std::to_string(node.modified) + (entry.hidden ? " hidden" : "");
            if (what == RockRidge)
                line += " " + std::to_string(node.accessed) + " " + std::to_string(node.changed) + " " +
                        std::to_string(node.mode) + " " + std::to_string(node.owner) + " " +
                        std::to_string(node.group);
            if (node.kind == iso::NodeKind::SymbolicLink) line += " -> " + std::string(tree.targetOf(node));
            if (node.kind == iso::NodeKind::File)
                for (const iso::Section& section : tree.sectionsOf(node))
                    line += " " + std::to_string(section.firstBlock) + "+" + std::to_string(section.bytes);
            lines.push_back(line);
            if (node.kind == iso::NodeKind::Folder) list(tree, what, isWide, entry.node, inside, lines);
        }
    }
};

class IsoReaderTrees : public IsoReader, public testing::WithParamInterface<unsigned> {};

TEST_P(IsoReaderTrees, ComeBackAsTheyWere) {
    for (unsigned round = 0; round < 25; ++round) {
        iso::VolumeSettings settings;
        settings.volumeName = "A volume's name";
        settings.rules.rockRidge = round % 5 != 0;
        settings.sessionStart = round % 2 == 0 ? 0 : 100;
        settings.zone = static_cast<int8_t>(round % 3 == 0 ? -40 : 0);
        Maker maker(GetParam() * 25 + round, settings);
        maker.fill(1 + maker.upTo(80));
        const std::string bytes = imageOf(maker.image);
        const auto read = iso::readVolume(from(bytes), settings.sessionStart);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->volumeName, "A volume's name");
        EXPECT_EQ(read->volumeBlocks, bytes.size() / 2048);
        EXPECT_EQ(read->rockRidge, settings.rules.rockRidge);
        iso::Volume volume = maker.image.volume();
        // Where files lie is known to the image only: it gives the same places again.
        maker.image.placeAll(volume);
        EXPECT_EQ(listOf(read->tree, IsoNames), listOf(volume.tree(), IsoNames));
        if (settings.rules.rockRidge) {
            EXPECT_EQ(listOf(read->tree, RockRidge), listOf(volume.tree(), RockRidge));
        }
        ASSERT_EQ(read->joliet.has_value(), maker.image.joliet);
        if (read->joliet) {
            EXPECT_EQ(listOf(*read->joliet, Joliet), listOf(*volume.joliet(), Joliet, true));
        }
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, IsoReaderTrees, testing::Range(1u, 9u));

TEST_F(IsoReader, FoldersThatWereMovedAreBack) {
    const auto listed = [&](bool allowDeepPaths) {
        Image image;
        image.settings.rules.allowDeepPaths = allowDeepPaths;
        uint32_t folder = 0;
        for (int level = 2; level <= 30; ++level) {
            const std::string number = std::to_string(level);
            folder = image.folder(folder, {"L" + number, "level " + number, "level " + number});
            image.file(folder, {"FILE", "file", "file"}, "");
        }
        const std::string bytes = imageOf(image);
        return listOf(iso::readVolume(from(bytes), 0)->tree, RockRidge);
    };
    EXPECT_EQ(listed(false), listed(true));
}

TEST_F(IsoReader, OneFileOfManyNamesStaysOne) {
    Image image;
    const uint32_t file = image.file(0, {"ONE", "one", "one"}, "bytes");
    image.link(0, {"TWO", "two", "two"}, file);
    image.file(0, {"OTHER", "other", "other"}, "bytes");
    const std::string bytes = imageOf(image);
    const auto read = iso::readVolume(from(bytes), 0);
    EXPECT_EQ(read->tree.nodes.size(), 3u);
    EXPECT_EQ(read->joliet->nodes.size(), 3u);
}

TEST_F(IsoReader, AVolumeThatWasReadCanBeWritten) {
    Maker maker(7, {});
    maker.fill(60);
    const std::string bytes = imageOf(maker.image);
    const auto read = iso::readVolume(from(bytes), 0);
    iso::VolumeSettings settings;
    settings.sessionStart = static_cast<uint32_t>(bytes.size() / 2048);
    iso::Volume volume(read->tree, read->joliet, settings);
    std::string longer = bytes;
    longer.resize(bytes.size() + (volume.structureStart() + volume.structureBlocks()) * 2048);
    for (uint64_t number = 0; number < volume.structureStart() + volume.structureBlocks(); ++number)
        if (volume.has(number)) {
            const Block block = blockOf(volume, number);
            std::memcpy(longer.data() + bytes.size() + number * 2048, block.data(), block.size());
        }
    const auto again = iso::readVolume(from(longer), settings.sessionStart);
    EXPECT_EQ(listOf(again->tree, RockRidge), listOf(read->tree, RockRidge));
    EXPECT_EQ(listOf(again->tree, IsoNames), listOf(read->tree, IsoNames));
}

TEST_F(IsoReader, WhatAnotherProgramWrote) {
    fs::create_directories(base / "source/folder/deeper");
    write("source/read me.txt", "hello");
    write("source/folder/" + std::string(200, 'n'), std::string(3000, 'n'));
    write("source/folder/deeper/empty", "");
    fs::create_symlink("../a/./" + std::string(240, 't') + "/../b", base / "source/link");
    run("chmod 2640 source/read?me.txt && touch -h -d '2020-02-29 12:34:56 UTC' source/read?me.txt && "
        "xorriso -abort_on FAILURE -outdev stdio:other.iso -joliet on -map source /");
    const std::string bytes = bytesOf(base / "other.iso");
    const auto volume = iso::readVolume(from(bytes), 0);
    ASSERT_TRUE(volume && volume->joliet);
    EXPECT_TRUE(volume->rockRidge);
    std::string names;
    for (const iso::Entry& entry : volume->tree.entries) {
        const iso::Node& node = volume->tree.nodes[entry.node];
        const std::string name(volume->tree.rockRidgeOf(entry));
        names += name + "\n";
        if (name == "link") {
            EXPECT_EQ(volume->tree.targetOf(node), "../a/./" + std::string(240, 't') + "/../b");
        }
        if (name != "read me.txt") continue;
        EXPECT_EQ(node.mode, 02640);
        EXPECT_EQ(node.modified, 1'582'979'696);
        const auto sections = volume->tree.sectionsOf(node);
        ASSERT_EQ(sections.size(), 1u);
        EXPECT_EQ(bytes.substr(size_t{sections[0].firstBlock} * 2048, sections[0].bytes), "hello");
    }
    EXPECT_EQ(names, "folder\nlink\nread me.txt\ndeeper\n" + std::string(200, 'n') + "\nempty\n");
    EXPECT_EQ(volume->joliet->entries.size(), 5u) << "no link";
}

TEST_F(IsoReader, WhereThereIsNoVolumeThereIsNone) {
    const std::string zeros(100 * 2048, '\0');
    EXPECT_FALSE(iso::readVolume(from(zeros), 0));
    EXPECT_FALSE(iso::readVolume(from(zeros), 1000)) << "past the end";
}

// Any byte may be wrong: the answer is another tree or MediaInvalid, never harm or an endless search.
TEST_F(IsoReader, DamageDoesNoHarm) {
    Maker maker(3, {});
    maker.fill(60);
    const std::string whole = imageOf(maker.image);
    const iso::Volume volume = maker.image.volume();
    const size_t first = 16 * 2048, end = (volume.structureStart() + volume.structureBlocks()) * 2048;
    std::mt19937 random(5);
    size_t refused = 0, read = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = whole;
        for (int count = 1 + round % 20; count > 0; --count)
            bytes[first + random() % (end - first)] = static_cast<char>(round % 3 == 0 ? 0xFF : random());
        try {
            const auto answer = iso::readVolume(from(bytes), 0);
            if (!answer) continue;
            ++read;
            EXPECT_EQ(answer->tree.firstEntry.size(), answer->tree.nodes.size() + 1);
            EXPECT_EQ(answer->tree.firstEntry.back(), answer->tree.entries.size());
        } catch (const engine::Failure& failure) {
            EXPECT_EQ(failure.error().code, engine::ErrorCode::MediaInvalid);
            ++refused;
        }
    }
    EXPECT_GT(refused, 50u);
    EXPECT_GT(read, 50u);
}

TEST_F(IsoReader, AFolderInItselfIsNoEndlessWay) {
    Image image;
    image.folder(0, {"FOLDER", "folder", "folder"});
    std::string bytes = imageOf(image);
    const size_t root = 21 * 2048, second = root + static_cast<uint8_t>(bytes[root]);
    const size_t record = second + static_cast<uint8_t>(bytes[second]);
    ASSERT_EQ(bytes.substr(record + 33, 6), "FOLDER");
    bytes.replace(record + 2, 8, bytes.substr(root + 2, 8));
    EXPECT_THROW(iso::readVolume(from(bytes), 0), engine::Failure);
}

// A folder whose records all go on elsewhere, sixty times each, in a block that is read again and again.
TEST_F(IsoReader, WhatGoesOnElsewhereHasAnEnd) {
    Image image;
    image.joliet = false;
    const std::string front = imageOf(image);
    constexpr uint32_t folderBlocks = 100'000, steps = 60, entryBytes = 28;
    const size_t root = 20 * 2048; // behind the path tables
    ASSERT_EQ(front[root + 33], '\0');
    const auto put = [](std::string& to, size_t at, uint32_t number) {
        for (size_t i = 0; i < 4; ++i) {
            to[at + i] = static_cast<char>(number >> (8 * i));
            to[at + 7 - i] = to[at + i];
        }
    };
    const auto goesOn = [&](uint32_t offset) {
        std::string entry("CE\x1C\1", 4);
        entry.resize(entryBytes);
        put(entry, 4, 5);
        put(entry, 12, offset);
        put(entry, 20, entryBytes);
        return entry;
    };
    std::string chain;
    for (uint32_t step = 1; step <= steps; ++step)
        chain += step < steps ? goesOn(step * entryBytes) : std::string(entryBytes, '\0');
    chain.resize(2048);
    std::string records;
    while (records.size() + 64 <= 2048) {
        std::string record = front.substr(root, 34).substr(0, 33) + "X" + goesOn(0) + std::string(2, '\0');
        record[0] = 64;
        record[25] = 0;
        put(record, 10, 0);
        records += record;
    }
    records.resize(2048);
    std::string first = front.substr(root, static_cast<uint8_t>(front[root]));
    put(first, 10, folderBlocks * 2048);
    first.resize(2048);
    std::string descriptor = front.substr(16 * 2048, 2048);
    put(descriptor, 158, 1000);
    put(descriptor, 166, folderBlocks * 2048);
    uint64_t reads = 0;
    const iso::BlockReader read = [&](uint64_t address, std::span<std::byte, 2048> block) {
        ++reads;
        const std::string& found = address == 16     ? descriptor
                                   : address == 5    ? chain
                                   : address == 1000 ? first
                                                     : records;
        std::memcpy(block.data(), found.data(), block.size());
        return true;
    };
    try {
        iso::readVolume(read, 0);
        FAIL();
    } catch (const engine::Failure& failure) {
        EXPECT_EQ(failure.error().message,
                  "The disc's file system can't be read: too much goes on elsewhere.");
    }
    EXPECT_LT(reads, folderBlocks) << "the block was read once";
}

} // namespace
