// LayoutReader: turns tracks, folders and properties into what the engine burns.
#pragma once

#import "DRTrack.h"

#include "BurnJob.hpp"
#include "ProducerBridge.hpp"

namespace discrecording {

/// The sessions of a layout, each an NSArray of DRTrack objects. A layout is a DRTrack, an array of them (one
/// session), or an array of such arrays. Anything else, and an empty array, raises
/// NSInvalidArgumentException.
NSArray* sessionsOfLayout(id layout);

/// What a track of a root folder burns. Errors: BadLayout, FileLocationConflict, FunctionNotSupported, and
/// those of properties that can't be honoured.
/// `estimating` is for producers of files, see contentOfRoot().
engine::Result<engine::DataTrack> dataTrackOf(DRTrack* track, bool estimating = false);

/// The engine's layout for sessionsOfLayout()'s answer. The errors of trackOf(), and TrackReused when a track
/// comes twice.
engine::Result<engine::Layout> layoutOfSessions(NSArray* sessions, const ProducedFor& producedFor);

} // namespace discrecording
