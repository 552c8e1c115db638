// StringConstants.hpp: the shared getters of the platform's string constants.
//
// One list per class makes the functions and the table rows:
//
//   #define DEVICE_STRINGS(X) X(DRDeviceAppearedNotification) X(DRDeviceDisappearedNotification) ...
//   DEVICE_STRINGS(STRING_CONSTANT_GETTER)
//   REALmethodDefinition sharedMethods[] = { DEVICE_STRINGS(STRING_CONSTANT_ROW) ... };
//
// The constants are weak: on a platform that lacks one its getter answers the empty string. A getter needs
// neither the guard nor platform start-up, so it works before any object was made.
#pragma once

#include "plugin/bridge/Text.hpp"
#include "plugin/frame/ClassTables.hpp"

namespace bridge {

// Reads the constant's current value. `constant` is null where the platform lacks it.
inline REALstring stringConstant(const objc::Id* constant) {
    return constant ? NSStringRB(*constant) : nullptr;
}

} // namespace bridge

#define STRING_CONSTANT_GETTER(name)                                                                         \
    extern "C" __attribute__((weak)) const objc::Id name;                                                    \
    static REALstring get##name() { return bridge::stringConstant(&name); }

#define STRING_CONSTANT_ROW(name) frame::sharedMethod<#name " as string", get##name>(),
