// Blocks of a track become what a medium's file keeps of them.
#pragma once

#include "ImageFile.hpp"
#include "subchannel/SubchannelWriter.hpp"

#include <cstdint>
#include <memory>
#include <span>

namespace engine {

/// Data on an image, sound and raw sectors go through as they are, without a copy; of other forms whole sectors
/// are made.
class SectorWriter {
  public:
    /// Where a session's blocks go; `isSectors` for whole sectors.
    SectorWriter(std::shared_ptr<ImageFile> file, bool isSectors)
        : file_(std::move(file)), isSectors_(isSectors) {}

    const std::shared_ptr<ImageFile>& file() const noexcept { return file_; }

    /// Where the session's subchannels go, if it has any.
    void addSubchannel(std::unique_ptr<SubchannelWriter> writer) { subchannel_ = std::move(writer); }

    /// The next blocks are of that track, and the first of them has that address.
    void begin(const TrackInfo& track, int64_t address);
    /// Blocks as the track has them, with their subchannel data behind each if it has such; changes them.
    void write(std::span<std::byte> blocks);
    /// Silence, or empty blocks.
    void fill(uint64_t blocks);
    void flush(const SignalRef& signal);

  private:
    void writeSectors(std::span<std::byte> blocks);

    std::shared_ptr<ImageFile> file_;
    std::unique_ptr<SubchannelWriter> subchannel_;
    bool isSectors_;
    BlockForm form_ = BlockForm::Data;
    int64_t address_ = 0;
    std::unique_ptr<std::byte[]> sectors_; ///< room for sectorsAtOnce
};

} // namespace engine
