// Finds everything in a hierarchy its place: order, numbers, sizes.
#include "Failure.hpp"
#include "Hierarchy.hpp"
#include "RockRidge.hpp"

#include <algorithm>
#include <functional>
#include <numeric>

namespace engine::iso {
namespace {

constexpr uint32_t mostParents = 0xFFFF; // a parent's number has 16 bits in the path table

} // namespace

Hierarchy::Hierarchy(Tree tree, Form form, const Rules& rules, int8_t zone)
    : tree_(std::move(tree)), form_(form), rules_(rules), zone_(zone) {
    check();
    if (form_ == Form::Joliet) { // stored names from now on, so that comparing them is comparing bytes
        std::string wide;
        wide.reserve(2 * tree_.text.size());
        for (Entry& entry : tree_.entries) {
            const std::string name = wideOf(tree_.nameOf(entry));
            entry = {entry.node, static_cast<uint32_t>(wide.size()), static_cast<uint16_t>(name.size()), 0,
                     entry.hidden};
            wide += name;
        }
        tree_.text = std::move(wide);
        namesAreWide_ = true;
    }
    for (uint32_t node = 0; node < tree_.nodes.size(); ++node)
        sortEntries(node);
    if (form_ == Form::Iso && !rules_.allowDeepPaths) moveDeepFolders();
    numberFolders();
    measure();
    tree_.nodes.shrink_to_fit(); // it stays for as long as the burn does
    tree_.entries.shrink_to_fit();
    tree_.sections.shrink_to_fit();
    tree_.text.shrink_to_fit();
    folders_.shrink_to_fit();
    itemOffsets_.shrink_to_fit();
    continued_.shrink_to_fit();
}

void Hierarchy::check() const {
    if (tree_.nodes.empty() || tree_.nodes[0].kind != NodeKind::Folder ||
        tree_.firstEntry.size() != tree_.nodes.size() + 1 || tree_.firstEntry.back() != tree_.entries.size())
        fail(ErrorCode::Internal, "A file system's tree is not whole.");
    for (uint32_t i = 0; i < tree_.entries.size(); ++i) {
        const Entry& entry = tree_.entries[i];
        if (const std::string fault = faultOf(tree_.nameOf(entry), isFolder(entry), form_, rules_);
            !fault.empty())
            refuse(i, fault);
        if (usesRockRidge())
            if (const std::string fault = rockRidgeFaultOf(tree_.rockRidgeOf(entry)); !fault.empty())
                refuse(i, fault);
        const Node& node = tree_.nodes[entry.node];
        if (node.kind == NodeKind::SymbolicLink) {
            if (!usesRockRidge()) refuse(i, "symbolic links need Rock Ridge");
            if (node.count == 0) refuse(i, "a symbolic link has a target");
        }
        if (node.kind != NodeKind::File) continue;
        if (node.count > 1 && rules_.level < 3) refuse(i, "files of 4 GiB and more need ISO 9660 level 3");
        const auto sections = tree_.sectionsOf(node);
        for (size_t part = 0; part < sections.size(); ++part)
            if (sections[part].bytes == 0 ||
                (part + 1 < sections.size() && sections[part].bytes % blockBytes != 0))
                refuse(i, "all parts of a file but the last are whole blocks");
    }
}

// Equal neighbours can't be told apart by those who look a name up.
void Hierarchy::sortEntries(uint32_t node) {
    const auto begin = tree_.entries.begin() + tree_.firstEntry[node];
    const auto end = tree_.entries.begin() + tree_.firstEntry[node + 1];
    if (begin == end) return;
    const auto isBefore = [this](const Entry& a, const Entry& b) {
        return compareNames(tree_.nameOf(a), tree_.nameOf(b), form_) < 0;
    };
    // Most come in their order already.
    const auto isNotBefore = std::not_fn(isBefore);
    auto twin = std::adjacent_find(begin, end, isNotBefore);
    if (twin != end) {
        std::stable_sort(begin, end, isBefore);
        twin = std::adjacent_find(begin, end, isNotBefore);
    }
    if (twin != end)
        refuse(static_cast<uint32_t>(twin + 1 - tree_.entries.begin()),
               form_ == Form::Iso ? "in ISO 9660 another item of that folder has the same name"
                                  : "in Joliet another item of that folder has the same name");
    if (usesRockRidge()) expectDistinctRockRidgeNames(node);
}

void Hierarchy::expectDistinctRockRidgeNames(uint32_t node) const {
    std::vector<uint32_t> order(tree_.firstEntry[node + 1] - tree_.firstEntry[node]);
    std::iota(order.begin(), order.end(), tree_.firstEntry[node]);
    const auto name = [this](uint32_t entry) { return tree_.rockRidgeOf(tree_.entries[entry]); };
    auto twin = std::ranges::adjacent_find(order, std::greater_equal(), name);
    if (twin == order.end()) return;
    std::ranges::sort(order, {}, name);
    twin = std::ranges::adjacent_find(order, {}, name);
    if (twin != order.end()) refuse(*twin, "in Rock Ridge another item of that folder has the same name");
}

// The children of a folder stand in the path table in another order than its records only where names of folders may
// have dots.
void Hierarchy::numberFolders() {
    folderOf_.assign(tree_.nodes.size(), none);
    links_.assign(tree_.nodes.size(), 0);
    folders_.push_back({0, 0, none, 0, 0, 0, 0});
    folderOf_[0] = 0;
    links_[0] = 2;
    std::vector<uint32_t> children;
    for (uint32_t number = 0; number < folders_.size(); ++number) {
        const uint32_t node = folders_[number].node;
        children.clear();
        for (uint32_t i = tree_.firstEntry[node]; i < tree_.firstEntry[node + 1]; ++i) {
            const Entry& entry = tree_.entries[i];
            if (!isFolder(entry)) {
                ++links_[entry.node];
                continue;
            }
            ++links_[node];
            if (isPlaceholder(node, entry)) continue;
            if (folderOf_[entry.node] != none) refuse(i, "a folder has only one name");
            folderOf_[entry.node] = 0; // in good time: no folder comes twice
            links_[entry.node] = 2;
            children.push_back(i);
        }
        if (children.empty()) continue;
        if (number >= mostParents)
            refuse(children[0], "ISO 9660 has no more than 65535 folders with folders in them");
        std::ranges::sort(children, [this](uint32_t a, uint32_t b) {
            return compareFolders(tree_.nameOf(tree_.entries[a]), tree_.nameOf(tree_.entries[b]), form_) < 0;
        });
        for (const uint32_t child : children) {
            folderOf_[tree_.entries[child].node] = static_cast<uint32_t>(folders_.size());
            folders_.push_back({tree_.entries[child].node, number, child, 0, 0, 0, 0});
        }
    }
}

void Hierarchy::measure() {
    constexpr auto blockSize = static_cast<uint32_t>(blockBytes);
    for (Folder& folder : folders_) {
        folder.pathOffset = pathTableBytes_;
        const size_t name = identifierOf(folder, 0).size();
        const size_t own = folder.entry == none ? name : tree_.nameOf(tree_.entries[folder.entry]).size();
        pathTableBytes_ += static_cast<uint32_t>(8 + (own + 1) / 2 * 2);
    }
    uint64_t next = 2 * blocksOf(pathTableBytes_);
    SystemUse use;
    for (Folder& folder : folders_) {
        folder.firstItem = static_cast<uint32_t>(itemOffsets_.size());
        folder.firstBlock = static_cast<uint32_t>(next);
        uint64_t offset = 0;
        uint32_t continuation = 0;
        for (uint32_t item = 0; item < itemCount(folder); ++item) {
            size_t bytes = recordBytes(identifierOf(folder, item).size());
            if (usesSystemUse()) {
                describe(use, folder, item);
                if (use.fit(mostRecordBytes - bytes, continuation))
                    continued_.push_back({folder.firstItem + item, use.parts()[1].offset});
                bytes += (use.parts()[0].bytes + 1) / 2 * 2;
            }
            const Node* const node = item < 2 ? nullptr : &tree_.nodes[entryOf(folder, item).node];
            const uint32_t records = node && node->kind == NodeKind::File ? std::max(node->count, 1u) : 1;
            for (uint32_t record = 0; record < records; ++record) {
                if (offset % blockSize + bytes > blockSize) offset = (offset / blockSize + 1) * blockSize;
                if (record == 0) itemOffsets_.push_back(static_cast<uint32_t>(offset));
                offset += bytes;
            }
        }
        next += blocksOf(offset) + blocksOf(continuation);
        if (offset > 0xFFFF'0000 || next > 0xFFFF'0000)
            fail(ErrorCode::BadLayout, "ISO 9660 can't hold folders with that many items.");
        folder.bytes = blocksOf(offset) * blockSize;
    }
    blocks_ = static_cast<uint32_t>(next);
}

void Hierarchy::refuse(uint32_t entry, const std::string& why) const {
    const std::string path = pathOf(entry);
    fail(ErrorCode::FileLocationConflict, inQuotes(path) + " can't be on the disc: " + why + ".", path);
}

// For sentences only: every step looks through all entries.
std::string Hierarchy::pathOf(uint32_t index) const {
    std::string path;
    for (size_t depth = 0; depth < tree_.nodes.size(); ++depth) {
        const Entry& entry = tree_.entries[index];
        const std::string name(entry.rockRidgeBytes > 0 ? tree_.rockRidgeOf(entry) : tree_.nameOf(entry));
        path = (namesAreWide_ ? utf8Of(name) : name) + (path.empty() ? "" : "/" + path);
        const auto after = std::ranges::upper_bound(tree_.firstEntry, index);
        const auto node = static_cast<uint32_t>(after - tree_.firstEntry.begin() - 1);
        const auto found = std::ranges::find(tree_.entries, node, &Entry::node);
        if (node == 0 || found == tree_.entries.end()) break;
        index = static_cast<uint32_t>(found - tree_.entries.begin());
    }
    return path;
}

} // namespace engine::iso
