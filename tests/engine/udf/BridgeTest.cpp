// Discs with ISO 9660 and UDF over the same contents, burned and read by programs that are not ours.
#include "Fixture.hpp"
#include "udf/Volume.hpp"

#include <cstdio>

using namespace engine;

namespace {

class UdfBridges : public EngineTest {
  protected:
    void SetUp() override {
        write("read me.txt", "hello\n");
        write("folder/data.bin", noise(3'000'000));
        write("folder/deep/Übersee 漢字.txt", noise(2048, 2));
        write("folder/empty", "");
        fs::create_directories(source / "no files");
        fs::create_hard_link(source / "read me.txt", source / "folder/again.txt");
    }
    Layout bridge(udf::Revision revision = udf::Revision::V102) {
        Layout what = layout("Holiday");
        auto& track = std::get<DataTrack>(what.sessions[0].tracks[0].content);
        track.filesystems |= filesystem::udf;
        track.udfRevision = revision;
        return what;
    }
    std::string run(const std::string& command) {
        std::FILE* const pipe =
            ::popen(("cd '" + base.string() + "' && { " + command + "; } 2>&1").c_str(), "r");
        std::string told;
        for (int byte; (byte = std::fgetc(pipe)) != EOF;)
            told += static_cast<char>(byte);
        EXPECT_EQ(::pclose(pipe), 0) << command << '\n' << told;
        return told;
    }
    // Each ends with a status of its own, and says what differs.
    void compare(const char* script, const std::string& readers = "") {
        run("/usr/bin/python3 '" + std::string(script) + "' '" + source.string() + "' '" + image().string() +
            "' " + readers);
    }
};

TEST_F(UdfBridges, BothFileSystemsShowTheTree) {
    EXPECT_DONE(burn(makeDrive(), bridge()));
    compare(READBACK);
    compare(UDF_READ);
    run("7zz x -y -tudf -oout '" + image().string() + "' && diff -r '" + source.string() + "' out");
    const std::string told = run("udfinfo --locale '" + image().string() + "'");
    for (const char* line :
         {"label=Holiday\n", "udfrev=1.02\n", "numfiles=4\n", "numdirs=4\n", "integrity=closed\n"})
        EXPECT_NE(told.find(line), std::string::npos) << line << told;
    EXPECT_EQ(told.find("arning"), std::string::npos) << told;
    EXPECT_EQ(run("grub-fstest '" + image().string() + "' cat '(loop0)/folder/again.txt'"), "hello\n");
}

TEST_F(UdfBridges, TheContentsAreStoredOnce) {
    DataTrack plain, both;
    plain.root = both.root = Content::real(source.string(), "Holiday");
    both.filesystems |= filesystem::udf;
    const auto without = plannedBlocks(plain), with = plannedBlocks(both);
    ASSERT_TRUE(without.ok() && with.ok());
    constexpr uint64_t front = udf::partitionStart - 19; // behind ISO 9660's descriptors
    EXPECT_GT(*with, *without + front);
    EXPECT_LT(*with, *without + front + 64) << "structures only";
}

TEST_F(UdfBridges, TheLaterRevisionIsStated) {
    EXPECT_DONE(burn(makeDrive(), bridge(udf::Revision::V150)));
    EXPECT_NE(run("udfinfo '" + image().string() + "'").find("udfrev=1.50\n"), std::string::npos);
    compare(UDF_READ);
}

TEST_F(UdfBridges, SymbolicLinksAreLinksInUdfToo) {
    fs::create_symlink("../read me.txt", source / "folder/link");
    EXPECT_DONE(burn(makeDrive(), bridge()));
    compare(UDF_READ);
    compare(READBACK);
}

TEST_F(UdfBridges, NamesThatUdfMustCutStayDifferent) {
    const std::string stem(250, 'n');
    for (const char* end : {"aaaaa", "bbbbb", "ccccc"})
        write(stem + end, end);
    EXPECT_DONE(burn(makeDrive(), bridge()));
    run("7zz x -y -tudf -oout '" + image().string() + "'");
    std::string found;
    for (const auto& entry : fs::directory_iterator(base / "out"))
        if (entry.path().filename().string().starts_with("nnn")) found += bytesOf(entry.path());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, "aaaaabbbbbccccc");
}

