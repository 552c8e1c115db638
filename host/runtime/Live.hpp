// Live.hpp: counts of what exists, for tests and for a program's report of leaks.
#pragma once

#include <cstddef>

namespace host {

std::size_t liveStringCount();

} // namespace host
