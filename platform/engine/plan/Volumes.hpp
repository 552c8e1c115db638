// The file systems of one image around the same contents: where everything lies, and any block but the contents'.
//
// Counted from the start of the session:
//
//     0, 1        the map that leads to HFS+
//     16 ...      ISO 9660's and Joliet's descriptors, then UDF's recognition
//     32 ... 256  UDF's fixed places, and behind them its folders
//     behind      HFS+: its header and its structures; path tables and folders of ISO 9660 and Joliet
//     behind      the contents, each once, in the order of their sources
//     the end     HFS+'s, then UDF's second anchor
//
// Deliberate: folders come before all contents, because some readers go from front to back.
#pragma once

#include "DataImage.hpp"
#include "Tree.hpp"
#include "hfsplus/Volume.hpp"
#include "iso/Volume.hpp"
#include "udf/Volume.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace engine::plan {

class Volumes {
  public:
    /// Places the tree's new extents, and takes its names away. Throws what the views and the file systems throw.
    Volumes(Tree& tree, const DataTrack& track, uint8_t filesystems, const ImagePlace& place);

    uint64_t blocks() const noexcept { return blocks_; }
    /// From the start of the session.
    uint64_t contentsStart() const noexcept { return contentsStart_; }
    uint64_t contentsEnd() const noexcept { return contentsEnd_; }

    /// A block that is none of the contents', counted from the start of the session. Fastest in their order.
    void block(uint64_t number, std::span<std::byte, blockSize> block);
    /// The first 32 blocks of a medium that is overwritten: what readers look for there.
    std::vector<std::byte> mediumStart();

  private:
    uint64_t start_; ///< of the session, on the medium
    std::optional<iso::Volume> iso_;
    std::optional<udf::Volume> udf_;
    std::unique_ptr<hfsplus::Volume> hfsPlus_;
    bool hasMap_ = false;
    uint64_t hfsPlusStart_ = 0; ///< on the medium
    uint64_t contentsStart_ = 0, contentsEnd_ = 0, blocks_ = 0;
};

} // namespace engine::plan
