// Closure.hpp: BASIC and host methods as C functions for plug-ins.
#pragma once

#include "host/runtime/Class.hpp"

namespace host {

// A C function that calls a member's body: the object first (but for global functions and shared members),
// then the parameters of `declaration`. Made once for each member and kept for the life of the process. Null
// when there is no memory for it.
//
// What the body raises stops here: the C function answers 0 (nil, "") and the exception waits for the plug-in
// function that this thread called to return (or becomes a stray exception, on a thread of the platform's).
REALproc closureFor(const Member& member, const Declaration& declaration);

} // namespace host
