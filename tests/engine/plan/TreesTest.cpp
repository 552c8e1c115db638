// Trees whose items have a name of their own in each file system, and stand in some of them only.
#include "Discs.hpp"

#include <algorithm>
#include <random>

using namespace engine;

namespace {

class PlanTrees : public test::Discs {};

TEST(PlanContent, ATreeEndsHoweverDeepItIs) {
    const auto ends = std::make_shared<const engine::FilesystemNames>();
    Content tree = Content::folder("deepest");
    tree.names = ends;
    for (int level = 1; level < 100'000; ++level) {
        std::vector<Content> children;
        children.push_back(std::move(tree));
        children.push_back(Content::file("beside", "bytes"));
        children.back().names = ends;
        tree = Content::folder("level", std::move(children));
    }
    EXPECT_EQ(ends.use_count(), 100'001);
    tree = Content::folder("another");
    EXPECT_EQ(ends.use_count(), 1);
}

TEST(PlanContent, AnItemCostsLittle) { EXPECT_LE(sizeof(Content), 128u) << "trees have 100,000 of them"; }

// A parent's number has 16 bits in the path table of ISO 9660, and of Joliet.
TEST_F(PlanTrees, FoldersWithFoldersInThemHaveALimit) {
    const auto disc = [](size_t parents) {
        std::vector<Content> children(parents); // and the root is one, too
        for (size_t i = 0; i < parents; ++i)
            children[i] = Content::folder("p" + std::to_string(i), {Content::folder("in it")});
        return discOf(Content::folder("Disc", std::move(children)), filesystem::iso9660);
    };
    const Layout most = disc(65534);
    EXPECT_TRUE(plannedBlocks(std::get<DataTrack>(most.sessions[0].tracks[0].content)).ok());
    const auto drive = makeDrive();
    const auto refused = burn(drive, disc(65535));
    EXPECT_FAILED(
        refused, FileLocationConflict,
        "\"p9999/in it\" can't be on the disc: ISO 9660 has no more than 65535 folders with folders "
        "in them.");
    EXPECT_TRUE(drive->mediumInfo()->blank);
}

// A tree is copied and its pieces go: what a burn has is whole all the same.
TEST_F(PlanTrees, ACopyHasTheBytesAndAttributesOfItsOwn) {
    Content file = Content::file("file", std::string(5000, 'b'));
    file.attributes->mode = 0600;
    Content copy = file;
    file.attributes->mode = 0644;
    file = Content::file("another", "bytes");
    EXPECT_FALSE(file.attributes.isSet());
    EXPECT_EQ(file.attributes->mode, std::nullopt);
    std::vector<Content> children{copy, Content::file("empty", "")};
    copy = Content::folder("nothing");
    EXPECT_DONE(burn(makeDrive(), discOf(Content::folder("Disc", std::move(children)), filesystem::iso9660)));
    extractAll(image(), filesystem::iso9660, "Disc");
    EXPECT_EQ(shown("rr"), "empty= file=" + std::string(5000, 'b') + " ");
    EXPECT_EQ(run("stat -c '%a %n' rr/*"), "644 rr/empty\n600 rr/file\n");
}

TEST_F(PlanTrees, NamesMayCrossBetweenSiblings) {
    std::vector<Content> inner;
    inner.push_back(Content::file("in a", "a's"));
    std::vector<Content> others;
    others.push_back(Content::file("in b", "b's"));
    std::vector<Content> children;
    children.push_back(named(Content::folder("a", std::move(inner)), "b", "B", "c"));
    children.push_back(named(Content::folder("b", std::move(others)), "a", "A", "d"));
    children.push_back(named(Content::file("c", "c's"), "d", "a", "a"));
    children.push_back(named(Content::file("d", "d's"), "c", "b", "b"));
    const uint8_t all = filesystem::iso9660 | filesystem::joliet | filesystem::udf;
    EXPECT_DONE(burn(makeDrive(), discOf(Content::folder("Disc", children), all)));
    extractAll(image(), all, "Disc");
    EXPECT_EQ(shown("rr"), "a/ a/in a=a's b/ b/in b=b's c=c's d=d's ");
    EXPECT_EQ(shown("joliet"), "a/ a/in b=b's b/ b/in a=a's c=d's d=c's ");
    EXPECT_EQ(shown("udf"), "A/ A/in b=b's B/ B/in a=a's a=c's b=d's ");
    BurnOptions again;
    again.overwrite = true;
    const uint8_t mac = filesystem::iso9660 | filesystem::joliet | filesystem::hfsPlus;
    EXPECT_DONE(burn(openDrive(), discOf(Content::folder("Disc", std::move(children)), mac), again));
    extractAll(image(), mac, "Disc");
    EXPECT_EQ(shown("hfsplus"), "a=c's b=d's c/ c/in a=a's d/ d/in b=b's ");
}

// The path of a folder that is added is followed, whatever depth it is added at; links in it stay links.
TEST_F(PlanTrees, AFolderWhosePathIsALinkIsThatFolder) {
    fs::create_directories(base / "elsewhere/inner");
    std::ofstream(base / "elsewhere/inner/file") << "bytes";
    fs::create_directory_symlink("inner", base / "elsewhere/to inner");
    fs::create_directory_symlink("elsewhere", base / "way");
    fs::create_directory_symlink("nowhere", base / "lost");
    const auto tree = [&](Content item) {
        return discOf(Content::folder("Disc", {std::move(item)}), filesystem::iso9660);
    };
    EXPECT_DONE(burn(makeDrive(), tree(Content::real((base / "way").string() + '/'))));
    extractRockRidge(image());
    EXPECT_EQ(shown("rr"), "way/ way/inner/ way/inner/file=bytes way/to inner->inner ");
    run("rm -r rr");
    EXPECT_DONE(burn(freshDrive(), tree(Content::real((base / "way").string()))));
    extractRockRidge(image());
    EXPECT_EQ(shown("rr"), "way->elsewhere ");
    const std::string lost = (base / "lost").string() + '/';
    EXPECT_FAILED(burn(freshDrive(), tree(Content::real(lost))), FileLocationConflict,
                  "\"" + lost + "\" does not exist.");
}

TEST_F(PlanTrees, SymbolicLinksNeedAFileSystemThatHasThem) {
    std::vector<Content> children;
    children.push_back(Content::link("link", "file"));
    children.push_back(Content::file("file", "bytes"));
    Layout what = discOf(Content::folder("Disc", std::move(children)),
                         filesystem::iso9660 | filesystem::joliet | filesystem::hfsPlus);
    std::get<DataTrack>(what.sessions[0].tracks[0].content).rockRidge = false;
    EXPECT_DONE(burn(makeDrive(), what));
    extractAll(image(), filesystem::joliet | filesystem::hfsPlus, "Disc");
    EXPECT_EQ(shown("joliet"), "file=bytes ");
    EXPECT_EQ(shown("hfsplus"), "file=bytes link->file ");
    EXPECT_EQ(run("isoinfo -f -i '" + image().string() + "'"), "/FILE.;1\n");
}

TEST_F(PlanTrees, ASymbolicLinkThatNoFileSystemCanHoldFailsTheBurn) {
    fs::create_symlink("nowhere", source / "real link");
    const auto refused = [&](const std::string& name, Content item, uint8_t filesystems) {
        Layout what = discOf(Content::folder("Disc", {std::move(item)}), filesystems);
        std::get<DataTrack>(what.sessions[0].tracks[0].content).rockRidge = false;
        EXPECT_FAILED(burn(freshDrive(), what), FilesystemsNotSupported,
                      "None of the disc's file systems can hold the symbolic link \"" + name +
                          "\"; put it into Rock Ridge, UDF or HFS+, or leave it out.");
    };
    const uint8_t both = filesystem::iso9660 | filesystem::joliet;
    refused("link", Content::link("link", "file"), both);
    refused("real link", Content::real(source.string()), both);
    Content inJoliet = Content::link("link", "file");
    inJoliet.filesystems = filesystem::joliet;
    refused("link", std::move(inJoliet), both | filesystem::hfsPlus);
}

// Readers that know ISO 9660 only find these; Rock Ridge's are as they were.
TEST_F(PlanTrees, NamesOfTheirOwnInIso9660) {
    const auto burned = [&](uint8_t level, bool rockRidge) {
        std::vector<Content> children;
        for (const auto& [name, iso] : {std::pair{"one thing.txt", "OTHER (1).TXT"},
                                        {"Other (1).txt", ""},
                                        {"no legal~name", "also not.legal;name"},
                                        {"Übersicht.tar.gz", ""}}) {
            children.push_back(Content::file(name, name));
            children.back().names = std::make_shared<const FilesystemNames>(
                FilesystemNames{.joliet = "", .udf = "", .hfsPlus = "", .iso = iso});
        }
        children.push_back(Content::folder("a.folder"));
        Layout what = discOf(Content::folder("Disc", std::move(children)), filesystem::iso9660);
        auto& track = std::get<DataTrack>(what.sessions[0].tracks[0].content);
        track.isoLevel = level;
        track.rockRidge = rockRidge;
        EXPECT_DONE(burn(freshDrive(), what));
        return run("isoinfo -f -i '" + image().string() + "' | sort");
    };
    for (const bool rockRidge : {false, true}) {
        EXPECT_EQ(burned(1, rockRidge),
                  "/AFOLDER\n/ALSONOT.LEG;1\n/OTHER1.TXT;1\n/OTHE_001.TXT;1\n/UBERSICH.GZ;1\n");
        for (const uint8_t level : {uint8_t{2}, uint8_t{3}})
            EXPECT_EQ(burned(level, rockRidge), "/AFOLDER\n/ALSO NOT.LEGALNAME;1\n/OTHER (1).TXT;1\n"
                                                "/OTHER (1)_001.TXT;1\n/UBERSICHTTAR.GZ;1\n");
    }
    extractRockRidge(image());
    EXPECT_EQ(shown("rr"),
              "Other (1).txt=Other (1).txt a.folder/ no legal~name=no legal~name one thing.txt=one thing.txt "
              "Übersicht.tar.gz=Übersicht.tar.gz ");
}

TEST_F(PlanTrees, AHardLinkWithAttributesOfItsOwnHasTheSameBytes) {
    std::vector<Content> children;
    children.push_back(Content::file("file", "only once"));
    children[0].identity = 7;
    children[0].attributes->mode = 0600;
    children.push_back({"same", HardLink{7}, {}});
    children.push_back({"other", HardLink{7}, {}});
    children[2].attributes->mode = 0755;
    EXPECT_DONE(burn(makeDrive(), discOf(Content::folder("Disc", std::move(children)), filesystem::iso9660)));
    extractAll(image(), filesystem::iso9660, "Disc");
    EXPECT_EQ(shown("rr"), "file=only once other=only once same=only once ");
    EXPECT_EQ(run("stat -c '%a %n' rr/*"), "600 rr/file\n755 rr/other\n600 rr/same\n");
    const std::string disc = bytesOf(image());
    const size_t at = disc.find("only once");
    EXPECT_EQ(disc.find("only once", at + 1), std::string::npos);
}

// ---- random ones ----------------------------------------------------------------------------------------------

constexpr size_t systems = 4;

struct Maker {
    explicit Maker(unsigned seed, uint8_t written) : random(seed), written(written) {}

    size_t upTo(size_t most) { return std::uniform_int_distribution<size_t>(0, most)(random); }
    bool oneIn(size_t count) { return upTo(count - 1) == 0; }

    // Names of one folder, a set for each file system: what one calls an item another calls its neighbour.
    std::vector<std::string> names(size_t count) {
        static const char* const letters[] = {"a", "b", "Z", "文", "Ж", "-", "0", " x", "(", "ß"};
        std::vector<std::string> all;
        for (size_t i = 0; i < count; ++i) {
            std::string name = "n";
            for (size_t length = upTo(oneIn(8) ? 30 : 6); length > 0; --length)
                name += letters[upTo(9)];
            all.push_back(name + std::to_string(i) + (oneIn(3) ? ".txt" : ""));
        }
        return all;
    }

    Content folder(const std::string& name, const std::array<fs::path, systems>& wanted, uint8_t shown,
                   int depth) {
        std::vector<Content> children;
        const std::vector<std::string> given = names(upTo(depth == 0 ? 14 : 7));
        std::array<std::vector<std::string>, systems> called;
        for (auto& one : called) {
            one = given;
            if (!oneIn(3)) std::ranges::shuffle(one, random);
        }
        for (size_t i = 0; i < given.size(); ++i) {
            std::array<fs::path, systems> places;
            uint8_t here = oneIn(3) ? static_cast<uint8_t>(1 + upTo(14)) : filesystem::all;
            for (size_t system = 0; system < systems; ++system)
                if ((here & shown & written) >> system & 1)
                    places[system] = wanted[system] / called[system][i];
            const uint8_t able = filesystem::iso9660 | filesystem::hfsPlus;
            const bool isLink = oneIn(6) && (here & shown & written & able) != 0;
            if (isLink) { // 7zz can't read a UDF volume that has one
                here &= static_cast<uint8_t>(~filesystem::udf);
                places[2].clear();
            }
            if (depth < 5 && !isLink && oneIn(3)) {
                for (const fs::path& place : places)
                    if (!place.empty()) fs::create_directory(place);
                children.push_back(folder(called[0][i], places, here & shown, depth + 1));
            } else if (isLink) {
                children.push_back(Content::link(called[0][i], "to/" + called[1][i]));
                for (size_t system = 0; system < systems; ++system)
                    if (system != 1 && !places[system].empty())
                        fs::create_symlink("to/" + called[1][i], places[system]);
            } else {
                std::string bytes(oneIn(3) ? 0 : oneIn(2) ? upTo(100) : upTo(9000), '\0');
                for (char& byte : bytes)
                    byte = static_cast<char>(random());
                for (const fs::path& place : places)
                    if (!place.empty()) std::ofstream(place, std::ios::binary) << bytes;
                children.push_back(Content::file(called[0][i], std::move(bytes)));
            }
            Content& made = children.back();
            made.filesystems = here;
            made.names = std::make_shared<const FilesystemNames>(
                FilesystemNames{called[1][i], called[2][i], called[3][i]});
        }
        return Content::folder(name, std::move(children));
    }

    std::mt19937 random;
    uint8_t written;
};

class RandomPlans : public test::Discs, public ::testing::WithParamInterface<unsigned> {};

// 7zz wants UDF's second anchor right behind the last file, where HFS+ has a header: so one or the other.
TEST_P(RandomPlans, EachFileSystemShowsItsOwnTree) {
    const uint8_t written = filesystem::iso9660 | filesystem::joliet |
                            (GetParam() % 2 == 0 ? filesystem::udf : filesystem::hfsPlus);
    std::array<fs::path, systems> wanted;
    for (size_t system = 0; system < systems; ++system)
        fs::create_directory(wanted[system] = base / ("wanted" + std::to_string(system)));
    Content root = Maker(GetParam(), written).folder("Disc", wanted, filesystem::all, 0);
    // 7zz also wants that anchor to follow a file that UDF shows: the last one of all.
    for (const fs::path& place : wanted) {
        fs::create_directory(place / "z");
        std::ofstream(place / "z/last") << "end";
    }
    std::get<VirtualFolder>(root.source)
        .children.push_back(Content::folder("z", {Content::file("last", "end")}));
    EXPECT_DONE(burn(makeDrive(), discOf(std::move(root), written)));
    extractAll(image(), written, "Disc");
    EXPECT_EQ(shown("rr"), shown("wanted0"));
    EXPECT_EQ(shown("joliet"), shown("wanted1"));
    if (written & filesystem::udf) {
        EXPECT_EQ(shown("udf"), shown("wanted2"));
    } else {
        EXPECT_EQ(shown("hfsplus"), shown("wanted3"));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomPlans, ::testing::Range(0u, 60u));

} // namespace
