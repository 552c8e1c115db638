// A session that goes on from an earlier one: each file system keeps its names and gets the new ones.
#include "Discs.hpp"

using namespace engine;

namespace {

class PlanSessions : public test::Discs {
  protected:
    static constexpr uint8_t isoAndJoliet = filesystem::iso9660 | filesystem::joliet;

    static BurnOptions open() {
        BurnOptions options;
        options.appendable = true;
        return options;
    }
    static Content first() {
        std::vector<Content> inner;
        inner.push_back(named(Content::file("deep.txt", "deep"), "Deeper.txt"));
        std::vector<Content> children;
        children.push_back(named(Content::folder("folder", std::move(inner)), "Folder with another name"));
        children.push_back(named(Content::file("one", "1"), "two"));
        children.push_back(named(Content::file("two", "2"), "one"));
        children.push_back(Content::link("link", "one"));
        children.push_back(Content::file("plain", "old"));
        return Content::folder("Disc", std::move(children));
    }
};

TEST_F(PlanSessions, EachFileSystemGoesOnWithItsOwnNames) {
    const auto drive =
        makeDrive(MediumKind::DVDPlusRW); // where readers find the newest session by themselves
    EXPECT_DONE(burn(drive, discOf(first(), isoAndJoliet), open()));
    std::vector<Content> inner;
    inner.push_back(Content::file("new", "n"));
    std::vector<Content> children;
    children.push_back(named(Content::folder("folder", std::move(inner)), "Folder with another name"));
    children.push_back(Content::file("plain", "new"));
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", std::move(children)), isoAndJoliet), open()));
    extractAll(image(), isoAndJoliet, "Disc");
    EXPECT_EQ(shown("rr"), "folder/ folder/deep.txt=deep folder/new=n link->one one=1 plain=new two=2 ");
    EXPECT_EQ(shown("joliet"), "Folder with another name/ Folder with another name/Deeper.txt=deep "
                               "Folder with another name/new=n one=2 plain=new two=1 ");
}

TEST_F(PlanSessions, WhatIsNewTakesAPlaceInItsFileSystemsOnly) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    EXPECT_DONE(burn(drive, discOf(first(), isoAndJoliet), open()));
    std::vector<Content> children;
    children.push_back(Content::file("one", "joliet's"));
    children.back().filesystems = filesystem::joliet;
    children.push_back(Content::file("folder", "iso's"));
    children.back().filesystems = filesystem::iso9660;
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", std::move(children)), isoAndJoliet), open()));
    extractAll(image(), isoAndJoliet, "Disc");
    EXPECT_EQ(shown("rr"), "folder=iso's link->one one=1 plain=old two=2 ");
    EXPECT_EQ(shown("joliet"), "Folder with another name/ Folder with another name/Deeper.txt=deep "
                               "one=joliet's plain=old two=1 ");
}

TEST_F(PlanSessions, AFileOfSeveralNamesStaysOneFile) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    write("first name", "shared bytes");
    fs::create_hard_link(source / "first name", source / "second name");
    EXPECT_DONE(burn(drive, layout(), open()));
    EXPECT_DONE(
        burn(drive, discOf(Content::folder("X", {Content::file("more", "more")}), isoAndJoliet), open()));
    extractRockRidge(image());
    EXPECT_EQ(shown("rr"), "first name=shared bytes more=more second name=shared bytes ");
    EXPECT_EQ(fs::hard_link_count(base / "rr/first name"), 2u);
}

TEST_F(PlanSessions, HFSPlusShowsEarlierSessionsWhereItCanBeginInFrontOfThem) {
    const uint8_t both = filesystem::iso9660 | filesystem::hfsPlus;
    const auto drive = makeDrive(MediumKind::BDRE);
    EXPECT_DONE(burn(drive, discOf(first(), both), open()));
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", {Content::file("later", "l")}), both), open()));
    extractAll(image(), both, "Disc");
    EXPECT_EQ(shown("hfsplus"), "folder/ folder/deep.txt=deep later=l link->one one=1 plain=old two=2 ");
    EXPECT_EQ(shown("rr"), shown("hfsplus"));
}

TEST_F(PlanSessions, HFSPlusIsRefusedWhereItBeginsBehindThem) {
    const uint8_t both = filesystem::iso9660 | filesystem::hfsPlus;
    const auto drive = makeDrive(MediumKind::DVDPlusR);
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", {Content::file("early", "e")}), both), open()));
    const std::string before = bytesOf(image());
    EXPECT_FAILED(
        burn(drive, discOf(Content::folder("Disc", {Content::file("later", "l")}), both), open()),
        FilesystemsNotSupported,
        "The file \"early\" of an earlier session lies in front of the HFS+ volume, which can't show it; "
        "leave out HFS+.");
    EXPECT_TRUE(bytesOf(image()) == before);
    // What takes its place needn't be shown.
    EXPECT_DONE(
        burn(drive, discOf(Content::folder("Disc", {Content::file("early", "again")}), both), open()));
}

TEST_F(PlanSessions, UDFIsRefusedWhereAnEarlierFileLiesInItsPlace) {
    const auto drive = makeDrive(MediumKind::DVDPlusR);
    EXPECT_DONE(
        burn(drive, discOf(Content::folder("Disc", {Content::file("early", "e")}), isoAndJoliet), open()));
    const uint8_t both = filesystem::iso9660 | filesystem::udf;
    EXPECT_FAILED(
        burn(drive, discOf(Content::folder("Disc", {Content::file("later", "l")}), both), open()),
        FilesystemsNotSupported,
        "The file \"early\" of an earlier session lies where UDF has its own blocks; leave out UDF.");
}

} // namespace
