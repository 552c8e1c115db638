// VolumeProperties: what a track's properties say of the volume on it.
#pragma once

#import "DRFolder.h"
#import "DRTrack.h"

#include "Layout.hpp"

namespace discrecording {

/// Reads texts but for those of files, dates, DRISOLevel, DRISORockRidgeExtensions and DRISOMacExtensions into the track. BadLayout for values
/// of a wrong type.
engine::Result<void> readVolumeProperties(NSDictionary* properties, engine::DataTrack& track);
/// Reads the files that stand in the volume's descriptor into the track, whose file systems and level are known: texts, or
/// files of the root, by their names in ISO 9660. BadLayout for what is neither.
engine::Result<void> readVolumeFiles(NSDictionary* properties, DRFolder* root, engine::DataTrack& track);

} // namespace discrecording
