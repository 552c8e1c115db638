// PlatformValues.cpp: host variants and objects as platform values. The order of the tests is fixed: the
// first that matches wins.
#include "plugin/bridge/Dates.hpp"
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/Geometry.hpp"
#include "plugin/bridge/HostReference.hpp"
#include "plugin/bridge/Nesting.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/Message.hpp"

#include <algorithm>

namespace {

using objc::Id;

// The host's codes for the types of variants. Every other code converts to nil.
enum VariantType : int32_t {
    integerCode = 2,
    longCode = 3,
    singleCode = 4,
    doubleCode = 5,
    dateCode = 7,
    stringCode = 8,
    objectCode = 9,
    booleanCode = 11,
    otherIntegerCode = 16, // treated as an integer
    arrayCode = 0x1000     // plus the code of the elements
};

Id fromLong(int32_t value) {
    return objc::sendClass<"NSNumber", "numberWithLong:">(static_cast<long>(value));
}
Id fromInt64(int64_t value) {
    return objc::sendClass<"NSNumber", "numberWithLongLong:">(static_cast<long long>(value));
}
Id fromSingle(float value) { return objc::sendClass<"NSNumber", "numberWithFloat:">(value); }
Id fromDouble(double value) { return objc::sendClass<"NSNumber", "numberWithDouble:">(value); }
Id fromBoolean(uint8_t value) { return objc::sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{value}); }

// A text never converts to nil: one that has no platform string becomes the empty one.
Id fromStringVariant(REALvariant variant) {
    const HostReference text(GetVariantString(variant));
    const Id string = NewNSString(text.get());
    return string ? string : objc::sendClass<"NSString", "string">();
}

Id fromDateVariant(REALvariant variant) {
    REALobject date = nullptr;
    if (!REALGetPropValueObject(variant, "DateValue", &date)) return nullptr;
    const HostReference owned(date);
    return NewNSDate(date);
}

// Each element is added as it was converted: what converts to nil (a missing text included) is the platform's to
// refuse.
template <class Element, Id (*convert)(Element)>
Id fromArray(REALvariant variant) {
    const Nesting nesting(variant);
    if (nesting.endsHere()) return nullptr;
    const auto array = reinterpret_cast<REALarray>(variant);
    const Id made = objc::sendClass<"NSMutableArray", "array">();
    const int32_t last = REALGetArrayUBound(array);
    for (int32_t i = 0; i <= last; ++i) {
        Element element{};
        REALGetArrayValue(array, i, &element);
        if constexpr (std::is_pointer_v<Element>) {
            const HostReference owned(element);
            objc::send<"addObject:", void>(made, convert(element));
        } else {
            objc::send<"addObject:", void>(made, convert(element));
        }
    }
    return made;
}

// The host classes of companions, and the one of this plug-in, whose objects go over as the platform object
// that they hold. Deliberately only DRBurnQRX: every other wrapper of this plug-in crosses as the host object
// that it is, boxed by a companion. Lists that hosts keep name the attributed-string class at three
// places; here it stands once, because only the first of them can ever match.
constexpr const char* holders[] = {
    "QuartzFilterQRX",
    "NSImageQRX",
    "NSImageRepQRX",
    "NSFontQRX",
    "NSResponderQRX",
    "NSAttributedStringQRX",
    "NSIndexSetQRX",
    "NSColorQRX",
    "NSToolbarItemQRX",
    "NSToolbarQRX",
    "NSURLRequestQRX",
    "NSCharacterSetQRX",
    "NSParagraphStyleQRX",
    "NSTextContainerQRX",
    "WebUIDelegateQRX",
    "WebResourceLoadDelegateQRX",
    "WebFrameLoadDelegateQRX",
    "WebDownloadDelegateQRX",
    "DRBurnQRX",
    "PDFAnnotationQRX",
    "PDFActionQRX",
};

bool isHolder(REALobject object) {
    return std::ranges::any_of(holders, [=](const char* name) { return REALObjectIsA(object, name); });
}

// The companion that owns a time class answers the message, with the host object itself as the argument.
template <objc::FixedString message>
Id timeValue(REALobject object) {
    return objc::sendClass<"NSValue", message>(object);
}

struct ObjectKind {
    const char* className;
    Id (*convert)(REALobject object);
};

constexpr ObjectKind valueKinds[] = {
    {"NSSizeQRX", valueFromSize},
    {"NSRectQRX", valueFromRect},
    {"NSRangeQRX", valueFromRange},
    {"NSPointQRX", valueFromPoint},
    {"QTKitTimeQRX", timeValue<"valueWithQTTimeQRX:">},
    {"QTKitTimeRangeQRX", timeValue<"valueWithQTTimeRangeQRX:">},
    {"CMTimeMappingQRX", timeValue<"valueWithCMTimeMappingQRX:">},
    {"CMTimeRangeQRX", timeValue<"valueWithCMTimeRangeQRX:">},
    {"CMTimeQRX", timeValue<"valueWithCMTimeQRX:">},
    {"WebPolicyDelegateQRX", frame::held},
};

} // namespace

Id GetObjectAsNSObject(REALobject object) {
    if (!object) return nullptr;
    if (IsMemoryBlock(object)) return NewNSData(object);
    if (IsFolderItem(object)) return NewNSURLfile(object);
    if (IsDictionary(object)) return NewNSDictionary(object);
    if (isHolder(object)) return frame::held(object);
    for (const ObjectKind& kind : valueKinds)
        if (REALObjectIsA(object, kind.className)) return kind.convert(object);
    return objc::sendClass<"QRXREALobjectWrapper", "wrap:">(object);
}

Id GetVariantAsNSObject(REALvariant variant) {
    if (!variant) return nullptr;
    switch (GetVariantType(variant)) {
    case integerCode:
    case otherIntegerCode:
        return fromLong(GetVariantInteger(variant));
    case longCode:
        return fromInt64(GetVariantLong(variant));
    case singleCode:
        return fromSingle(GetVariantSingle(variant));
    case doubleCode:
        return fromDouble(GetVariantDouble(variant));
    case dateCode:
        return fromDateVariant(variant);
    case stringCode:
        return fromStringVariant(variant);
    case objectCode:
        return GetObjectAsNSObject(variant);
    case booleanCode:
        return fromBoolean(static_cast<uint8_t>(GetVariantInteger(variant))); // the low byte
    case arrayCode + integerCode:
        return fromArray<int32_t, fromLong>(variant);
    case arrayCode + longCode:
        return fromArray<int64_t, fromInt64>(variant);
    case arrayCode + singleCode:
        return fromArray<float, fromSingle>(variant);
    case arrayCode + doubleCode:
        return fromArray<double, fromDouble>(variant);
    case arrayCode + dateCode:
        return fromArray<REALobject, NewNSDate>(variant);
    case arrayCode + stringCode:
        return fromArray<REALstring, NewNSString>(variant);
    case arrayCode + objectCode:
        return fromArray<REALobject, GetVariantAsNSObject>(variant);
    case arrayCode + booleanCode:
        return fromArray<uint8_t, fromBoolean>(variant);
    default:
        return nullptr;
    }
}
