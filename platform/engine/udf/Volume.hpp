// A UDF volume around files that lie on the medium already: all its blocks, made one at a time when they are asked
// for.
//
// It is a bridge: another file system of the same disc, ISO 9660 for one, owns the first descriptors and shows the
// same files. Counted from the start of the session:
//
//     16 ...          the other file system's descriptors, then recognition() (ECMA-167 2/8, in a row with them)
//     32 ... 65       volume descriptors, twice, and the integrity of the logical volume
//     256             the first anchor (ECMA-167 3/8.4.2.1)
//     257 ...         the partition: file set, a block for each node, the folders' entries: structureBlocks()
//     behind that     whatever else: the files' contents, the other file system
//     the last block  the second anchor
//
// Written after ECMA-167 (second edition) and OSTA's UDF 1.02 and 1.50; for read-only volumes both have the same
// structures and differ in the numbers that they state.
#pragma once

#include "Tree.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace engine::udf {

inline constexpr size_t blockBytes = 2048;

/// Where the volume's own blocks lie, from the start of the session.
inline constexpr uint32_t firstVolumeBlock = 32;
inline constexpr uint32_t lastVolumeBlock = 65;
inline constexpr uint32_t anchorBlock = 256;
inline constexpr uint32_t partitionStart = 257;
/// As many extents as stand in a file's own block, beside which no more dates have room then.
inline constexpr uint64_t largestFile = 234 * ((uint64_t{1} << 30) - 2048);

/// The three blocks that tell that there is a UDF volume.
inline constexpr uint32_t recognitionBlocks = 3;
void putRecognition(uint32_t index, std::span<std::byte, blockBytes> block);

class Volume {
  public:
    /// The nodes' firstBlock may be filled in later, with tree(). Throws FilesystemsNotSupported for a file of more names,
    /// or a folder of more folders, than 16 bits can count.
    Volume(Tree tree, VolumeSettings settings);

    Tree& tree() noexcept { return tree_; }

    /// Blocks from partitionStart on that this writes.
    uint32_t structureBlocks() const noexcept { return structureBlocks_; }
    /// What the session has, the second anchor included. Before block().
    void setTotalBlocks(uint64_t total) noexcept { totalBlocks_ = static_cast<uint32_t>(total); }

    /// Whether block() makes that block.
    bool has(uint64_t number) const noexcept;
    /// The content of a block, counted from the start of the session.
    void block(uint64_t number, std::span<std::byte, blockBytes> block) const;

  private:
    /// What doesn't fit into a node's own block: a folder's entries, a long link's target.
    struct Stream {
        uint32_t node, firstBlock, bytes;
    };

    void addLink(uint32_t node, const Entry& because);
    void volumeDescriptor(uint32_t index, uint32_t location, std::span<std::byte> block) const;
    void integrity(std::span<std::byte> block) const;
    void anchor(uint32_t location, std::span<std::byte> block) const;
    void fileSet(std::span<std::byte> block) const;
    void fileEntry(uint32_t node, std::span<std::byte> block) const;
    uint32_t attributeBytes(uint32_t node) const;
    void putAttributes(uint32_t node, std::span<std::byte> to) const;
    void streamBlock(const Stream& stream, uint32_t index, std::span<std::byte> block) const;
    void folderBlock(const Stream& stream, uint32_t from, std::span<std::byte> block) const;
    uint32_t partitionBlocks() const noexcept {
        return settings_.sessionStart + totalBlocks_ - 1 - partitionStart;
    }
    /// Where a block of the structures lies in the partition.
    uint32_t inPartition(uint32_t structure) const noexcept { return settings_.sessionStart + structure; }
    uint32_t entryBlockOf(uint32_t node) const noexcept { return inPartition(firstEntryBlock + node); }
    uint64_t uniqueIdOf(uint32_t node) const noexcept { return node == 0 ? 0 : uint64_t{15} + node; }

    /// Of the structures: the file set, its end, then the nodes.
    static constexpr uint32_t firstEntryBlock = 2;

    const Stream* streamOf(uint32_t node) const noexcept;

    Tree tree_;
    VolumeSettings settings_;
    std::vector<Stream> streams_;        ///< in the order of their blocks, and of their nodes
    std::vector<uint32_t> entryOffsets_; ///< of each entry, in its folder's stream
    std::vector<uint16_t> linkCounts_;   ///< of each node
    std::vector<uint32_t> parents_;      ///< of each folder
    uint32_t folderCount_ = 0, fileCount_ = 0;
    uint32_t structureBlocks_ = 0;
    uint32_t totalBlocks_ = 0;
};

} // namespace engine::udf
