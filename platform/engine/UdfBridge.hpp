// The UDF side of a disc whose ISO 9660 side libisofs writes: one set of contents, two file systems over it.
//
// UDF wants fixed places at the front of the session, and libisofs leaves none free. So its image is laid out to begin
// further back (it counts addresses from wherever it is told to), and this writes what stands in front: the
// ISO descriptors once more where readers look for them, then UDF's own blocks; and one block behind it all.
#pragma once

#include "DataImage.hpp"
#include "ImageTree.hpp"
#include "udf/Volume.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace engine {

class UdfBridge {
  public:
    /// Takes the tree from libisofs, after everything is in it and before it is laid out. Throws
    /// FilesystemsNotSupported for what UDF can't hold.
    UdfBridge(IsoImage* image, const NodeSet& notShown, const DataTrack& track, const ImagePlace& place);

    /// Blocks in front of libisofs's image.
    uint64_t frontBlocks() const noexcept { return frontBlocks_; }
    /// Blocks behind it.
    static constexpr uint64_t behindBlocks = 1;

    /// Where the contents lie: `firstContent` on the medium, in the order of the list. `isoBlocks` is the length of
    /// libisofs's image, `isoFront` its first 32 blocks.
    void place(const SourceList& sources, uint64_t firstContent, uint64_t isoBlocks,
               std::span<const std::byte> isoFront);

    /// A block of the front, or the one behind, counted from the start of the session.
    void block(uint64_t number, std::span<std::byte, blockSize> block) const;

  private:
    uint32_t nodeOf(IsoNode* node);
    uint32_t fileNodeOf(IsoFile* file, udf::Node node);

    udf::Tree tree_;
    std::vector<IsoDir*> folders_;       ///< of each node; only while the tree is read
    std::vector<size_t> sourceOf_;       ///< of each node: its number in the list of sources, 0 for none
    std::vector<uint32_t> nodeOfSource_; ///< and the other way
    udf::VolumeSettings settings_;
    std::unique_ptr<udf::Volume> volume_;
    std::vector<std::byte>
        firstBlocks_; ///< as libisofs has them, with UDF's recognition behind the descriptors
    uint64_t frontBlocks_ = 0;
};

} // namespace engine
