// ContentReader: turns a tree of files and folders into the content that the engine burns.
#pragma once

#import "DRFolder.h"

#include "Content.hpp"
#include "Error.hpp"
#include "Layout.hpp"

namespace discrecording {

struct ReadContent {
    engine::Content root;
    uint8_t filesystems; ///< in which the tree is: bits of engine::filesystem
};

/// The tree under a root folder. A root whose masks say nothing is in ISO 9660 and Joliet, and in what else an item
/// of the tree asks for; Joliet brings ISO 9660 with it. The track's level is for names in ISO 9660. `estimating` is for producers: only a burn prepares them
/// and asks for exact sizes. Errors: BadLayout, FileLocationConflict, FilesystemsNotSupported.
engine::Result<ReadContent> contentOfRoot(DRFolder* root, const engine::DataTrack& track, bool estimating);

} // namespace discrecording
