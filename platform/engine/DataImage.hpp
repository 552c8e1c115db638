// The file-system image of a data track: planned exactly before anything is written, then given as bytes.
#pragma once

#include "Layout.hpp"
#include "ProducedAgain.hpp"
#include "Signal.hpp"
#include "SourceList.hpp"
#include "SourceReader.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
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

namespace plan {
class Volumes;
}

/// All file systems of a track are laid out around the same contents when it is planned (plan/). Their blocks are made
/// when it is their turn; the contents are read in large pieces.
class DataImage {
  public:
    /// Reads the tree and lays it out. `track` must outlive the image. Throws FileLocationConflict, DataProduction,
    /// TooManyNameConflicts, FilesystemsNotSupported, MediaInvalid, BadLayout, UserCanceled.
    static std::shared_ptr<DataImage> plan(const DataTrack& track, const Signal& signal,
                                           const ImagePlace& place = {});
    DataImage(const DataImage&) = delete;
    DataImage& operator=(const DataImage&) = delete;
    ~DataImage();

    /// Exact length of the image.
    uint64_t blocks() const noexcept;

    /// Fills `buffer` (a multiple of the block size) with what comes next; less than the whole only at the
    /// end of the image. Throws FileModifiedDuringBurn, DataProduction, Internal.
    size_t read(std::span<std::byte> buffer);

    /// Compares what comes next of the image as it was read back, whole blocks, with what producers of files give when they are
    /// asked again.
    std::optional<Difference> compareAgain(std::span<const std::byte> bytes);

    /// What the first 32 blocks of the medium shall be, when the place wants them.
    const std::vector<std::byte>& start() const noexcept { return start_; }

    /// At the end: that the folders and the empty files are still as they were read. Throws FileModifiedDuringBurn.
    void checkSources() const {
        reader_.checkEmptyFiles();
        reader_.checkFolders();
    }

    /// Once all is read: the producers of files are told that it is over. Answers what went wrong first.
    std::optional<Error> cleanUp() noexcept { return sources_.cleanUp(); }

  private:
    DataImage();

    SourceList sources_;
    SourceReader reader_{sources_};
    ProducedAgain again_{sources_};
    std::unique_ptr<plan::Volumes> volumes_;
    std::vector<std::byte> start_;
    uint64_t position_ = 0; ///< blocks given so far
    uint64_t compared_ = 0; ///< blocks
};

} // namespace engine
