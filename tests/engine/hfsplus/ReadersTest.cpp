// Volumes as other programs read them: 7zz, the Sleuth Kit, fshfsinfo and GRUB's own driver.
//
// 7zz and GRUB show a hard link as an empty file. 7zz gives up on files behind a fork whose extents go on from one leaf
// of the overflow file to the next. Types and creators are shown by istat alone.
#include "Image.hpp"
#include "Scratch.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace test;

class HfsReaders : public Scratch {
  protected:
    hfsplus::VolumeSettings settings(uint32_t start = 0) {
        hfsplus::VolumeSettings result;
        result.volumeName = "Holiday Übersee";
        result.created = Image::time;
        result.identifier = 0x0123456789ABCDEF;
        result.volumeStart = start;
        result.structureStart = start + 1;
        return result;
    }
    void write(const Image& image, uint32_t start = 0) {
        image.write((base / "volume.hfs").string(), settings(start));
    }
    fs::path extract() {
        run("LC_ALL=C.UTF-8 7zz x -y -thfs -oout volume.hfs");
        fs::path only;
        for (const auto& entry : fs::directory_iterator(base / "out"))
            only = entry.path();
        return only;
    }
    static void expectLines(const std::string& told, std::initializer_list<const char*> lines) {
        for (const char* line : lines)
            EXPECT_NE(told.find(line), std::string::npos) << line << "\nis not in\n" << told;
    }
};

TEST_F(HfsReaders, TheVolumeIsWhatItSaysItIs) {
    Image image;
    image.file(image.folder(0, "folder"), "file", "bytes");
    write(image);
    expectLines(run("fsstat volume.hfs"),
                {"File System Type: HFS+\n", "Volume Name: Holiday U\u0308bersee\n",
                 "Volume Identifier: 0123456789abcdef\n", "Volume Unmounted Properly\n",
                 "Software write protect enabled\n", "Number of files: 1\n", "Number of folders: 1\n",
                 "Number of Free Blocks: 0\n"});
    expectLines(run("LC_ALL=C.UTF-8 fshfsinfo volume.hfs"), {"Hierarchical File System information:"});
    expectLines(run("LC_ALL=C.UTF-8 fshfsinfo -H volume.hfs"), {"\n/\n", "\n/folder\n", "\n/folder/file\n"});
    expectLines(run("7zz t -thfs volume.hfs"), {"Everything is Ok\n", "Method = HFS+\n"});
}

TEST_F(HfsReaders, ThePartitionMapLeadsThere) {
    Image image;
    image.file(0, "file", "bytes");
    write(image, 100);
    const std::string map = run("mmls volume.hfs");
    expectLines(map, {"000:  -------   0000000000   0000000000   0000000001   Unallocated",
                      "0000000001   0000000003   0000000003   Apple_partition_map",
                      "0000000064   0000000399   0000000336   ISO9660_data", "0000000400   "});
    EXPECT_NE(map.find("Apple_HFS"), std::string::npos) << map;
    EXPECT_EQ(run("grub-fstest volume.hfs cat '(loop0,apple3)/file'"), "bytes");
    EXPECT_EQ(run("fls -p -r -o 400 volume.hfs | grep -v '\\$'"), "r/r 16:\tfile\n");
    // What lies behind the volume is a partition, too.
    std::array<std::byte, hfsplus::blockBytes> block;
    for (uint32_t i = 0; i < hfsplus::partitionMapBlocks; ++i) {
        hfsplus::putPartitionMap(i, {100, 120, 1000}, block);
        Scratch::write("map" + std::to_string(i),
                       std::string(reinterpret_cast<const char*>(block.data()), block.size()));
    }
    expectLines(run("cat map0 map1 > map; truncate -s 2048000 map; mmls map"),
                {"0000000400   0000000479   0000000080   Apple_HFS",
                 "0000000480   0000003999   0000003520   ISO9660_data"});
}

