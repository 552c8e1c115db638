// Exclusive access to a drive that ends by itself.
#pragma once

#include "Drive.hpp"

#include <utility>

namespace engine {

/// Every other process is kept out of the drive for as long as this lives; a job of this process may run there.
class DriveHold {
  public:
    DriveHold() = default; ///< holds nothing
    /// Holds nothing either when the drive is null, or can't be had.
    explicit DriveHold(const DriveRef& drive) {
        if (drive && drive->acquireExclusiveAccess().ok()) drive_ = drive;
    }
    DriveHold(DriveHold&& other) noexcept : drive_(std::exchange(other.drive_, nullptr)) {}
    DriveHold& operator=(DriveHold&& other) noexcept {
        std::swap(drive_, other.drive_); // what was held goes with the other
        return *this;
    }
    ~DriveHold() {
        if (drive_) drive_->releaseExclusiveAccess();
    }

    explicit operator bool() const noexcept { return drive_ != nullptr; }

  private:
    DriveRef drive_;
};

} // namespace engine
