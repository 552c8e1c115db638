// Dictionaries.cpp: the three methods of a host dictionary, loaded once for each dictionary in a row of
// calls.
#include "plugin/bridge/Dictionaries.hpp"

#include "plugin/frame/HostServices.hpp"

namespace {

using SetValue = void(REALdictionary, REALvariant key, REALvariant value);
using GetValue = REALvariant(REALdictionary, REALvariant key);
using GetKey = REALvariant(REALdictionary, int32_t index);

// The last dictionary seen and its methods. Never cleared: a new dictionary at the address of a destroyed one
// uses the old entries, which is harmless because all host dictionaries share one class. Host thread only.
struct Methods {
    REALdictionary owner = nullptr;
    SetValue* setValue = nullptr;
    GetValue* getValue = nullptr;
    GetKey* getKey = nullptr;
} cache;

const Methods& methodsOf(REALdictionary dictionary) {
    if (cache.owner != dictionary) {
        const auto load = [dictionary](const char* declaration) {
            return REALLoadObjectMethod(dictionary, declaration);
        };
        cache.setValue =
            reinterpret_cast<SetValue*>(load("Value(key As Variant, Assigns _value As Variant)"));
        cache.getValue = reinterpret_cast<GetValue*>(load("Value(key As Variant) As Variant"));
        cache.getKey = reinterpret_cast<GetKey*>(load("Key(index As Integer) As Variant"));
        cache.owner = dictionary;
    }
    return cache;
}

} // namespace

REALdictionary NewDictionary() { return REALnewInstance("Dictionary"); }

bool IsDictionary(REALobject object) { return REALObjectIsA(object, "Dictionary"); }

int32_t GetDictionaryCount(REALdictionary dictionary) {
    int32_t count = 0;
    return REALGetPropValueInt32(dictionary, "Count", &count) ? count : 0;
}

void SetDictionaryValue(REALdictionary dictionary, REALvariant key, REALvariant value) {
    if (SetValue* set = methodsOf(dictionary).setValue) set(dictionary, key, value);
}

REALvariant GetDictionaryValue(REALdictionary dictionary, REALvariant key) {
    GetValue* get = methodsOf(dictionary).getValue;
    return get ? get(dictionary, key) : nullptr;
}

REALvariant GetDictionaryKey(REALdictionary dictionary, int32_t index) {
    GetKey* get = methodsOf(dictionary).getKey;
    return get ? get(dictionary, index) : nullptr;
}
