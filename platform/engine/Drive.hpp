// A drive and the medium in it, as the rest of the platform sees them.
#pragma once

#include "BlockForm.hpp"
#include "Error.hpp"
#include "MediumKind.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace engine {

enum class Interconnect : uint8_t { ATAPI, FibreChannel, FireWire, SCSI, USB };
enum class InterconnectLocation : uint8_t { Internal, External, Unknown };

/// Who a drive is. Fixed while it is attached.
struct DriveIdentity {
    std::string id; ///< stable and unique: for a virtual drive the absolute path of its folder
    std::string vendor;
    std::string product;
    std::string firmwareRevision;
    Interconnect interconnect = Interconnect::ATAPI;
    InterconnectLocation location = InterconnectLocation::Internal;
    bool isVirtual = false;
};

/// What a drive can do whatever medium is in it.
struct DriveCapabilities {
    std::vector<MediumKind> writes; ///< kinds it can write
    bool canTestWriteCD = false;
    bool canTestWriteDVD = false;
    bool canTestWriteBD = false;
    bool canUnderrunProtectCD = false;
    bool canUnderrunProtectDVD = false;
    bool writesCDText = false;
    bool writesIndexPoints = false;
    bool writesISRC = false;
    bool writesTrackAtOnce = false;
    bool writesSessionAtOnce = false;
    bool writesRaw = false;
    bool writesDVDAtOnce = false;
    bool writesBDAtOnce = false;
    bool choosesPreGap = false;    ///< pre-gaps of any length
    bool writesCDI = false;        ///< sessions of that format
    bool writesSubchannel = false; ///< that a producer brings
    uint32_t writeBufferBytes = 0;

    bool canTestWrite(MediumClass mediumClass) const noexcept;
    bool canWrite(MediumKind kind) const noexcept;
    bool canWriteAny(MediumClass mediumClass) const noexcept;
};

/// How a medium goes in and out.
struct LoadingMechanism {
    bool canEject = true;  ///< the drive itself can push the medium out
    bool canInject = true; ///< and pull it in
    bool canOpen = true;   ///< it has a tray
};

enum class MediumState : uint8_t {
    Blank,      ///< nothing written
    Appendable, ///< at least one session, and another may follow
    Complete,   ///< closed; nothing can be appended
    Incomplete, ///< a burn was cut off or failed: what is on it can't be trusted, nothing can be appended
};

/// One track that is on a medium. Addresses and lengths in blocks of the track's form.
struct TrackInfo {
    uint32_t number = 1; ///< from 1, counted through all sessions
    BlockForm form = BlockForm::Data;
    uint64_t startBlock = 0; ///< of index 1
    uint64_t blocks = 0;
    std::string volumeName;            ///< of the file system in it; empty when not known
    uint64_t preGapBlocks = 0;         ///< in front of startBlock; those before block 0 of the disc included
    std::string isrc;                  ///< 12 characters, or empty
    std::vector<uint64_t> indexPoints; ///< index 2, 3...: blocks from startBlock
    bool preEmphasis = false, fourChannel = false;
    bool copyPermitted = false;  ///< no copy protection is claimed
    bool isCopy = false;         ///< protected, and itself a copy
    bool isCDI = false;          ///< its session is a CD-I one; alike for all tracks of a session
    bool isComplete = true;      ///< all of it was written
    std::optional<uint64_t> sum; ///< over its bytes when they were burned (TrackSum); of virtual media only
    std::string file;            ///< of a virtual medium, in the drive's folder: where the track's blocks are
    uint64_t fileOffset = 0;     ///< of startBlock in it, in bytes
    SubchannelForm subchannel = SubchannelForm::None; ///< that was burned with it
    std::string subchannelFile;                       ///< of a virtual medium: its .sub, beside `file`

    size_t blockBytes() const noexcept { return bytesPerBlock(form, subchannel); }
    /// For reading the blocks alone.
    TrackInfo withoutSubchannel() const {
        TrackInfo bare = *this;
        bare.subchannel = SubchannelForm::None;
        return bare;
    }
};

struct SessionInfo {
    uint32_t number = 1; ///< from 1
    std::vector<TrackInfo> tracks;
    bool isClosed = true; ///< written to its end
};

/// A medium at one moment.
struct MediumInfo {
    MediumKind kind = MediumKind::DVDPlusRW;
    MediumState state = MediumState::Blank;
    uint64_t capacityBlocks = 0;
    bool blank = false;
    bool appendable = false; ///< more can be written behind what is there (true for a blank writable medium)
    bool overwritable = false; ///< writable from block 0 now: re-writable kinds, and blank write-once ones
    bool erasable = false;     ///< can be made blank again
    bool takesTests = true;    ///< a drive that can test can do it with this kind of medium
    uint64_t blocksFree = 0;   ///< that can be appended
    uint64_t blocksUsed = 0;   ///< that are written
    uint64_t blocksOverwritable = 0; ///< when writing starts again at block 0
    /// Where the next session's first track would begin; empty when nothing can be appended.
    std::optional<uint64_t> nextWritableBlock;
    std::vector<SessionInfo> sessions;
    std::string mediaCatalogNumber;                      ///< 13 digits, or empty
    bool hasCDText = false;                              ///< see MediumReader::cdText()
    std::optional<uint64_t> doubleLayerL0DataZoneBlocks; ///< when it was set
    double currentSpeed = 0;    ///< KB/s that the drive is set to; 0 when it isn't known
    std::vector<double> speeds; ///< KB/s, ascending; what this drive offers for this medium
    std::string
        path; ///< of the file that holds the medium's data, for people; empty when it has none (blank)

