// A folder that is a drive, with a medium kept as plain files.
#pragma once

#include "Drive.hpp"
#include "Files.hpp"
#include "VirtualMedium.hpp"

#include <atomic>
#include <mutex>

namespace engine {

/// What a new virtual drive shall be.
struct VirtualDriveSetup {
    std::string vendor = "Virtual";
    std::string product = "Disc Drive 1";
    std::string firmwareRevision = "1.00";
    std::optional<MediumKind> medium = MediumKind::DVDPlusRW; ///< blank; none for an empty drive
    uint64_t capacityBlocks = 0;                              ///< 0: as usual for the kind
    /// What the drive can't do: "cd-text", "isrc", "index-points", "pre-gaps", "cd-i", "subchannel", "track-at-once", "session-at-once",
    /// "dvd-at-once", "bd-at-once", "test-write-cd" (-dvd, -bd), "underrun-protect-cd" (-dvd).
    std::vector<std::string> lacks = {};
};

/// What a folder is called beside it until it is a drive, with the process and '-' behind.
inline constexpr std::string_view newDrivePrefix = ".new-";

/// Makes a drive in a folder that doesn't exist yet. It appears whole or not at all. Errors: DeviceAccess.
Result<void> makeVirtualDrive(const std::string& folder, const VirtualDriveSetup& setup);

class VirtualDrive final : public Drive, public std::enable_shared_from_this<VirtualDrive> {
  public:
    /// Opens the drive in `folder` (an absolute path). Throws DeviceInvalid for what is no drive.
    static std::shared_ptr<VirtualDrive> open(const std::string& folder);

    const DriveIdentity& identity() const noexcept override { return identity_; }
    const DriveCapabilities& capabilities() const noexcept override { return capabilities_; }
    const LoadingMechanism& loadingMechanism() const noexcept override { return mechanism_; }
    bool isValid() const override;
    Result<std::optional<MediumInfo>> readMedium() const override;
    Result<std::unique_ptr<MediumReader>> openMedium() override;
    bool isTrayOpen() const override;
    Result<void> openTray() override;
    Result<void> closeTray() override;
    Result<void> eject() override;
    bool isBusy() const override;
    Result<void> acquireExclusiveAccess() override;
    void releaseExclusiveAccess() override;
    bool hasExclusiveAccess() const override;
    void acquireMediaReservation() override;
    void releaseMediaReservation() override;
    bool holdsMediaReservation() override;
    Result<std::unique_ptr<BurnTarget>> beginBurn() override;
    Result<void> erase(EraseType type, const EraseProgress& progress) override; // VirtualErase.cpp

    /// The drive's folder, for the burn target.
    int folder() const noexcept { return folder_.get(); }
    const std::string& path() const noexcept { return identity_.id; }
    /// Ends what beginBurn() began.
    void endBurn();

  private:
    VirtualDrive() = default;
    void requireValid() const;
    void setTray(bool open);
    void lockLocked(); ///< takes the lock file when this is the first who wants it; mutex_ held
    void unlockLocked();
    std::optional<MediumRecord> presentMedium() const;

    DriveIdentity identity_;
    DriveCapabilities capabilities_;
    LoadingMechanism mechanism_;
    Descriptor folder_;
    mutable std::atomic<bool> gone_{false};

    mutable std::mutex mutex_;
    Descriptor lock_; ///< open and locked while exclusive_ > 0 or burning_
    uint32_t exclusive_ = 0;
    bool burning_ = false;
    uint32_t reservations_ = 0;
    Descriptor reservation_; ///< open and locked while the reservation is held
};

} // namespace engine
