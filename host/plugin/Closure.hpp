// Closure.hpp: BASIC and host methods as C functions for plug-ins.
#pragma once

#include "host/runtime/Class.hpp"

namespace host {

// A C function that calls a member's body: the object first (but for global functions and shared members),
// then the parameters of `declaration`. Made once for each member and kept for the life of the process. Null
// when there is no memory for it.
//
// What the body raises stops here: the C function answers 0 (nil, "") and the exception waits for the plug-in
// function that this thread called to return. On a thread of the platform's it becomes a stray exception, and a platform
// exception of its name and message leaves the C function: a 0 may be a good answer, so the platform could not tell.
REALproc closureFor(const Member& member, const Declaration& declaration);

} // namespace host
