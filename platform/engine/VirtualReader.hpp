// Reading the tracks of a virtual medium from its files.
#pragma once

#include "Drive.hpp"
#include "Files.hpp"
#include "ImageFile.hpp"

#include <map>

namespace engine {

class VirtualReader final : public MediumReader {
  public:
    /// `folder` is the drive's; `cdText` the name of the file with the packs, or empty.
    VirtualReader(int folder, std::string cdText);

    Result<size_t> read(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) override;
    Result<std::vector<uint8_t>> cdText() override;

  private:
    size_t readBlocks(const TrackInfo& track, int64_t block, std::span<std::byte> buffer);
    size_t readWithSubchannel(const TrackInfo& track, int64_t block, std::span<std::byte> buffer);
    void readSubchannel(const TrackInfo& track, int64_t block, size_t count);
    ImageReader& file(const std::string& name);
    size_t readPlain(const TrackInfo& track, uint64_t block, std::span<std::byte> buffer);
    size_t readSectors(const TrackInfo& track, int64_t block, std::span<std::byte> buffer);

    Descriptor folder_;
    std::string cdText_;
    std::map<std::string, ImageReader> files_;
    std::vector<std::byte> sectors_;          ///< of forms whose user data is a part of the sector
    std::vector<std::byte> blocks_, symbols_; ///< of tracks with subchannel data
};

/// Whether a file of a virtual medium has whole sectors (or else blocks of 2048 bytes).
bool hasSectors(const std::string& file) noexcept;

} // namespace engine
