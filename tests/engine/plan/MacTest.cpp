// What a Macintosh keeps of items: aliases, dates and the Finder's values; and what is hidden in each file system.
#include "Discs.hpp"
#include "plan/TreeBuilder.hpp"
#include "plan/ViewMaker.hpp"
#include "plan/Views.hpp"

#include <sstream>

using namespace engine;

namespace {

class PlanForMacintosh : public test::Discs {
  protected:
    static constexpr uint8_t both = filesystem::iso9660 | filesystem::hfsPlus;

    // Where the volume's first header is, in blocks.
    static size_t volumeIn(const std::string& disc) {
        size_t block = 0;
        constexpr auto size = static_cast<size_t>(blockSize);
        while (block * size < disc.size() && disc.compare(block * size + 1024, 2, "H+") != 0)
            ++block;
        return block;
    }
    std::string look(const std::string& tool, const std::string& what) const {
        const std::string offset = std::to_string(volumeIn(bytesOf(image())) * 4);
        return run("TZ=UTC " + tool + " -o " + offset + " '" + image().string() + "' " + what);
    }
    static void expectLines(const std::string& told, std::initializer_list<const char*> lines) {
        for (const char* line : lines)
            EXPECT_NE(told.find(line), std::string::npos) << line << " is not in\n" << told;
    }
};

TEST_F(PlanForMacintosh, AnAliasLeadsToFilesFoldersAndTheVolume) {
    std::vector<Content> inner;
    inner.push_back(Content::file("file", "bytes"));
    inner[0].identity = 1;
    std::vector<Content> children;
    children.push_back(Content::folder("folder", std::move(inner)));
    children[0].identity = 2;
    children.push_back({"to file", FinderAlias{1}, {}});
    children.push_back({"to folder", FinderAlias{2}, {}});
    children.push_back({"to volume", FinderAlias{3}, {}});
    Content root = Content::folder("Disc", std::move(children));
    root.identity = 3;
    EXPECT_DONE(burn(makeDrive(), discOf(std::move(root), both)));
    extractAll(image(), both, "Disc");
    EXPECT_EQ(shown("rr"), "folder/ folder/file=bytes ") << "nowhere but in HFS+";
    for (const char* name : {"file", "folder", "volume"}) {
        const std::string fork = bytesOf(base / "hfsplus" / (std::string("to ") + name + ":rsrc"));
        ASSERT_GT(fork.size(), 400u) << name;
        EXPECT_EQ(fork.substr(fork.size() - 20, 4), "alis") << "the type of its one resource";
    }
    EXPECT_NE(bytesOf(base / "hfsplus/to file:rsrc").find("/folder/file"), std::string::npos);
    const std::string listed = look("fls", "");
    EXPECT_NE(listed.find("\tto file\n"), std::string::npos) << listed;
}

TEST_F(PlanForMacintosh, AnAliasOfWhatIsNotThereIsRefused) {
    std::vector<Content> children;
    children.push_back({"lost", FinderAlias{9}, {}});
    EXPECT_FAILED(burn(makeDrive(), discOf(Content::folder("Disc", children), both)), FileLocationConflict,
                  "The Finder alias \"lost\" points at nothing that is on the disc; add the item, or leave "
                  "the alias out.");
    children.push_back(Content::file("elsewhere", "x"));
    children[1].identity = 9;
    children[1].filesystems = filesystem::iso9660;
    EXPECT_FAILED(
        burn(openDrive(), discOf(Content::folder("Disc", children), both)), FileLocationConflict,
        "A Finder alias points at an item that is not in HFS+; put it there, too, or leave the alias out.");
    EXPECT_FAILED(
        burn(openDrive(), discOf(Content::folder("Disc", std::move(children)), filesystem::iso9660)),
        FilesystemsNotSupported,
        "The Finder alias \"lost\" can be in HFS+ only; have HFS+ on the disc and the alias's folder in it, "
        "or "
        "leave the alias out.");
}

// Its own values are laid over the file's, each by itself.
TEST_F(PlanForMacintosh, AHardLinkWithValuesOfItsOwnKeepsTheOthers) {
    MacAttributes mac;
    mac.type = {'T', 'E', 'X', 'T'};
    mac.creator = {'t', 't', 'x', 't'};
    std::vector<Content> children;
    children.push_back(Content::file("file", "bytes"));
    children[0].identity = 1;
    children[0].attributes->mac = std::make_shared<const MacAttributes>(mac);
    mac = {};
    mac.creator = {'o', 't', 'h', 'r'};
    children.push_back({"other creator", HardLink{1}, {}});
    children[1].attributes->mac = std::make_shared<const MacAttributes>(mac);
    children.push_back({"other mode", HardLink{1}, {}});
    children[2].attributes->mode = 0600;
    EXPECT_DONE(burn(makeDrive(), discOf(Content::folder("Disc", std::move(children)), both)));
    const std::string listed = look("fls", "");
    const auto valuesOf = [&](const std::string& name) {
        const size_t end = listed.find(":\t" + name + "\n");
        const std::string number =
            listed.substr(listed.rfind(' ', end) + 1, end - listed.rfind(' ', end) - 1);
        const std::string told = look("istat", number);
        const size_t at = told.find("File type:");
        return at == told.npos ? told : told.substr(at, told.find('\n', told.find('\n', at) + 1) - at);
    };
    const std::string text = "File type:\t54455854  TEXT\nFile creator:\t";
    EXPECT_EQ(valuesOf("file"), text + "74747874  ttxt");
    EXPECT_EQ(valuesOf("other creator"), text + "6f746872  othr");
    EXPECT_EQ(valuesOf("other mode"), text + "74747874  ttxt");
}

TEST_F(PlanForMacintosh, AHardLinksValuesForAllFileSystemsGoBeforeItsOriginalsForOne) {
    FilesystemAttributes forOne;
    forOne[3].mode = 0400;
    forOne[3].owner = 7;
    forOne[3].group = 8;
    forOne[3].modified = forOne[3].accessed = forOne[3].changed = 1000000000;
    forOne[3].invisible = true;
    std::vector<Content> children;
    children.push_back(Content::file("file", "bytes"));
    children[0].identity = 1;
    children[0].attributes->own = std::make_shared<const FilesystemAttributes>(forOne);
    const auto addLink = [&](const std::string& name) -> Attributes& {
        children.push_back({name, HardLink{1}, {}});
        return *children.back().attributes.operator->();
    };
    addLink("mode").mode = 0666;
    addLink("owner").owner = 9;
    addLink("group").group = 9;
    addLink("modified").modified = 1300000000;
    addLink("accessed").accessed = 1300000000;
    addLink("changed").changed = 1300000000;
    addLink("shown").invisible = false;
    DataTrack track;
    track.root = Content::folder("Disc", std::move(children));
    SourceList sources;
    plan::Tree tree;
    plan::addTrack(tree, track, filesystem::hfsPlus, sources, Signal());
    std::string shown;
    for (const plan::Entry& entry : tree.entries) {
        hfsplus::Node node;
        plan::describe(node, tree.nodes[entry.node], tree.ownOf(entry.node, filesystem::hfsPlus));
        const bool isInvisible = tree.isInvisible(entry.node, filesystem::hfsPlus);
        const auto date = [](std::time_t time) { return time == 1000000000 ? " old" : " new"; };
        std::ostringstream line;
        line << tree.nameOf(entry) << std::oct << ' ' << node.mode << ' ' << node.owner << ' ' << node.group
             << date(node.modified) << date(node.accessed) << date(node.changed) << (isInvisible ? " x" : "")
             << '\n';
        shown += line.str();
    }
    EXPECT_EQ(shown, "file 400 7 10 old old old x\n"
                     "accessed 400 7 10 old new old x\n"
                     "changed 400 7 10 old old new x\n"
                     "group 400 7 11 old old old x\n"
                     "mode 666 7 10 old old old x\n"
                     "modified 400 7 10 new old old x\n"
                     "owner 400 11 10 old old old x\n"
                     "shown 400 7 10 old old old\n");
}

// As another program writes them: in front of all else that a record has.
TEST_F(PlanForMacintosh, TypesAndCreatorsAreInIso9660WhereTheyAreGivenForIt) {
    MacAttributes mac;
    mac.type = {'T', 'E', 'X', 'T'};
    mac.creator = {'t', 't', 'x', 't'};
    const auto forIso = std::make_shared<const MacAttributes>(mac);
    mac = {};
    mac.flags = 0x0810;
    const auto flagsOnly = std::make_shared<const MacAttributes>(mac);
    const auto entryOf = [](const std::string& disc, const std::string& name) {
        const size_t at = disc.find(name + ";1");
        if (at == disc.npos) return "no " + name;
        const size_t stored = name.size() + 2, use = at + stored + (stored % 2 == 0 ? 1 : 0);
        const size_t end = at - 33 + static_cast<uint8_t>(disc[at - 33]);
        return disc.substr(use, std::min<size_t>(14, end - use));
    };
    write("file.txt", "bytes");
    std::ofstream(base / "map") << ".txt Raw \"ttxt\" \"TEXT\" \"Text\"\n";
    run("genisoimage -quiet -R -apple -map map -o other.iso source");
    const std::string wanted = entryOf(bytesOf(base / "other.iso"), "FILE.TXT");
    ASSERT_EQ(wanted, std::string("AA\x0E\2TEXTttxt\0\0", 14));
    for (const bool rockRidge : {true, false}) {
        std::vector<Content> children;
        children.push_back(Content::file("file.txt", "bytes"));
        children[0].attributes->isoMac = forIso;
        children[0].identity = 1;
        children.push_back({"link", HardLink{1}, {}});
        children[1].attributes->isoMac = flagsOnly;
        children.push_back(Content::file("plain.txt", "plain"));
        children.push_back(Content::folder("folder"));
        std::string names = "file.txt=bytes folder/ ";
        for (char letter = 'a'; letter < 'z'; ++letter) { // names that go on elsewhere
            const std::string name = "g" + std::string(150, letter);
            children.push_back(Content::file(name, "x"));
            children.back().attributes->isoMac = forIso;
            names += name + "=x ";
        }
        Layout what = discOf(Content::folder("Disc", std::move(children)), filesystem::iso9660);
        auto& track = std::get<DataTrack>(what.sessions[0].tracks[0].content);
        track.rockRidge = rockRidge;
        track.macExtensions = true;
        EXPECT_DONE(burn(freshDrive(), what));
        const std::string disc = bytesOf(image());
        EXPECT_EQ(entryOf(disc, "FILE.TXT"), wanted);
        EXPECT_EQ(entryOf(disc, "LINK."), std::string("AA\x0E\2TEXTttxt\x08\x10", 14));
        EXPECT_EQ(entryOf(disc, "PLAIN.TXT").substr(0, 2), rockRidge ? "PX" : "");
        EXPECT_EQ(entryOf(disc, "G" + std::string(29, 'Y') + "."), wanted);
        EXPECT_NE(run("isoinfo -d -i '" + image().string() + "'")
                      .find("System id: APPLE COMPUTER, INC., TYPE: 0002\n"),
                  std::string::npos);
        EXPECT_EQ(run("isoinfo -i '" + image().string() + "' -x '/FILE.TXT;1'"), "bytes");
        run("rm -rf rr sevenzip");
        extractRockRidge(image());
        EXPECT_EQ(run("ls rr | wc -l"), "29\n");
        if (rockRidge) {
            EXPECT_EQ(shown("rr"), names + "link=bytes plain.txt=plain ");
            run("7zz x -y -tiso -osevenzip '" + image().string() + "'");
            EXPECT_EQ(run("cat 'sevenzip/file.txt' sevenzip/link"), "bytesbytes");
        }
    }
}

TEST_F(PlanForMacintosh, LinksLeadToLinks) {
    std::vector<Content> children;
    // Each comes before the one that it leads to.
    children.push_back({"1 alias of an alias", FinderAlias{2}, {}});
    children.push_back({"2 alias of a link", FinderAlias{4}, {}});
    children[1].identity = 2;
    children.push_back({"3 link to a link", HardLink{4}, {}});
    children.push_back({"4 link", HardLink{5}, {}});
    children[3].identity = 4;
    children.push_back(Content::file("5 file", "only once"));
    children[4].identity = 5;
    EXPECT_DONE(burn(makeDrive(), discOf(Content::folder("Disc", children), both)));
    extractAll(image(), both, "Disc");
    EXPECT_EQ(shown("rr"), "3 link to a link=only once 4 link=only once 5 file=only once ");
    EXPECT_EQ(run("stat -c %h 'rr/5 file'"), "3\n");
    EXPECT_NE(bytesOf(base / "hfsplus/1 alias of an alias:rsrc").find("/2 alias of a link"),
              std::string::npos);
    children.clear();
    children.push_back({"to the other", HardLink{2}, {}});
    children.push_back({"back", HardLink{1}, {}});
    children[0].identity = 1;
    children[1].identity = 2;
    const std::string circle = "The hard link \"to the other\" points at nothing that is on the disc; add "
                               "the file, or leave the link out.";
    EXPECT_FAILED(burn(freshDrive(), discOf(Content::folder("Disc", std::move(children)), both)),
                  FileLocationConflict, circle);
    children.clear();
    children.push_back(Content::folder("folder"));
    children[0].identity = 1;
    children.push_back({"link", HardLink{1}, {}});
    EXPECT_FAILED(
        burn(freshDrive(), discOf(Content::folder("Disc", std::move(children)), both)), FileLocationConflict,
        "The hard link \"link\" points at what is no file; a hard link is one more name of a file.");
}

TEST_F(PlanForMacintosh, DatesAndTheFindersValuesAreKept) {
    MacAttributes mac;
    mac.created = 1'000'000'000;
    mac.backedUp = 1'400'000'000;
    mac.type = {'T', 'E', 'X', 'T'};
    mac.creator = {'t', 't', 'x', 't'};
    mac.flags = 0x0810;
    mac.iconLocation = {{0x1234, 0x0567}};
    std::vector<Content> children;
    children.push_back(Content::file("file", "bytes"));
    children[0].attributes->mac = std::make_shared<const MacAttributes>(mac);
    children[0].attributes->modified = 1'100'000'000;
    mac = {};
    mac.windowBounds = {{0x0102, 0x0304, 0x0506, 0x0708}};
    mac.view = 0x0a0b;
    mac.scrollPosition = {{0x0c0d, 0x0e0f}};
    children.push_back(Content::folder("folder"));
    children[1].attributes->mac = std::make_shared<const MacAttributes>(mac);
    Layout what = discOf(Content::folder("Disc", std::move(children)), both);
    std::get<DataTrack>(what.sessions[0].tracks[0].content).checked = 978'307'200 + 5; // 2001
    EXPECT_DONE(burn(makeDrive(), what));
    expectLines(look("istat", "16"),
                {"File type:\t54455854  TEXT\n", "File creator:\t74747874  ttxt\n",
                 "Created:\t2001-09-09 01:46:40 (UTC)\n", "Content Modified:\t2004-11-09 11:33:20 (UTC)\n",
                 "Backed Up:\t2014-05-13 16:53:20 (UTC)\n"});
    // Type, creator, flags, and the icon's place, one behind the other; of a folder the window, flags, icon, view and scrolling.
    const std::string disc = bytesOf(image());
    EXPECT_NE(disc.find(std::string("TEXTttxt\x08\x10\x12\x34\x05\x67", 14)), std::string::npos);
    EXPECT_NE(disc.find(std::string("\1\2\3\4\5\6\7\x8\0\0\0\0\0\0\x0a\x0b\x0c\x0d\x0e\x0f", 20)),
              std::string::npos);
    EXPECT_NE(look("fsstat", "").find("Last Checked"), std::string::npos);
    const uint32_t checked = 978'307'205u + 2'082'844'800u;
    const size_t at = volumeIn(disc) * static_cast<size_t>(blockSize) + 1024 + 28;
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(static_cast<uint8_t>(disc[at + i]), static_cast<uint8_t>(checked >> (24 - 8 * i)));
}

TEST_F(PlanForMacintosh, WhatIsInvisibleIsHiddenInEveryFileSystem) {
    std::vector<Content> children;
    children.push_back(Content::file("hidden", "h"));
    children[0].attributes->invisible = true;
    children.push_back(Content::file("shown", "s"));
    EXPECT_DONE(burn(makeDrive(), discOf(Content::folder("Disc", std::move(children)), filesystem::all)));
    const std::string disc = bytesOf(image());
    // ISO 9660's records: flags stand eight bytes in front of the name.
    for (const auto& [name, hidden] : {std::pair{"HIDDEN.;1", true}, {"SHOWN.;1", false}}) {
        const size_t at = disc.find(name);
        ASSERT_NE(at, std::string::npos);
        EXPECT_EQ(disc[at - 8] & 1, hidden) << name;
    }
    // Joliet's, with the high byte first.
    const size_t wide = disc.find(std::string("\0h\0i\0d\0d\0e\0n\0;\0", 15) + "1");
    ASSERT_NE(wide, std::string::npos);
    EXPECT_EQ(disc[wide - 8] & 1, 1);
    // UDF's identifiers: what kind of entry stands 20 bytes in front of the name's first byte.
    const size_t udf = disc.find("\x08hidden"), open = disc.find("\x08shown");
    ASSERT_NE(udf, std::string::npos);
    EXPECT_EQ(disc[udf - 20] & 1, 1);
    EXPECT_EQ(disc[open - 20] & 1, 0);
    // HFS+: the Finder's flags.
    expectLines(look("istat", "16"), {"Is invisible"});
    EXPECT_EQ(look("istat", "17").find("Is invisible"), std::string::npos);
}

} // namespace
