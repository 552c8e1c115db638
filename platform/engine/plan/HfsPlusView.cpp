// HFS+'s tree.
#include "Failure.hpp"
#include "Names.hpp"
#include "ViewMaker.hpp"
#include "Views.hpp"

namespace engine::plan {
namespace {

uint32_t codeOf(const std::optional<std::array<uint8_t, 4>>& code) {
    uint32_t value = 0;
    if (code)
        for (const uint8_t byte : *code)
            value = value << 8 | byte;
    return value;
}

void addForks(hfsplus::Tree& made, hfsplus::Node& node, const Tree& tree, const Extent& extent) {
    node.data.first = static_cast<uint32_t>(made.extents.size());
    if (extent.pieces == none) {
        made.extents.push_back({extent.firstBlock, extent.bytes});
    } else {
        for (uint32_t i = 0; i < extent.pieceCount; ++i) {
            const iso::Section& piece = tree.pieces[extent.pieces + i];
            made.extents.push_back({piece.firstBlock, piece.bytes});
        }
    }
    node.data.count = static_cast<uint32_t>(made.extents.size()) - node.data.first;
}

void addNode(hfsplus::Tree& made, const Tree& tree, uint32_t index) {
    const Node& from = tree.nodes[index];
    hfsplus::Node node;
    node.mode = from.mode;
    node.owner = from.owner;
    node.group = from.group;
    node.accessed = from.accessed;
    node.modified = from.modified;
    node.changed = from.changed;
    node.created = from.modified;
    if (const Attributes* mac = tree.macOf(index)) {
        node.finder.type = codeOf(mac->macType);
        node.finder.creator = codeOf(mac->macCreator);
    }
    if (from.kind == NodeKind::Folder) {
        node.kind = hfsplus::NodeKind::Folder;
    } else if (from.kind == NodeKind::SymbolicLink) {
        node.kind = hfsplus::NodeKind::SymbolicLink;
        made.ownForks.push_back({static_cast<uint32_t>(made.nodes.size()), std::string(tree.targetOf(from))});
    } else if (const Extent* extent = tree.extentOf(from)) {
        addForks(made, node, tree, *extent);
    }
    made.nodes.push_back(node);
}

void check(const Extent& extent, std::string_view name, uint32_t volumeStart) {
    if (extent.firstBlock == 0 || extent.firstBlock > volumeStart) return;
    fail(ErrorCode::FilesystemsNotSupported,
         "The file " + inQuotes(name) +
             " of an earlier session lies in front of the HFS+ volume, which can't show it; leave out HFS+.");
}

} // namespace

View<hfsplus::Tree> hfsPlusView(const Tree& tree, uint32_t volumeStart) {
    View<hfsplus::Tree> view;
    view.nodeOf = makeView(
        tree, filesystem::hfsPlus, true, view.tree.firstEntry,
        [&](uint32_t node) { addNode(view.tree, tree, node); },
        [&](const std::vector<const Entry*>& shown, const std::vector<uint32_t>& numbers) {
            std::vector<GivenName> given;
            for (const Entry* entry : shown) {
                const Node& node = tree.nodes[entry->node];
                const std::string_view name = tree.nameIn(*entry, filesystem::hfsPlus);
                if (node.kind == NodeKind::File && tree.extentOf(node))
                    check(*tree.extentOf(node), name, volumeStart);
                given.push_back({name, node.kind == NodeKind::Folder});
            }
            std::vector<std::string> names = distinctNames(given, HfsPlusForm());
            for (size_t i = 0; i < shown.size(); ++i)
                view.tree.entries.push_back({std::move(names[i]), numbers[shown[i]->node]});
        });
    return view;
}

void placeContents(const Tree& tree, const std::vector<uint32_t>& nodeOf, hfsplus::Tree& made) {
    for (size_t node = 0; node < nodeOf.size(); ++node) {
        if (nodeOf[node] == none || tree.nodes[node].kind != NodeKind::File) continue;
        const Extent* extent = tree.extentOf(tree.nodes[node]);
        if (extent && extent->pieces == none)
            made.extents[made.nodes[nodeOf[node]].data.first].firstBlock = extent->firstBlock;
    }
}

} // namespace engine::plan
