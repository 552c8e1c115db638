// The drive's tray, and who may use the drive.
#include "../Failure.hpp"
#include "BurnLibrary.hpp"
#include "DriveUse.hpp"
#include "PhysicalDrive.hpp"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <linux/cdrom.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace engine {
namespace {

// Where this user's processes agree about what no drive keeps.
std::string reservationFile(const std::string& path) {
    const char* own = std::getenv("XDG_RUNTIME_DIR");
    const std::string folder =
        own != nullptr && own[0] == '/' ? std::string(own) : "/tmp/disc-drives-" + std::to_string(::getuid());
    makeFolders(folder);
    return folder + "/disc-reservation-" + std::filesystem::path(path).filename().string();
}

} // namespace

bool PhysicalDrive::isTrayOpen() const { return status() == CDS_TRAY_OPEN; }

void PhysicalDrive::mechanics(unsigned long request, const char* what) {
    requireValid();
    waitUntilLetGo();
    const Turn turn = turnUnless([this] { return burning_; });
    if (burning_)
        fail(ErrorCode::DeviceBusy,
             "The drive " + inQuotes(displayName()) + " is writing; wait until it is done.");
    if (grabs_ == 0 && isInUse(path())) throw Failure(inUseError(path(), displayName()));
    const Descriptor device = openForStatus();
    if (!device)
        fail(ErrorCode::DeviceAccess, "The drive " + inQuotes(displayName()) + " can't be used.",
             systemText(errno));
    medium_.reset();
    ::ioctl(device.get(), CDROM_LOCKDOOR, 0);
    if (::ioctl(device.get(), request, 0) != 0)
        fail(ErrorCode::DeviceNotReady, "The drive " + inQuotes(displayName()) + " does not " + what + ".",
             systemText(errno));
}

void PhysicalDrive::requireTray() const {
    requireValid();
    if (!mechanism_.canOpen)
        fail(ErrorCode::FunctionNotSupported, "The drive " + inQuotes(displayName()) +
                                                  " has no tray; put discs in and take them out by hand.");
}

Result<void> PhysicalDrive::openTray() {
    return guarded([&] {
        const int now = status();
        if (now == CDS_TRAY_OPEN) return;
        requireTray();
        if (now == CDS_DISC_OK)
            fail(ErrorCode::BurnNotAllowed,
                 "There is a disc in " + inQuotes(displayName()) + ": eject it instead.");
        if (!openForStatus())
            fail(ErrorCode::DeviceAccess, "The drive " + inQuotes(displayName()) + " can't be used.",
                 systemText(errno));
        if (now != CDS_NO_DISC)
            fail(ErrorCode::DeviceNotReady,
                 "The drive " + inQuotes(displayName()) +
                     " does not say yet whether there is a disc in it; try again in "
                     "a moment.");
        mechanics(CDROMEJECT, "open");
    });
}

Result<void> PhysicalDrive::closeTray() {
    return guarded([&] {
        requireTray();
        mechanics(CDROMCLOSETRAY, "close");
    });
}

Result<void> PhysicalDrive::eject() {
    return guarded([&] { mechanics(CDROMEJECT, "open"); });
}

bool PhysicalDrive::isBusy() const {
    // Held while the drive is asked: who wants it in this process must not meet the question.
    const std::lock_guard lock(mutex_);
    if (burning_ || exclusive_ > 0) return true;
    if (grabs_ > 0) return false; // only looking
    return isInUse(path());
}

Result<void> PhysicalDrive::acquireExclusiveAccess() {
    return guarded([&] {
        grab();
        const std::lock_guard lock(mutex_);
        ++exclusive_;
        seen_ = {}; // another program may have burned since
    });
}

void PhysicalDrive::releaseExclusiveAccess() {
    {
        const std::lock_guard lock(mutex_);
        if (exclusive_ == 0) return;
        --exclusive_;
    }
    release();
}

bool PhysicalDrive::hasExclusiveAccess() const {
    const std::lock_guard lock(mutex_);
    return exclusive_ > 0;
}

void PhysicalDrive::acquireMediaReservation() {
    {
        const std::lock_guard lock(mutex_);
        ++reservations_;
    }
    holdsMediaReservation();
}

void PhysicalDrive::releaseMediaReservation() {
    const std::lock_guard lock(mutex_);
    if (reservations_ > 0 && --reservations_ == 0) reservation_.reset();
}

bool PhysicalDrive::holdsMediaReservation() {
    const std::lock_guard lock(mutex_);
    if (reservations_ == 0 || reservation_) return static_cast<bool>(reservation_);
    const auto file = guarded([&] { return reservationFile(path()); });
    if (!file) return false;
    Descriptor taken(::open(file->c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (taken && ::flock(taken.get(), LOCK_EX | LOCK_NB) == 0) reservation_ = std::move(taken);
    return static_cast<bool>(reservation_);
}

} // namespace engine
