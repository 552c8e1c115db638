// MyDRTrack.hpp: the platform track whose data a host object's events produce.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

namespace track {

// A new MyDRTrack, which is its own producer, with the one reference of its allocation. Nil where the platform
// has no DRTrack to be a subclass of.
objc::Id newProducerTrack(REALobject host);

} // namespace track