TEST_F(HfsReaders, EverythingOfAFileIsKept) {
    Image image;
    const uint32_t file = image.file(image.folder(0, "folder"), "file", std::string(5000, 'x'));
    image.resourceFork(file, std::string(3000, 'r'));
    auto& node = image.node(file);
    node.finder.type = hfsplus::fourCharacters("TEXT");
    node.finder.creator = hfsplus::fourCharacters("ttxt");
    node.mode = 0751;
    node.owner = 501;
    node.group = 20;
    node.created = 1'000'000'000;
    node.modified = 1'100'000'000;
    node.changed = 1'200'000'000;
    node.accessed = 1'300'000'000;
    node.backedUp = 1'400'000'000;
    write(image);
    expectLines(run("TZ=UTC istat volume.hfs 17"),
                {"File Path: /folder/file\n", "Mode:\trrwxr-x--x\n", "Size:\t5000\n", "uid / gid: 501 / 20\n",
                 "Link count:\t1\n", "File type:\t54455854  TEXT\n", "File creator:\t74747874  ttxt\n",
                 "Resource fork size:\t3000\n", "Created:\t2001-09-09 01:46:40 (UTC)\n",
                 "Content Modified:\t2004-11-09 11:33:20 (UTC)\n",
                 "Attributes Modified:\t2008-01-10 21:20:00 (UTC)\n",
                 "Accessed:\t2011-03-13 07:06:40 (UTC)\n", "Backed Up:\t2014-05-13 16:53:20 (UTC)\n"});
    expectLines(run("TZ=UTC 7zz l -slt -thfs volume.hfs"),
                {"Modified = 2004-11-09 11:33:20", "Mode = -rwxr-x--x"});
    const fs::path out = extract();
    EXPECT_EQ(bytesOf(out / "folder/file"), std::string(5000, 'x'));
    EXPECT_EQ(bytesOf(out / "folder/file:rsrc"), std::string(3000, 'r'));
}

TEST_F(HfsReaders, ForksInManyPiecesComeBackWhole) {
    Image image;
    std::map<std::string, std::string> data, resources;
    for (uint32_t i = 1; i <= 60; ++i) {
        const std::string name = "file " + std::to_string(i);
        data[name] = noise(size_t{i} * 3333, i);
        resources[name] = noise(size_t{i} * 2111, 1000 + i);
        const uint32_t node = image.file(0, name, data[name], i);
        ASSERT_EQ(node, i);
        image.resourceFork(node, resources[name], (i * 7) % 61 + 1);
    }
    write(image, 50);
    run("tsk_recover -a -o 200 volume.hfs recovered");
    run("for i in $(seq 60); do icat -o 200 volume.hfs $((15 + i))-4353 > \"file $i\"; done");
    for (const auto& [name, bytes] : data) {
        EXPECT_TRUE(bytesOf(base / "recovered" / name) == bytes) << name;
        EXPECT_TRUE(bytesOf(base / name) == resources[name]) << name;
    }
    EXPECT_TRUE(run("grub-fstest volume.hfs cat '(loop0,apple3)/file 60'") == data["file 60"]);
}

TEST_F(HfsReaders, SoDoManyForksInAFewPieces) {
    Image image;
    std::map<std::string, std::string> data;
    for (uint32_t i = 1; i <= 200; ++i) {
        const std::string name = "file " + std::to_string(i);
        data[name] = noise(size_t{10 + i % 7} * 2048 - i, i);
        data[name + ":rsrc"] = noise(size_t{9} * 2048, 1000 + i);
        image.resourceFork(image.file(0, name, data[name], 16), data[name + ":rsrc"], 9);
    }
    write(image);
    const fs::path out = extract();
    for (const auto& [name, bytes] : data)
        EXPECT_TRUE(bytesOf(out / name) == bytes) << name;
}

TEST_F(HfsReaders, NamesOfEveryScriptAndLengthComeBack) {
    Image image;
    const std::vector<std::string> names = {
        "plain.txt",           "漢字の名前.dat", "𝄞 clef", "with space and 'quote'",
        std::string(255, 'n'), ".hidden",        "Ж"}; // nothing that is taken apart
    for (const auto& name : names)
        image.file(0, name, "content of " + name);
    image.file(0, "Ü", "apart");
    image.file(0, "1:2", "colon");
    write(image);
    run("tsk_recover -a volume.hfs recovered");
    for (const auto& name : names)
        EXPECT_EQ(bytesOf(base / "recovered" / name), "content of " + name) << name;
    EXPECT_EQ(bytesOf(base / "recovered/U\u0308"), "apart");
    EXPECT_EQ(bytesOf(base / "recovered/1:2"), "colon") << "'/' in the catalog";
    const fs::path out = extract();
    for (const auto& name : names)
        EXPECT_EQ(bytesOf(out / name), "content of " + name) << name;
    EXPECT_EQ(run("grub-fstest volume.hfs cat '(loop0)/漢字の名前.dat'"), "content of 漢字の名前.dat");
    EXPECT_EQ(run("grub-fstest volume.hfs cat '(loop0)/PLAIN.TXT'"), "content of plain.txt") << "in any case";
}

