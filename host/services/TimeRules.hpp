// TimeRules.hpp: the C library's time zone, as a file of rules that others read.
#pragma once

#include <string>

namespace host {

// When local time is how far from UTC, from 1902 to 2037, as RFC 8536 has it in its first version.
std::string timeRules();

} // namespace host
