// The stores of the tree, and how what is new takes the place of what is old.
#include "Tree.hpp"
#include "Failure.hpp"

#include <algorithm>
#include <climits>

namespace engine::plan {

Tree::Tree() {
    Node root;
    root.kind = NodeKind::Folder;
    nodes.push_back(root);
}

// The file systems' own stores hold the same texts and a bit more, with 32 bits for a place.
uint32_t Tree::keep(std::string_view text) {
    if (text_.size() + text.size() >= INT_MAX)
        fail(ErrorCode::FileLocationConflict, "There are too many files for one disc.");
    const auto at = static_cast<uint32_t>(text_.size());
    text_ += text;
    return at;
}

uint32_t Tree::addNode(const Node& node) {
    nodes.push_back(node);
    return static_cast<uint32_t>(nodes.size() - 1);
}

uint32_t Tree::append(uint32_t folder, uint32_t node, const ItemNames& names, uint8_t filesystems) {
    Entry entry;
    entry.node = node;
    entry.nameAt = keep(names.name);
    entry.nameBytes = static_cast<uint16_t>(names.name.size());
    entry.filesystems = filesystems;
    if (std::ranges::any_of(names.own, [](std::string_view name) { return !name.empty(); })) {
        entry.own = static_cast<uint32_t>(own_.size());
        std::array<OwnName, 4>& own = own_.emplace_back();
        for (size_t i = 0; i < own.size(); ++i)
            if (!names.own[i].empty())
                own[i] = {keep(names.own[i]), static_cast<uint16_t>(names.own[i].size())};
        hasOwnIsoNames = hasOwnIsoNames || !names.own[0].empty();
    }
    const auto index = static_cast<uint32_t>(entries.size());
    entries.push_back(entry);
    Node& parent = nodes[folder];
    if (parent.first == none)
        parent.first = index;
    else
        entries[parent.last].next = index;
    parent.last = index;
    return index;
}

void Tree::addEntry(uint32_t folder, uint32_t node, const ItemNames& names, uint8_t filesystems) {
    for (uint8_t bit = 1; !old_.empty() && bit <= filesystem::all; bit = static_cast<uint8_t>(bit << 1)) {
        if ((filesystems & bit) == 0) continue;
        const uint32_t old = findOld(folder, bit, names.in(bit));
        if (old != none) entries[old].filesystems &= static_cast<uint8_t>(~bit);
    }
    append(folder, node, names, filesystems);
}

void Tree::addOldEntry(uint32_t folder, uint32_t node, const ItemNames& names, uint8_t filesystems) {
    const uint32_t index = append(folder, node, names, filesystems);
    old_.insert({keyOf(folder, names.name), {folder, index}});
    for (const std::string_view own : names.own)
        if (!own.empty()) old_.insert({keyOf(folder, own), {folder, index}});
}

uint32_t Tree::findOld(uint32_t folder, uint8_t filesystem, std::string_view name) const {
    const auto [begin, end] = old_.equal_range(keyOf(folder, name));
    for (auto at = begin; at != end; ++at) {
        const Entry& entry = entries[at->second.second];
        if (at->second.first == folder && (entry.filesystems & filesystem) != 0 &&
            nameIn(entry, filesystem) == name)
            return at->second.second;
    }
    return none;
}

uint32_t Tree::oldFolder(uint32_t folder, const ItemNames& names, uint8_t filesystems) const {
    for (uint8_t bit = 1; !old_.empty() && bit <= filesystem::all; bit = static_cast<uint8_t>(bit << 1)) {
        if ((filesystems & bit) == 0) continue;
        const uint32_t old = findOld(folder, bit, names.in(bit));
        if (old != none && nodes[entries[old].node].kind == NodeKind::Folder) return entries[old].node;
    }
    return none;
}

void Tree::setTarget(Node& link, std::string_view target) {
    link.first = keep(target);
    link.last = static_cast<uint32_t>(target.size());
}

bool Tree::hasOwnName(const Entry& entry, uint8_t filesystem) const {
    return entry.own != none && own_[entry.own][static_cast<size_t>(std::countr_zero(filesystem))].bytes > 0;
}

std::string_view Tree::nameIn(const Entry& entry, uint8_t filesystem) const {
    if (!hasOwnName(entry, filesystem)) return nameOf(entry);
    const OwnName& own = own_[entry.own][static_cast<size_t>(std::countr_zero(filesystem))];
    return std::string_view(text_).substr(own.at, own.bytes);
}

} // namespace engine::plan
