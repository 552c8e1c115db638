// Which drive a person means.
#pragma once

#include "Failure.hpp"
#include "VirtualDrive.hpp"

#include <memory>
#include <string>
#include <vector>

namespace drives {

/// A drive that programs see, or one that is left out for them: broken, or another program has it.
struct Found {
    std::string name;       ///< what the commands take: a virtual drive's folder, a physical one's id
    engine::DriveRef drive; ///< null for one that is left out
    engine::Error problem;  ///< why it is left out
    bool isVirtual = true;  ///< known of those that are left out as well
};

/// All drives in the order that programs see them, those that are left out behind.
std::vector<Found> allDrives();

/// By name, id, or the name that programs show when only one has it. Throws Failure, naming what there is.
Found driveNamed(const std::string& name);

/// The same for what only virtual drives can do: `deed` says what ("be deleted").
std::shared_ptr<engine::VirtualDrive> virtualDriveNamed(const std::string& name, const std::string& deed);

/// Throws FunctionNotSupported, with the same words, for a drive that is none; also for one that is left out.
void requireVirtual(const Found& found, const std::string& deed);

/// Throws FileLocationConflict for a place that belongs to drives: the folder they are in, and any drive's own. What is
/// written there would get in the way of a medium, be it the very one that is copied.
void requirePlaceOutsideDrives(const std::string& path);

/// Keeps every other program out as long as it lives. Throws DeviceBusy.
class Exclusive {
  public:
    explicit Exclusive(engine::Drive& drive);
    Exclusive(const Exclusive&) = delete;
    Exclusive& operator=(const Exclusive&) = delete;
    ~Exclusive() { drive_.releaseExclusiveAccess(); }

  private:
    engine::Drive& drive_;
};

/// Goes on with the value, or throws the error as Failure.
template <typename T>
T take(engine::Result<T> result) {
    if (!result) throw engine::Failure(result.error());
    return std::move(*result);
}
void take(const engine::Result<void>& result);

} // namespace drives
