// An HFS+ volume around files that lie on the medium already: all its blocks, made one at a time when they are asked
// for. It shares its contents with other file systems of the disc. Blocks are counted from the medium's first one:
//
//     volumeStart          zeros, and at byte 1024 the volume header
//     structureStart ...   extents overflow file, attributes file, catalog, symbolic links' targets and forks of
//                          the volume's own: structureBlocks()
//     anywhere behind volumeStart, up to the end of the contents: the files' bytes
//     behind the contents  a bit for each block, and in the last block the header once more: endBlocks()
//
// Written after Apple's Technical Note TN1150. Every block counts as used: whoever could write there would write into
// other file systems. The header says so, too.
#pragma once

#include "BTree.hpp"
#include "Catalog.hpp"
#include "Forks.hpp"
#include "Tree.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace engine::hfsplus {

class Volume {
  public:
    /// The extents' places may be filled in later, with tree(), whose entries are now in the catalog's order. Every
    /// node but the root has an entry, and every folder no more than one.
    Volume(Tree tree, VolumeSettings settings);
    Volume(const Volume&) = delete;
    Volume& operator=(const Volume&) = delete;

    Tree& tree() noexcept {
        nodeTree_ = nullptr;
        return tree_;
    }

    /// Blocks from structureStart on that this writes.
    uint32_t structureBlocks() const noexcept { return structureBlocks_; }
    /// Blocks that this writes behind the contents, which end before `contentsEnd`.
    uint32_t endBlocks(uint64_t contentsEnd) const noexcept;
    /// Before block().
    void setContentsEnd(uint64_t contentsEnd) noexcept;
    /// The block behind the volume's last one.
    uint64_t end() const noexcept { return end_; }

    /// Whether block() makes that block.
    bool has(uint64_t number) const noexcept;
    /// Fast in the order of the blocks: the last node that was made of a tree, which is several blocks, is kept.
    void block(uint64_t number, std::span<std::byte, blockBytes> block);

  private:
    void makeAliases();
    void header(std::span<std::byte> block) const;
    void bitmap(uint32_t index, std::span<std::byte> block) const;
    void structure(uint32_t at, std::span<std::byte> block);
    void treeBlock(const BTree& tree, uint32_t index, std::span<std::byte> block);
    uint64_t encodings() const;
    uint32_t totalBlocks() const noexcept { return static_cast<uint32_t>(end_ - settings_.volumeStart); }

    Tree tree_;
    VolumeSettings settings_;
    Overflow overflow_;
    NoRecords attributes_;
    Catalog catalog_;
    BTree overflowTree_, attributesTree_, catalogTree_;
    Extent overflowPlace_, attributesPlace_, catalogPlace_;
    uint32_t structureBlocks_ = 0;
    uint64_t bitmapStart_ = 0, end_ = 0;
    std::array<std::byte, 8192> node_; ///< the last one made
    const BTree* nodeTree_ = nullptr;
    uint32_t nodeNumber_ = 0;
};

} // namespace engine::hfsplus
