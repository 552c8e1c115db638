// What an earlier session's folders may say of files, and no file system of the new one can describe.
#include "plan/Views.hpp"
#include "Failure.hpp"
#include "udf/Volume.hpp"

#include <functional>
#include <gtest/gtest.h>

using namespace engine;

namespace {

plan::Tree treeOf(const plan::Extent& extent, const std::vector<iso::Section>& pieces = {}) {
    plan::Tree tree;
    tree.extents.push_back(extent);
    tree.oldExtents = 1;
    if (!pieces.empty()) {
        tree.pieces = pieces;
        tree.extents[0].pieces = 0;
        tree.extents[0].pieceCount = static_cast<uint32_t>(pieces.size());
    }
    plan::Node file;
    file.first = 0;
    tree.addOldEntry(0, tree.addNode(file), {"old"}, filesystem::all);
    return tree;
}

std::string refused(const std::function<void()>& make) {
    try {
        make();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.error().code, ErrorCode::FilesystemsNotSupported);
        return failure.error().message;
    }
    return {};
}

TEST(PlanViews, UDFRefusesAnOldFileOfMoreExtentsThanItsBlockHolds) {
    const auto told = [](uint64_t bytes) { return refused([&] { plan::udfView(treeOf({bytes, 1000})); }); };
    EXPECT_EQ(told(udf::largestFile), "");
    EXPECT_EQ(told(udf::largestFile + 1),
              "The file \"old\" of an earlier session is larger than UDF can describe; leave out UDF.");
}

TEST(PlanViews, AnOldFileAtTheMediumsFirstBlockIsRefused) {
    EXPECT_EQ(refused([] {
                  plan::udfView(treeOf({1, 0}));
              }),
              "The file \"old\" of an earlier session lies where UDF has its own blocks; leave out UDF.");
    const std::string inFront = "The file \"old\" of an earlier session lies in front of the HFS+ volume, "
                                "which can't show it; leave out HFS+.";
    EXPECT_EQ(refused([] { plan::hfsPlusView(treeOf({1, 0}), 0); }), inFront);
    EXPECT_EQ(refused([] { plan::hfsPlusView(treeOf({1, 300}), 290); }), "");
    EXPECT_EQ(refused([] {
                  plan::hfsPlusView(treeOf({4096, 300}, {{300, 2048}, {280, 2048}}), 290);
              }),
              inFront)
        << "its second piece";
}

} // namespace
