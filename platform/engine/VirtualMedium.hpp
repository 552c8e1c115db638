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
///     {"format": 1, "kind": "DVD+RW", "capacityBlocks": 2295104, "state": "complete", "image": "medium.iso",
///      "sessions": [{"tracks": [{"mode": "data", "startBlock": 0, "blocks": 2512, "volumeName":
///      "Holiday"}]}]}
///
/// The state is "blank", "appendable", "complete" or "incomplete". `image` is absent when nothing is written.
struct MediumRecord {
    MediumKind kind = MediumKind::DVDPlusRW;
    uint64_t capacityBlocks = 0;
    MediumState state = MediumState::Blank;
    std::string image;
    std::vector<SessionInfo> sessions;

    static MediumRecord blank(MediumKind kind, uint64_t capacityBlocks = 0); ///< 0: the kind's usual capacity
    /// As the rest of the platform sees it, for a drive's folder.
    MediumInfo info(const std::string& folder) const;
};

namespace names {
inline constexpr char drive[] = "drive.json";
inline constexpr char medium[] = "medium.json";
inline constexpr char image[] = "medium.iso";        ///< where the image stays
inline constexpr char newImage[] = "medium.new.iso"; ///< where a re-writable medium's next image grows
inline constexpr char lock[] = "lock";
inline constexpr char reservation[] = "reservation"; ///< locked by the process that holds it
} // namespace names

/// Reads medium.json; empty when there is none, which means no medium. Throws MediaInvalid for one that is
/// damaged.
std::optional<MediumRecord> loadMedium(int folder);

/// Replaces medium.json durably. Throws MediaWriteFailure.
void saveMedium(int folder, const MediumRecord& record);

/// A re-writable medium takes a new image in these steps; cut off anywhere, it is the old medium or the new
/// one:
///   1. newImage is complete and synced (by the burn),
///   2. medium.json is replaced by one that names newImage: from here on the medium is the new one,
///   3. newImage is renamed to image, 4. medium.json is replaced by one that says so.
/// This does 2 to 4; `record.image` is set here. Throws MediaWriteFailure.
void commitNewImage(int folder, MediumRecord record);

/// Ends what a cut-off commit began, and removes what a cut-off burn left. The caller holds the drive's lock.
void recoverMedium(int folder);

} // namespace engine
