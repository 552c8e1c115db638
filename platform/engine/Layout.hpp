// What a burn writes: sessions of tracks, and what can be asked of a track before it is burned.
#pragma once

#include "Content.hpp"
#include "Error.hpp"
#include "MediumKind.hpp"
#include "TrackProducer.hpp"
#include "udf/Tree.hpp"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace engine {

/// The file systems of a folder tree, all around the same files. The root's name is the volume's name. All texts of
/// the volume are UTF-8 and optional. Burned behind a session that holds a file system, its tree contains that one's, too: what has the same name is replaced, folders are merged.
struct DataTrack {
    Content root;
    std::string publisher;
    std::string dataPreparer;
    std::string application;
    std::string volumeSet;
    std::string system;
    /// Names of files in the root.
    std::string copyrightFile, abstractFile, bibliographicFile;

    uint8_t filesystems = filesystem::iso9660 | filesystem::joliet; ///< ISO 9660 is written with any other
    uint8_t isoLevel = 3;                                           ///< 1 to 3
    bool rockRidge = true;
    bool macExtensions = false; ///< the volume says so; items say what they have by isoMac
    udf::Revision udfRevision = udf::Revision::V102;
    udf::VolumeIdentity udfIdentity;
    std::optional<std::time_t> defaultDate; ///< of volumes and items without one; else the burn's start
    std::optional<std::time_t> created, modified, expires, effective; ///< of the volume
    std::optional<std::time_t> checked;                               ///< HFS+ only
};

/// A track whose bytes come from a producer.
struct ProducedTrack {
    BlockForm form = BlockForm::Data;
    uint64_t blocks = 0; ///< prepare() may change it
    std::shared_ptr<TrackProducer> producer;
    SubchannelForm subchannel = SubchannelForm::None;
    std::string volumeName; ///< of the file system in it, for those who list the disc; empty when not known
};

/// How a track is checked after a burn that verifies.
enum class Verification : uint8_t {
    None,
    Checksum, ///< against sums that were kept while writing
    ProduceAgain, ///< against what the producer gives when asked once more; a DataTrack asks its files' producers, and takes
    ///< Checksum for all else
    ReceiveData, ///< the producer gets what was read; a DataTrack takes Checksum instead
};

/// The serial copy management state of an audio track.
enum class CopyState : uint8_t { Free, ProtectedOriginal, ProtectedCopy };

/// Blocks of the usual pre-gap: two seconds.
inline constexpr uint64_t usualPreGap = 150;
inline constexpr size_t isrcCharacters = 12;
inline constexpr size_t maximumIndexPoints = 98;
inline constexpr size_t maximumTracks = 99;

/// What a table of contents says of a session's blocks.
enum class SessionFormat : uint8_t { Plain, CDI, XA };

struct Track {
    std::variant<DataTrack, ProducedTrack> content;
    Verification verification = Verification::Checksum;
    /// Where the track must begin, because what is in it counts from the disc's first block: a later session of a copy.
    /// A burn that would put it elsewhere fails before anything is written.
    std::optional<uint64_t> startBlock;

    // Only for CDs; a DVD or BD has no place for these.
    std::optional<uint64_t> preGapBlocks; ///< without it the usual one
    bool preGapIsRequired = false;        ///< fail rather than take another length
    std::string isrc;                     ///< empty or 12 characters
    std::vector<uint64_t> indexPoints;    ///< index 2, 3...: blocks from the track's start, ascending
    bool preEmphasis = false, fourChannel = false;
    std::optional<CopyState> copyState;                 ///< without it Free for audio
    SessionFormat sessionFormat = SessionFormat::Plain; ///< the session is of the one that its tracks name
    double maximumSpeed = engine::maximumSpeed;         ///< KB/s; the whole burn goes no faster
};

struct Session {
    std::vector<Track> tracks;
};

struct Layout {
    std::vector<Session> sessions;

    /// One session with one data track.
    static Layout ofData(DataTrack track);
    static Layout ofTrack(Track track);
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
