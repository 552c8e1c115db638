// MyDRFile.hpp: the platform file whose size and bytes a host object's events give while a disc is burned.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

namespace fs {

// A new MyDRFile with the one reference of its allocation and without a name yet. It has taken a reference to the
// host object, which it gives back when it is deallocated. Nil where the platform has no DRFile to be a subclass
// of.
//
// The host object keeps the file in its slot, and so the two hold each other. That is deliberate and kept: a burn
// may ask for the bytes long after the program let go of the object.
objc::Id newProducedFile(REALobject host);

} // namespace fs
