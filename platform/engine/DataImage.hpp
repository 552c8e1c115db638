// The file-system image of a data track: planned exactly before anything is written, then given as bytes.
#pragma once

#include "Layout.hpp"
#include "Signal.hpp"
#include "SourceList.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace engine {

/// Reads one block of a medium by its address; false when it can't be read.
using BlockReader = std::function<bool(uint64_t address, std::span<std::byte, blockSize> block)>;

/// Where an image will be.
struct ImagePlace {
    uint64_t startBlock = 0;
    /// The file system that the image goes on from: where it starts, and how the medium is read. Empty for
    /// none.
    BlockReader previous;
    uint64_t previousStart = 0;
    bool wantsStart = false; ///< make the first 32 blocks of the medium, too
};

class UdfBridge;

/// libisofs lays out the tree and writes the descriptors, path tables and directories, which stand in front.
/// The contents follow in the order of the source list; they are read here in large pieces, because libisofs
/// hands data over in 2 KiB pieces and hides short files behind zeros.
class DataImage {
  public:
    /// Reads the tree and lays it out. `track` must outlive the image. Throws the errors of ImageTree.hpp,
    /// BadLayout, UserCanceled.
    static std::shared_ptr<DataImage> plan(const DataTrack& track, const Signal& signal,
                                           const ImagePlace& place = {});
    DataImage(const DataImage&) = delete;
    DataImage& operator=(const DataImage&) = delete;
    ~DataImage();

    /// Exact length of the image.
    uint64_t blocks() const noexcept { return blocks_; }

    /// Fills `buffer` (a multiple of the block size) with what comes next; less than the whole only at the
    /// end of the image. Throws FileModifiedDuringBurn, DataProduction, Internal.
    size_t read(std::span<std::byte> buffer);

    /// What the first 32 blocks of the medium shall be, when the place wants them.
    const std::vector<std::byte>& start() const noexcept { return start_; }

    /// At the end: that the folders are still as they were read. Throws FileModifiedDuringBurn.
    void checkSources() const { reader_.checkFolders(); }

  private:
    struct Generator;
    DataImage();
    void generate(std::span<std::byte> buffer);
    void skipContents();
    void makeBlocks(uint64_t first, std::span<std::byte> buffer) const;

    std::unique_ptr<Generator> generator_; ///< libisofs's side; gone when all it has to say is read
    SourceList sources_;
    SourceReader reader_{sources_};
    std::vector<std::byte> start_;
    std::unique_ptr<UdfBridge> bridge_; ///< when there is UDF, too
    std::vector<std::byte> isoFront_;   ///< of libisofs's image, where it was read before its turn
    // What the image is made of, in this order and in blocks.
    uint64_t frontBlocks_ = 0;   ///< the bridge's
    uint64_t headBlocks_ = 0;    ///< libisofs's, in front of the contents
    uint64_t contentBlocks_ = 0; ///< the files
    uint64_t tailBlocks_ = 0;    ///< libisofs's, behind them
    uint64_t blocks_ = 0;        ///< all, with what the bridge has at its end
    bool skipped_ = false;
    uint64_t position_ = 0; ///< bytes given so far
};

} // namespace engine
