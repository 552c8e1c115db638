// What processes that died left in the folders of drives.
#pragma once

#include <string>
#include <string_view>

namespace drives {

/// A drive that is being deleted is called this, the process, '-' and its name.
inline constexpr std::string_view deletedPrefix = ".deleted-";

/// Whether a name is `prefix`, the number of a process that lives no more, '-' and something else.
bool isOfDeadProcess(const std::string& name, std::string_view prefix);

/// Removes from the drives' folder what is no drive: what a killed `delete` had yet to delete, and drives that were never
/// made to their end. What can't be removed stays until the next time.
void clearDrivesFolder();

} // namespace drives
