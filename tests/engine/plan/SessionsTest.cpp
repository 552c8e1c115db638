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
    static Layout plain(const std::string& bytes, uint8_t filesystems) {
        std::vector<Content> children;
        children.push_back(Content::folder("Folder:", {Content::file("in " + bytes, bytes)}));
        children.push_back(Content::file("readme.txt", bytes));
        Layout what = discOf(Content::folder("Disc", std::move(children)), filesystems);
        std::get<DataTrack>(what.sessions[0].tracks[0].content).rockRidge = false;
        return what;
    }
    /// Of the newest records in ISO 9660 and Joliet, which are the last ones: 1 for hidden, 2 for a folder.
    std::string flagsOf(const std::string& name) const {
        std::string iso, joliet;
        for (const char letter : name) {
            iso += letter == ' ' ? ' ' : static_cast<char>(letter - 'a' + 'A');
            joliet += {'\0', letter};
        }
        const std::string disc = bytesOf(image());
        std::string flags;
        for (const std::string& stored : {iso, joliet}) {
            // Its length stands in front of it, with a dot and a version for files.
            const auto isName = [&](size_t at) {
                const auto length = static_cast<size_t>(static_cast<unsigned char>(disc[at - 1]));
                return length == stored.size() || length == stored.size() + 3 || length == stored.size() + 4;
            };
            size_t at = disc.rfind(stored);
            while (at != std::string::npos && !isName(at))
                at = disc.rfind(stored, at - 1);
            flags += at == std::string::npos ? "?" : std::to_string(disc[at - 8] & 3);
        }
        return flags;
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

// Joliet can't hold these names as they are; each is the same item again all the same.
TEST_F(PlanSessions, NamesThatJolietMadeLegalAreTheSameAgain) {
    const std::string large(80, 'n');
    const auto added = [&](const std::string& bytes) {
        std::vector<Content> children;
        children.push_back(Content::folder("Meeting 12*30", {Content::file("in " + bytes, bytes)}));
        children.push_back(Content::folder(large, {Content::file("in " + bytes, bytes)}));
        children.push_back(Content::file("ab*c", bytes));
        children.push_back(Content::file("ab?c", bytes + '?')); // abc_001 in Joliet
        children.push_back(named(Content::file("own", bytes + " own"), "12?45"));
        return discOf(Content::folder("Disc", std::move(children)), isoAndJoliet);
    };
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    EXPECT_DONE(burn(drive, added("1"), open()));
    EXPECT_DONE(burn(drive, added("2"), open()));
    extractAll(image(), isoAndJoliet, "Disc");
    EXPECT_EQ(shown("rr"), "Meeting 12*30/ Meeting 12*30/in 1=1 Meeting 12*30/in 2=2 ab*c=2 ab?c=2? " +
                               large + "/ " + large + "/in 1=1 " + large + "/in 2=2 own=2 own ");
    const std::string cut(64, 'n');
    EXPECT_EQ(shown("joliet"), "1245=2 own Meeting 1230/ Meeting 1230/in 1=1 Meeting 1230/in 2=2 abc=2 "
                               "abc_001=2? " +
                                   cut + "/ " + cut + "/in 1=1 " + cut + "/in 2=2 ");
}

// Deliberate: Rock Ridge tells whether it is the same item. Another one gets a name beside the old one's.
TEST_F(PlanSessions, AnotherNameThatJolietMakesTheSameIsAnotherItem) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    EXPECT_DONE(
        burn(drive, discOf(Content::folder("Disc", {Content::file("ab*c", "1")}), isoAndJoliet), open()));
    EXPECT_DONE(
        burn(drive, discOf(Content::folder("Disc", {Content::file("ab?c", "2")}), isoAndJoliet), open()));
    extractAll(image(), isoAndJoliet, "Disc");
    EXPECT_EQ(shown("rr"), "ab*c=1 ab?c=2 ");
    EXPECT_EQ(shown("joliet"), "abc=1 abc_001=2 ");
}

