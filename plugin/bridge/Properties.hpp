// Properties.hpp: typed views of single keys in the `properties` dictionary of a burn or a track.
//
// Reading asks for the dictionary each time, and assigning hands back a changed copy of the whole: nothing is
// cached. A key is given by the address of the platform's constant, which is null where the platform lacks
// it. There is no type test anywhere: what does not answer as a number or is no text is the platform's to
// refuse, and that refusal becomes a host exception.
#pragma once

#include "plugin/bridge/Member.hpp"

namespace bridge {

// Does nothing for an object whose slot is empty. A nil value is the platform's to refuse too, and what it
// raises leaves the properties as they were. No key is ever removed.
void setProperty(REALobject object, const objc::Id* key, objc::Id value);

// The value under the key; 0 or null when there is none.
int32_t getIntegerProperty(REALobject object, const objc::Id* key);
double getDoubleProperty(REALobject object, const objc::Id* key);
REALstring getStringProperty(REALobject object, const objc::Id* key);
REALmemoryBlock getDataProperty(REALobject object, const objc::Id* key);

// The low byte of the number, deliberately: 256 reads as false.
inline REALboolean getBooleanProperty(REALobject object, const objc::Id* key) {
    return static_cast<REALboolean>(static_cast<uint8_t>(getIntegerProperty(object, key)));
}

// The host's value as a platform object under the key. Nil text, and a nil or empty memory block, are nil.
void setBooleanProperty(REALobject object, const objc::Id* key, REALboolean value);
void setIntegerProperty(REALobject object, const objc::Id* key, int32_t value);
void setDoubleProperty(REALobject object, const objc::Id* key, double value);
void setStringProperty(REALobject object, const objc::Id* key, REALstring value);
void setDataProperty(REALobject object, const objc::Id* key, REALmemoryBlock value);

} // namespace bridge
