// UDF's tree.
#include "Failure.hpp"
#include "LinkTargets.hpp"
#include "MediumKind.hpp"
#include "Names.hpp"
#include "ViewMaker.hpp"
#include "Views.hpp"
#include "udf/Volume.hpp"

namespace engine::plan {
namespace {

// A file of an earlier session lies where UDF's partition is, in one piece, and is no larger than a new one can be.
void check(const Tree& tree, const Extent& extent, std::string_view name) {
    if (!tree.isOld(extent)) return;
    if (extent.bytes > udf::largestFile)
        fail(ErrorCode::FilesystemsNotSupported,
             "The file " + inQuotes(name) +
                 " of an earlier session is larger than UDF can describe; leave out UDF.");
    if (extent.firstBlock < udf::partitionStart)
        fail(ErrorCode::FilesystemsNotSupported,
             "The file " + inQuotes(name) +
                 " of an earlier session lies where UDF has its own blocks; leave out UDF.");
    uint64_t next = extent.firstBlock;
    for (uint32_t i = 0; i < extent.pieceCount; ++i) {
        const iso::Section& piece = tree.pieces[extent.pieces + i];
        if (piece.firstBlock != next)
            fail(ErrorCode::FilesystemsNotSupported,
                 "The file " + inQuotes(name) +
                     " of an earlier session lies in pieces, which UDF can't go on with; leave out UDF.");
        next += (piece.bytes + blockSize - 1) / blockSize;
    }
}

udf::Node nodeOf(const Tree& tree, uint32_t index) {
    const Node& from = tree.nodes[index];
    udf::Node node;
    describe(node, from, tree.ownOf(index, filesystem::udf));
    node.isRealTime = from.isRealTime;
    node.permissions = from.udfPermissions;
    if (from.kind == NodeKind::Folder) {
        node.kind = udf::NodeKind::Folder;
    } else if (from.kind == NodeKind::SymbolicLink) {
        node.kind = udf::NodeKind::SymbolicLink;
        node.target = tree.targetOf(from);
    } else if (const Extent* extent = tree.extentOf(from)) {
        node.size = extent->bytes;
    }
    return node;
}

} // namespace

View<udf::Tree> udfView(const Tree& tree) {
    View<udf::Tree> view;
    LinkTargets links(tree);
    view.nodeOf = makeView(
        tree, filesystem::udf, true, view.tree.firstEntry,
        [&](uint32_t node) {
            const OwnAttributes* const own = tree.ownOf(node, filesystem::udf);
            if (own && (own->created || own->effective || own->backedUp))
                view.tree.dates[static_cast<uint32_t>(view.tree.nodes.size())] = {
                    own->created, own->effective, own->backedUp};
            view.tree.nodes.push_back(nodeOf(tree, node));
        },
        [&](const std::vector<const Entry*>& shown, const std::vector<uint32_t>& numbers) {
            std::vector<GivenName> given;
            for (const Entry* entry : shown) {
                const Node& node = tree.nodes[entry->node];
                const std::string_view name = tree.nameIn(*entry, filesystem::udf);
                if (node.kind == NodeKind::File && tree.extentOf(node))
                    check(tree, *tree.extentOf(node), name);
                given.push_back({name, node.kind == NodeKind::Folder});
            }
            std::vector<std::string> names = distinctNames(given, UdfForm());
            links.addFolder(static_cast<uint32_t>(view.tree.firstEntry.size() - 1), shown, names, numbers);
            for (size_t i = 0; i < shown.size(); ++i)
                view.tree.entries.push_back({std::move(names[i]), numbers[shown[i]->node],
                                             tree.isInvisible(shown[i]->node, filesystem::udf)});
        });
    for (auto& [node, target] : links.changed())
        view.tree.nodes[node].target = std::move(target);
    return view;
}

void placeContents(const Tree& tree, const std::vector<uint32_t>& nodeOf, udf::Tree& made) {
    for (size_t node = 0; node < nodeOf.size(); ++node) {
        if (nodeOf[node] == none || tree.nodes[node].kind != NodeKind::File) continue;
        if (const Extent* extent = tree.extentOf(tree.nodes[node]))
            made.nodes[nodeOf[node]].firstBlock = extent->firstBlock;
    }
}

} // namespace engine::plan
