// ISO 9660's tree and Joliet's.
#include "Failure.hpp"
#include "Names.hpp"
#include "ViewMaker.hpp"
#include "Views.hpp"

#include <array>
#include <optional>
#include <unordered_set>

namespace engine::plan {
namespace {

void addNode(iso::Tree& made, const Tree& tree, uint32_t index, uint8_t filesystem) {
    const Node& from = tree.nodes[index];
    const OwnAttributes* const own = tree.ownOf(index, filesystem);
    iso::Node node;
    describe(node, from, own);
    if (own && (own->recorded || own->created || own->backedUp || own->expires || own->effective))
        made.dates[static_cast<uint32_t>(made.nodes.size())] = {own->recorded, own->created, own->backedUp,
                                                                own->expires, own->effective};
    if (from.kind == NodeKind::Folder) {
        node.kind = iso::NodeKind::Folder;
    } else if (from.kind == NodeKind::SymbolicLink) {
        node.kind = iso::NodeKind::SymbolicLink;
        made.setTarget(node, tree.targetOf(from));
    } else if (const Extent* extent = tree.extentOf(from)) {
        if (extent->pieces == none) {
            made.setSize(node, extent->bytes);
        } else {
            node.first = static_cast<uint32_t>(made.sections.size());
            node.count = extent->pieceCount;
            const auto first = tree.pieces.begin() + extent->pieces;
            made.sections.insert(made.sections.end(), first, first + extent->pieceCount);
        }
    }
    made.nodes.push_back(node);
}

bool isFolder(const Tree& tree, const Entry& entry) {
    return tree.nodes[entry.node].kind == NodeKind::Folder;
}

void expectDistinct(const Tree& tree, const std::vector<const Entry*>& shown) {
    std::unordered_set<std::string_view> names;
    names.reserve(shown.size());
    for (const Entry* entry : shown) {
        const std::string_view name = tree.nameOf(*entry);
        if (!names.insert(name).second)
            fail(ErrorCode::FileLocationConflict,
                 "Two items of one folder are named " + inQuotes(name) + "; give one of them another name.",
                 std::string(name));
    }
}

// As ISO 9660 stores it: a file's name has a dot, and a version.
std::string storedName(std::string name, bool folder, const OwnAttributes* own) {
    if (folder) return name;
    name += name.find('.') == std::string::npos ? ".;" : ";";
    return name += std::to_string(own ? own->version.value_or(1) : 1);
}

uint32_t codeOf(const std::optional<std::array<uint8_t, 4>>& code) {
    uint32_t value = 0;
    if (code)
        for (const uint8_t byte : *code)
            value = value << 8 | byte;
    return value;
}

void addMacFiles(const Tree& tree, View<iso::Tree>& view) {
    for (const auto& [node, mac] : tree.isoMac)
        if (view.nodeOf[node] != none && tree.nodes[node].kind == NodeKind::File)
            view.tree.mac[view.nodeOf[node]] = {codeOf(mac->type), codeOf(mac->creator),
                                                mac->flags.value_or(0)};
}

template <typename MakeEntries>
View<iso::Tree> viewOf(const Tree& tree, uint8_t filesystem, bool hasLinks, const MakeEntries& makeEntries) {
    View<iso::Tree> view;
    view.tree.nodes.reserve(tree.nodes.size());
    view.tree.entries.reserve(tree.entries.size());
    view.tree.sections.reserve(tree.extents.size());
    view.nodeOf = makeView(
        tree, filesystem, hasLinks, view.tree.firstEntry,
        [&](uint32_t node) { addNode(view.tree, tree, node, filesystem); },
        [&](const std::vector<const Entry*>& shown, const std::vector<uint32_t>& numbers) {
            makeEntries(view.tree, shown, numbers);
        });
    return view;
}

} // namespace

View<iso::Tree> isoView(const Tree& tree, const iso::Rules& rules) {
    const IsoForm form(rules.level);
    View<iso::Tree> view = viewOf(
        tree, filesystem::iso9660, rules.rockRidge,
        [&](iso::Tree& made, const std::vector<const Entry*>& shown, const std::vector<uint32_t>& numbers) {
            std::vector<GivenName> given;
            for (const Entry* entry : shown)
                given.push_back({tree.nameIn(*entry, filesystem::iso9660), isFolder(tree, *entry),
                                 tree.hasOwnName(*entry, filesystem::iso9660)});
            if (rules.rockRidge) expectDistinct(tree, shown);
            std::vector<std::string> names = distinctNames(given, form);
            for (size_t i = 0; i < shown.size(); ++i)
                made.entries.push_back(
                    made.makeEntry(numbers[shown[i]->node],
                                   storedName(std::move(names[i]), given[i].isFolder,
                                              tree.ownOf(shown[i]->node, filesystem::iso9660)),
                                   rules.rockRidge ? tree.nameOf(*shown[i]) : std::string_view(),
                                   tree.isInvisible(shown[i]->node, filesystem::iso9660)));
        });
    addMacFiles(tree, view);
    return view;
}

View<iso::Tree> jolietView(const Tree& tree) {
    return viewOf(
        tree, filesystem::joliet, false,
        [&](iso::Tree& made, const std::vector<const Entry*>& shown, const std::vector<uint32_t>& numbers) {
            std::vector<GivenName> given;
            for (const Entry* entry : shown)
                given.push_back({tree.nameIn(*entry, filesystem::joliet), isFolder(tree, *entry)});
            const std::vector<std::string> names = distinctNames(given, JolietForm());
            for (size_t i = 0; i < shown.size(); ++i)
                made.entries.push_back(made.makeEntry(numbers[shown[i]->node],
                                                      given[i].isFolder ? names[i] : names[i] + ";1", {},
                                                      tree.isInvisible(shown[i]->node, filesystem::joliet)));
        });
}

void placeContents(const Tree& tree, const std::vector<uint32_t>& nodeOf, iso::Tree& made) {
    for (size_t node = 0; node < nodeOf.size(); ++node) {
        if (nodeOf[node] == none || tree.nodes[node].kind != NodeKind::File) continue;
        const Extent* extent = tree.extentOf(tree.nodes[node]);
        if (extent && extent->pieces == none) made.placeFile(made.nodes[nodeOf[node]], extent->firstBlock);
    }
}

} // namespace engine::plan