    uint32_t sessionCount() const noexcept { return static_cast<uint32_t>(sessions.size()); }
    uint32_t trackCount() const noexcept;
};

enum class EraseType : uint8_t {
    Quick,    ///< only what it takes to be blank again
    Complete, ///< what a virtual medium holds is overwritten first, a physical disc from end to end
};

/// Told how far an erase is, from 0 to 1, or -1 where that can't be measured. Answers false to cut it off, where
/// the drive can stop; the medium is then openly incomplete.
using EraseProgress = std::function<bool(double done)>;

/// Reads a medium as it is, without copying when the buffer starts at a page. One thread at a time.
class MediumReader {
  public:
    MediumReader() = default;
    MediumReader(const MediumReader&) = delete;
    MediumReader& operator=(const MediumReader&) = delete;
    virtual ~MediumReader() = default;

    /// Fills `buffer` with whole blocks of the track from `block` on, subchannel data behind each where the track has such.
    /// Those of the pre-gap are negative; one call ends with -1 at most. Answers the bytes: fewer than fit only in the pre-gap
    /// or at the track's end, then 0. MediaInvalid, with the block's address in `info`, for what can't be read.
    virtual Result<size_t> read(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) = 0;

    /// The packs of 18 bytes from the lead-in; empty when there are none.
    virtual Result<std::vector<uint8_t>> cdText() = 0;
};

class BurnTarget; // how a job writes; see BurnTarget.hpp, not for users of the engine

/// A drive. One object stands for one drive as long as it is attached (see drives()). Every member may be
/// called from any thread, and none throws.
class Drive {
  public:
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;
    virtual ~Drive() = default;

    virtual const DriveIdentity& identity() const noexcept = 0;
    virtual const DriveCapabilities& capabilities() const noexcept = 0;
    virtual const LoadingMechanism& loadingMechanism() const noexcept = 0;

    /// Vendor and product, as people see it: "Virtual Disc Drive 1".
    std::string displayName() const;

    /// Still attached. A drive that went away stays invalid, also when one like it comes later.
    virtual bool isValid() const = 0;

    /// The medium now; empty with no medium or with an open tray. While another program has a physical drive it is the
    /// medium that was seen last, and an error, DeviceBusy (MediaBusy when it is mounted), when none was seen. A medium whose description can't be read
    /// is an error, MediaInvalid.
    virtual Result<std::optional<MediumInfo>> readMedium() const = 0;

    /// readMedium() for those who show and don't explain: an unreadable medium counts as none.
    std::optional<MediumInfo> mediumInfo() const;

    /// There is a medium, be it that nobody can look at it now.
    bool hasMedium() const;

    /// For reading the medium that is in the drive now. MediaNotPresent, DeviceInvalid, MediaInvalid.
    virtual Result<std::unique_ptr<MediumReader>> openMedium() = 0;

    virtual bool isTrayOpen() const = 0;
    /// With a medium inside this does nothing and answers BurnNotAllowed: use eject().
    virtual Result<void> openTray() = 0;
    virtual Result<void> closeTray() = 0;
    /// Opens the tray with the medium on it; with none it is openTray(). DeviceBusy while somebody writes.
    virtual Result<void> eject() = 0;

    /// Someone, this process included, writes to the medium or keeps the drive for himself.
    virtual bool isBusy() const = 0;

    /// Keeps every other process out until released as often as acquired. DeviceBusy when another process has it.
    /// A job of this process may run while this process holds it.
    virtual Result<void> acquireExclusiveAccess() = 0;
    virtual void releaseExclusiveAccess() = 0;
    virtual bool hasExclusiveAccess() const = 0;

    /// A wish for a blank medium in this drive, counted. Of all processes that wish one holds the reservation;
    /// it passes on when released. holdsMediaReservation() takes it when it is free, so ask from time to time.
    virtual void acquireMediaReservation() = 0;
    virtual void releaseMediaReservation() = 0;
    virtual bool holdsMediaReservation() = 0;

    /// For BurnJob only: takes the drive for one job. DeviceBusy, DeviceInvalid, MediaNotPresent.
    virtual Result<std::unique_ptr<BurnTarget>> beginBurn() = 0;

    /// For EraseJob only: returns when the medium is blank. `progress` is called first when all is checked and
    /// the erasing begins. DeviceBusy, DeviceInvalid, MediaNotPresent, MediaNotErasable, MediaWriteFailure;
    /// UserCanceled when cut off.
    virtual Result<void> erase(EraseType type, const EraseProgress& progress);

  protected:
    Drive() = default;
};

using DriveRef = std::shared_ptr<Drive>;

/// The drives attached now, physical ones first, then in the order of their ids; the same object for the same drive at
/// every call. When no drive is configured and none attached that can write, one is made with a blank DVD+RW (README.md
/// says where, and how to have none); a physical drive that another program uses is left out until it is free. An error is
/// an unusable drives folder (DeviceAccess); single broken drives are left out.
Result<std::vector<DriveRef>> drives();

} // namespace engine
