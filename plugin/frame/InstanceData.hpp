// InstanceData.hpp: where an object of the host keeps what the plug-in puts into it.
//
// Only this file knows that a host object is a header of four words followed by the instance data of its root
// plug-in class. Subclasses without data of their own (DRFileQRX, DRFolderQRX) share that of their
// superclass.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

namespace frame {

// The instance data of a class whose data is one structure.
template <class Structure>
Structure& data(REALobject object) {
    return *reinterpret_cast<Structure*>(object + 1);
}

// The one reference that a wrapper class keeps: the retained platform object, or null while it has none.
inline objc::Id& slot(REALobject object) { return data<objc::Id>(object); }

// The platform object of an argument or receiver: nil for a nil host object and for an empty slot alike.
inline objc::Id held(REALobject object) { return object ? slot(object) : nullptr; }

} // namespace frame
