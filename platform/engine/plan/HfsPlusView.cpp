// HFS+'s tree.
#include "Failure.hpp"
#include "LinkTargets.hpp"
#include "Names.hpp"
#include "ViewMaker.hpp"
#include "Views.hpp"

#include <algorithm>

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

void describe(hfsplus::Node& node, const MacAttributes& mac) {
    node.created = mac.created.value_or(node.created);
    node.backedUp = mac.backedUp.value_or(node.backedUp);
    node.textEncoding = mac.textEncoding.value_or(0);
    hfsplus::FinderInfo& finder = node.finder;
    finder.type = codeOf(mac.type);
    finder.creator = codeOf(mac.creator);
    finder.flags = mac.flags.value_or(0);
    finder.extendedFlags = mac.extendedFlags.value_or(0);
    finder.view = mac.view.value_or(0);
    if (mac.windowBounds) {
        finder.windowTop = (*mac.windowBounds)[0];
        finder.windowLeft = (*mac.windowBounds)[1];
        finder.windowBottom = (*mac.windowBounds)[2];
        finder.windowRight = (*mac.windowBounds)[3];
    }
    if (mac.iconLocation) {
        finder.iconTop = (*mac.iconLocation)[0];
        finder.iconLeft = (*mac.iconLocation)[1];
    }
    if (mac.scrollPosition) {
        finder.scrollTop = (*mac.scrollPosition)[0];
        finder.scrollLeft = (*mac.scrollPosition)[1];
    }
}

// Aliases know what they lead to when all has a number.
void pointAliases(const Tree& tree, View<hfsplus::Tree>& view) {
    for (size_t index = 0; index < tree.nodes.size(); ++index) {
        const Node& node = tree.nodes[index];
        if (node.kind != NodeKind::Alias || view.nodeOf[index] == none) continue;
        if (view.nodeOf[node.first] == none)
            fail(
                ErrorCode::FileLocationConflict,
                "A Finder alias points at an item that is not in HFS+; put it there, too, or leave the alias "
                "out.");
        view.tree.nodes[view.nodeOf[index]].target = view.nodeOf[node.first];
    }
}

void addNode(hfsplus::Tree& made, const Tree& tree, uint32_t index) {
    const Node& from = tree.nodes[index];
    hfsplus::Node node;
    describe(node, from, tree.ownOf(index, filesystem::hfsPlus));
    node.created = node.modified;
    if (const MacAttributes* mac = tree.macOf(index)) describe(node, *mac);
    if (tree.isInvisible(index, filesystem::hfsPlus)) node.finder.flags |= hfsplus::finder::isInvisible;
    if (from.kind == NodeKind::Alias) {
        node.kind = hfsplus::NodeKind::Alias;
    } else if (from.kind == NodeKind::Folder) {
        node.kind = hfsplus::NodeKind::Folder;
    } else if (from.kind == NodeKind::SymbolicLink) {
        node.kind = hfsplus::NodeKind::SymbolicLink;
        made.ownForks.push_back({static_cast<uint32_t>(made.nodes.size()), std::string(tree.targetOf(from))});
    } else if (const Extent* extent = tree.extentOf(from)) {
        addForks(made, node, tree, *extent);
    }
    if (const Extent* fork = tree.resourceOf(from)) {
        node.resource = {static_cast<uint32_t>(made.extents.size()), 1};
        made.extents.push_back({0, fork->bytes});
    }
    made.nodes.push_back(node);
}

void check(const Tree& tree, const Extent& extent, std::string_view name, uint32_t volumeStart) {
    if (!tree.isOld(extent)) return;
    bool isBehind = extent.firstBlock > volumeStart;
    for (uint32_t i = 0; i < extent.pieceCount; ++i)
        isBehind = isBehind && tree.pieces[extent.pieces + i].firstBlock > volumeStart;
    if (isBehind) return;
    fail(ErrorCode::FilesystemsNotSupported,
         "The file " + inQuotes(name) +
             " of an earlier session lies in front of the HFS+ volume, which can't show it; leave out HFS+.");
}

} // namespace

View<hfsplus::Tree> hfsPlusView(const Tree& tree, uint32_t volumeStart) {
    View<hfsplus::Tree> view;
    LinkTargets links(tree);
    view.nodeOf = makeView(
        tree, filesystem::hfsPlus, true, view.tree.firstEntry,
        [&](uint32_t node) { addNode(view.tree, tree, node); },
        [&](const std::vector<const Entry*>& shown, const std::vector<uint32_t>& numbers) {
            std::vector<GivenName> given;
            for (const Entry* entry : shown) {
                const Node& node = tree.nodes[entry->node];
                const std::string_view name = tree.nameIn(*entry, filesystem::hfsPlus);
                if (node.kind == NodeKind::File && tree.extentOf(node))
                    check(tree, *tree.extentOf(node), name, volumeStart);
                given.push_back({name, node.kind == NodeKind::Folder});
            }
            std::vector<std::string> names = distinctNames(given, HfsPlusForm());
            links.addFolder(static_cast<uint32_t>(view.tree.firstEntry.size() - 1), shown, names, numbers);
            for (size_t i = 0; i < shown.size(); ++i)
                view.tree.entries.push_back({std::move(names[i]), numbers[shown[i]->node]});
        });
    for (auto& [node, target] : links.changed())
        std::ranges::lower_bound(view.tree.ownForks, node, {}, &hfsplus::OwnFork::node)->bytes =
            std::move(target);
    pointAliases(tree, view);
    return view;
}

void placeContents(const Tree& tree, const std::vector<uint32_t>& nodeOf, hfsplus::Tree& made) {
    for (size_t node = 0; node < nodeOf.size(); ++node) {
        if (nodeOf[node] == none || tree.nodes[node].kind != NodeKind::File) continue;
        const hfsplus::Node& forks = made.nodes[nodeOf[node]];
        const Extent* extent = tree.extentOf(tree.nodes[node]);
        if (extent && extent->pieces == none) made.extents[forks.data.first].firstBlock = extent->firstBlock;
        if (const Extent* fork = tree.resourceOf(tree.nodes[node]))
            made.extents[forks.resource.first].firstBlock = fork->firstBlock;
    }
}

} // namespace engine::plan