TEST_F(UdfBridges, HFSPlusStandsBesideIt) {
    fs::remove_all(source / "folder/deep");      // HFS+ takes names apart
    fs::remove_all(source / "folder/again.txt"); // 7zz shows its hard links as empty files
    Layout what = bridge();
    std::get<DataTrack>(what.sessions[0].tracks[0].content).filesystems |= filesystem::hfsPlus;
    EXPECT_DONE(burn(makeDrive(), what));
    // 7zz wants UDF's second anchor right behind the last file; HFS+ has a header there.
    compare(READBACK, "bsdtar isoinfo pycdlib");
    compare(UDF_READ);
    run("{ 7zz x -y -thfs -oout '" + image().string() + "' || test $? = 1; } && diff -r '" + source.string() +
        "' out/Holiday");
}

TEST_F(UdfBridges, AnItemMayStandInUdfAlone) {
    std::vector<Content> children;
    children.push_back(Content::file("everywhere", "all"));
    children.push_back(Content::file("only here", std::string(5000, 'u')));
    children.back().filesystems = filesystem::udf;
    children.push_back(Content::file("not here", "iso"));
    children.back().filesystems = filesystem::iso9660 | filesystem::joliet;
    children.push_back(Content::file("two names", "both"));
    FilesystemNames names;
    names.udf = "its name in UDF";
    children.back().names = std::make_shared<const FilesystemNames>(names);
    Layout what = layoutOf(Content::folder("Holiday", std::move(children)));
    std::get<DataTrack>(what.sessions[0].tracks[0].content).filesystems |= filesystem::udf;
    EXPECT_DONE(burn(makeDrive(), what));
    run("7zz x -y -tudf -oout '" + image().string() + "'");
    EXPECT_EQ(run("ls out"), "everywhere\nits name in UDF\nonly here\n");
    EXPECT_EQ(bytesOf(base / "out/only here"), std::string(5000, 'u'));
    EXPECT_EQ(run("bsdtar -tf '" + image().string() + "' | sort"), ".\neverywhere\nnot here\ntwo names\n");
}

TEST_F(UdfBridges, AVerifiedBurnReadsAllOfItBack) {
    BurnOptions options;
    options.verify = true;
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), bridge(), options));
    compare(UDF_READ);
}

TEST_F(UdfBridges, ASecondSessionHasAVolumeOfItsOwnThatShowsBoth) {
    const auto drive = makeDrive(MediumKind::DVDPlusR);
    BurnOptions open;
    open.appendable = true;
    EXPECT_DONE(burn(drive, bridge(), open));
    write("later.txt", "added\n");
    EXPECT_DONE(burn(drive, bridge(), open));
    const auto info = drive->mediumInfo();
    ASSERT_TRUE(info);
    const uint64_t start = info->sessions.at(1).tracks.at(0).startBlock;
    // Readers find the last session's anchor 256 blocks behind its start. 7zz knows no sessions: it gets that anchor
    // where it looks.
    std::string disc = bytesOf(image());
    std::string anchor = disc.substr(static_cast<size_t>((start + 256) * blockSize), blockSize);
    const auto there = static_cast<uint32_t>(start + 256);
    for (int i = 0; i < 4; ++i) { // the tag says where it lies, and its checksum counts that in
        const auto before = static_cast<uint8_t>(there >> (8 * i)),
                   after = static_cast<uint8_t>(256 >> (8 * i));
        EXPECT_EQ(static_cast<uint8_t>(anchor[12 + static_cast<size_t>(i)]), before);
        anchor[12 + static_cast<size_t>(i)] = static_cast<char>(after);
        anchor[4] = static_cast<char>(anchor[4] + after - before);
    }
    disc.replace(256 * blockSize, blockSize, anchor);
    std::ofstream(base / "last.iso", std::ios::binary) << disc;
    run("7zz x -y -tudf -oout last.iso && diff -r '" + source.string() + "' out");
}

TEST_F(UdfBridges, IsRefusedWhereADiscIsOverwrittenInPlaceAndLeftOpen) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    BurnOptions open;
    open.appendable = true;
    EXPECT_FAILED(burn(drive, bridge(), open), FilesystemsNotSupported,
                  "A disc that is overwritten in place can't be left open, or gone on with, when UDF is on "
                  "it; leave out "
                  "UDF, or close the disc.");
    EXPECT_TRUE(drive->mediumInfo()->blank);
}

} // namespace
