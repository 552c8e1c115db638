// Brings the trees of ISO 9660 and Joliet together again: they show the same files under names of their own.
#include "EarlierSession.hpp"
#include "Failure.hpp"
#include "iso/Reader.hpp"

#include <algorithm>
#include <charconv>
#include <unordered_map>

namespace engine::plan {
namespace {

// A stored name without its version, and without the dot that stands in front of it where there is no extension.
std::string plainName(std::string_view stored, bool isFolder) {
    if (isFolder) return std::string(stored);
    if (const size_t at = stored.rfind(';'); at != std::string_view::npos && at > 0) {
        stored = stored.substr(0, at);
        if (stored.size() > 1 && stored.ends_with('.')) stored.remove_suffix(1);
    }
    return std::string(stored);
}

// Where the first of the bytes of a node lie, or of all in it: the same in both trees. `none` without bytes.
std::vector<uint32_t> firstBlocks(const iso::Tree& tree) {
    std::vector<uint32_t> result(tree.nodes.size(), none);
    for (size_t node = tree.nodes.size(); node-- > 0;) { // folders come before what is in them
        const iso::Node& from = tree.nodes[node];
        if (from.kind == iso::NodeKind::File && from.count > 0)
            result[node] = tree.sections[from.first].firstBlock;
        if (from.kind != iso::NodeKind::Folder) continue;
        for (uint32_t i = tree.firstEntry[node]; i < tree.firstEntry[node + 1]; ++i)
            result[node] = std::min(result[node], result[tree.entries[i].node]);
    }
    return result;
}

class Earlier {
  public:
    Earlier(Tree& tree, const iso::ReadVolume& volume, uint8_t isoLevel)
        : tree_(tree), volume_(volume), isoForm_(isoLevel), blocks_(firstBlocks(volume.tree)) {
        std::unique_ptr<const NameForm> form;
        if (!volume.rockRidge && volume.joliet) form = std::make_unique<JolietForm>();
        const bool areIsos = !volume.rockRidge && !volume.joliet;
        if (areIsos) form = std::make_unique<IsoForm>(isoLevel);
        tree.setOld(filesystem::iso9660 | (volume.joliet ? filesystem::joliet : 0), std::move(form), areIsos);
        if (volume.joliet) jolietBlocks_ = firstBlocks(*volume.joliet);
        isoNodes_.assign(volume.tree.nodes.size(), none);
    }

    void add() {
        describe(tree_.nodes[0], volume_.tree.nodes[0]);
        pending_.push_back({0, 0, volume_.joliet ? 0 : none});
        while (!pending_.empty()) {
            const Folder folder = pending_.back();
            pending_.pop_back();
            addFolder(folder);
        }
        keepJolietsHidden();
        tree_.oldExtents = tree_.extents.size();
    }

  private:
    struct Folder {
        uint32_t node, iso, joliet; ///< nodes; `none` where one tree has no such folder
    };
    struct Item {
        uint32_t node = none, firstBlock = none;
        std::string name;
        bool isFolder = false, isHidden = false;
        uint32_t partner = none; ///< of the other tree's items
        const iso::Entry* entry = nullptr;
    };

    std::vector<Item> itemsOf(const iso::Tree& tree, uint32_t folder, const std::vector<uint32_t>& blocks,
                              bool hasRockRidge) const {
        std::vector<Item> items;
        if (folder == none) return items;
        for (uint32_t i = tree.firstEntry[folder]; i < tree.firstEntry[folder + 1]; ++i) {
            const iso::Entry& entry = tree.entries[i];
            const bool isFolder = tree.nodes[entry.node].kind == iso::NodeKind::Folder;
            items.push_back({entry.node, blocks[entry.node],
                             hasRockRidge ? std::string(tree.rockRidgeOf(entry))
                                          : plainName(tree.nameOf(entry), isFolder),
                             isFolder, entry.hidden, none, &entry});
        }
        return items;
    }

