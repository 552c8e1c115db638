// Blocks of a track become what a medium's file keeps of them.
#pragma once

#include "BlockForm.hpp"
#include "ImageFile.hpp"

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

    /// The next blocks have that form, and the first of them that address.
    void begin(BlockForm form, int64_t address);
    void write(std::span<std::byte> blocks);
    /// Silence, or empty blocks.
    void fill(uint64_t blocks);

  private:
    std::shared_ptr<ImageFile> file_;
    bool isSectors_;
    BlockForm form_ = BlockForm::Data;
    int64_t address_ = 0;
    std::unique_ptr<std::byte[]> sectors_; ///< room for sectorsAtOnce
};

} // namespace engine
