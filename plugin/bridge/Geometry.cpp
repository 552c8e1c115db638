// Geometry.cpp: geometry structures in host objects and in platform values.
#include "plugin/bridge/Geometry.hpp"

#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/Message.hpp"

#include <string>

namespace {

using objc::Id;
using objc::send;
using objc::sendClass;

template <class Structure>
REALobject newHolding(const char* className, const Structure& structure) {
    const REALobject made = REALnewInstance(className);
    if (made) frame::data<Structure>(made) = structure;
    return made;
}

template <class Structure>
Structure heldIn(REALobject object) {
    return object ? frame::data<Structure>(object) : Structure{};
}

// A structure's type by the text that 32-bit machines give it, and by the platform's own, whose letters
// follow the width of a word.
struct GeometryKind {
    std::string_view type;
    std::string platformType;
    REALobject (*convert)(Id value);
};

std::string typeOf(Id value) {
    const auto type = send<"objCType", const char*>(value);
    return type ? type : "";
}

const GeometryKind* geometryKinds() {
    static const GeometryKind kinds[] = {
        {"{_NSRect={_NSPoint=ff}{_NSSize=ff}}", typeOf(sendClass<"NSValue", "valueWithRect:">(NSRect{})),
         [](Id value) { return NewNSRectQRX(send<"rectValue", NSRect>(value)); }},
        {"{_NSSize=ff}", typeOf(sendClass<"NSValue", "valueWithSize:">(NSSize{})),
         [](Id value) { return NewNSSizeQRX(send<"sizeValue", NSSize>(value)); }},
        {"{_NSRange=II}", typeOf(sendClass<"NSValue", "valueWithRange:">(NSRange{})),
         [](Id value) { return NewNSRangeQRX(send<"rangeValue", NSRange>(value)); }},
        {"{_NSPoint=ff}", typeOf(sendClass<"NSValue", "valueWithPoint:">(NSPoint{})),
         [](Id value) { return NewNSPointQRX(send<"pointValue", NSPoint>(value)); }},
        {},
    };
    return kinds;
}

} // namespace

REALobject NewNSRangeQRX(NSRange range) { return newHolding("NSRangeQRX", range); }
REALobject NewNSRectQRX(NSRect rect) { return newHolding("NSRectQRX", rect); }
REALobject NewNSSizeQRX(NSSize size) { return newHolding("NSSizeQRX", size); }
REALobject NewNSPointQRX(NSPoint point) { return newHolding("NSPointQRX", point); }

NSRange GetNSRange(REALobject object) { return heldIn<NSRange>(object); }
NSRect GetNSRect(REALobject object) { return heldIn<NSRect>(object); }
NSSize GetNSSize(REALobject object) { return heldIn<NSSize>(object); }
NSPoint GetNSPoint(REALobject object) { return heldIn<NSPoint>(object); }

Id valueFromRange(REALobject object) { return sendClass<"NSValue", "valueWithRange:">(GetNSRange(object)); }
Id valueFromRect(REALobject object) { return sendClass<"NSValue", "valueWithRect:">(GetNSRect(object)); }
Id valueFromSize(REALobject object) { return sendClass<"NSValue", "valueWithSize:">(GetNSSize(object)); }
Id valueFromPoint(REALobject object) { return sendClass<"NSValue", "valueWithPoint:">(GetNSPoint(object)); }

std::optional<REALobject> geometryFromValue(Id value, std::string_view type) {
    for (const GeometryKind* kind = geometryKinds(); kind->convert; ++kind)
        if (type == kind->type || type == kind->platformType) return kind->convert(value);
    return std::nullopt;
}
