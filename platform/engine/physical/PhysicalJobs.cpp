// The drive's jobs: how a burn or an erase begins and ends, and how the library is ready for the next one.
#include "../Failure.hpp"
#include "BurnLibrary.hpp"
#include "PhysicalDrive.hpp"
#include "PhysicalTarget.hpp"

#include <libburn/libburn.h>
#include <linux/cdrom.h>
#include <thread>

namespace engine {
namespace {

constexpr auto mostToLetGo = std::chrono::seconds(30);

} // namespace

void PhysicalDrive::reopen() {
    const std::lock_guard lock(mutex_);
    // The library's thread goes on for a moment after its job is over; until then it keeps the drive.
    for (int attempt = 0; attempt < 300; ++attempt) {
        if (burn_drive_info_forget(infos_, 1) > 0) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    burn_drive_info_free(infos_);
    if (guarded([&] { attach(); })) return;
    gone_ = true; // it may be found again, as another one
}

void PhysicalDrive::reassess() {
    // The library's thread goes on for a moment after its job is over.
    for (int attempt = 0; attempt < 300 && isValid(); ++attempt) {
        dropLibraryMessages();
        if (burn_drive_re_assess(drive_, 0) > 0) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const std::lock_guard lock(mutex_);
    // Deliberate: until the job is over the disc is the one that was seen before it; without one the drive would pass for
    // empty in the middle of a burn. endBurn() forgets it.
    if (!burning_) medium_.reset();
}

// What is over needs a moment until it has let go of the drive, and whoever waited for its end may use it.
void PhysicalDrive::waitUntilLetGo() {
    std::unique_lock lock(mutex_);
    letGo_.wait_for(lock, mostToLetGo, [this] { return !burning_ || !isEnding_; });
}

void PhysicalDrive::requireMedium() const {
    requireValid();
    {
        const std::lock_guard lock(mutex_);
        if (burning_) return; // as far as it needs to be known, see beginJob()
    }
    const int now = status();
    if (now == CDS_TRAY_OPEN || now == CDS_NO_DISC)
        fail(ErrorCode::MediaNotPresent, "There is no disc in " + inQuotes(displayName()) + "; put one in.");
}

// What was seen before the drive was held, another program may have written to since.
MediumInfo PhysicalDrive::mediumForJob() {
    const std::lock_guard commands(commands_);
    auto medium = describeMedium(drive_, path());
    requireValid();
    if (!medium)
        fail(ErrorCode::MediaNotPresent, "There is no disc in " + inQuotes(displayName()) + "; put one in.");
    const std::lock_guard lock(mutex_);
    medium_ = medium;
    seen_ = std::chrono::steady_clock::now();
    return *std::move(medium);
}

void PhysicalDrive::seeMedium() {
    (void)guarded([this] { mediumForJob(); });
}

void PhysicalDrive::beginJob() {
    const std::lock_guard lock(mutex_);
    if (burning_)
        fail(ErrorCode::DeviceBusy,
             "The drive " + inQuotes(displayName()) + " is already writing; wait until it is done.");
    burning_ = true;
    isEnding_ = false;
}

void PhysicalDrive::willEndBurn() {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
}

void PhysicalDrive::endBurn() {
    const std::lock_guard lock(mutex_);
    burning_ = false;
    medium_.reset();
    letGo_.notify_all();
}

Result<std::unique_ptr<BurnTarget>> PhysicalDrive::beginBurn() {
    return guarded([&]() -> std::unique_ptr<BurnTarget> {
        requireMedium();
        auto hold = std::make_shared<Hold>(shared_from_this());
        beginJob();
        const auto medium = guarded([this] { return mediumForJob(); });
        if (!medium) {
            endBurn();
            throw Failure(medium.error());
        }
        return makePhysicalTarget(std::move(hold), *medium);
    });
}

Result<void> PhysicalDrive::erase(EraseType type, const EraseProgress& progress) {
    return guarded([&] {
        requireMedium();
        const Hold hold(shared_from_this());
        beginJob();
        struct End {
            PhysicalDrive& drive;
            ~End() { drive.endBurn(); }
        } const end{*this};
        const std::lock_guard commands(commands_);
        const MediumInfo medium = mediumForJob();
        const auto erased = guarded([&] { eraseMedium(drive_, medium, type, progress); });
        if (!erased && !isValid())
            fail(ErrorCode::DeviceInvalid,
                 "The drive " + inQuotes(displayName()) + " went away while it erased.", path());
        if (!erased) {
            if (erased.error().code != ErrorCode::MediaNotErasable) reopen();
            throw Failure(erased.error());
        }
        reassess();
    });
}

} // namespace engine
