// A volume of ISO 9660, with Joliet beside it where wanted, around files that lie on the medium already: all its blocks,
// made one at a time when they are asked for.
//
// Counted from the start of the session:
//
//     16 ...               descriptorBlocks(): the primary descriptor, Joliet's, the end of the set
//     structureStart ...   structureBlocks(): path tables, folders, what didn't fit into their records; then Joliet's
//     wherever             whatever else: the files' contents, other file systems
//
// All addresses that are written count from the beginning of the medium. Written after ECMA-119, Joliet, SUSP
// and RRIP 1.12.
#pragma once

#include "Hierarchy.hpp"
#include "Tree.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace engine::iso {

inline constexpr uint32_t firstDescriptorBlock = 16;

class Volume {
  public:
    /// Both trees show the same files, each with its names; the sections' blocks may be filled in later, in tree()
    /// and joliet(). Throws what Hierarchy throws, and BadLayout for structures in front of the descriptors' end.
    Volume(Tree tree, std::optional<Tree> joliet, VolumeSettings settings);

    Tree& tree() noexcept { return iso_->tree(); }
    /// Null without Joliet.
    Tree* joliet() noexcept { return joliet_ ? &joliet_->tree() : nullptr; }

    uint32_t descriptorBlocks() const noexcept { return joliet_ ? 3 : 2; }
    uint32_t structureStart() const noexcept { return settings_.structureStart; }
    uint32_t structureBlocks() const noexcept { return iso_->blocks() + (joliet_ ? joliet_->blocks() : 0); }
    /// What the session has. Before block().
    void setTotalBlocks(uint64_t total) noexcept { totalBlocks_ = static_cast<uint32_t>(total); }

    /// Whether block() makes that block.
    bool has(uint64_t number) const noexcept;
    /// The content of a block, counted from the start of the session.
    void block(uint64_t number, std::span<std::byte, blockBytes> block) const;

  private:
    void descriptor(const Hierarchy& hierarchy, bool wide, std::span<std::byte> block) const;

    VolumeSettings settings_;
    std::optional<Hierarchy> iso_, joliet_; // the first one always
    uint32_t totalBlocks_ = 0;
};

} // namespace engine::iso
