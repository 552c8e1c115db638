// What the views have in common: which items a file system shows, and in which order.
#pragma once

#include "Tree.hpp"

#include <cstdint>
#include <vector>

namespace engine::plan {

/// What all file systems hold of a node, each its own where it has that.
template <typename Made>
void describe(Made& made, const Node& from, const OwnAttributes* own) {
    static const OwnAttributes nothing;
    const OwnAttributes& its = own ? *own : nothing;
    made.mode = own && own->mode ? static_cast<uint16_t>(*own->mode & 07777) : from.mode;
    made.owner = its.owner.value_or(from.owner);
    made.group = its.group.value_or(from.group);
    made.accessed = its.accessed.value_or(from.accessed);
    made.modified = its.modified.value_or(from.modified);
    made.changed = its.changed.value_or(from.changed);
}

/// Goes through the tree as one file system shows it: `makeNode` for each node in the order of their numbers, `makeEntries`
/// for the entries of each folder in that order, too. Folders come before what is in them. Answers the numbers, and
/// fills in where each node's entries begin.
template <typename MakeNode, typename MakeEntries>
std::vector<uint32_t> makeView(const Tree& tree, uint8_t filesystem, bool hasSymbolicLinks,
                               std::vector<uint32_t>& firstEntry, const MakeNode& makeNode,
                               const MakeEntries& makeEntries) {
    std::vector<uint32_t> numbers(tree.nodes.size(), none), order;
    order.reserve(tree.nodes.size());
    firstEntry.reserve(tree.nodes.size() + 1);
    order.push_back(0);
    std::vector<const Entry*> shown;
    uint32_t count = 0;
    numbers[0] = 0;
    makeNode(0u);
    for (size_t at = 0; at < order.size(); ++at) {
        firstEntry.push_back(count);
        const Node& folder = tree.nodes[order[at]];
        if (folder.kind != NodeKind::Folder) continue;
        shown.clear();
        for (uint32_t i = folder.first; i != none; i = tree.entries[i].next) {
            const Entry& entry = tree.entries[i];
            const NodeKind kind = tree.nodes[entry.node].kind;
            if ((entry.filesystems & filesystem) == 0) continue;
            if (kind == NodeKind::Alias && filesystem != filesystem::hfsPlus) continue;
            if (kind == NodeKind::SymbolicLink && !hasSymbolicLinks) continue;
            shown.push_back(&entry);
            if (numbers[entry.node] != none) continue;
            numbers[entry.node] = static_cast<uint32_t>(order.size());
            order.push_back(entry.node);
            makeNode(entry.node);
        }
        makeEntries(shown, numbers);
        count += static_cast<uint32_t>(shown.size());
    }
    firstEntry.push_back(count);
    return numbers;
}

} // namespace engine::plan
