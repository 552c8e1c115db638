// What a virtual drive is: its drive.json.
#pragma once

#include "Drive.hpp"

#include <nlohmann/json.hpp>
#include <string>

namespace engine {

using DriveDescription = nlohmann::ordered_json;

/// Reads drive.json in an open folder; `path` is its name for sentences. Throws DeviceInvalid.
DriveDescription readDescription(int folder, const std::string& path);

/// A member's text; empty when there is none.
std::string textIn(const DriveDescription& description, const char* name);

/// A virtual drive can do all that its media can hold, but for what "lacks" in its drive.json names.
void setCapabilities(DriveCapabilities& can, const DriveDescription& description);

} // namespace engine
