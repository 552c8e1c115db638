// libburn, started once for the process and kept quiet: it prints nothing and takes no signals.
#pragma once

#include "../Error.hpp"

#include <string>

namespace engine {

/// Starts the library at first use; DeviceAccess when it can't be started.
void startBurnLibrary();

/// Forgets what the library had to say so far.
void dropLibraryMessages();

/// An error from what the library said since: the drive's sense data, if there is any, decides the code, and its
/// words stand in `info`. The queue is the process's: with two drives at work, the other one's words may come first.
Error libraryError(ErrorCode otherwise, const std::string& message);

} // namespace engine
