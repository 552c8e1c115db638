// PlatformObjects.hpp: numbers and values of any type text, the class that boxes host objects, and host
// values.
#pragma once

#include "host/runtime/Value.hpp"
#include "host/runtime/Variant.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace test {

using host::Kind;
using host::Value;

// ---- host values -------------------------------------------------------------------------------------

inline Ref variant(const Value& value) { return Ref::adopt(host::boxVariant(value)); }
inline Value valueOf(const Ref& boxed) { return host::unboxVariant(boxed.get()); }
inline REALarray handleOf(const Ref& array) { return reinterpret_cast<REALarray>(array.get()); }

// ---- numbers and values of a given type text ---------------------------------------------------------
// A platform makes only some of the types; these say to be of any, and note which accessor was asked.

inline std::string asked;

inline const void* typeText(objc::Id self, objc::Sel) { return *objc::ivar<const char*>(self, "type"); }

template <class T, objc::FixedString name>
T numberAs(objc::Id self, objc::Sel) {
    asked = name.c_str();
    return static_cast<T>(*objc::ivar<double>(self, "number"));
}

// Integers cross through 64 bits, so that what does not fit into an accessor's type is cut as in C.
template <class T, objc::FixedString name>
T integerAs(objc::Id self, objc::Sel) {
    asked = name.c_str();
    return static_cast<T>(static_cast<long long>(*objc::ivar<double>(self, "number")));
}

inline objc::Id typedNumber(const char* type, double number) {
    static const objc::Class cls =
        objc::ClassBuilder("NSNumber", "TestNumber")
            .ivar<const char*>("type")
            .ivar<double>("number")
            .method<"objCType", typeText>()
            .method<"boolValue", integerAs<bool, "boolValue">>()
            .method<"unsignedCharValue", integerAs<unsigned char, "unsignedCharValue">>()
            .method<"shortValue", integerAs<short, "shortValue">>()
            .method<"unsignedShortValue", integerAs<unsigned short, "unsignedShortValue">>()
            .method<"intValue", integerAs<int, "intValue">>()
            .method<"unsignedIntValue", integerAs<unsigned int, "unsignedIntValue">>()
            .method<"longValue", integerAs<long, "longValue">>()
            .method<"unsignedLongValue", integerAs<unsigned long, "unsignedLongValue">>()
            .method<"longLongValue", integerAs<long long, "longLongValue">>()
            .method<"floatValue", numberAs<float, "floatValue">>()
            .method<"doubleValue", numberAs<double, "doubleValue">>()
            .finish();
    const objc::Id made =
        objc::autoreleased(objc::send<"init">(objc::send<"alloc">(reinterpret_cast<objc::Id>(cls))));
    *objc::ivar<const char*>(made, "type") = type;
    *objc::ivar<double>(made, "number") = number;
    return made;
}

// Without a value of its own: what it is asked for comes from methods that a test adds to its class.
inline objc::Id typedValue(const char* type) {
    static const objc::Class cls = objc::ClassBuilder("NSValue", "TestValue")
                                       .ivar<const char*>("type")
                                       .method<"objCType", typeText>()
                                       .finish();
    const objc::Id made =
        objc::autoreleased(objc::send<"init">(objc::send<"alloc">(reinterpret_cast<objc::Id>(cls))));
    *objc::ivar<const char*>(made, "type") = type;
    return made;
}

template <objc::FixedString selectorName, auto function>
void addToTestValue() {
    objc::class_addMethod(objc::objc_getClass("TestValue"), objc::selector<selectorName>(),
                          reinterpret_cast<objc::Imp>(function), "@@:");
}

template <objc::FixedString selectorName, auto function>
void addClassMethod(const char* className) {
    objc::class_addMethod(objc_getMetaClass(className), objc::selector<selectorName>(),
                          reinterpret_cast<objc::Imp>(function), "@@:^v");
}

// ---- boxes for host objects --------------------------------------------------------------------------

inline REALobject unwrapBox(objc::Id self, objc::Sel) {
    const REALobject boxed = *objc::ivar<REALobject>(self, "object");
    REALLockObject(boxed);
    return boxed;
}

// Keeps no reference: the tests hold the object for longer than the box.
inline objc::Id wrapInBox(objc::Id self, objc::Sel, REALobject object) {
    const objc::Id box = objc::autoreleased(objc::send<"init">(objc::send<"alloc">(self)));
    *objc::ivar<REALobject>(box, "object") = object;
    return box;
}

inline void offerBoxes() {
    objc::ClassBuilder("NSObject", "QRXREALobjectWrapper")
        .ivar<REALobject>("object")
        .method<"unwrap", unwrapBox>()
        .finish();
    addClassMethod<"wrap:", wrapInBox>("QRXREALobjectWrapper");
}

} // namespace test
