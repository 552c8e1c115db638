// Why a drive can't be had now.
#pragma once

#include "../InUse.hpp"

#include <optional>
#include <string>

namespace engine {

/// Where the disc in a drive is mounted, as this process sees it; empty when it is not.
std::optional<std::string> mountPointOf(const std::string& path);

/// For a drive that somebody has: MediaBusy when the disc in it is mounted, else DeviceBusy. `name` is for people.
Error inUseError(const std::string& path, const std::string& name);

/// Throws DeviceBusy while a drive goes on by itself with what nobody waits for any more: it erases, formats or closes a
/// disc. `device` is open. The library would wait until that is over.
void requireRest(int device, const std::string& name);

} // namespace engine
