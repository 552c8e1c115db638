// Date.hpp: a local wall-clock time in whole seconds.
//
// Class "Date": now when new; Year, Month, Day, Hour, Minute, Second (assignable; out-of-range parts roll
// over), DayOfWeek (1 Sunday), DayOfYear, WeekOfYear, SQLDate, SQLDateTime (assignable), TotalSeconds (since
// 1904-01-01 local time, assignable), ShortDate, ShortTime, GMTOffset (hours). What would take the year out of an
// Integer's range is refused with an InvalidArgumentException; the date stays as it was.
#pragma once

#include "host/runtime/Value.hpp"

#include <ctime>

namespace host {

Ref newDate(); // now
Ref newDate(std::time_t seconds);
std::time_t dateSeconds(REALobject date); // since 1970-01-01 UTC
std::string dateText(REALobject date);    // "2026-01-31 09:05:00"
double dateTotalSeconds(REALobject date);

} // namespace host
