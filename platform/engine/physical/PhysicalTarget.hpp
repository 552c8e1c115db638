// The way of writing to a physical drive's medium.
#pragma once

#include "../BurnTarget.hpp"
#include "PhysicalDrive.hpp"

namespace engine {

/// The kind of medium that a profile number stands for (MMC-5, 5.3.1); empty for one that is no disc of ours.
std::optional<MediumKind> kindOfProfile(int profile) noexcept;
/// A medium of a kind that is overwritten in place, as it is formatted now.
bool takesBlocksInAnyOrder(burn_drive* drive);
/// A sequential DVD-R or -RW: takes one session in one go, or, where the drive says so, any number of them.
bool isSequentialDVDMinus(burn_drive* drive);
/// What is in the drive can be written in pieces: nothing can on a DVD-RW that was only blanked quickly.
bool takesIncrements(burn_drive* drive);

/// The drive is burning from here on; the target calls endBurn() when the library has let go of it.
std::unique_ptr<BurnTarget> makePhysicalTarget(std::shared_ptr<PhysicalDrive::Hold> hold,
                                               const MediumInfo& medium);

} // namespace engine
