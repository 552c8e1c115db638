// Collections.cpp: whole dictionaries and arrays between the host and the platform.
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/HostReference.hpp"
#include "plugin/bridge/Nesting.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/Message.hpp"

#include <algorithm>

namespace {

using objc::Id;
using objc::send;

// What stands for nil inside of platform collections.
Id orNull(Id value) { return value ? value : objc::sendClass<"NSNull", "null">(); }

} // namespace

REALdictionary NSDictionaryRB(Id dictionary) {
    if (!dictionary) return nullptr;
    const Nesting nesting(dictionary);
    if (nesting.endsHere()) return nullptr;
    HostReference made(NewDictionary());
    if (!made) return nullptr;
    const Id keys = send<"allKeys">(dictionary);
    const auto count = send<"count", unsigned long>(keys);
    for (unsigned long i = 0; i < count; ++i) {
        const Id key = send<"objectAtIndex:">(keys, i);
        const HostReference hostKey(NewVariantFromNSObject(key));
        const HostReference hostValue(NewVariantFromNSObject(send<"objectForKey:">(dictionary, key)));
        SetDictionaryValue(made.get(), hostKey.get(), hostValue.get());
    }
    return made.give();
}

Id NewNSDictionary(REALdictionary dictionary) {
    if (!dictionary) return nullptr;
    const Nesting nesting(dictionary);
    if (nesting.endsHere()) return nullptr;
    const int32_t count = GetDictionaryCount(dictionary);
    if (count < 1) return objc::sendClass<"NSDictionary", "dictionary">();
    const Id made =
        objc::sendClass<"NSMutableDictionary", "dictionaryWithCapacity:">(static_cast<unsigned long>(count));
    if (!made) return nullptr;
    for (int32_t i = 0; i < count; ++i) {
        const HostReference key(GetDictionaryKey(dictionary, i));
        // Fetched for a nil key too, and dropped then.
        const HostReference value(GetDictionaryValue(dictionary, key.get()));
        if (!key) continue;
        const Id platformKey = orNull(GetVariantAsNSObject(key.get()));
        send<"setObject:forKey:", void>(made, orNull(GetVariantAsNSObject(value.get())), platformKey);
    }
    return made;
}

Id CreateNSObjectArray(REALarray array, bool nilWhenEmpty) {
    if (!array) return nullptr;
    // Never below an empty array's, whatever a host answers: the capacity is unsigned.
    const int32_t last = std::max(REALGetArrayUBound(array), -1);
    if (nilWhenEmpty && last == -1) return nullptr;
    const Id made =
        objc::sendClass<"NSMutableArray", "arrayWithCapacity:">(static_cast<unsigned long>(last + 1));
    if (!made) return nullptr;
    for (int32_t i = 0; i <= last; ++i) {
        const HostReference element(REALGetArrayObject(array, i));
        if (const Id held = frame::held(element.get())) send<"addObject:", void>(made, held);
    }
    return made;
}