    // By name and bytes, then by bytes, then folders and empty files by name.
    static void match(std::vector<Item>& items, std::vector<Item>& others) {
        const auto pass = [&](const auto& keyOf, const auto& counts) {
            std::unordered_multimap<std::string, uint32_t> known;
            for (uint32_t i = 0; i < others.size(); ++i)
                if (others[i].partner == none && counts(others[i])) known.insert({keyOf(others[i]), i});
            for (uint32_t i = 0; i < items.size() && !known.empty(); ++i) {
                if (items[i].partner != none || !counts(items[i])) continue;
                const auto found = known.find(keyOf(items[i]));
                if (found == known.end()) continue;
                items[i].partner = found->second;
                others[found->second].partner = i;
                known.erase(found);
            }
        };
        const auto byBytes = [](const Item& item) {
            return (item.isFolder ? "d" : "f") + std::to_string(item.firstBlock);
        };
        const auto byName = [](const Item& item) { return (item.isFolder ? "d" : "f") + item.name; };
        pass([&](const Item& item) { return byBytes(item) + '/' + item.name; },
             [](const Item&) { return true; });
        pass(byBytes, [](const Item& item) { return item.firstBlock != none; });
        pass(byName, [](const Item& item) { return item.isFolder || item.firstBlock == none; });
    }

    void addFolder(const Folder& folder) {
        std::vector<Item> items = itemsOf(volume_.tree, folder.iso, blocks_, volume_.rockRidge);
        std::vector<Item> others;
        if (volume_.joliet) others = itemsOf(*volume_.joliet, folder.joliet, jolietBlocks_, false);
        // Joliet has no symbolic links.
        std::erase_if(others, [this](const Item& item) {
            return volume_.joliet->nodes[item.node].kind == iso::NodeKind::SymbolicLink;
        });
        match(items, others);
        constexpr auto exceptJoliet = static_cast<uint8_t>(filesystem::all & ~filesystem::joliet);
        for (const Item& item : items) {
            const iso::Node& from = volume_.tree.nodes[item.node];
            const uint32_t node = nodeOf(volume_.tree, item.node, isoNodes_);
            tree_.nodes[node].invisible |= item.isHidden;
            const bool isLink = from.kind == iso::NodeKind::SymbolicLink;
            const bool isInJoliet = !volume_.joliet || item.partner != none || isLink;
            ItemNames names{item.name};
            bool isJolietsMade = false;
            if (volume_.joliet && item.partner != none) {
                inJoliet_[node] |= others[item.partner].isHidden;
                const std::string& other = others[item.partner].name;
                // ISO 9660's own names are worse than Joliet's.
                if (!volume_.rockRidge)
                    names.name = other;
                else if (other != item.name)
                    names.own[1] = other;
                isJolietsMade = volume_.rockRidge && canBecome(item.name, item.isFolder, other, JolietForm());
            }
            // What it was called in ISO 9660 it stays there.
            const std::string iso = plainName(volume_.tree.nameOf(*item.entry), item.isFolder);
            if (iso != isoForm_.legal(names.name, item.isFolder)) names.own[0] = iso;
            if (!item.isFolder) keepVersion(node, volume_.tree.nameOf(*item.entry));
            tree_.addOldEntry(folder.node, node, names, isInJoliet ? filesystem::all : exceptJoliet,
                              isJolietsMade);
            if (item.isFolder)
                pending_.push_back(
                    {node, item.node, item.partner == none ? none : others[item.partner].node});
        }
        for (const Item& item : others) {
            if (item.partner != none) continue;
            const uint32_t node = nodeOf(*volume_.joliet, item.node, jolietNodes_);
            tree_.nodes[node].invisible |= item.isHidden;
            ItemNames names{item.name};
            names.own[1] = item.name;
            tree_.addOldEntry(folder.node, node, names, filesystem::joliet);
            if (item.isFolder) pending_.push_back({node, none, item.node});
        }
    }

