// The kernel's table of what is mounted, with the recorders' discs in it.
#pragma once

namespace recorder {

bool isMountTable(const char* path) noexcept;

/// Takes a descriptor of the table, and gives one of a table with the discs that are mounted behind the others.
int withOwnMounts(int table);

} // namespace recorder
