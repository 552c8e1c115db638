// A recorder that is attached to the computer, through libburn.
#pragma once

#include "../Drive.hpp"
#include "../Files.hpp"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "LibBurn.hpp"

namespace engine {

class PhysicalDrive final : public Drive, public std::enable_shared_from_this<PhysicalDrive> {
  public:
    /// The drive at a device's path. Throws DeviceBusy while another program has it, DeviceAccess, DeviceInvalid.
    static std::shared_ptr<PhysicalDrive> open(const std::string& path);
    ~PhysicalDrive() override;

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
    Result<void> erase(EraseType type, const EraseProgress& progress) override;

    /// Has the drive for itself as long as it lives, together with others of this process. Throws DeviceBusy,
    /// DeviceInvalid.
    class Hold {
      public:
        explicit Hold(std::shared_ptr<PhysicalDrive> drive) : drive_(std::move(drive)) { drive_->grab(); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold() { drive_->release(); }

        burn_drive* get() const noexcept { return drive_->drive_; }
        PhysicalDrive& drive() const noexcept { return *drive_; }

      private:
        std::shared_ptr<PhysicalDrive> drive_;
    };

    /// libburn does one thing at a time with a drive; whoever calls it holds this.
    std::recursive_mutex& commands() const noexcept { return commands_; }
    /// The library looks at drive and medium anew. Commands held.
    void reassess();
    /// The library begins anew with a drive whose job it did not bring to its end: what cut that off would cut off
    /// everything that follows. Commands held.
    void reopen();
    /// A job that is over in all but its end: what it made of the medium is what everybody sees from here on.
    void seeMedium();
    /// For a drive that went away: the library lets go of it, so that another one may be at its address. False while
    /// somebody still uses it; to be tried again.
    bool forget();
    /// Ends what beginBurn() began: the first at once when the burn is over, the second when the library has let go of
    /// the drive. The tray waits for it; all else is DeviceBusy in between.
    void willEndBurn();
    void endBurn();
    const std::string& path() const noexcept { return identity_.id; }

    /// Where a drive is attached, and which of those that were there.
    using Node = std::pair<uint64_t, uint64_t>;

  private:
    PhysicalDrive() = default;
    void attach();
    void learn();
    void requireValid() const;
    void requireTray() const;
    void grab();
    void release();
    void beginJob();
    void requireMedium() const;
    MediumInfo mediumForJob();
    Descriptor openForStatus() const; ///< none where the device can't be opened
    int status() const;
    void waitUntilLetGo();

    /// The commands, and what is guarded by mutex_. A job may have the commands for half an hour: as soon as `holds`,
    /// which is asked with mutex_ held, there is a turn without them.
    struct Turn {
        std::unique_lock<std::mutex> lock;
        std::unique_lock<std::recursive_mutex> commands;
    };
    template <typename Condition>
    Turn turnUnless(Condition holds) const {
        for (;;) {
            Turn turn{std::unique_lock(mutex_), {}};
            if (holds()) return turn;
            turn.commands = std::unique_lock(commands_, std::try_to_lock);
            if (turn.commands) return turn;
            turn.lock.unlock();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    void mechanics(unsigned long request, const char* what);

    DriveIdentity identity_;
    DriveCapabilities capabilities_;
    LoadingMechanism mechanism_;
    burn_drive_info* infos_ = nullptr;
    burn_drive* drive_ = nullptr;
    Node node_;
    mutable std::atomic<bool> gone_{false};

    mutable std::recursive_mutex commands_;
    mutable std::mutex mutex_; ///< of what follows
    uint32_t grabs_ = 0, exclusive_ = 0;
    bool burning_ = false, isEnding_ = false;
    std::condition_variable letGo_;
    uint32_t reservations_ = 0;
    Descriptor reservation_;
    mutable std::optional<MediumInfo> medium_; ///< as it was seen last
    mutable std::chrono::steady_clock::time_point seen_;
};

/// The medium in a drive that is held, with commands held; empty when there is none. `before`: as it was seen at the last look,
/// where it may be the same. Throws.
std::optional<MediumInfo> describeMedium(burn_drive* drive, const std::string& path,
                                         const MediumInfo* before = nullptr);

/// Waits until the library's job is over. `poll` is called about every 10 ms.
void waitUntilIdle(burn_drive* drive, const std::function<void()>& poll);

/// Makes the medium blank. Commands held.
void eraseMedium(burn_drive* drive, const MediumInfo& medium, EraseType type, const EraseProgress& progress);

/// The drives that are attached, in the order of their ids. Looks at device nodes only, as long as nothing changed.
/// Empty where physical drives are not wanted (README.md).
std::vector<std::shared_ptr<PhysicalDrive>> physicalDrives();

struct DriveInUse {
    std::string path;
    Error problem;
};

/// Those that were left out of physicalDrives() because they could not be had just then. Empty where physical drives are
/// not wanted.
std::vector<DriveInUse> physicalDrivesInUse();

/// Whether one of those can write, as far as the kernel tells without having the drive.
bool isRecorderInUse();

/// Another program has the drive to itself, or it is mounted. The kernel tells only who tries to have it, for that moment.
bool isInUse(const std::string& path);

/// Whoever tries to have a drive holds this meanwhile, so that who only asks is in nobody's way. Processes that know
/// nothing of it are not kept out; they are waited for for a while, then it is empty.
Descriptor takeTurn(const std::string& path);

} // namespace engine
