// Disc images as something that can be burned.
#pragma once

#include "BurnJob.hpp"
#include "Layout.hpp"

#include <string>
#include <vector>

namespace engine {

/// What an image file says of a disc.
struct ImageLayout {
    Layout layout;
    std::string mediaCatalogNumber; ///< empty or 13 digits
    std::vector<uint8_t> cdText;    ///< packs

    /// Sets what the image says; what it doesn't say stays.
    void applyTo(BurnOptions& options) const;
};

/// Reads `.cue` and `.toc` sheets by their names, and everything else as the blocks of a file system: ISO 9660, UDF,
/// HFS and HFS+, with or without a partition map. Data files are opened by the burn, and read into its buffers;
/// one that is shorter then fails the burn. An error is a sentence that names file and line: BadLayout for what makes
/// no sense, FileLocationConflict for files that aren't there.
Result<ImageLayout> readImageFile(const std::string& path);

/// The same without looking at the name; these throw Failure.
ImageLayout readCueSheet(const std::string& path);
ImageLayout readTocFile(const std::string& path);
ImageLayout readPlainImage(const std::string& path);

/// The name of the ISO 9660 volume in a track of 2048-byte blocks; empty when there is none. Opens and closes its
/// files. Throws Failure.
std::string volumeNameIn(ProducedTrack& track);

} // namespace engine
