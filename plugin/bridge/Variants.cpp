// Variants.cpp: platform values as host variants. The order of the tests is fixed: the first that matches
// wins.
#include "plugin/bridge/Variants.hpp"

#include "plugin/bridge/Dates.hpp"
#include "plugin/bridge/FolderItems.hpp"
#include "plugin/bridge/Geometry.hpp"
#include "plugin/bridge/HostReference.hpp"
#include "plugin/bridge/Nesting.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/Message.hpp"

#include <string>
#include <string_view>

namespace {

using objc::Id;
using objc::send;

std::string_view typeOf(Id value) {
    const auto type = send<"objCType", const char*>(value);
    return type ? type : std::string_view();
}

// The text by which the platform's booleans tell themselves from small numbers; it differs between platforms.
const std::string& booleanType() {
    static const std::string type(typeOf(objc::sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{1})));
    return type;
}

// The text alone would take real unsigned bytes for booleans where the platform's boolean text is "C"; only its
// booleans are of the class of booleans too.
bool isBoolean(Id number, std::string_view type) {
    if (type != booleanType()) return false;
    const Id yes = objc::sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{1});
    return send<"isKindOfClass:", objc::Boolean>(number, send<"class">(yes)) != 0;
}

REALvariant variantFromNumber(Id number) {
    const std::string_view type = typeOf(number);
    // "c" is how booleans are stored where the platform's BOOL is a signed char, so it is never a small
    // integer.
    if (type == "c" || isBoolean(number, type))
        return REALNewVariantBoolean(send<"boolValue", objc::Boolean>(number));
    if (type == "C") return REALNewVariantInteger(send<"unsignedCharValue", unsigned char>(number));
    if (type == "s") return REALNewVariantInteger(send<"shortValue", short>(number));
    if (type == "S") return REALNewVariantInteger(send<"unsignedShortValue", unsigned short>(number));
    if (type == "i") return REALNewVariantInteger(send<"intValue", int>(number));
    if (type == "I") return REALNewVariantUInt32(send<"unsignedIntValue", unsigned int>(number));
    if (type == "l") return REALNewVariantInteger(static_cast<int32_t>(send<"longValue", long>(number)));
    if (type == "L")
        return REALNewVariantUInt32(static_cast<uint32_t>(send<"unsignedLongValue", unsigned long>(number)));
    if (type == "q") return REALNewVariantInt64(send<"longLongValue", long long>(number));
    // Kept as it stands: read through the 32-bit accessor, so values of 2^32 and above lose their high 32
    // bits.
    if (type == "Q")
        return REALNewVariantUInt64(static_cast<uint32_t>(send<"unsignedLongValue", unsigned long>(number)));
    if (type == "f") return REALNewVariantSingle(send<"floatValue", float>(number));
    return REALNewVariantDouble(send<"doubleValue", double>(number));
}

REALvariant variantFromText(REALstring text) {
    const HostReference owned(text);
    return REALNewVariantString(text);
}

// A host array of variants. An array is a host object, so it stands for a variant itself.
REALvariant variantFromArray(Id array) {
    const Nesting nesting(array);
    if (nesting.endsHere()) return nullptr;
    HostReference made(reinterpret_cast<REALobject>(REALCreateArrayVariant(-1)));
    if (!made) return nullptr;
    const Id walk = send<"objectEnumerator">(array);
    int32_t index = 0;
    while (const Id element = send<"nextObject">(walk)) {
        const HostReference variant(NewVariantFromNSObject(element));
        REALInsertArrayValue(reinterpret_cast<REALarray>(made.get()), index++, variant.get());
    }
    return made.give();
}

REALvariant variantFromURL(Id url) {
    if (const REALfolderItem item = NSURLRBFile(url)) return item;
    return variantFromText(NSURLRB(url));
}

// The messages that companions add to the platform's values; each answers a host object of their own.
template <objc::FixedString message>
REALvariant companionValue(Id value) {
    return objc::respondsTo<message>(value) ? send<message, REALobject>(value) : nullptr;
}

// A kind of value by the exact text of its type, and what it becomes.
struct ValueKind {
    std::string_view type;
    REALvariant (*convert)(Id value);
};

constexpr ValueKind companionKinds[] = {
    {"{?=qll}", companionValue<"QTTimeValueQRX">},
    {"{?={?=qll}{?=qll}}", companionValue<"QTTimeRangeValueQRX">},
    {"{?=qiIq}", companionValue<"CMTimeValueQRX">},
    {"{?={?=qiIq}{?=qiIq}}", companionValue<"CMTimeRangeValueQRX">},
    {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", companionValue<"CMTimeMappingValueQRX">},
};

REALvariant variantFromValue(Id value) {
    const std::string_view type = typeOf(value);
    if (const auto geometry = geometryFromValue(value, type)) return *geometry;
    for (const ValueKind& kind : companionKinds)
        if (type == kind.type) return kind.convert(value);
    return nullptr;
}

} // namespace

REALvariant NewVariantFromNSObject(Id value) {
    if (!value) return nullptr;
    // Deliberate: a platform null becomes a nil variant.
    if (value == objc::sendClass<"NSNull", "null">()) return nullptr;
    if (objc::isKindOf<"NSArray">(value)) return variantFromArray(value);
    if (objc::isKindOf<"NSString">(value)) return variantFromText(NSStringRB(value));
    if (objc::isKindOf<"NSData">(value)) return NSDataRB(value);
    if (objc::isKindOf<"NSNumber">(value)) return variantFromNumber(value);
    if (objc::isKindOf<"NSDate">(value)) return NSDateRB(value);
    if (objc::isKindOf<"NSDictionary">(value)) return NSDictionaryRB(value);
    if (objc::isKindOf<"NSURL">(value)) return variantFromURL(value);
    if (objc::isKindOf<"NSValue">(value)) return variantFromValue(value);
    if (objc::isKindOf<"QRXREALobjectWrapper">(value)) return send<"unwrap", REALobject>(value);
    return NewNSObjectQRX(value);
}
