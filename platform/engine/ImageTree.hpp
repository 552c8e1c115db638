// Turns the content of a track into libisofs's tree, and lists where each file's bytes come from.
#pragma once

#include "Layout.hpp"
#include "Signal.hpp"
#include "SourceList.hpp"

#define LIBISOFS_WITHOUT_LIBBURN // asks for the declaration of struct burn_source
#include <libisofs/libisofs.h>

#include <unordered_set>

namespace engine {

using NodeSet = std::unordered_set<const IsoNode*>;

/// Adds everything of `root` to the image's root. Walks folders on disk with one fstatat for each entry and
/// follows no link. `sources` gets the files in the order in which libisofs will lay them out; it points into
/// `root`, which must outlive it. Throws FileLocationConflict for what is missing, can't be read or can't
/// stand on a disc (sockets, pipes, devices, two children of one name), naming it; UserCanceled.
/// Answers the nodes that UDF does not show; libisofs, which knows nothing of it, hides nodes only from its own.
/// `filesystems` are those that are written; libisofs has one name for an item in all of them, so one with several
/// names becomes several nodes, each hidden where another one shows. FileLocationConflict, too, where the names of
/// two items cross.
NodeSet buildImageTree(IsoImage* image, const DataTrack& track, uint8_t filesystems, SourceList& sources,
                       bool merges, const Signal& signal);

} // namespace engine
