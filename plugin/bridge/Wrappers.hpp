// Wrappers.hpp: platform objects as host objects.
//
// A wrapper is a host object whose slot holds the one retained platform object. Each function here answers a
// host object with one reference that the caller owns, or null; none raises, and what the platform raises is
// for the caller's guard.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

// The object's living wrapper with one more reference, or a new wrapper of that class, registered.
REALobject NewDRDeviceQRX(objc::Id device);
REALobject NewDREraseQRX(objc::Id erase);
REALobject NewDRMSFQRX(objc::Id msf);
REALobject NewDRTrackQRX(objc::Id track);
REALobject NewDRBurnQRX(objc::Id burn);
REALobject NewDRFileQRX(objc::Id file);
REALobject NewDRFolderQRX(objc::Id folder);

// A file or folder as the two functions above give it. Any other file-system object deliberately becomes a
// fresh DRFSObjectQRX each time, neither looked up nor registered.
REALobject NewDRFSObjectQRX(objc::Id object);

// An object that no function above handles: the first class of its chain whose name with "QRX" behind it is a
// host class. Deliberately neither looked up nor registered, so every call gives a new host object.
REALobject NewNSObjectQRX(objc::Id object);

// One host element for each platform element, in order; null where no wrapper could be made.
void FillDRDeviceArray(REALarray hostArray, objc::Id devices);
void FillDRFSObjectArray(REALarray hostArray, objc::Id objects);

// What every wrapper class's destructor does with its slot: unregister, release, empty. An empty slot stays
// so.
void releaseHeld(REALobject wrapper);