// Nothing tells that the folder of one name in ISO 9660 and of another in Joliet was one: there are no bytes in it.
TEST_F(PlanSessions, FoldersOfEmptyFilesKeepThemInEachFileSystem) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    for (const char* number : {"1", "2", "3"}) {
        std::vector<Content> deeper, inner;
        deeper.push_back(Content::file(std::string("deep? ") + number, ""));
        inner.push_back(Content::folder("de*per", std::move(deeper)));
        inner.push_back(
            named(Content::file(std::string("empty ") + number, ""), std::string("void ") + number));
        std::vector<Content> children;
        children.push_back(named(Content::folder("folder", std::move(inner)), "Folder with another name"));
        children.push_back(Content::folder("site.old.d", {Content::file(number, "")}));
        EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", std::move(children)), isoAndJoliet), open()));
    }
    extractAll(image(), isoAndJoliet, "Disc");
    EXPECT_EQ(shown("rr"), "folder/ folder/de*per/ folder/de*per/deep? 1= folder/de*per/deep? 2= "
                           "folder/de*per/deep? 3= folder/empty 1= folder/empty 2= folder/empty 3= "
                           "site.old.d/ site.old.d/1= site.old.d/2= site.old.d/3= ");
    const std::string other = "Folder with another name/";
    EXPECT_EQ(shown("joliet"), other + ' ' + other + "deper/ " + other + "deper/deep 1= " + other +
                                   "deper/deep 2= " + other + "deper/deep 3= " + other + "void 1= " + other +
                                   "void 2= " + other +
                                   "void 3= siteold.d/ siteold.d/1= siteold.d/2= siteold.d/3= ");
}

TEST_F(PlanSessions, WithoutRockRidgeNamesAreTheSameAgain) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    EXPECT_DONE(burn(drive, plain("1", filesystem::iso9660), open()));
    EXPECT_DONE(burn(drive, plain("2", filesystem::iso9660), open()));
    run("7zz x -y -tiso -oplain '" + image().string() + "'");
    EXPECT_EQ(shown("plain"), "FOLDER:/ FOLDER:/IN 1=1 FOLDER:/IN 2=2 README.TXT=2 ");
}

TEST_F(PlanSessions, WithoutRockRidgeNamesInJolietAreTheSameAgain) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    EXPECT_DONE(burn(drive, plain("1", isoAndJoliet), open()));
    EXPECT_DONE(burn(drive, plain("2", isoAndJoliet), open()));
    run("7zz x -y -tiso -oplain '" + image().string() + "'");
    EXPECT_EQ(shown("plain"), "Folder:/ Folder:/in 1=1 Folder:/in 2=2 readme.txt=2 ");
    EXPECT_EQ(run("isoinfo -f -i '" + image().string() + "' | sort"),
              "/FOLDER:\n/FOLDER:/IN 1.;1\n/FOLDER:/IN 2.;1\n/README.TXT;1\n");
}

// What a reader without Rock Ridge knows an item by, it finds it by again; the new one of two gets the number.
TEST_F(PlanSessions, NamesInIso9660StayWhatTheyWere) {
    const auto added = [&](const char* name, const char* iso, const std::string& bytes, bool rockRidge) {
        Content item = Content::file(name, bytes);
        item.names = std::make_shared<const FilesystemNames>(
            FilesystemNames{.joliet = "", .udf = "", .hfsPlus = "", .iso = iso});
        Layout what = discOf(Content::folder("Disc", {std::move(item)}), filesystem::iso9660);
        std::get<DataTrack>(what.sessions[0].tracks[0].content).rockRidge = rockRidge;
        return what;
    };
    for (const bool rockRidge : {true, false}) {
        const auto drive = freshDrive();
        EXPECT_DONE(burn(drive, added("first", "SPECIAL (1)", "1", rockRidge), open()));
        EXPECT_DONE(burn(drive, added("special (1)", "", "2", rockRidge), open()));
        const std::string beside = "/SPECIAL (1).;1\n/SPECIAL (1)_001.;1\n";
        // Without Rock Ridge that is the same item.
        const std::string listed = run("isoinfo -f -i '" + image().string() + "' | sort");
        EXPECT_EQ(listed, rockRidge ? beside : "/SPECIAL (1).;1\n");
        EXPECT_DONE(burn(drive, added("first", "SPECIAL (1)", "3", rockRidge), open()));
        EXPECT_EQ(run("isoinfo -f -i '" + image().string() + "' | sort"), listed) << "in its own place";
        EXPECT_EQ(run("isoinfo -i '" + image().string() + "' -x '/SPECIAL (1).;1'"), "3");
        if (rockRidge) {
            extractRockRidge(image());
            EXPECT_EQ(shown("rr"), "first=3 special (1)=2 ");
        }
    }
}

// The old names in HFS+ aren't read; what ISO 9660 shows anew is new there, too.
TEST_F(PlanSessions, WhatHasANameOfItsOwnInHFSPlusIsTheSameAgain) {
    const uint8_t both = filesystem::iso9660 | filesystem::hfsPlus;
    const auto added = [&](const std::string& bytes) {
        std::vector<Content> children;
        children.push_back(
            named(Content::folder("folder", {Content::file("in " + bytes, bytes)}), {}, {}, "HFS folder"));
        children.push_back(named(Content::file("file", bytes), {}, {}, "HFS file"));
        return discOf(Content::folder("Disc", std::move(children)), both);
    };
    const auto drive = makeDrive(MediumKind::BDRE);
    EXPECT_DONE(burn(drive, added("1"), open()));
    EXPECT_DONE(burn(drive, added("2"), open()));
    extractAll(image(), both, "Disc");
    EXPECT_EQ(shown("rr"), "file=2 folder/ folder/in 1=1 folder/in 2=2 ");
    EXPECT_EQ(shown("hfsplus"), "HFS file=2 HFS folder/ HFS folder/in 1=1 HFS folder/in 2=2 ");
}

