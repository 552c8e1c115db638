// Where the virtual drives are.
#pragma once

#include <string>

namespace engine {

/// The folder that holds the virtual drives, absolute; README.md says which. It need not exist. Throws
/// DeviceAccess when nothing names one.
std::string virtualDrivesFolder();

} // namespace engine
