// The catalog: a record for each item in its folder, and a thread from each item back to its name (TN1150, "Catalog
// File"). Records are in groups, one for each number of the catalog: the thread, then what is in the folder.
//
//     1                  the root folder itself
//     2                  the root's thread and items
//     16 ...             nodes 1 and on
//     behind the nodes   the folder of hard-linked files, when there are any; then the hard links
//
// A file with several names lies in that folder, and each name is a small file that tells its number there.
#pragma once

#include "BTree.hpp"
#include "Forks.hpp"
#include "Tree.hpp"

#include <string>
#include <vector>

namespace engine::hfsplus {

class Catalog final : public Records {
  public:
    /// Puts the entries of each folder in the catalog's order. Throws FileLocationConflict where two are one name in
    /// HFS+.
    Catalog(Tree& tree, const VolumeSettings& settings);

    uint32_t groups() const override;
    uint32_t recordsIn(uint32_t group) const override;
    size_t keyBytes(Cursor cursor) const override;
    size_t dataBytes(Cursor cursor) const override;
    void put(Cursor cursor, std::span<std::byte> key, std::span<std::byte> data) const override;

    uint32_t fileCount() const noexcept { return fileCount_; }
    /// Without the root.
    uint32_t folderCount() const noexcept { return folderCount_; }
    uint32_t nextId() const noexcept { return idOfGroup(groups()); }

    /// Where a node is found: the entry that leads there, the first one of several, and the folder of that entry.
    /// Not for the root.
    uint32_t entryOf(uint32_t node) const noexcept { return entryOf_[node]; }
    uint32_t folderOf(uint32_t entry) const noexcept;
    /// The number of the item that an entry is: the node's, or the hard link's.
    uint32_t idOfEntry(uint32_t entry) const noexcept;

  private:
    struct Linked {
        uint32_t node, names;
    };
    enum class Kind : uint8_t { Thread, Root, Entry, PrivateFolder, LinkedFile };
    /// What a record is, and of which node, entry or linked file.
    struct Record {
        Kind kind;
        uint32_t of = 0;
    };

    void sortFolders();
    void findLinks();
    Record recordAt(Cursor cursor) const;
    std::u16string nameOf(Record record) const;
    struct Thread;
    Thread threadOf(uint32_t group) const;
    void putFolder(Fields& fields, uint32_t id, const Node& node, uint32_t items) const;
    void putFile(Fields& fields, uint32_t node, uint32_t names) const;
    void putLink(Fields& fields, uint32_t entry) const;

    bool isLink(uint32_t entry) const noexcept;
    uint32_t nodeGroups() const noexcept { return 1 + static_cast<uint32_t>(tree_.nodes.size()); }
    static constexpr uint32_t idOfGroup(uint32_t group) noexcept {
        return group == 0 ? 1 : idOfNode(group - 1);
    }

    Tree& tree_;
    const VolumeSettings& settings_;
    std::vector<uint32_t> entryOf_;    ///< of each node
    std::vector<uint32_t> links_;      ///< entries that are hard links, in order
    std::vector<Linked> linked_;       ///< the nodes they lead to, in the order of their names there
    std::vector<uint32_t> linkedNode_; ///< the nodes in order
    Node privateFolder_;
    uint32_t fileCount_ = 0, folderCount_ = 0;
};

} // namespace engine::hfsplus
