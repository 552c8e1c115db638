// Variants.hpp: platform values as host variants, and platform dictionaries as host dictionaries.
//
// Null gives null, what can't be converted becomes nil, and nothing here raises.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

// A platform value of any kind as a host variant with one reference; null is the nil variant.
REALvariant NewVariantFromNSObject(objc::Id value);

// A new host "Dictionary" with one reference. Keys and values that convert to null are stored as nil.
REALdictionary NSDictionaryRB(objc::Id dictionary);

// Platform data as a new memory block, and a memory block as platform data (a copy that belongs to the
// current pool; nil for an empty block, deliberately not empty data).
REALmemoryBlock NSDataRB(objc::Id data);
objc::Id NewNSData(REALmemoryBlock block);
