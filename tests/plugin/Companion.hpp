// Companion.hpp: what a companion plug-in adds to the platform, for tests that want one part of it or
// another.
//
// The parts are class methods of the platform's exception class, added at run time as a companion adds them.
#pragma once

#include "plugin/bridge/CoreFoundation.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/Encoding.hpp"
#include "plugin/objc/Message.hpp"

extern "C" {
objc::Class objc_getMetaClass(const char* name);
CFMutableDictionaryRef CFDictionaryCreateMutable(const void* allocator, CFIndex capacity, const void* keys,
                                                 const void* values);
}

namespace test::companion {

template <objc::FixedString selectorName, auto function>
void addToNSException() {
    objc::class_addMethod(objc_getMetaClass("NSException"), objc::selector<selectorName>(),
                          reinterpret_cast<objc::Imp>(function),
                          objc::MethodTypes<decltype(function)>::text.data());
}

// ---- the instance registry: keys by identity, values never retained ----------------------------------

inline CFMutableDictionaryRef registry = nullptr;
inline int registryAsked = 0;

inline void* getInstances(objc::Id, objc::Sel) {
    ++registryAsked;
    return registry;
}

inline void offerRegistry() {
    registry = CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr);
    addToNSException<"GetInstancesDictionaryQRX", getInstances>();
}

// ---- exception conversion ----------------------------------------------------------------------------

inline int prepared = 0;
inline objc::Id converted = nullptr;
inline const char* exceptionClass = "UnsupportedOperationException";

inline void prepare(objc::Id, objc::Sel) { ++prepared; }

inline void* convert(objc::Id, objc::Sel, objc::Id exception) {
    converted = exception;
    return exceptionClass ? REALnewInstance(exceptionClass) : nullptr;
}

inline void offerExceptions() {
    addToNSException<"PrepareNSExceptionQRX", prepare>();
    addToNSException<"NewNSExceptionQRX:", convert>();
}

} // namespace test::companion
