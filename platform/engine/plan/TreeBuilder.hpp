// Turns the content of a track into the plan's tree, and lists where each file's bytes come from.
#pragma once

#include "Layout.hpp"
#include "Signal.hpp"
#include "SourceList.hpp"
#include "Tree.hpp"

namespace engine::plan {

/// Adds everything of the track's root to the tree. Walks folders on disk with one fstatat for each entry and follows no link.
/// `sources` gets the files in the order of the tree's new extents; it points into the track, which must outlive
/// it. `filesystems` are those that are written. Throws FileLocationConflict for what is missing, can't be read or can't
/// stand on a disc (sockets, pipes, devices), naming it; UserCanceled.
void addTrack(Tree& tree, const DataTrack& track, uint8_t filesystems, SourceList& sources,
              const Signal& signal);

} // namespace engine::plan
