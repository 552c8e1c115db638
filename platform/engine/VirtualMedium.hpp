// The description of the medium in a virtual drive (medium.json), and how it changes without ever being
// half-written.
#pragma once

#include "Drive.hpp"

#include <optional>
#include <string>
#include <vector>

namespace engine {

/// What medium.json says. The file looks like this:
///
///     {"format": 1, "kind": "CD-R", "capacityBlocks": 359847, "state": "complete", "image": "medium.cue",
///      "mediaCatalogNumber": "1234567890123", "cdText": "medium.cdt",
///      "sessions": [{"tracks": [{"mode": "audio", "startBlock": 0, "blocks": 2512, "preGapBlocks": 150,
///      "isrc": "DEA123456789", "indexPoints": [100], "flags": ["pre-emphasis"],
///      "xxh3": "2d06800538d394c2", "file": "medium.bin"}]}]}
///
/// The state is "blank", "appendable", "complete" or "incomplete". `image` is absent when nothing is written:
/// it is the file that other programs open. A track without a file of its own lies in the image, its first
/// block at the offset that its start says. `xxh3` is the sum over the track's bytes, as BlockForm counts them,
/// when they were burned; what was not burned here has none. All tracks of a CD-I session have the flag "CD-I". Sessions and tracks that are not whole say `"complete": false`.
///
/// A session that is one data track, behind none that is anything else, lies in `image`, block N of the medium
/// at block N of the file. Every other session (CDs only) has a file of whole sectors, 2352 bytes each, and the
/// image is a cue sheet, which is made from this description whenever it changes.
///
/// A track with `"subchannel": "raw"` (or "pack") was burned with subchannel data of that form (SubchannelForm), which lie
/// in `subchannelFile`: 96 bytes for every sector of `file`, in its order, whatever track it is of. They stand channel by
/// channel, 12 bytes of P, then Q, R and so on to W, the first symbol in the highest bit. P and Q are as on a disc, Q with
/// its code; R to W are what the producer brought, in its form: of packs nothing is interleaved, and no parity made.
/// `xxh3` is then the sum over blocks with the 96 symbols behind each, as MediumReader reads them.
struct MediumRecord {
    MediumKind kind = MediumKind::DVDPlusRW;
    uint64_t capacityBlocks = 0;
    MediumState state = MediumState::Blank;
    std::string image;
    std::vector<SessionInfo> sessions;
    std::string mediaCatalogNumber;
    std::string cdText; ///< the file with the packs, or empty
    std::optional<uint64_t> doubleLayerL0DataZoneBlocks;

    bool isSheet() const noexcept;                                           ///< the image is a cue sheet
    static MediumRecord blank(MediumKind kind, uint64_t capacityBlocks = 0); ///< 0: the kind's usual capacity
    /// As the rest of the platform sees it, for a drive's folder.
    MediumInfo info(const std::string& folder) const;
};

namespace names {
inline constexpr char drive[] = "drive.json";
inline constexpr char medium[] = "medium.json";
inline constexpr char image[] = "medium.iso";        ///< where the image stays
inline constexpr char newImage[] = "medium.new.iso"; ///< where a re-writable medium's next image grows
inline constexpr char sheet[] = "medium.cue";
inline constexpr char tray[] = "tray"; ///< "open" or "closed"; without it drive.json says
inline constexpr char lock[] = "lock";
inline constexpr char reservation[] = "reservation"; ///< locked by the process that holds it
/// What the names of the medium's files begin with; sessions' files are medium.bin, medium.2.bin...
inline constexpr char stem[] = "medium.", newStem[] = "medium.new.";
/// The subchannels of the sectors in medium.bin are in medium.sub.
std::string subchannelBeside(const std::string& sectors);
} // namespace names

/// Reads medium.json; empty when there is none, which means no medium. Throws MediaInvalid for one that is
/// damaged.
std::optional<MediumRecord> loadMedium(int folder);

/// Replaces medium.json durably, and the cue sheet after it. Throws MediaWriteFailure.
void saveMedium(int folder, const MediumRecord& record);

/// Whether medium.json says just this. After a saveMedium() that failed: the last of its steps may fail (syncing the folder,
/// the cue sheet) when the medium is already what it says.
bool isSaved(int folder, const MediumRecord& record);

/// Throws MediaWriteFailure when a new file that the record names has been taken away since it was written.
void requireNewFiles(int folder, MediumRecord record);

/// A re-writable medium takes new files in these steps; cut off anywhere, it is the old medium or the new
/// one:
///   1. files whose names begin with newStem are complete and synced (by the burn),
///   2. medium.json is replaced by one that names them: from here on the medium is the new one,
///   3. they are renamed, 4. medium.json is replaced by one that says so, 5. other files of the medium go.
/// This does 2 to 5 for a record that names the new files. Throws MediaWriteFailure when the medium is still the old one;
/// what fails after that is left to recoverMedium().
void commitNewFiles(int folder, MediumRecord record);

/// Ends what a cut-off commit began, and removes what a cut-off burn left. The caller holds the drive's lock.
void recoverMedium(int folder);

/// The names of the medium's files that are there, medium.json and what is being written to it excepted.
std::vector<std::string> mediumFiles(int folder);

} // namespace engine
