// What is checked before anything is written: the layout for itself, and for a drive with its medium.
#pragma once

#include "BurnTarget.hpp"

namespace engine {

/// A burn's plan without lengths and addresses. Throws what is wrong with the layout and the options whatever
/// they are burned on.
BurnPlan planOf(const Layout& layout, const BurnOptions& options);

/// Completes the plan for a drive and its medium: whether it starts again, tests, and how it writes. Throws
/// what is not possible there.
void fitPlan(BurnPlan& plan, const BurnOptions& options, const Drive& drive, const MediumInfo& medium);

/// Blocks of the first layer, of a wanted number above 1 or a wanted part below 1 of what is burned: whole steps of 16, and
/// as many as a layer must have.
uint64_t l0DataZoneBlocks(double wanted, uint64_t burned, uint64_t capacity) noexcept;

/// That a track which must begin at a certain block does, where it is placed. Throws BadLayout.
void checkPlace(const Track& track, const TrackInfo& placed, const Drive& drive, const MediumInfo& medium);

/// The index points of a track whose length is known. Throws InvalidIndexPoints.
void checkIndexPoints(const TrackInfo& track);

/// That a plan whose tracks are placed ends on the medium. Throws BurnNotAllowed.
void checkSpace(const BurnPlan& plan, const Drive& drive, const MediumInfo& medium);

} // namespace engine
