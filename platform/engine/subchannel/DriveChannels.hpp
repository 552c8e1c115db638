// P and Q, the two subchannels that a drive makes: where a sector lies, and the disc's and the track's codes.
#pragma once

#include "../Drive.hpp"
#include "Symbols.hpp"

#include <cstdint>
#include <string>

namespace engine {

/// P and Q as ECMA-130, 22 has them. P is set in pauses. Q says the place of a sector (mode 1) but for one in a hundred that
/// has the disc's catalog number (mode 2), and one that has the track's recording code (mode 3), where there are such.
class DriveChannels {
  public:
    explicit DriveChannels(std::string catalogNumber) : catalogNumber_(std::move(catalogNumber)) {}

    /// Sectors are of this track from here on, those of its pre-gap first.
    void begin(const TrackInfo& track) { track_ = track; }
    /// 12 bytes of P and 12 of Q for the sector at `address`, a logical block address.
    void make(int64_t address, std::span<std::byte, 2 * channelBytes> made) const;

  private:
    std::string catalogNumber_; ///< 13 digits, or empty
    TrackInfo track_;
};

/// Whether Q's code is right.
bool isIntactQ(std::span<const std::byte, channelBytes> q) noexcept;

} // namespace engine
