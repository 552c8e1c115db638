// Volumes as other programs read them: bsdtar, isoinfo, xorriso, 7zz and pycdlib.
#include "Image.hpp"
#include "Scratch.hpp"

namespace {

using namespace test;

class IsoReaders : public Scratch {
  protected:
    void compare(const Image& image, const std::string& readers = "") {
        image.write((base / "volume.iso").string());
        image.list(base / "list");
        run("/usr/bin/python3 '" ISO_READ "' list volume.iso " + readers);
    }
    static Image small(iso::VolumeSettings settings = {}) {
        Image image(std::move(settings));
        const uint32_t folder = image.folder(0, {"FOLDER", "folder", "Folder"});
        const uint32_t file =
            image.file(folder, {"READ_ME.TXT;1", "read me.txt", "Read me.txt;1"}, "hello\n");
        image.link(0, {"AGAIN.;1", "again", "Again"}, file);
        image.file(0, {"EMPTY.;1", "empty", "Empty"}, "");
        image.file(0, {"PLAIN", "plain", "Plain"}, std::string(5000, 'p'));
        image.symbolicLink(0, {"LINK.;1", "link", ""}, "../folder/./read me.txt");
        return image;
    }
    static iso::VolumeSettings withRules(const iso::Rules& rules) {
        iso::VolumeSettings settings;
        settings.rules = rules;
        return settings;
    }
    // Folders in folders, each with a file; the deepest has two folders.
    static Image deep(const iso::Rules& rules, int levels) {
        Image image(withRules(rules));
        uint32_t folder = 0;
        for (int level = 2; level <= levels; ++level) {
            const std::string number = std::to_string(level);
            folder = image.folder(folder, {"LEVEL" + number, "level " + number, "Level " + number});
            image.file(folder, {"FILE.;1", "file", "File"}, "on level " + number);
        }
        image.folder(folder, {"ONE", "one", "One"});
        image.file(image.folder(folder, {"TWO", "two", "Two"}), {"LAST.;1", "last", "Last"}, "the last");
        return image;
    }
};

TEST_F(IsoReaders, ASmallTree) { compare(small()); }

TEST_F(IsoReaders, AnEmptyDisc) {
    Image image;
    image.write((base / "volume.iso").string());
    EXPECT_EQ(run("bsdtar -tf volume.iso"), ".\n");
    EXPECT_EQ(run("isoinfo -R -f -i volume.iso"), "");
    run("xorriso -abort_on WARNING -indev stdio:volume.iso");
}

TEST_F(IsoReaders, ISO9660Alone) {
    Image image(withRules({.rockRidge = false}));
    image.joliet = false;
    image.file(image.folder(0, {"FOLDER", "", ""}), {"FILE.TXT;1", "", ""}, "bytes");
    image.file(0, {"NO_DOT", "", ""}, "bytes");
    compare(image);
}

TEST_F(IsoReaders, NamesThatCross) {
    Image image;
    image.file(0, {"FIRST", "second", "third"}, "1");
    image.file(0, {"SECOND", "third", "first"}, "2");
    image.file(0, {"THIRD", "first", "second"}, "3");
    compare(image);
}

TEST_F(IsoReaders, ALaterSessionCountsFromTheMediumsStart) {
    iso::VolumeSettings settings;
    settings.sessionStart = 1000;
    settings.structureStart = 50;
    compare(small(settings));
}

// A disc is shown where it was burned: local time and the zone say together which moment it was.
TEST_F(IsoReaders, AnotherTimeZone) {
    iso::VolumeSettings settings;
    settings.zone = -14; // 3:30 west
    compare(small(settings), "bsdtar xorriso");
}

// pycdlib knows one section for a file, and isoinfo the last one.
TEST_F(IsoReaders, AFileInSeveralParts) {
    Image image;
    const uint32_t file =
        image.file(0, {"PARTS.;1", "parts", "Parts"}, noise(50'000, 7), {2048, 4096, 20480});
    image.link(image.folder(0, {"FOLDER", "folder", "Folder"}), {"AGAIN.;1", "again", "Again"}, file);
    image.file(0, {"QUITE.;1", "quite", "Quite"}, noise(3000, 8));
    compare(image, "bsdtar xorriso sevenzip");
}

TEST_F(IsoReaders, FoldersDeeperThanEightLevelsStayWhereTheyAre) { compare(deep({}, 20)); }

// isoinfo and pycdlib show them where they are stored, as those do who know no Rock Ridge.
TEST_F(IsoReaders, OrAreMovedAndShownWhereTheyWere) {
    compare(deep({.allowDeepPaths = false}, 12), "moved bsdtar xorriso");
    const std::string stored = run("isoinfo -R -f -i volume.iso");
    EXPECT_NE(stored.find("/rr_moved/level 9/file\n"), std::string::npos) << stored;
    const std::string plain = run("isoinfo -f -i volume.iso");
    EXPECT_NE(plain.find("/RR_MOVED/00000001/LEVEL10/LEVEL11/LEVEL12/TWO/LAST.;1\n"), std::string::npos)
        << plain;
}

// bsdtar understands this from nobody.
TEST_F(IsoReaders, AlsoFromWhatWasMovedBefore) {
    compare(deep({.allowDeepPaths = false}, 20), "moved xorriso");
}

TEST_F(IsoReaders, RockRidgeNamesOfAnyBytes) {
    Image image;
    image.joliet = false;
    const std::vector<std::string> names = {"\xFF\xFE not text",
                                            "back\\slash",
                                            std::string(255, 'n'),
                                            std::string(251, 'm') + "\xC3",
                                            " ",
                                            "a\nb"};
    for (size_t i = 0; i < names.size(); ++i)
        image.file(0, {"FILE" + std::to_string(i), names[i], ""}, names[i]);
    compare(image, "bsdtar");
}

// The next component begins around an entry's end.
TEST_F(IsoReaders, TargetsOfLinksThatTakeSeveralEntries) {
    Image image;
    image.joliet = false;
    image.symbolicLink(0, {"LONG", "long", ""}, "/" + std::string(255, 'a') + "/" + std::string(252, 'b'));
    for (size_t size = 236; size < 260; ++size)
        image.symbolicLink(0, {"AT" + std::to_string(size), std::to_string(size), ""},
                           std::string(size, 'c') + (size % 2 ? "/../d/e" : "/d/./e"));
    compare(image, "tar xorriso pycdlib");
}

// Through several continuation areas. Of the readers only bsdtar takes these.
TEST_F(IsoReaders, VeryLongTargetsOfLinks) {
    Image image;
    image.joliet = false;
    std::string up, words;
    for (int i = 0; i < 300; ++i) {
        up += "../";
        words += std::string(static_cast<size_t>(i % 17 + 1), 'w') + "/";
    }
    image.symbolicLink(0, {"UP", "up", ""}, up + "x");
    image.symbolicLink(0, {"WORDS", "words", ""}, words + "x");
    compare(image, "tar");
}

// Many records and continuation areas, and folders of many blocks.
TEST_F(IsoReaders, ALargeFolder) {
    Image image;
    const uint32_t folder = image.folder(0, {"MANY", "many", "Many"});
    for (int i = 0; i < 1000; ++i) {
        const std::string number = std::to_string(i);
        const std::string tail(static_cast<size_t>(i % 200), '-');
        image.file(folder, {"F" + number, number + tail, number + tail.substr(0, 50)}, i % 100 ? "" : number);
    }
    compare(image, "tar sevenzip pycdlib");
}

TEST_F(IsoReaders, JolietNamesOfEveryScript) {
    Image image(withRules({.longJoliet = true}));
    const std::vector<std::string> names = {"漢字の名前.dat", "Ж",          "𝄞 clef",
                                            "dots.in.it",     "with space", std::string(103, 'n'),
                                            "é (1).txt",      "é.txt"};
    for (size_t i = 0; i < names.size(); ++i)
        image.file(0, {"FILE" + std::to_string(i), "file" + std::to_string(i), names[i]}, names[i]);
    compare(image, "bsdtar sevenzip pycdlib");
}

// Hidden is a word to those who show ISO 9660 to people; these readers show all.
TEST_F(IsoReaders, HiddenItemsAreThere) {
    Image image;
    image.link(0, {"HIDDEN", "hidden", "Hidden"}, image.file(0, {"SHOWN", "shown", "Shown"}, "x"), true);
    image.write((base / "volume.iso").string());
    const std::string told = run("isoinfo -l -i volume.iso");
    EXPECT_NE(told.find("01]  HIDDEN"), std::string::npos) << told;
    EXPECT_NE(told.find("00]  SHOWN"), std::string::npos) << told;
}

TEST_F(IsoReaders, TextsAndDatesOfTheVolume) {
    iso::VolumeSettings settings;
    settings.volumeName = "Holiday";
    settings.volumeSet = "The set";
    settings.publisher = "The publisher";
    settings.dataPreparer = "The preparer";
    settings.application = "The application";
    settings.system = "The system";
    settings.copyrightFile = "COPY.TXT";
    settings.abstractFile = "ABSTRACT.TXT";
    settings.bibliographicFile = "BIBLIO.TXT";
    settings.created = 1'600'000'000;
    settings.modified = 1'650'000'000;
    settings.expires = 1'900'000'000;
    settings.effective = 1'620'000'000;
    small(settings).write((base / "volume.iso").string());
    const std::string told = run("isoinfo -d -i volume.iso");
    for (const char* line : {"System id: The system\n", "Volume id: Holiday\n", "Volume set id: The set\n",
                             "Publisher id: The publisher\n", "Data preparer id: The preparer\n",
                             "Application id: The application\n", "Copyright File id: COPY.TXT\n",
                             "Abstract File id: ABSTRACT.TXT\n", "Bibliographic File id: BIBLIO.TXT\n",
                             "Joliet with UCS level 3 found", "Rock Ridge signatures version 1 found"})
        EXPECT_NE(told.find(line), std::string::npos) << line << told;
    const std::string info = run("TZ=UTC xorriso -indev stdio:volume.iso -pvd_info");
    for (const char* line : {"Creation Time: 2020091312264000", "Modif. Time  : 2022041505200000",
                             "Expir. Time  : 2030031717464000", "Eff. Time    : 2021050300000000"})
        EXPECT_NE(info.find(line), std::string::npos) << line << info;
    EXPECT_NE(run("7zz l -slt volume.iso").find("Created = 2020-09-13 12:26:40"), std::string::npos);
}

} // namespace
