// Folders that are deeper than ISO 9660 allows, moved as Rock Ridge does it (ECMA-119 6.8.2.1, RRIP 1.12 4.1.5).
#include "Failure.hpp"
#include "Hierarchy.hpp"

#include <algorithm>
#include <cstdio>

namespace engine::iso {
namespace {

constexpr uint32_t mostLevels = 8;      // the root's is 1
constexpr uint32_t mostPathBytes = 255; // of all names to an item, and one for each folder
constexpr uint32_t movedNameBytes = 8;

} // namespace

uint32_t Hierarchy::originOf(uint32_t node) const noexcept {
    const auto found = std::ranges::lower_bound(origins_, node, {}, &std::pair<uint32_t, uint32_t>::first);
    return found != origins_.end() && found->first == node ? found->second : none;
}

void Hierarchy::moveDeepFolders() {
    struct Place {
        uint32_t node, level, pathBytes;
    };
    std::vector<Place> pending{{0, 1, 0}};
    std::vector<bool> seen(tree_.nodes.size());
    std::vector<Entry> moved;
    const auto longestName = [this](uint32_t node) {
        uint32_t longest = 0;
        for (uint32_t i = tree_.firstEntry[node]; i < tree_.firstEntry[node + 1]; ++i)
            longest = std::max<uint32_t>(longest, tree_.entries[i].nameBytes);
        return longest;
    };
    while (!pending.empty()) {
        const Place place = pending.back();
        pending.pop_back();
        for (uint32_t i = tree_.firstEntry[place.node]; i < tree_.firstEntry[place.node + 1]; ++i) {
            const Entry& entry = tree_.entries[i];
            if (!isFolder(entry)) continue;
            if (seen[entry.node]) refuse(i, "a folder has only one name");
            seen[entry.node] = true;
            Place child{entry.node, place.level + 1, place.pathBytes + entry.nameBytes + 1u};
            if (child.level > mostLevels || child.pathBytes + longestName(entry.node) > mostPathBytes) {
                if (!rules_.rockRidge)
                    refuse(i,
                           "ISO 9660 has no more than eight levels of folders, and paths of 255 characters");
                moved.push_back(entry);
                origins_.emplace_back(entry.node, place.node);
                child.level = 3;
                child.pathBytes = 2 * (movedNameBytes + 1);
            }
            pending.push_back(child);
        }
    }
    if (moved.empty()) return;
    std::ranges::sort(origins_);
    const Entry folder = makeMovedFolder();
    tree_.entries.insert(tree_.entries.begin() + tree_.firstEntry[1], folder);
    for (size_t i = 1; i < tree_.firstEntry.size(); ++i)
        ++tree_.firstEntry[i];
    for (size_t i = 0; i < moved.size(); ++i) {
        char name[24];
        std::snprintf(name, sizeof name, "%08zu", i + 1);
        const std::string rockRidge(tree_.rockRidgeOf(moved[i]));
        tree_.entries.push_back(tree_.makeEntry(moved[i].node, name, rockRidge));
    }
    tree_.firstEntry.push_back(static_cast<uint32_t>(tree_.entries.size()));
    sortEntries(0);
}

// As the root looks, and with a name that nothing in it has.
Entry Hierarchy::makeMovedFolder() {
    movedFolder_ = static_cast<uint32_t>(tree_.nodes.size());
    tree_.nodes.push_back(tree_.nodes[0]);
    const auto isTaken = [this](std::string_view name, std::string_view rockRidge) {
        for (uint32_t i = tree_.firstEntry[0]; i < tree_.firstEntry[1]; ++i)
            if (compareNames(tree_.nameOf(tree_.entries[i]), name, form_) == 0 ||
                tree_.rockRidgeOf(tree_.entries[i]) == rockRidge)
                return true;
        return false;
    };
    std::string name = "RR_MOVED", rockRidge = "rr_moved";
    for (uint32_t count = 1; isTaken(name, rockRidge); ++count) {
        name = std::to_string(count);
        name = std::string("RR_MOVED").substr(0, movedNameBytes - name.size()) + name;
        rockRidge = "rr_moved" + std::to_string(count);
    }
    return tree_.makeEntry(movedFolder_, name, rockRidge);
}

} // namespace engine::iso
