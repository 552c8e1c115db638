// Which records there are, and in which order.
#include "Catalog.hpp"
#include "Failure.hpp"
#include "Names.hpp"

#include <algorithm>
#include <numeric>

namespace engine::hfsplus {
namespace {

// TN1150, "Hard Links": four zeros in front, so that nobody types it by chance. It compares behind all other names.
constexpr std::u16string_view privateName{u"\0\0\0\0HFS+ Private Data", 21};

constexpr size_t fileBytes = 248, folderBytes = 88, threadBytes = 10;
constexpr size_t keyBytesBeforeName = 8;

std::u16string linkedName(uint32_t node) {
    const std::string name = "iNode" + std::to_string(idOfNode(node));
    return {name.begin(), name.end()};
}

} // namespace

struct Catalog::Thread {
    bool isFolder;
    uint32_t parentId;
    std::u16string name;
};

Catalog::Catalog(Tree& tree, const VolumeSettings& settings) : tree_(tree), settings_(settings) {
    sortFolders();
    findLinks();
    for (const Node& node : tree.nodes)
        ++(node.kind == NodeKind::Folder ? folderCount_ : fileCount_);
    --folderCount_; // the root
    fileCount_ += static_cast<uint32_t>(links_.size());
    if (linked_.empty()) return;
    ++folderCount_;
    const Node& root = tree.nodes[0];
    privateFolder_ = root;
    privateFolder_.mode = 0700;
    privateFolder_.owner = privateFolder_.group = 0;
    privateFolder_.finder = {};
    privateFolder_.finder.flags = finder::isInvisible | finder::nameLocked;
    privateFolder_.finder.iconTop = privateFolder_.finder.iconLeft = 22460; // far outside of a window
}

void Catalog::sortFolders() {
    std::vector<std::pair<std::u16string, uint32_t>> names;
    std::vector<Entry> sorted;
    for (size_t folder = 0; folder + 1 < tree_.firstEntry.size(); ++folder) {
        const uint32_t first = tree_.firstEntry[folder], end = tree_.firstEntry[folder + 1];
        names.clear();
        for (uint32_t entry = first; entry < end; ++entry)
            names.emplace_back(foldedName(storedName(tree_.entries[entry].name)), entry);
        std::ranges::sort(names);
        sorted.clear();
        for (size_t i = 0; i < names.size(); ++i) {
            if (i > 0 && names[i].first == names[i - 1].first)
                fail(ErrorCode::FileLocationConflict, inQuotes(sorted.back().name) + " and " +
                                                          inQuotes(tree_.entries[names[i].second].name) +
                                                          " in one folder are the same name in HFS+.");
            sorted.push_back(std::move(tree_.entries[names[i].second]));
        }
        std::ranges::move(sorted, tree_.entries.begin() + first);
    }
}

void Catalog::findLinks() {
    constexpr uint32_t none = UINT32_MAX;
    entryOf_.assign(tree_.nodes.size(), none);
    for (uint32_t entry = 0; entry < tree_.entries.size(); ++entry) {
        uint32_t& first = entryOf_[tree_.entries[entry].node];
        if (first == none)
            first = entry;
        else if (tree_.nodes[tree_.entries[entry].node].kind == NodeKind::Folder)
            fail(ErrorCode::Internal, "A folder has only one name.", tree_.entries[entry].name);
        else
            linkedNode_.push_back(tree_.entries[entry].node);
    }
    if (linkedNode_.empty()) return;
    std::ranges::sort(linkedNode_);
    const auto rest = std::ranges::unique(linkedNode_);
    linkedNode_.erase(rest.begin(), rest.end());
    std::vector<uint32_t> names(linkedNode_.size());
    for (uint32_t entry = 0; entry < tree_.entries.size(); ++entry) {
        const auto found = std::ranges::lower_bound(linkedNode_, tree_.entries[entry].node);
        if (found == linkedNode_.end() || *found != tree_.entries[entry].node) continue;
        links_.push_back(entry);
        ++names[static_cast<size_t>(found - linkedNode_.begin())];
    }
    for (size_t i = 0; i < names.size(); ++i)
        linked_.push_back({linkedNode_[i], names[i]});
    std::ranges::sort(linked_, {}, [](const Linked& linked) { return linkedName(linked.node); });
}

bool Catalog::isLink(uint32_t entry) const noexcept { return std::ranges::binary_search(links_, entry); }

uint32_t Catalog::folderOf(uint32_t entry) const noexcept {
    const auto behind = std::ranges::upper_bound(tree_.firstEntry, entry);
    return static_cast<uint32_t>(behind - tree_.firstEntry.begin()) - 1;
}

uint32_t Catalog::idOfEntry(uint32_t entry) const noexcept {
    const auto found = std::ranges::lower_bound(links_, entry);
    if (found == links_.end() || *found != entry) return idOfNode(tree_.entries[entry].node);
    return idOfGroup(nodeGroups() + 1 + static_cast<uint32_t>(found - links_.begin()));
}

uint32_t Catalog::groups() const {
    return nodeGroups() + (linked_.empty() ? 0 : 1) + static_cast<uint32_t>(links_.size());
}

uint32_t Catalog::recordsIn(uint32_t group) const {
    if (group == 0) return 1;
    if (group > nodeGroups()) return 1;
    if (group == nodeGroups()) return 1 + static_cast<uint32_t>(linked_.size());
    const uint32_t entries = tree_.firstEntry[group] - tree_.firstEntry[group - 1];
    return 1 + entries + (group == 1 && !linked_.empty() ? 1 : 0);
}

Catalog::Record Catalog::recordAt(Cursor cursor) const {
    if (cursor.group == 0) return {Kind::Root};
    if (cursor.index == 0) return {Kind::Thread, cursor.group};
    if (cursor.group == nodeGroups()) return {Kind::LinkedFile, cursor.index - 1};
    const uint32_t entry = tree_.firstEntry[cursor.group - 1] + cursor.index - 1;
    if (entry == tree_.firstEntry[cursor.group]) return {Kind::PrivateFolder};
    return {Kind::Entry, entry};
}

std::u16string Catalog::nameOf(Record record) const {
    switch (record.kind) {
    case Kind::Thread:
        return {};
    case Kind::Root:
        return storedName(settings_.volumeName);
    case Kind::Entry:
        return storedName(tree_.entries[record.of].name);
    case Kind::PrivateFolder:
        return std::u16string(privateName);
    case Kind::LinkedFile:
        return linkedName(linked_[record.of].node);
    }
    return {};
}

Catalog::Thread Catalog::threadOf(uint32_t group) const {
    if (group == 1) return {true, 1, storedName(settings_.volumeName)};
    if (group == nodeGroups()) return {true, idOfNode(0), std::u16string(privateName)};
    const bool ofLink = group > nodeGroups();
    const uint32_t node = group - 1;
    if (!ofLink && std::ranges::binary_search(linkedNode_, node))
        return {false, idOfGroup(nodeGroups()), linkedName(node)};
    const uint32_t entry = ofLink ? links_[group - nodeGroups() - 1] : entryOf_[node];
    return {!ofLink && tree_.nodes[node].kind == NodeKind::Folder, idOfNode(folderOf(entry)),
            storedName(tree_.entries[entry].name)};
}

size_t Catalog::keyBytes(Cursor cursor) const {
    return keyBytesBeforeName + 2 * nameOf(recordAt(cursor)).size();
}

size_t Catalog::dataBytes(Cursor cursor) const {
    const Record record = recordAt(cursor);
    switch (record.kind) {
    case Kind::Thread:
        return threadBytes + 2 * threadOf(record.of).name.size();
    case Kind::Root:
    case Kind::PrivateFolder:
        return folderBytes;
    case Kind::Entry:
        return tree_.nodes[tree_.entries[record.of].node].kind == NodeKind::Folder ? folderBytes : fileBytes;
    case Kind::LinkedFile:
        return fileBytes;
    }
    return 0;
}

void Catalog::put(Cursor cursor, std::span<std::byte> key, std::span<std::byte> data) const {
    const Record record = recordAt(cursor);
    Fields(key).u16(static_cast<uint32_t>(key.size() - 2)).u32(idOfGroup(cursor.group)).name(nameOf(record));
    if (data.empty()) return;
    Fields fields(data);
    const auto putNode = [&](uint32_t node, uint32_t names) {
        if (tree_.nodes[node].kind != NodeKind::Folder) return putFile(fields, node, names);
        // The thread of a folder is in its group, but is nothing in it.
        putFolder(fields, idOfNode(node), tree_.nodes[node], recordsIn(1 + node) - 1);
    };
    switch (record.kind) {
    case Kind::Thread: {
        const Thread thread = threadOf(record.of);
        fields.u16(thread.isFolder ? 3 : 4).u16(0).u32(thread.parentId).name(thread.name);
        return;
    }
    case Kind::Root:
        return putNode(0, 1);
    case Kind::PrivateFolder:
        return putFolder(fields, idOfGroup(nodeGroups()), privateFolder_,
                         static_cast<uint32_t>(linked_.size()));
    case Kind::Entry:
        return isLink(record.of) ? putLink(fields, record.of) : putNode(tree_.entries[record.of].node, 1);
    case Kind::LinkedFile:
        return putNode(linked_[record.of].node, linked_[record.of].names);
    }
}

} // namespace engine::hfsplus
