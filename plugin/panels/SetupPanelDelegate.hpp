// SetupPanelDelegate.hpp: gives a platform setup panel the decisions of a host object.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

namespace panels {

// Nothing is installed when the host object implements none of the events: the panel then decides everything itself.
void addDelegate(objc::Id panel, REALobject host);

} // namespace panels
