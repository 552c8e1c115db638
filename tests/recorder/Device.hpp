// The recorders that a process sees: /dev/sr0, /dev/sr1 and so on, for the folders in DISC_RECORDER.
#pragma once

#include "Recorder.hpp"

#include <memory>

namespace recorder {

/// The recorder's number for a device's path; -1 for every other path.
int deviceNamed(const char* path) noexcept;
size_t deviceCount() noexcept;
/// Still on the bus.
bool isAttached(int device);
/// Which drive it is of those that were attached here one after another.
int attachment(int device);
/// It is no drive for reading only.
bool canWrite(int device);
/// Where its disc is mounted; empty when it is not.
std::string mountPoint(int device);

/// Opens a device; a descriptor, or -1 with errno. O_EXCL keeps other processes out as a block device does.
int openDevice(int device, int flags);
/// The recorder behind a descriptor; -1 for every other one.
int deviceOf(int descriptor) noexcept;
/// Forgets a descriptor; whoever calls closes it.
void forget(int descriptor) noexcept;

/// ioctl() on a device.
int control(int device, unsigned long request, void* argument);

} // namespace recorder
