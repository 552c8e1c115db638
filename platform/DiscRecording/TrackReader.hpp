// TrackReader: a track's properties as the engine takes them.
#pragma once

#import "DRTrack.h"

#include "Layout.hpp"
#include "ProducerBridge.hpp"

namespace discrecording {

/// The form of block that a track's DRBlockSizeKey, DRBlockTypeKey, DRDataFormKey, DRSessionFormatKey and
/// DRTrackModeKey describe together. BadLayout for a key that is missing, and for values that don't go together.
engine::Result<engine::BlockForm> blockFormOf(NSDictionary* properties);

/// What a track burns: the file system of its folder, its sound file, or what its producer gives. Errors:
/// BadLayout, FileLocationConflict, DataProduction, AudioFileNotSupported, CantWriteISRC, InvalidIndexPoints, and
/// FunctionNotSupported for a property that can't be honoured.
engine::Result<engine::Track> trackOf(DRTrack* track, const ProducedFor& producedFor);

} // namespace discrecording
