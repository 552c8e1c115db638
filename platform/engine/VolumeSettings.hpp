// What a track says of its volume, as each file system takes it.
#pragma once

#include "Layout.hpp"
#include "hfsplus/Tree.hpp"
#include "iso/Tree.hpp"

#include <cstdint>
#include <ctime>

namespace engine {

/// The file systems that are written: ISO 9660 is in front of all others. Throws FilesystemsNotSupported for what
/// can't be written, BadLayout for an ISO level that there is none of.
uint8_t writtenFilesystems(const DataTrack& track);

/// The volume's name in one of them.
const std::string& nameOfVolume(const DataTrack& track, uint8_t filesystem);

/// For a session that begins at `start`; `now` is when it is recorded.
iso::VolumeSettings isoSettings(const DataTrack& track, uint32_t start, std::time_t now);
udf::VolumeSettings udfSettings(const DataTrack& track, uint32_t start, std::time_t now);
hfsplus::VolumeSettings hfsPlusSettings(const DataTrack& track, std::time_t now);

} // namespace engine
