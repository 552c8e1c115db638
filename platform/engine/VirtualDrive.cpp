// A folder that is a drive.
#include "VirtualDrive.hpp"
#include "DriveDescription.hpp"
#include "DriveLock.hpp"
#include "Failure.hpp"
#include "VirtualReader.hpp"
#include "VirtualTarget.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace engine {
namespace {

constexpr std::string_view trayText(bool open) { return open ? "open\n" : "closed\n"; }

} // namespace

std::shared_ptr<VirtualDrive> VirtualDrive::open(const std::string& folder) {
    const std::shared_ptr<VirtualDrive> drive(new VirtualDrive);
    drive->folder_ = Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!drive->folder_)
        fail(ErrorCode::DeviceInvalid, "There is no drive in " + inQuotes(folder) + ".", systemText(errno));
    const DriveDescription json = readDescription(drive->folder(), folder);
    drive->identity_ = {folder,
                        textIn(json, "vendor"),
                        textIn(json, "product"),
                        textIn(json, "firmwareRevision"),
                        Interconnect::ATAPI,
                        InterconnectLocation::Internal,
                        true};
    for (const MediumFacts& facts : allMediumKinds())
        if (facts.writable) drive->capabilities_.writes.push_back(facts.kind);
    setCapabilities(drive->capabilities_, json);
    // What a process that died left behind is cleared away as soon as somebody looks, unless one is at work.
    guarded([&] {
        if (const Descriptor lock = tryClearUp(drive->folder())) recoverMedium(drive->folder());
    }).ok();
    return drive;
}

bool VirtualDrive::isValid() const {
    if (gone_) return false;
    struct stat now {
    }, then{};
    const std::string description = path() + '/' + names::drive;
    const bool present = ::stat(path().c_str(), &now) == 0 && ::fstat(folder(), &then) == 0 &&
                         now.st_ino == then.st_ino && now.st_dev == then.st_dev &&
                         ::access(description.c_str(), F_OK) == 0;
    if (!present) gone_ = true;
    return present;
}

void VirtualDrive::requireValid() const {
    if (!isValid())
        fail(ErrorCode::DeviceInvalid,
             "The drive " + inQuotes(displayName()) + " is no longer there; choose another one.", path());
}

std::optional<MediumRecord> VirtualDrive::presentMedium() const {
    requireValid();
    if (isTrayOpen()) return std::nullopt;
    return loadMedium(folder());
}

Result<std::optional<MediumInfo>> VirtualDrive::readMedium() const {
    return guarded([&]() -> std::optional<MediumInfo> {
        const auto record = presentMedium();
        if (!record) return std::nullopt;
        return record->info(path());
    });
}

bool VirtualDrive::isTrayOpen() const {
    // The file first: it is the newer one, and the cheaper. One that a power cut emptied says nothing.
    const auto open = guarded([&] {
        const auto state = readSmallFile(folder(), names::tray);
        if (state == trayText(true) || state == trayText(false)) return state == trayText(true);
        return textIn(readDescription(folder(), path()), "tray") == "open";
    });
    return open && *open;
}

void VirtualDrive::setTray(bool open) {
    requireValid();
    const std::lock_guard lock(mutex_);
    if (burning_)
        fail(ErrorCode::DeviceBusy,
             "The drive " + inQuotes(displayName()) + " is writing; wait until it is done.");
    if (isTrayOpen() == open) return;
    lockLocked();
    // Deliberately not synced: a tray that a power cut moves is nobody's loss, and a burn that was aborted is idle
    // only when the medium is out.
    const auto done =
        guarded([&] { replaceSmallFile(folder(), names::tray, trayText(open), Lasting::Passing); });
    unlockLocked();
    if (!done) throw Failure(done.error());
}

Result<void> VirtualDrive::openTray() {
    return guarded([&] {
        if (presentMedium())
            fail(ErrorCode::BurnNotAllowed,
                 "There is a disc in " + inQuotes(displayName()) + ": eject it instead.");
        setTray(true);
    });
}

Result<void> VirtualDrive::closeTray() {
    return guarded([&] { setTray(false); });
}

Result<void> VirtualDrive::eject() {
    return guarded([&] { setTray(true); });
}

bool VirtualDrive::isBusy() const {
    const std::lock_guard lock(mutex_);
    if (burning_ || exclusive_ > 0) return true;
    const auto owned = guarded([&] { return isDriveOwned(folder()); });
    return owned && *owned;
}

void VirtualDrive::lockLocked() {
    if (lock_) return;
    lock_ = tryOwnDrive(folder());
    if (!lock_)
        fail(ErrorCode::DeviceBusy,
             "The drive " + inQuotes(displayName()) + " is in use by another program; try again later.");
}

void VirtualDrive::unlockLocked() {
    if (exclusive_ == 0 && !burning_) lock_.reset();
}

Result<void> VirtualDrive::acquireExclusiveAccess() {
    return guarded([&] {
        requireValid();
        const std::lock_guard lock(mutex_);
        lockLocked();
        ++exclusive_;
    });
}

void VirtualDrive::releaseExclusiveAccess() {
    const std::lock_guard lock(mutex_);
    if (exclusive_ == 0) return;
    --exclusive_;
    unlockLocked();
}

bool VirtualDrive::hasExclusiveAccess() const {
    const std::lock_guard lock(mutex_);
    return exclusive_ > 0;
}

void VirtualDrive::acquireMediaReservation() {
    {
        const std::lock_guard lock(mutex_);
        ++reservations_;
    }
    holdsMediaReservation();
}

void VirtualDrive::releaseMediaReservation() {
    const std::lock_guard lock(mutex_);
    if (reservations_ > 0 && --reservations_ == 0) reservation_.reset();
}

bool VirtualDrive::holdsMediaReservation() {
    const std::lock_guard lock(mutex_);
    if (reservations_ > 0 && !reservation_) {
        auto taken = guarded([&] { return tryReserve(folder()); });
        if (taken) reservation_ = std::move(*taken);
    }
    return static_cast<bool>(reservation_);
}

Result<std::unique_ptr<MediumReader>> VirtualDrive::openMedium() {
    return guarded([&]() -> std::unique_ptr<MediumReader> {
        const auto record = presentMedium();
        if (!record)
            fail(ErrorCode::MediaNotPresent,
                 "There is no disc in " + inQuotes(displayName()) + "; put one in.");
        return std::make_unique<VirtualReader>(folder(), record->cdText);
    });
}

Result<std::unique_ptr<BurnTarget>> VirtualDrive::beginBurn() {
    return guarded([&]() -> std::unique_ptr<BurnTarget> {
        requireValid();
        {
            const std::lock_guard lock(mutex_);
            if (burning_)
                fail(ErrorCode::DeviceBusy,
                     "The drive " + inQuotes(displayName()) + " is already writing; wait until it is done.");
            lockLocked();
            burning_ = true;
        }
        try {
            recoverMedium(folder());
            const auto record = presentMedium();
            if (!record)
                fail(ErrorCode::MediaNotPresent,
                     "There is no disc in " + inQuotes(displayName()) + "; put one in.");
            return makeVirtualTarget(shared_from_this(), *record);
        } catch (...) {
            endBurn();
            throw;
        }
    });
}

void VirtualDrive::endBurn() {
    const std::lock_guard lock(mutex_);
    burning_ = false;
    unlockLocked();
}

} // namespace engine
