// The drive: who it is, who has it in this process, and what is in it.
#include "PhysicalDrive.hpp"
#include "../Failure.hpp"
#include "BurnLibrary.hpp"
#include "CapabilitiesPage.hpp"
#include "DriveUse.hpp"
#include "PhysicalReader.hpp"
#include "PhysicalTarget.hpp"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <libburn/libburn.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace engine {
namespace {

constexpr auto mediumIsFresh = std::chrono::seconds(1);
constexpr int statusOfNone = -1;
constexpr unsigned featureDVDMinusWrite = 0x2F; // MMC-5, 5.3.25

std::string trimmed(const char* text) {
    std::string result(text);
    result.erase(result.find_last_not_of(' ') + 1);
    return result;
}

// The number tells the place only; the kernel makes a new node for what is attached there next.
std::optional<PhysicalDrive::Node> nodeAt(const std::string& path) {
    struct stat found {};
    if (::stat(path.c_str(), &found) != 0 || !S_ISBLK(found.st_mode)) return std::nullopt;
    return PhysicalDrive::Node{found.st_rdev, found.st_ino};
}

// Whether a feature of the drive is there, and allows test writing.
bool hasTestBit(burn_drive* drive, unsigned feature) {
    unsigned char flags = 0, length = 0;
    unsigned char* data = nullptr;
    char* text = nullptr;
    const bool isThere = burn_drive_get_feature(drive, feature, &flags, &length, &data, &text) > 0;
    const bool tests = isThere && data != nullptr && length > 0 && (data[0] & 0x04) != 0;
    std::free(data);
    std::free(text);
    return tests;
}

// How the drive is attached, as far as the kernel tells.
void describeConnection(DriveIdentity& identity) {
    std::error_code ignored;
    const std::string name = std::filesystem::path(identity.id).filename().string();
    const std::string where = std::filesystem::canonical("/sys/block/" + name + "/device", ignored).string();
    identity.location = InterconnectLocation::Unknown;
    identity.interconnect = Interconnect::SCSI;
    if (where.find("/usb") != std::string::npos) {
        identity.interconnect = Interconnect::USB;
        identity.location = InterconnectLocation::External;
    } else if (where.find("/ata") != std::string::npos) {
        identity.interconnect = Interconnect::ATAPI;
        identity.location = InterconnectLocation::Internal;
    }
}

} // namespace

std::shared_ptr<PhysicalDrive> PhysicalDrive::open(const std::string& path) {
    startBurnLibrary();
    const std::shared_ptr<PhysicalDrive> drive(new PhysicalDrive);
    const auto node = nodeAt(path);
    if (!node) fail(ErrorCode::DeviceInvalid, "There is no drive at " + inQuotes(path) + ".");
    drive->node_ = *node;
    drive->identity_.id = path;
    if (const Descriptor device = drive->openForStatus()) requireRest(device.get(), path);
    drive->attach();
    drive->learn();
    burn_drive_release(drive->drive_, 0);
    return drive;
}

// Afterwards the library has grabbed the drive.
void PhysicalDrive::attach() {
    dropLibraryMessages();
    std::string address = path();
    const Descriptor turn = takeTurn(address);
    if (burn_drive_scan_and_grab(&infos_, address.data(), 0) <= 0) {
        infos_ = nullptr;
        throw Failure(libraryError(ErrorCode::DeviceAccess,
                                   "The drive at " + inQuotes(path()) + " can't be used now."));
    }
    drive_ = infos_[0].drive;
}

PhysicalDrive::~PhysicalDrive() {
    if (infos_ != nullptr) burn_drive_info_free(infos_);
}

// What the drive says of itself, once.
void PhysicalDrive::learn() {
    const burn_drive_info& info = infos_[0];
    identity_.vendor = trimmed(info.vendor);
    identity_.product = trimmed(info.product);
    identity_.firmwareRevision = trimmed(info.revision);
    describeConnection(identity_);
    const Descriptor device = openForStatus();
    if (const auto page = device ? readCapabilitiesPage(device.get()) : std::nullopt)
        mechanism_ = page->loading;

    int count = 0;
    std::array<int, 64> profiles{};
    std::array<char, 64> current{};
    burn_drive_get_all_profiles(drive_, &count, profiles.data(), current.data());
    const auto add = [&](MediumKind kind) {
        if (!capabilities_.canWrite(kind)) capabilities_.writes.push_back(kind);
    };
    for (int index = 0; index < count; ++index) {
        if (profiles[static_cast<size_t>(index)] == 0x09 && !info.write_cdr) continue;
        if (profiles[static_cast<size_t>(index)] == 0x0A && !info.write_cdrw) continue;
        const auto kind = kindOfProfile(profiles[static_cast<size_t>(index)]);
        if (kind && factsOf(*kind).writable) add(*kind);
    }
    const bool writesCD = capabilities_.canWriteAny(MediumClass::CD),
               writesDVD = capabilities_.canWriteAny(MediumClass::DVD);
    capabilities_.canTestWriteCD = writesCD && info.write_simulate;
    // Of DVDs only -R and -RW know tests; what is in the drive says the rest (MediumInfo::takesTests).
    capabilities_.canTestWriteDVD = writesDVD && hasTestBit(drive_, featureDVDMinusWrite);
    capabilities_.canUnderrunProtectCD = writesCD;
    capabilities_.canUnderrunProtectDVD = writesDVD;
    capabilities_.writesTrackAtOnce = capabilities_.writesSessionAtOnce = writesCD;
    capabilities_.writesCDText = capabilities_.writesIndexPoints = capabilities_.writesISRC = writesCD;
    capabilities_.choosesPreGap = writesCD;
    // Others take their blocks as they come, and have no such way.
    capabilities_.writesDVDAtOnce =
        capabilities_.canWrite(MediumKind::DVDR) || capabilities_.canWrite(MediumKind::DVDRW);
    capabilities_.writesBDAtOnce = capabilities_.canWriteAny(MediumClass::BD);
    capabilities_.writeBufferBytes = static_cast<uint32_t>(info.buffer_size) * 1024;
}

