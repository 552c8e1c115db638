// ProducerBridge: an object that produces a track's data, as the engine asks it.
#pragma once

#import "DRTrack.h"

#include "Drive.hpp"
#include "TrackProducer.hpp"

namespace discrecording {

/// What a track is produced for.
struct ProducedFor {
    uint64_t burn = 0; ///< number of a living object; 0 for none
    engine::DriveRef drive;
};

/// Calls the producer of the track on the engine's threads, as DRTrack.h says. Retains nothing: whoever burns
/// keeps the track until its job has ended, after which no call comes.
std::shared_ptr<engine::TrackProducer> makeProducer(DRTrack* track, id producer, ProducedFor producedFor);

} // namespace discrecording
