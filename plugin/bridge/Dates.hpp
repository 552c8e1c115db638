// Dates.hpp: host dates and platform dates, both as local wall-clock time in whole seconds.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

// A calendar date that belongs to the current pool; nil for a null date and for one that lacks a part. A day
// that does not exist goes to the platform as it is.
objc::Id NewNSDate(REALobject date);

// A new host "Date" with one reference, or null. Fractions of a second are dropped, not rounded.
REALobject NSDateRB(objc::Id date);