    void keepVersion(uint32_t node, std::string_view stored) {
        const size_t at = stored.rfind(';');
        uint32_t version = 1;
        if (at == stored.npos ||
            std::from_chars(stored.data() + at + 1, stored.data() + stored.size(), version).ec !=
                std::errc() ||
            version < 2 || version > 32767)
            return;
        FilesystemAttributes own;
        own[0].version = version;
        tree_.own[node] = std::make_shared<const FilesystemAttributes>(own);
    }

    // An item is hidden in all file systems as it is in ISO 9660; in Joliet it may be otherwise.
    void keepJolietsHidden() {
        for (const auto& [node, isHidden] : inJoliet_) {
            if (isHidden == tree_.nodes[node].invisible) continue;
            std::shared_ptr<const FilesystemAttributes>& known = tree_.own[node];
            FilesystemAttributes own = known ? *known : FilesystemAttributes();
            own[1].invisible = isHidden;
            known = std::make_shared<const FilesystemAttributes>(own);
        }
    }

    uint32_t nodeOf(const iso::Tree& from, uint32_t index, std::vector<uint32_t>& known) {
        known.resize(from.nodes.size(), none);
        if (known[index] != none) return known[index];
        const iso::Node& old = from.nodes[index];
        Node node;
        describe(node, old);
        if (old.kind == iso::NodeKind::SymbolicLink) {
            node.kind = NodeKind::SymbolicLink;
            node.leadsToItems = true;
            tree_.setTarget(node, from.targetOf(old));
        } else if (old.kind == iso::NodeKind::Folder) {
            node.kind = NodeKind::Folder;
        } else if (old.count > 0) {
            node.first = extentOf(from, old);
        }
        return known[index] = tree_.addNode(node);
    }

    uint32_t extentOf(const iso::Tree& from, const iso::Node& file) {
        const auto sections = from.sectionsOf(file);
        const auto [known, isNew] =
            extents_.try_emplace(sections[0].firstBlock, static_cast<uint32_t>(tree_.extents.size()));
        if (!isNew) return known->second;
        Extent extent;
        extent.bytes = from.sizeOf(file);
        extent.firstBlock = sections[0].firstBlock;
        if (sections.size() > 1) {
            extent.pieces = static_cast<uint32_t>(tree_.pieces.size());
            extent.pieceCount = static_cast<uint32_t>(sections.size());
            tree_.pieces.insert(tree_.pieces.end(), sections.begin(), sections.end());
        }
        tree_.extents.push_back(extent);
        return known->second;
    }

    static void describe(Node& node, const iso::Node& old) {
        node.mode = old.mode;
        node.owner = old.owner;
        node.group = old.group;
        node.modified = old.modified;
        node.accessed = old.accessed;
        node.changed = old.changed;
    }

    Tree& tree_;
    const iso::ReadVolume& volume_;
    IsoForm isoForm_;
    std::vector<uint32_t> blocks_, jolietBlocks_;
    std::vector<uint32_t> isoNodes_, jolietNodes_;   ///< what became of theirs
    std::unordered_map<uint32_t, uint32_t> extents_; ///< by first block
    std::unordered_map<uint32_t, bool> inJoliet_;    ///< whether a node is hidden there
    std::vector<Folder> pending_;
};

} // namespace

void addEarlierSession(Tree& tree, const ImagePlace& place, uint8_t isoLevel) {
    std::string reason = "there is none of ISO 9660";
    try {
        const auto volume = iso::readVolume(place.previous, static_cast<uint32_t>(place.previousStart));
        if (volume) return Earlier(tree, *volume, isoLevel).add();
    } catch (const Failure& problem) {
        if (problem.error().code != ErrorCode::MediaInvalid) throw;
        reason = problem.error().message + " (" + problem.error().info + ')';
    }
    fail(ErrorCode::MediaInvalid,
         "The file system that is on the disc can't be read, so nothing can be added to it; overwrite the "
         "disc, or take another one.",
         reason);
}

} // namespace engine::plan
