// The locks in a drive's folder, by which processes that share the drive keep out of each other's way.
#pragma once

#include "Files.hpp"

namespace engine {

/// Locks of the open file (F_OFD_SETLK of fcntl(2), Linux 3.15), so that two objects of one process are apart as two
/// processes are, and that asking whether somebody has one takes nothing. Each lock ends with its descriptor.
/// All of them throw DeviceAccess when the file can't be opened or locked.

/// The drive for its owner alone: none when somebody else has it. Waits for who is clearing up (see below), which is
/// over in a moment.
Descriptor tryOwnDrive(int folder);

/// Whether somebody owns the drive. Disturbs nobody, and leaves no file behind.
bool isDriveOwned(int folder);

/// The right to clear away what a process that died left behind: none while the drive has an owner, or while somebody
/// else is clearing up. Who holds it does not own the drive; to everybody else the drive is idle.
Descriptor tryClearUp(int folder);

/// The reservation of the drive's next medium: none when somebody else has it.
Descriptor tryReserve(int folder);

} // namespace engine
