// Properties.cpp: reads and replaces single keys of a properties dictionary.
#include "plugin/burn/Properties.hpp"

#include "plugin/objc/Ownership.hpp"

namespace bridge {

namespace {

objc::Id valueOf(const objc::Id* key) { return key ? *key : nullptr; }

objc::Id stored(REALobject object, const objc::Id* key) {
    return objc::send<"objectForKey:">(objc::send<"properties">(frame::held(object)), valueOf(key));
}

void store(REALobject object, const objc::Id* key, objc::Id value) {
    const objc::Id target = frame::held(object);
    if (!target) return;
    const objc::Id copy = objc::autoreleased(objc::send<"mutableCopy">(objc::send<"properties">(target)));
    objc::send<"setObject:forKey:", void>(copy, value, valueOf(key));
    objc::send<"setProperties:", void>(target, copy);
}

} // namespace

void setProperty(REALobject object, const objc::Id* key, objc::Id value) {
    guarded([=] { store(object, key, value); });
}

int32_t getIntegerProperty(REALobject object, const objc::Id* key) {
    return guarded([=] { return static_cast<int32_t>(objc::send<"longValue", long>(stored(object, key))); });
}

REALstring getStringProperty(REALobject object, const objc::Id* key) {
    return guarded([=] { return NSStringRB(stored(object, key)); });
}

void setStringProperty(REALobject object, const objc::Id* key, REALstring value) {
    guarded([=] { store(object, key, NewNSString(value)); });
}

void setBooleanProperty(REALobject object, const objc::Id* key, bool value) {
    guarded([=] {
        store(object, key, objc::sendClass<"NSNumber", "numberWithBool:">(static_cast<objc::Boolean>(value)));
    });
}

} // namespace bridge
