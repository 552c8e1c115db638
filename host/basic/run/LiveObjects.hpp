// The objects of a program's own classes that live, so that those which hold each other can be freed at its
// end.
#pragma once

#include "host/runtime/Object.hpp"

namespace host::basic {

void noteAlive(REALobject object);
void noteGone(REALobject object);

/// Empties the properties of all that are left, which destroys objects that only hold each other.
void dropCycles();
/// Gives shared properties of the program's classes their empty values.
void clearSharedProperties();

} // namespace host::basic
