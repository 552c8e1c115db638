// What a track says of its volume, as libisofs takes it.
#pragma once

#include "Layout.hpp"

#include <libisofs/libisofs.h>

namespace engine {

/// The file systems that are written: ISO 9660 is in front of all others. Throws FilesystemsNotSupported for what
/// can't be written, BadLayout for an ISO level that there is none of.
uint8_t writtenFilesystems(const DataTrack& track);

void setVolumeTexts(IsoImage* image, const DataTrack& track);
void setVolumeTimes(IsoWriteOpts* options, const DataTrack& track);

} // namespace engine
