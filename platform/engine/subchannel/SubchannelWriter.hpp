// Writes the file of a session's subchannels, beside that of its sectors.
#pragma once

#include "../ImageFile.hpp"
#include "DriveChannels.hpp"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace engine {

/// 96 bytes a sector, channel by channel from P to W, for every sector of the session's file and in its order. P and Q are
/// made; R to W are the producer's, and zeros where nobody brings them.
class SubchannelWriter {
  public:
    SubchannelWriter(std::shared_ptr<ImageFile> file, std::string catalogNumber)
        : file_(std::move(file)), drives_(std::move(catalogNumber)) {}

    const std::shared_ptr<ImageFile>& file() const noexcept { return file_; }

    /// The next blocks are of that track, and the first of them has that address.
    void begin(const TrackInfo& track, int64_t address);
    /// Takes the subchannel data from behind each block, if the track has them, and answers the blocks without: at the
    /// front of `blocks`, which are changed.
    std::span<std::byte> take(std::span<std::byte> blocks);
    /// Blocks that nobody brings.
    void fill(uint64_t blocks);

  private:
    std::span<std::byte, subchannelBytes> next(size_t place);
    void putNext(size_t place);

    std::shared_ptr<ImageFile> file_;
    DriveChannels drives_;
    BlockForm form_ = BlockForm::Audio;
    SubchannelForm subchannel_ = SubchannelForm::None;
    int64_t address_ = 0;
    std::vector<std::byte> made_;
};

} // namespace engine
