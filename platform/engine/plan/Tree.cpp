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
    const bool isFolder = nodes[node].kind == NodeKind::Folder;
    const auto take = [this](uint32_t old, uint8_t taken) {
        entries[old].filesystems &= static_cast<uint8_t>(~taken);
    };
    for (uint8_t bit = 1; !old_.empty() && bit <= filesystem::all; bit = static_cast<uint8_t>(bit << 1)) {
        if ((filesystems & bit) == 0) continue;
        const uint32_t old = findOld(folder, bit, names, isFolder);
        if (old == none) continue;
        take(old, bit);
        // What an old item was called in the file systems that weren't read is unknown: there ISO 9660's word counts.
        if (bit == filesystem::iso9660) take(old, static_cast<uint8_t>(filesystems & ~oldRead_));
    }
    // A folder that is gone on with has one name in each file system: the new one.
    if (const auto merged = oldFolders_.find(node); merged != oldFolders_.end())
        take(merged->second, filesystems);
    append(folder, node, names, filesystems);
}

void Tree::setOld(uint8_t read, std::unique_ptr<const NameForm> form, bool areIsos) {
    oldRead_ = read;
    oldForm_ = std::move(form);
    oldNamesAreIsos_ = areIsos;
}

void Tree::addOldEntry(uint32_t folder, uint32_t node, const ItemNames& names, uint8_t filesystems,
                       bool isJolietsMade) {
    const uint32_t index = append(folder, node, names, filesystems);
    const bool isFolder = nodes[node].kind == NodeKind::Folder;
    entries[index].isJolietsMade = isJolietsMade;
    if (isFolder) oldFolders_.insert({node, index});
    const std::string whole = wholeKey(names.name, isFolder);
    old_.insert({placeOf(folder, whole), {folder, index}});
    const std::string stored = JolietForm().legal(names.in(filesystem::joliet), isFolder);
    if (stored != whole) old_.insert({placeOf(folder, stored), {folder, index}});
}

std::string Tree::wholeKey(std::string_view name, bool isFolder) const {
    return oldForm_ ? oldForm_->keyOf(oldForm_->legal(name, isFolder)) : std::string(name);
}

uint32_t Tree::findOld(uint32_t folder, uint8_t filesystem, const ItemNames& names, bool isFolder) const {
    // A name of its own in ISO 9660 tells an item only where nothing else does.
    const bool isOther = filesystem == filesystem::iso9660 && !oldNamesAreIsos_;
    const std::string_view name = isOther ? names.name : names.in(filesystem);
    const std::string whole = wholeKey(name, isFolder);
    const bool isInJoliet = filesystem == filesystem::joliet;
    const bool isJolietsOwn = isInJoliet && !names.own[1].empty();
    const std::string stored = isInJoliet ? JolietForm().legal(name, isFolder) : std::string();
    const auto search = [&](const std::string& key, const auto& isSame) {
        const auto [begin, end] = old_.equal_range(placeOf(folder, key));
        for (auto at = begin; at != end; ++at) {
            const Entry& entry = entries[at->second.second];
            if (at->second.first == folder && (entry.filesystems & filesystem) != 0 && isSame(entry))
                return at->second.second;
        }
        return none;
    };
    const auto isFolderToo = [this](const Entry& entry) {
        return nodes[entry.node].kind == NodeKind::Folder;
    };
    const uint32_t found = search(whole, [&](const Entry& entry) {
        if (isInJoliet && (isJolietsOwn || (hasOwnName(entry, filesystem) && !entry.isJolietsMade)))
            return false;
        return wholeKey(nameOf(entry), isFolderToo(entry)) == whole;
    });
    if (found != none || !isInJoliet) return found;
    return search(stored, [&](const Entry& entry) {
        if (!isJolietsOwn && (!hasOwnName(entry, filesystem) || entry.isJolietsMade)) return false;
        return JolietForm().legal(nameIn(entry, filesystem), isFolderToo(entry)) == stored;
    });
}

uint32_t Tree::oldFolder(uint32_t folder, const ItemNames& names, uint8_t filesystems) {
    uint32_t result = none;
    for (uint8_t bit = 1; !old_.empty() && bit <= filesystem::all; bit = static_cast<uint8_t>(bit << 1)) {
        if ((filesystems & bit) == 0) continue;
        const uint32_t old = findOld(folder, bit, names, true);
        if (old == none || nodes[entries[old].node].kind != NodeKind::Folder) continue;
        const uint32_t node = entries[old].node;
        if (result == none)
            result = node;
        else if (node != result && (entries[old].filesystems & oldRead_) == bit)
            moveOldEntries(node, result);
    }
    return result;
}

void Tree::moveOldEntries(uint32_t from, uint32_t to) {
    for (uint32_t i = nodes[from].first; i != none; i = entries[i].next) {
        const Entry old = entries[i];
        std::array<std::string, 4> own; // the store of texts grows meanwhile
        for (uint8_t bit = 0; bit < own.size(); ++bit)
            if (const auto filesystem = static_cast<uint8_t>(1 << bit); hasOwnName(old, filesystem))
                own[bit] = nameIn(old, filesystem);
        const std::string name(nameOf(old));
        entries[i].filesystems = 0;
        oldFolders_.erase(old.node);
        addOldEntry(to, old.node, {name, {own[0], own[1], own[2], own[3]}}, old.filesystems,
                    old.isJolietsMade);
    }
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
