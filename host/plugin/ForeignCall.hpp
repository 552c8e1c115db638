// ForeignCall.hpp: calls of plug-in functions.
#pragma once

#include "host/runtime/Class.hpp"

#include <vector>

namespace host {

// Calls the member's function: the object first (but for shared members), then one argument per parameter,
// each already of the parameter's type. ByRef arguments are replaced by what the function left in them.
// Afterwards throws what the function raised.
Value foreignCall(const Member& member, REALobject self, std::vector<Value>& arguments);
// The same for the member's setter; the assigned value comes last.
void foreignSet(const Member& member, REALobject self, std::vector<Value>& arguments);

} // namespace host
