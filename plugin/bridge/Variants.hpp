// Variants.hpp: values of any kind between the host and the platform.
//
// Null gives null, what can't be converted becomes nil, and nothing here raises a host exception, with
// one exception: a memory block that can't be had raises OutOfMemoryException. What the platform raises is for
// the caller's guard.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

// A platform value of any kind as a host variant with one reference; null is the nil variant. What a
// companion answers (its time objects, an unboxed object) comes back untouched, so it has to carry the one
// reference too.
REALvariant NewVariantFromNSObject(objc::Id value);

// A host variant as a platform object that belongs to the current pool or to somebody else, or nil.
objc::Id GetVariantAsNSObject(REALvariant variant);

// The same for a host object that is no array and no date.
objc::Id GetObjectAsNSObject(REALobject object);

// A new host "Dictionary" with one reference. Keys and values that convert to null are stored as nil.
REALdictionary NSDictionaryRB(objc::Id dictionary);

// A platform dictionary that belongs to the current pool. Keys and values that convert to nil become the platform's
// null; an entry with a nil key is skipped.
objc::Id NewNSDictionary(REALdictionary dictionary);

// What the wrappers of a host array hold, as a mutable array that belongs to the current pool. Nil elements
// and empty wrappers are left out, so it may be shorter.
objc::Id CreateNSObjectArray(REALarray array, bool nilWhenEmpty);

// Platform data as a new memory block, and a memory block as platform data (a copy that belongs to the
// current pool; nil for an empty block, deliberately not empty data).
REALmemoryBlock NSDataRB(objc::Id data);
objc::Id NewNSData(REALmemoryBlock block);
