// ProducerBridge: an object that produces a track's data, as the engine asks it.
#pragma once

#import "DRTrack.h"

#include "Drive.hpp"
#include "Layout.hpp"

namespace discrecording {

/// What a track is produced for.
struct ProducedFor {
    uint64_t burn = 0; ///< number of a living object; 0 for a test of the speed
    engine::DriveRef drive;
};

/// Calls the producer of the track on the engine's threads, as DRTrack.h says. Retains both from preparing to cleaning
/// up, which may come when whoever burned is gone; before that whoever burns keeps the track. `produced` says what its
/// blocks are.
std::shared_ptr<engine::TrackProducer>
makeProducer(DRTrack* track, id producer, const engine::ProducedTrack& produced, ProducedFor producedFor);

} // namespace discrecording
