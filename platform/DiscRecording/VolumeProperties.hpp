// VolumeProperties: what a track's properties say of the volume on it.
#pragma once

#import "DRTrack.h"

#include "Layout.hpp"

namespace discrecording {

/// Reads texts, dates, DRISOLevel, DRISORockRidgeExtensions and DRISOMacExtensions into the track. BadLayout for values
/// of a wrong type.
engine::Result<void> readVolumeProperties(NSDictionary* properties, engine::DataTrack& track);

} // namespace discrecording
