// Symbolic links on disk lead to the same items in file systems where these have other names.
#include "Discs.hpp"
#include "plan/TreeBuilder.hpp"
#include "plan/Views.hpp"

#include <map>

using namespace engine;

namespace {

class PlanLinks : public test::Discs {
  protected:
    void SetUp() override {
        write("Case/file", "upper");
        write("case/file", "lower");
        write("case/Deep/FILE", "upper deep");
        write("case/Deep/file", "lower deep");
        link("case/Deep/FILE", "to upper");
        link("case/Deep/file", "to lower");
        link("./case/Deep/../Deep", "folder");
        link("../../case/./file", "case/Deep/up");
        link("../../../outside/case", "case/Deep/out");
        link("case/missing/file", "lost");
        link("folder/file", "through a link");
        link("/case/file", "absolute");
        link("up", "case/Deep/beside");
    }
    void link(const std::string& target, const std::string& at) {
        fs::create_directories((source / at).parent_path());
        fs::create_symlink(target, source / at);
    }
    std::map<std::string, std::string> links(const std::string& folder) const {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(base / folder))
            if (entry.is_symlink())
                found[entry.path().filename().string()] = fs::read_symlink(entry.path()).string();
        return found;
    }
};

TEST_F(PlanLinks, InHFSPlusTheyHaveTheNamesThatCaseTwinsGot) {
    EXPECT_DONE(burn(makeDrive(), discOf(Content::real(source.string(), "Disc"),
                                         filesystem::iso9660 | filesystem::hfsPlus)));
    extractAll(image(), filesystem::hfsPlus, "Disc");
    EXPECT_EQ(bytesOf(base / "hfsplus/Case/file"), "upper");
    EXPECT_EQ(bytesOf(base / "hfsplus/case_001/file"), "lower");
    EXPECT_EQ(bytesOf(base / "hfsplus/case_001/Deep/file_001"), "lower deep");
    EXPECT_EQ(bytesOf(base / "hfsplus/to upper"), "upper deep");
    EXPECT_EQ(bytesOf(base / "hfsplus/to lower"), "lower deep");
    EXPECT_EQ(links("rr"), links("source")) << "Rock Ridge has the names themselves";
}

// 7zz leaves out links that lead up, so the tree itself is looked at.
TEST_F(PlanLinks, EachPartOfAPathIsFollowedAsFarAsItLeadsToItems) {
    DataTrack track;
    track.root = Content::real(source.string(), "Disc");
    SourceList sources;
    plan::Tree tree;
    plan::addTrack(tree, track, filesystem::hfsPlus, sources, Signal());
    const auto view = plan::hfsPlusView(tree, 0);
    std::map<std::string, std::string> found;
    for (const hfsplus::Entry& entry : view.tree.entries)
        for (const hfsplus::OwnFork& fork : view.tree.ownForks)
            if (fork.node == entry.node) found[entry.name] = fork.bytes;
    const std::map<std::string, std::string> wanted = {{"to upper", "case_001/Deep/FILE"},
                                                       {"to lower", "case_001/Deep/file_001"},
                                                       {"folder", "./case_001/Deep/../Deep"},
                                                       {"up", "../../case_001/./file"},
                                                       {"out", "../../../outside/case"},
                                                       {"lost", "case_001/missing/file"},
                                                       {"through a link", "folder/file"},
                                                       {"absolute", "/case/file"},
                                                       {"beside", "up"}};
    EXPECT_EQ(found, wanted);
}

TEST_F(PlanLinks, InUDFTheyHaveTheNamesOfTheirOwn) {
    std::vector<Content> children;
    children.push_back(named(Content::real((source / "case").string(), "case"), {}, "In UDF"));
    children.push_back(Content::real((source / "to lower").string()));
    children.push_back(Content::link("said", "case/file"));
    DataTrack track;
    track.root = Content::folder("Disc", std::move(children));
    SourceList sources;
    plan::Tree tree;
    plan::addTrack(tree, track, filesystem::udf, sources, Signal());
    const auto view = plan::udfView(tree);
    std::map<std::string, std::string> found;
    for (const udf::Entry& entry : view.tree.entries)
        if (const udf::Node& node = view.tree.nodes[entry.node]; node.kind == udf::NodeKind::SymbolicLink)
            found[entry.name] = node.target;
    const std::map<std::string, std::string> wanted = {{"to lower", "In UDF/Deep/file"},
                                                       {"up", "../../In UDF/./file"},
                                                       {"out", "../../../outside/case"},
                                                       {"beside", "up"},
                                                       {"said", "case/file"}}; // what a program says stays
    EXPECT_EQ(found, wanted);
}

} // namespace
