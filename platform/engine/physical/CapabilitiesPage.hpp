// What a drive says of itself on mode page 2A, and the library keeps to itself.
#pragma once

#include "../Drive.hpp"

#include <optional>
#include <span>

namespace engine {

struct CapabilitiesPage {
    LoadingMechanism loading;
    double writeSpeed = 0; ///< KB/s that are chosen now; 0 where the drive doesn't say
};

/// An answer to MODE SENSE(10); empty for one without the page.
std::optional<CapabilitiesPage> capabilitiesIn(std::span<const uint8_t> answer) noexcept;

/// Of an open device; empty where it is not to be had.
std::optional<CapabilitiesPage> readCapabilitiesPage(int device) noexcept;

} // namespace engine
