// Geometry.hpp: the platform's four geometry structures, and the host objects of companions that carry them.
//
// The instance data of such a host object is the raw platform structure. Without a companion there are no
// such classes: every structure then converts to null.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

#include <optional>
#include <string_view>
#include <type_traits>

// The platform's own number for lengths: four bytes where words have four, eight where they have eight.
using CGFloat = std::conditional_t<sizeof(void*) == 8, double, float>;

struct NSRange {
    unsigned long location, length;
};
struct NSPoint {
    CGFloat x, y;
};
struct NSSize {
    CGFloat width, height;
};
struct NSRect {
    NSPoint origin;
    NSSize size;
};

// A new host object with one reference, or null.
REALobject NewNSRangeQRX(NSRange range);
REALobject NewNSRectQRX(NSRect rect);
REALobject NewNSSizeQRX(NSSize size);
REALobject NewNSPointQRX(NSPoint point);

// The structure in the object; all zeros for a null one.
NSRange GetNSRange(REALobject object);
NSRect GetNSRect(REALobject object);
NSSize GetNSSize(REALobject object);
NSPoint GetNSPoint(REALobject object);

// The structure in the object as an NSValue that belongs to the current pool.
objc::Id valueFromRange(REALobject object);
objc::Id valueFromRect(REALobject object);
objc::Id valueFromSize(REALobject object);
objc::Id valueFromPoint(REALobject object);

// The host object for an NSValue of one of the four types, null where it can't be made; nothing for a value
// of any other type.
std::optional<REALobject> geometryFromValue(objc::Id value, std::string_view type);
