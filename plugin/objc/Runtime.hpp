// Runtime.hpp: the part of the Objective-C runtime that the plug-in calls, declared by itself.
//
// No Objective-C compiler and no platform header stands behind this file: these few C functions are the whole
// contract. Everything above it sends messages through Message.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

namespace objc {

// A platform object of any class. Null is nil, and a message to nil answers zero.
using Id = struct objc_object*;
// A platform class, itself an object.
using Class = struct objc_class*;
using Sel = const struct objc_selector*;
// The address of a method's code. Only Message.hpp and ClassBuilder.hpp give it a signature.
using Imp = void (*)();
using Ivar = struct objc_ivar*;

// The platform's BOOL is one byte; its low byte is the answer.
using Boolean = unsigned char;

struct Super {
    Id receiver;
    Class superclass;
};

extern "C" {
Sel sel_registerName(const char* name);
// The runtime may keep one selector for each type of its methods: addresses differ where names are the same.
Boolean sel_isEqual(Sel one, Sel other);
Class objc_getClass(const char* name);
const char* class_getName(Class cls);
Class class_getSuperclass(Class cls);
Boolean class_respondsToSelector(Class cls, Sel selector);
Class objc_allocateClassPair(Class superclass, const char* name, std::size_t extraBytes);
Boolean class_addIvar(Class cls, const char* name, std::size_t size, std::uint8_t alignment,
                      const char* type);
Boolean class_addMethod(Class cls, Sel selector, Imp code, const char* types);
void objc_registerClassPair(Class cls);
Ivar class_getInstanceVariable(Class cls, const char* name);
std::ptrdiff_t ivar_getOffset(Ivar ivar);
}

} // namespace objc
