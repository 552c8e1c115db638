// The kernel's tables of what is mounted and of drives, with the recorders in them.
#pragma once

namespace recorder {

bool isMountTable(const char* path) noexcept;

/// Takes a descriptor of the table, and gives one of a table with the discs that are mounted behind the others.
int withOwnMounts(int table);

/// What drives can do, for everybody to read.
bool isDriveTable(const char* path) noexcept;
int ownDriveTable();

} // namespace recorder
