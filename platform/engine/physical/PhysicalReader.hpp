// Reading a medium block by block through the drive.
#pragma once

#include "PhysicalDrive.hpp"

namespace engine {

class PhysicalReader final : public MediumReader {
  public:
    explicit PhysicalReader(std::shared_ptr<PhysicalDrive::Hold> hold) : hold_(std::move(hold)) {}

    Result<size_t> read(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) override;
    Result<std::vector<uint8_t>> cdText() override;

  private:
    std::shared_ptr<PhysicalDrive::Hold> hold_;
};

} // namespace engine