// In HFS+ the old item keeps its name, and one that differs in capitals only gets a number.
TEST_F(PlanSessions, LinksLeadToTheirItemsWhereTheseGetNumbersBesideOldOnes) {
    const uint8_t both = filesystem::iso9660 | filesystem::hfsPlus;
    const auto drive = makeDrive(MediumKind::BDRE);
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", {Content::file("Readme", "old")}), both), open()));
    std::vector<Content> children;
    children.push_back(Content::file("README", "new"));
    children.push_back({"way", SymbolicLink{"README", true}});
    children.push_back({"said", SymbolicLink{"README"}});
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", std::move(children)), both), open()));
    extractAll(image(), both, "Disc");
    EXPECT_EQ(shown("rr"), "README=new Readme=old said->README way->README ");
    EXPECT_EQ(shown("hfsplus"), "README_001=new Readme=old said->README way->README_001 ");
    // Of what is read from Rock Ridge nobody knows any more who said it.
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", {Content::file("third", "3")}), both), open()));
    extractAll(image(), both, "Disc");
    EXPECT_EQ(shown("hfsplus"), "README_001=new Readme=old said->README_001 third=3 way->README_001 ");
}

TEST_F(PlanSessions, WhatIsInvisibleStaysSoUntilItIsAddedAgain) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    std::vector<Content> children;
    for (const char* name : {"hidden", "shown again"}) {
        children.push_back(Content::folder(name, {Content::file("x", "x")}));
        children.back().attributes->invisible = true;
    }
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", std::move(children)), isoAndJoliet), open()));
    EXPECT_DONE(
        burn(drive, discOf(Content::folder("Disc", {Content::folder("shown again")}), isoAndJoliet), open()));
    EXPECT_EQ(flagsOf("hidden"), "33");
    EXPECT_EQ(flagsOf("shown again"), "22");
}

TEST_F(PlanSessions, WhatIsInvisibleInOneFileSystemStaysSoThere) {
    const auto drive = makeDrive(MediumKind::DVDPlusRW);
    std::vector<Content> children;
    const auto add = [&](Content item, bool isHiddenInIso, bool isHiddenInJoliet) {
        FilesystemAttributes own;
        own[0].invisible = isHiddenInIso;
        own[1].invisible = isHiddenInJoliet;
        if (item.name == "version") own[0].version = 5;
        item.attributes->own = std::make_shared<const FilesystemAttributes>(own);
        children.push_back(std::move(item));
    };
    add(Content::file("iso", "1"), true, false);
    add(Content::file("joliet", "2"), false, true);
    add(Content::file("version", "3"), false, true);
    add(Content::folder("folder", {Content::file("x", "x")}), false, true);
    add(Content::folder("folder shown", {Content::file("y", "y")}), false, true);
    write("walked/inner/z", "z");
    add(Content::folder("walked", {Content::file("z", "z")}), false, true);
    Content inner = Content::folder("inner", {Content::file("z", "z")});
    inner.attributes = children.back().attributes;
    std::get<VirtualFolder>(children.back().source).children.push_back(std::move(inner));
    EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", std::move(children)), isoAndJoliet), open()));
    for (const char* name : {"joliet", "version"})
        EXPECT_EQ(flagsOf(name), "01") << name;
    for (int session = 0; session < 2; ++session) { // the second reads what the first kept
        children.clear();
        children.push_back(Content::folder("folder shown"));
        children.push_back(Content::real((source / "walked").string()));
        EXPECT_DONE(burn(drive, discOf(Content::folder("Disc", std::move(children)), isoAndJoliet), open()));
        EXPECT_EQ(flagsOf("iso"), "10");
        EXPECT_EQ(flagsOf("joliet"), "01");
        EXPECT_EQ(flagsOf("version"), "01");
        EXPECT_NE(bytesOf(image()).rfind("VERSION.;5"), std::string::npos);
        EXPECT_EQ(flagsOf("folder"), "23");
        EXPECT_EQ(flagsOf("folder shown"), "22");
        EXPECT_EQ(flagsOf("walked"), "22");
        EXPECT_EQ(flagsOf("inner"), "22");
    }
}

} // namespace
