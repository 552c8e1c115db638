// What a disc is to show, whichever file systems write it: one tree of objects, with their names and contents.
#pragma once

#include "Content.hpp"
#include "Names.hpp"
#include "iso/Tree.hpp"
#include "udf/Tree.hpp"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace engine::plan {

inline constexpr uint32_t none = UINT32_MAX;

enum class NodeKind : uint8_t { Folder, File, SymbolicLink, Alias };

/// An object, whatever names lead to it.
struct Node {
    std::time_t modified = 0, accessed = 0, changed = 0; ///< seconds since 1970, UTC
    uint32_t owner = 0, group = 0;
    /// Of a folder its first and last entry, of a file its content, of a symbolic link its target's place in the store of
    /// texts and its bytes, of an alias the node that it leads to.
    uint32_t first = none, last = none;
    uint16_t mode = 0; ///< permission bits, 07777
    NodeKind kind = NodeKind::File;
    bool invisible = false;
    bool leadsToItems = false; ///< a symbolic link whose target has the names that items have in Rock Ridge
    bool isRealTime = false;   ///< UDF says so
    uint8_t udfPermissions = asWhoWrites; ///< for changing attributes and deleting, two bits each

    static constexpr uint8_t asWhoWrites = udf::asWhoWrites;
};

/// A name in a folder. Several may lead to one node.
struct Entry {
    uint32_t node = 0;
    uint32_t next = none; ///< in the folder
    uint32_t nameAt = 0;
    uint16_t nameBytes = 0;
    uint8_t filesystems = 0;    ///< that show it
    bool isJolietsMade = false; ///< of an old one: its name in Joliet is what became of its name
    uint32_t own = none;        ///< names that it has in single file systems
};

/// Bytes that are on the disc once.
struct Extent {
    uint64_t bytes = 0;
    uint32_t firstBlock = 0; ///< on the medium; 0 as long as it is not placed
    uint32_t pieces = none;  ///< of an earlier session's file that has several: the first, in Tree::pieces
    uint32_t pieceCount = 0;
};

/// What an item is called: in Rock Ridge by its name, in each file system by that or by a name of its own.
struct ItemNames {
    std::string_view name;
    std::array<std::string_view, 4> own{}; ///< by the file systems' bits, lowest first; empty for none

    std::string_view in(uint8_t filesystem) const {
        const std::string_view found = own[static_cast<size_t>(std::countr_zero(filesystem))];
        return found.empty() ? name : found;
    }
};

/// Nodes by index; 0 is the root folder. Names, targets and all that few nodes have stand in common stores: a node
/// costs 48 bytes, an entry 20 and its name.
///
/// An earlier session's entries are old ones: what is added under a name that one has takes its place in that
/// file system, and a folder goes on with the old folder. Names are the same when they were before the file system made
/// them legal, as far as that is known: Rock Ridge has them whole.
class Tree {
  public:
    Tree();

    uint32_t addNode(const Node& node);
    /// Puts an item into a folder. Old entries of the same name lose the file systems that it is in, and so does the
    /// old entry of a folder that it goes on with.
    void addEntry(uint32_t folder, uint32_t node, const ItemNames& names, uint8_t filesystems);
    /// How the old session tells names: which file systems were read, what became of names there when they aren't whole, and
    /// whether they are ISO 9660's own.
    void setOld(uint8_t read, std::unique_ptr<const NameForm> form, bool areIsos);
    void addOldEntry(uint32_t folder, uint32_t node, const ItemNames& names, uint8_t filesystems,
                     bool isJolietsMade = false);
    /// The old folder that one of that name goes on with; `none` when there is none. Where it is another one in a file system
    /// that alone shows that, all in it is moved to the first.
    uint32_t oldFolder(uint32_t folder, const ItemNames& names, uint8_t filesystems);
    void setTarget(Node& link, std::string_view target);

    std::string_view nameOf(const Entry& entry) const {
        return std::string_view(text_).substr(entry.nameAt, entry.nameBytes);
    }
    /// Whether it has a name of its own there.
    bool hasOwnName(const Entry& entry, uint8_t filesystem) const;
    std::string_view nameIn(const Entry& entry, uint8_t filesystem) const;
    bool isOld(const Extent& extent) const {
        return static_cast<size_t>(&extent - extents.data()) < oldExtents;
    }
    std::string_view targetOf(const Node& link) const {
        return std::string_view(text_).substr(link.first, link.last);
    }
    /// Of a file; null for one without bytes.
    const Extent* extentOf(const Node& file) const {
        return file.first == none || extents[file.first].bytes == 0 ? nullptr : &extents[file.first];
    }
    /// Of a file, in HFS+; null for one without that fork.
    const Extent* resourceOf(const Node& file) const {
        const auto found = resources.find(file.first);
        return file.kind != NodeKind::File || found == resources.end() ? nullptr : &extents[found->second];
    }
    /// What is given to few: attributes that only HFS+ has.
    const MacAttributes* macOf(uint32_t node) const {
        const auto found = mac.find(node);
        return found == mac.end() ? nullptr : found->second.get();
    }

    /// What a file system has of a node for itself; null where that is nothing.
    const OwnAttributes* ownOf(uint32_t node, uint8_t filesystem) const {
        const auto found = own.find(node);
        return found == own.end() || !found->second
                   ? nullptr
                   : &(*found->second)[static_cast<size_t>(std::countr_zero(filesystem))];
    }
    bool isInvisible(uint32_t node, uint8_t filesystem) const {
        const OwnAttributes* const its = ownOf(node, filesystem);
        return its ? its->invisible.value_or(nodes[node].invisible) : nodes[node].invisible;
    }

    std::vector<Node> nodes;
    std::vector<Entry> entries;
    std::vector<Extent> extents; ///< the old ones first, then the new ones in the order of their sources
    std::vector<iso::Section> pieces;
    size_t oldExtents = 0;
    std::unordered_map<uint32_t, std::shared_ptr<const MacAttributes>> mac, isoMac;
    std::unordered_map<uint32_t, uint32_t>
        resources; ///< resource forks' extents, by those of the files' data
    std::unordered_map<uint32_t, std::shared_ptr<const FilesystemAttributes>> own;

  private:
    struct OwnName {
        uint32_t at = 0;
        uint16_t bytes = 0;
    };

    uint32_t keep(std::string_view text);
    uint32_t append(uint32_t folder, uint32_t node, const ItemNames& names, uint8_t filesystems);
    void moveOldEntries(uint32_t from, uint32_t to);
    /// The old entry of that name; `none` when there is none.
    uint32_t findOld(uint32_t folder, uint8_t filesystem, const ItemNames& names, bool isFolder) const;
    std::string wholeKey(std::string_view name, bool isFolder) const;
    static size_t placeOf(uint32_t folder, std::string_view key) noexcept {
        return std::hash<std::string_view>()(key) ^ size_t { folder } * 0x9E3779B1u;
    }

    std::string text_;
    std::vector<std::array<OwnName, 4>> own_;
    std::unordered_multimap<size_t, std::pair<uint32_t, uint32_t>> old_; ///< by placeOf(): folder and entry
    std::unordered_map<uint32_t, uint32_t> oldFolders_;                  ///< nodes' only entries
    std::unique_ptr<const NameForm> oldForm_;
    bool oldNamesAreIsos_ = false;
    uint8_t oldRead_ = filesystem::all;
};

} // namespace engine::plan