TEST_F(HfsReaders, AHardLinkIsTheSameFileUnderTwoNames) {
    Image image;
    const uint32_t node = image.file(0, "one", std::string(5000, 'x'));
    image.link(image.folder(0, "folder"), "two", node);
    for (int i = 0; i < 12; ++i) // numbers of two and three digits, in the order of their letters
        image.link(0, "again " + std::to_string(i), image.file(0, "more " + std::to_string(i), "more"));
    for (int i = 0; i < 90; ++i)
        image.file(0, "plain " + std::to_string(i), "");
    image.link(0, "last again", image.file(0, "last", "last"));
    write(image);
    run("tsk_recover -a volume.hfs recovered");
    EXPECT_EQ(bytesOf(base / "recovered/one"), std::string(5000, 'x'));
    EXPECT_EQ(bytesOf(base / "recovered/folder/two"), std::string(5000, 'x'));
    EXPECT_EQ(bytesOf(base / "recovered/again 7"), "more");
    EXPECT_EQ(bytesOf(base / "recovered/last again"), "last");
    const std::string told = run("fls -r -p volume.hfs");
    expectLines(told, {"r/r 16:\tone\n", "r/r 16:\tfolder/two\n"});
    expectLines(run("istat volume.hfs 16"), {"Link count:\t2\n"});
}

TEST_F(HfsReaders, LinksOfBothKinds) {
    Image image;
    const uint32_t folder = image.folder(0, "folder"), file = image.file(folder, "file", "x");
    image.symbolicLink(0, "to file", "folder/file");
    image.alias(0, "alias", file);
    write(image);
    expectLines(run("fls -r -m / volume.hfs"), {"/to file -> folder/file|18|l/l", "/alias|19|r/r"});
    expectLines(run("istat volume.hfs 18"),
                {"File type:\t736c6e6b  slnk\n", "File creator:\t72686170  rhap\n"});
    const fs::path out = extract();
    EXPECT_EQ(fs::read_symlink(out / "to file"), "folder/file");
    const std::string fork = bytesOf(out / "alias:rsrc");
    ASSERT_GT(fork.size(), 400u);
    EXPECT_EQ(fork.substr(fork.size() - 20, 4), "alis") << "the type of its one resource";
    EXPECT_NE(fork.find("/folder/file"), std::string::npos);
}

// The volume begins with the medium, in the part of a disc that ISO 9660 leaves free, and has its structures behind all
// else: both file systems show the same blocks.
TEST_F(HfsReaders, SharesItsContentsWithISO9660) {
    fs::create_directories(base / "source/folder");
    const std::string one = noise(5000, 1), two = noise(70'000, 2);
    Scratch::write("source/one", one);
    Scratch::write("source/folder/two", two);
    run("genisoimage -quiet -r -V Holiday -o volume.hfs source");
    std::string disc = bytesOf(base / "volume.hfs");
    constexpr size_t size = hfsplus::blockBytes;
    Image image;
    const uint32_t nodes[] = {image.file(0, "one", one), image.file(image.folder(0, "folder"), "two", two)};
    auto of = settings();
    of.structureStart = static_cast<uint32_t>(disc.size() / size);
    hfsplus::Volume volume(image.tree(), of);
    for (const auto& [node, bytes] : {std::pair(nodes[0], &one), std::pair(nodes[1], &two)}) {
        const size_t at = disc.find(*bytes);
        ASSERT_EQ(at % size, 0u);
        auto& tree = volume.tree();
        tree.extents[tree.nodes[node].data.first].firstBlock = static_cast<uint32_t>(at / size);
    }
    volume.setContentsEnd(of.structureStart + volume.structureBlocks());
    disc.resize(static_cast<size_t>(volume.end()) * size);
    for (size_t at = 0; at < disc.size() / size; ++at)
        if (volume.has(at))
            volume.block(at, std::as_writable_bytes(std::span(disc)).subspan(at * size).first<size>());
    Scratch::write("volume.hfs", disc);
    const fs::path out = extract();
    run("tsk_recover -a -f hfs volume.hfs recovered; mkdir iso && bsdtar -xf volume.hfs -C iso");
    for (const fs::path& shown : {out, base / "recovered", base / "iso"}) {
        EXPECT_TRUE(bytesOf(shown / "one") == one) << shown;
        EXPECT_TRUE(bytesOf(shown / "folder/two") == two) << shown;
    }
}

TEST_F(HfsReaders, AMapOfNodesThatTheHeaderHasNoRoomFor) {
    Image image;
    for (int i = 0; i < 10'000; ++i)
        image.file(0, "n" + std::to_string(i), i == 7777 ? "found" : "");
    auto of = settings();
    of.catalogNodeBytes = 1024;
    image.write((base / "volume.hfs").string(), of);
    EXPECT_EQ(run("fls -F volume.hfs | grep -c ':.n'"), "10000\n");
    EXPECT_EQ(run("grub-fstest volume.hfs cat '(loop0)/n7777'"), "found");
    expectLines(run("7zz t -thfs volume.hfs"), {"Everything is Ok\n", "Files: 10000\n"});
}

} // namespace
