// Replaced.hpp: methods of the platform's own classes, answered by a test from then on.
#pragma once

#include "plugin/objc/Encoding.hpp"
#include "plugin/objc/Message.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Pool.hpp"

extern "C" {
objc::Imp class_replaceMethod(objc::Class cls, objc::Sel selector, objc::Imp code, const char* types);
objc::Class objc_getClass(const char* name);
}

namespace test {

template <objc::FixedString selectorName, auto function>
void replaceMethod(const char* className) {
    class_replaceMethod(objc_getClass(className), objc::selector<selectorName>(),
                        reinterpret_cast<objc::Imp>(function),
                        objc::MethodTypes<decltype(function)>::text.data());
}

template <objc::FixedString selectorName, auto function>
void replaceClassMethod(const char* className) {
    class_replaceMethod(objc_getMetaClass(className), objc::selector<selectorName>(),
                        reinterpret_cast<objc::Imp>(function),
                        objc::MethodTypes<decltype(function)>::text.data());
}

/// What a platform method does that fails.
inline void raiseTestException() {
    objc::sendClass<"NSException", "raise:format:", void>(nsString("TestException"), nsString("refused"));
}

} // namespace test
