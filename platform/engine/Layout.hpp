// What a burn writes: sessions of tracks, and what can be asked of a track before it is burned.
#pragma once

#include "Content.hpp"
#include "Error.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace engine {

/// A file system of a folder tree, as ISO 9660 level 3 with Joliet and Rock Ridge. The root's name is the
/// volume's name. All texts of the volume are UTF-8 and optional.
struct DataTrack {
    Content root;
    bool verify = true; ///< read back when the burn verifies
    std::string publisher;
    std::string dataPreparer;
    std::string application;
    std::string volumeSet;
};

struct Track {
    std::variant<DataTrack> content;
};

struct Session {
    std::vector<Track> tracks;
};

struct Layout {
    std::vector<Session> sessions;

    /// One session with one data track.
    static Layout ofData(DataTrack track);
};

/// Longest volume name, in characters.
inline constexpr size_t volumeNameLimit = 32;

/// Whether a text can be a volume's name: UTF-8, 1 to 32 characters, none of them a control character or '/'.
/// All of it is kept as UTF-8 in the ISO 9660 descriptor as far as its 32 bytes go, and the first 16 UTF-16
/// units in Joliet's; a longer name is cut there, never refused. BadLayout with a sentence.
Result<void> checkVolumeName(std::string_view name);

/// Plans a track without writing: the blocks it takes on a disc, exactly, as long as the sources don't
/// change. May take long for large trees. Errors are those of a burn's preparation.
Result<uint64_t> plannedBlocks(const DataTrack& track);

} // namespace engine
