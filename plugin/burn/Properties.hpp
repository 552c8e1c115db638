// Properties.hpp: typed views of single keys in the `properties` dictionary of a burn or a track.
//
// Reading asks for the dictionary each time, and assigning hands back a changed copy of the whole: nothing is
// cached. A key is given by the address of the platform's constant, which is null where the platform lacks
// it.
#pragma once

#include "plugin/bridge/Member.hpp"

namespace bridge {

// Does nothing for an object whose slot is empty. A nil value is the platform's to refuse, and what it raises
// leaves the properties as they were.
void setProperty(REALobject object, const objc::Id* key, objc::Id value);

// The value's number, 0 when there is none.
int32_t getIntegerProperty(REALobject object, const objc::Id* key);

// The low byte of the number: 256 reads as false.
inline bool booleanProperty(REALobject object, const objc::Id* key) {
    return (getIntegerProperty(object, key) & 0xFF) != 0;
}

// The value as text, null when there is none. There is no type test: what is no text is the platform's to
// refuse.
REALstring getStringProperty(REALobject object, const objc::Id* key);

void setStringProperty(REALobject object, const objc::Id* key, REALstring value);

void setBooleanProperty(REALobject object, const objc::Id* key, bool value);

} // namespace bridge
