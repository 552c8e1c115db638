// Variants.cpp: platform values as host variants. The order of the tests is fixed: the first that matches
// wins.
#include "plugin/bridge/Variants.hpp"

#include "plugin/bridge/DataView.hpp"
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/Message.hpp"

#include <string_view>

namespace {

using objc::Id;
using objc::send;

// The text by which the platform's booleans tell themselves from small numbers; it differs between platforms.
std::string_view booleanType() {
    static const std::string_view type =
        send<"objCType", const char*>(objc::sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{1}));
    return type;
}

REALvariant variantFromNumber(Id number) {
    const std::string_view type = send<"objCType", const char*>(number);
    // "c" is how booleans are stored where the platform's BOOL is a signed char, so it is never a small
    // integer.
    if (type == "c" || type == booleanType())
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

REALvariant variantFromString(Id string) {
    const REALstring text = NSStringRB(string);
    const REALvariant variant = REALNewVariantString(text);
    if (text) REALUnlockString(text);
    return variant;
}

// A host array of variants. An array is a host object, so it stands for a variant itself.
REALvariant variantFromArray(Id array) {
    const REALarray made = REALCreateArrayVariant(-1);
    const Id walk = send<"objectEnumerator">(array);
    int32_t index = 0;
    while (const Id element = send<"nextObject">(walk)) {
        const REALvariant variant = NewVariantFromNSObject(element);
        REALInsertArrayValue(made, index++, variant);
        if (variant) REALUnlockObject(variant);
    }
    return reinterpret_cast<REALvariant>(made);
}

} // namespace

REALvariant NewVariantFromNSObject(Id value) {
    if (!value) return nullptr;
    // Deliberate: a platform null becomes a nil variant.
    if (value == objc::sendClass<"NSNull", "null">()) return nullptr;
    if (objc::isKindOf<"NSArray">(value)) return variantFromArray(value);
    if (objc::isKindOf<"NSString">(value)) return variantFromString(value);
    if (objc::isKindOf<"NSData">(value)) return NSDataRB(value);
    if (objc::isKindOf<"NSNumber">(value)) return variantFromNumber(value);
    if (objc::isKindOf<"NSDictionary">(value)) return NSDictionaryRB(value);
    return NewNSObjectQRX(value);
}

REALdictionary NSDictionaryRB(Id dictionary) {
    if (!dictionary) return nullptr;
    const REALdictionary made = NewDictionary();
    if (!made) return nullptr;
    const Id keys = send<"allKeys">(dictionary);
    const auto count = send<"count", unsigned long>(keys);
    for (unsigned long i = 0; i < count; ++i) {
        const Id key = send<"objectAtIndex:">(keys, i);
        const REALvariant hostKey = NewVariantFromNSObject(key);
        const REALvariant hostValue = NewVariantFromNSObject(send<"objectForKey:">(dictionary, key));
        SetDictionaryValue(made, hostKey, hostValue);
        if (hostKey) REALUnlockObject(hostKey);
        if (hostValue) REALUnlockObject(hostValue);
    }
    return made;
}

REALmemoryBlock NSDataRB(Id data) {
    if (!data) return nullptr;
    return REALBuildMemoryblock(send<"bytes", const void*>(data),
                                static_cast<int64_t>(send<"length", unsigned long>(data)));
}

Id NewNSData(REALmemoryBlock block) {
    const rbData view(block, 0, 0);
    if (view.length() == 0) return nullptr;
    return objc::sendClass<"NSData", "dataWithBytes:length:">(static_cast<const void*>(view.bytes()),
                                                              static_cast<unsigned long>(view.length()));
}