bool PhysicalDrive::isValid() const {
    if (gone_) return false;
    const bool present = nodeAt(path()) == node_;
    if (!present) gone_ = true;
    return present;
}

void PhysicalDrive::requireValid() const {
    if (!isValid())
        fail(ErrorCode::DeviceInvalid,
             "The drive " + inQuotes(displayName()) + " is no longer there; choose another one.", path());
}

// Who has the drive has it for the whole program: another one is counted, also while a job keeps the commands.
void PhysicalDrive::grab() {
    const Turn turn = turnUnless([this] { return grabs_ > 0; });
    requireValid();
    if (grabs_ == 0) {
        dropLibraryMessages();
        const Descriptor among = takeTurn(path()); // programs
        if (among) requireRest(among.get(), displayName());
        if (burn_drive_grab(drive_, 0) != 1) {
            const Error use = inUseError(path(), displayName());
            throw Failure(libraryError(use.code, use.message));
        }
    }
    ++grabs_;
}

void PhysicalDrive::release() {
    {
        const std::lock_guard lock(mutex_);
        if (grabs_ > 1) {
            --grabs_;
            return;
        }
    }
    const std::lock_guard commands(commands_);
    const std::lock_guard lock(mutex_);
    if (--grabs_ == 0 && infos_ != nullptr) burn_drive_release(drive_, 0);
}

bool PhysicalDrive::forget() {
    gone_ = true;
    const std::unique_lock commands(commands_, std::try_to_lock);
    if (!commands) return false;
    const std::lock_guard lock(mutex_);
    if (burning_ || grabs_ > 0) return false;
    if (infos_ == nullptr) return true;
    if (burn_drive_info_forget(infos_, 1) <= 0) return false;
    burn_drive_info_free(infos_);
    infos_ = nullptr;
    drive_ = nullptr;
    return true;
}

Descriptor PhysicalDrive::openForStatus() const {
    return Descriptor(::open(path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
}

int PhysicalDrive::status() const {
    const Descriptor device = openForStatus();
    return device ? ::ioctl(device.get(), CDROM_DRIVE_STATUS, CDSL_CURRENT) : statusOfNone;
}

// A look at the medium takes the drive some time, so it lasts a second; while somebody writes, it lasts until then.
// Deliberate: so it does while another program has the drive. Nobody can look at the disc, but it has not gone.
Result<std::optional<MediumInfo>> PhysicalDrive::readMedium() const {
    return guarded([&]() -> std::optional<MediumInfo> {
        requireValid();
        {
            const std::lock_guard lock(mutex_);
            if (burning_) return medium_;
        }
        const int now = status();
        if (now == CDS_TRAY_OPEN || now == CDS_NO_DISC) {
            const std::lock_guard lock(mutex_);
            medium_.reset();
            return std::nullopt;
        }
        Turn turn = turnUnless([this] { return burning_; });
        if (burning_ || (medium_ && std::chrono::steady_clock::now() - seen_ < mediumIsFresh)) return medium_;
        turn.lock.unlock();
        const auto self = std::const_pointer_cast<PhysicalDrive>(shared_from_this());
        const auto hold = guarded([&] { return std::make_unique<Hold>(self); });
        if (!hold) {
            const std::lock_guard lock(mutex_);
            if (meansInUse(hold.error().code) && medium_) return medium_;
            throw Failure(hold.error());
        }
        const auto before = [this] {
            const std::lock_guard lock(mutex_);
            return medium_;
        }();
        auto medium = describeMedium(drive_, path(), before ? &*before : nullptr);
        const std::lock_guard lock(mutex_);
        medium_ = medium;
        seen_ = std::chrono::steady_clock::now();
        return medium;
    });
}

Result<std::unique_ptr<MediumReader>> PhysicalDrive::openMedium() {
    return guarded([&]() -> std::unique_ptr<MediumReader> {
        const auto medium = readMedium();
        if (!medium) throw Failure(medium.error());
        if (!*medium)
            fail(ErrorCode::MediaNotPresent,
                 "There is no disc in " + inQuotes(displayName()) + "; put one in.");
        return std::make_unique<PhysicalReader>(std::make_shared<Hold>(shared_from_this()));
    });
}

} // namespace engine
