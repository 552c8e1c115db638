// Properties.cpp: reads and replaces single keys of a properties dictionary.
#include "plugin/bridge/Properties.hpp"

#include "plugin/objc/Ownership.hpp"

namespace bridge {

namespace {

using objc::Id;
using objc::send;

Id valueOf(const Id* key) { return key ? *key : nullptr; }

Id stored(REALobject object, const Id* key) {
    return send<"objectForKey:">(send<"properties">(frame::held(object)), valueOf(key));
}

// Where `properties` answers nil the copy is nil too and takes nothing: no dictionary is made here.
void store(REALobject object, const Id* key, Id value) {
    const Id target = frame::held(object);
    if (!target) return;
    const Id copy = objc::autoreleased(send<"mutableCopy">(send<"properties">(target)));
    send<"setObject:forKey:", void>(copy, value, valueOf(key));
    send<"setProperties:", void>(target, copy);
}

// The conversion runs inside the guard too, which meets whatever the platform raises.
template <class Host, class Convert>
void storeConverted(REALobject object, const Id* key, Host value, Convert convert) {
    guarded([=] { store(object, key, convert(value)); });
}

} // namespace

void setProperty(REALobject object, const Id* key, Id value) {
    guarded([=] { store(object, key, value); });
}

int32_t getIntegerProperty(REALobject object, const Id* key) {
    return guarded([=] { return static_cast<int32_t>(send<"longValue", long>(stored(object, key))); });
}

double getDoubleProperty(REALobject object, const Id* key) {
    return guarded([=] { return send<"doubleValue", double>(stored(object, key)); });
}

REALstring getStringProperty(REALobject object, const Id* key) {
    return guarded([=] { return NSStringRB(stored(object, key)); });
}

REALmemoryBlock getDataProperty(REALobject object, const Id* key) {
    return guarded([=] { return NSDataRB(stored(object, key)); });
}

void setBooleanProperty(REALobject object, const Id* key, REALboolean value) {
    storeConverted(object, key, value, [](REALboolean flag) {
        return objc::sendClass<"NSNumber", "numberWithBool:">(static_cast<objc::Boolean>(flag));
    });
}

void setIntegerProperty(REALobject object, const Id* key, int32_t value) {
    storeConverted(object, key, long{value}, objc::sendClass<"NSNumber", "numberWithLong:", Id, long>);
}

void setDoubleProperty(REALobject object, const Id* key, double value) {
    storeConverted(object, key, value, objc::sendClass<"NSNumber", "numberWithDouble:", Id, double>);
}

void setStringProperty(REALobject object, const Id* key, REALstring value) {
    storeConverted(object, key, value, NewNSString);
}

void setDataProperty(REALobject object, const Id* key, REALmemoryBlock value) {
    storeConverted(object, key, value, NewNSData);
}

} // namespace bridge
