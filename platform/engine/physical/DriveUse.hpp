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

/// For a drive whose device this person may not open; empty when he may.
std::optional<Error> forbiddenError(const std::string& path);

/// Whether a drive can write, as the kernel tells everybody; empty when it doesn't know the drive.
std::optional<bool> isWriterInTable(const std::string& path);

/// Throws DeviceBusy while a drive goes on by itself with what nobody waits for any more: it erases, formats or closes a
/// disc. `device` is open. The library would wait until that is over.
void requireRest(int device, const std::string& name);

} // namespace engine
