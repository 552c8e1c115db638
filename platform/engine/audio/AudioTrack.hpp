// A track from a sound file.
#pragma once

#include "Layout.hpp"

namespace engine {

/// The whole of a sound file as an audio track, filled up with silence to the end of its last block. Its blocks are
/// exact; with fewer of them the track ends earlier. The file stays closed until the burn prepares it; a file that is no longer as long as it was then fails
/// the burn with FileModifiedDuringBurn. AudioFileNotSupported as AudioReader says.
Result<ProducedTrack> trackForAudioFile(const std::string& path);

} // namespace engine
