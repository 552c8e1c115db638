// The folders of one tree as they stand on the medium: path tables, folders, continuation areas.
#pragma once

#include "Fields.hpp"
#include "Names.hpp"
#include "SystemUse.hpp"
#include "Tree.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace engine::iso {

/// In a row, from where place() says: the path table in both byte orders, then the folders in the order of the path
/// table, each with what didn't fit into its records right behind it: who reads a disc from front to back finds that
/// before the next folder. Lays itself out when it is made; the bytes of a block are made when it is asked
/// for. Throws FileLocationConflict for names that can't be had and for two items with the same, BadLayout for
/// whatever else the rules don't allow; the sentence names the item.
class Hierarchy {
  public:
    Hierarchy(Tree tree, Form form, const Rules& rules, int8_t zone);

    /// Only the sections' blocks may be changed. Entries have another order than they came in.
    Tree& tree() noexcept { return tree_; }

    /// Where it begins on the medium.
    void place(uint32_t firstBlock) noexcept { first_ = firstBlock; }
    uint32_t blocks() const noexcept { return blocks_; }
    /// Counted from its own beginning.
    void block(uint32_t index, std::span<std::byte, blockBytes> block) const;

    uint32_t pathTableBytes() const noexcept { return pathTableBytes_; }
    uint32_t littleTable() const noexcept { return first_; }
    uint32_t bigTable() const noexcept { return first_ + blocksOf(pathTableBytes_); }
    /// The root's record without system use, as it stands in a descriptor: 34 bytes.
    void rootRecord(std::span<std::byte, 34> to) const;

  private:
    static constexpr uint32_t none = 0xFFFF'FFFF;

    // Items of a folder are ".", ".." and its entries, each one record or, for a file of several sections, several.
    // They are counted through all folders.
    struct Folder {
        uint32_t node, parent; ///< parent: of the folders
        uint32_t entry;        ///< that names it, where its record is
        uint32_t firstItem;
        uint32_t firstBlock, bytes; ///< firstBlock: from the hierarchy's beginning
        uint32_t pathOffset;        ///< in the path table
    };
    struct Continued {
        uint32_t item, offset; ///< offset: in its folder's continuation area
    };
    struct Record {
        uint32_t block, bytes;
        uint8_t flags;
        std::string_view name;
        std::time_t time;
    };

    // Layout.cpp: finds everything its place.
    void check() const;
    void sortEntries(uint32_t node);
    void expectDistinctRockRidgeNames(uint32_t node) const;
    void numberFolders();
    void measure();
    [[noreturn]] void refuse(uint32_t entry, const std::string& why) const;
    std::string pathOf(uint32_t entry) const;

    // DeepFolders.cpp: moves what is deeper than ISO 9660 allows.
    void moveDeepFolders();
    Entry makeMovedFolder();

    // Records.cpp: makes the bytes.
    void pathTableBlock(bool big, uint32_t from, std::span<std::byte> block) const;
    void folderBlock(const Folder& folder, uint32_t from, std::span<std::byte> block) const;
    void continuationBlock(const Folder& folder, uint32_t from, std::span<std::byte> block) const;
    void putRecord(const Record& record, std::span<std::byte> to) const;
    /// Its system use entries, before they are spread.
    void describe(SystemUse& use, const Folder& folder, uint32_t item) const;
    std::string_view identifierOf(const Folder& folder, uint32_t item) const;
    const Entry& entryOf(const Folder& folder, uint32_t item) const;

    uint32_t itemCount(const Folder& folder) const {
        return 2 + tree_.firstEntry[folder.node + 1] - tree_.firstEntry[folder.node];
    }
    bool usesRockRidge() const noexcept { return form_ == Form::Iso && rules_.rockRidge; }
    bool usesSystemUse() const noexcept { return usesRockRidge() || !tree_.mac.empty(); }
    bool isFolder(const Entry& entry) const { return tree_.nodes[entry.node].kind == NodeKind::Folder; }
    /// The node of the folder that a moved one came from; `none` for others.
    uint32_t originOf(uint32_t node) const noexcept;
    /// Whether an entry is only the place where a folder was that was moved.
    bool isPlaceholder(uint32_t parentNode, const Entry& entry) const {
        return movedFolder_ != none && parentNode != movedFolder_ && originOf(entry.node) != none;
    }
    /// A node's folder on the medium.
    uint32_t blockOf(const Folder& folder) const noexcept { return first_ + folder.firstBlock; }
    uint32_t continuationOf(const Folder& folder) const noexcept {
        return blockOf(folder) + blocksOf(folder.bytes);
    }

    Tree tree_;
    Form form_;
    Rules rules_;
    int8_t zone_;
    uint32_t first_ = 0;
    std::vector<Folder> folders_;       ///< in the order of the path table; the root first
    std::vector<uint32_t> folderOf_;    ///< of each node; `none` for files
    std::vector<uint32_t> links_;       ///< of each node
    std::vector<uint32_t> itemOffsets_; ///< of each item's first record, in its folder
    std::vector<Continued> continued_;  ///< ascending; the offsets are so in each folder
    bool namesAreWide_ = false;         ///< Joliet's, once they are checked
    uint32_t movedFolder_ = none;       ///< the node of RR_MOVED
    std::vector<std::pair<uint32_t, uint32_t>>
        origins_; ///< moved folders and where they were, as nodes, ascending
    uint32_t pathTableBytes_ = 0;
    uint32_t blocks_ = 0;
};

/// Bytes of a record with that identifier, without system use (ECMA-119 9.1): 33, the identifier, and a zero where that
/// makes an odd sum.
constexpr size_t recordBytes(size_t identifierBytes) noexcept { return (33 + identifierBytes + 1) / 2 * 2; }
/// A record has up to 255 bytes, and an even number.
inline constexpr size_t mostRecordBytes = 254;

} // namespace engine::iso
