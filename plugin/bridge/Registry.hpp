// Registry.hpp: the process-wide table from platform object to the host object that wraps it.
//
// A companion plug-in makes the table and hands it over at start-up; this plug-in never does. While there is
// none, look-ups miss and insertions are skipped: everything works, but the same platform object may come
// back as another host object.
//
// The table adds no reference on either side. A wrapper lives by the host's references to it, and its
// destructor takes the entry out. Keys are compared by identity. Host thread only, no lock.
#pragma once

#include "plugin/bridge/CoreFoundation.hpp"

extern CFMutableDictionaryRef instances;

// Replaces an earlier entry for the same platform object; nothing for nil.
void RegisterInstance(REALobject hostObject, objc::Id platformObject);
// A nil or unknown object removes nothing.
void UnregisterInstance(objc::Id platformObject);
// The wrapper, without a new reference, or null.
REALobject FindInstance(objc::Id platformObject);
