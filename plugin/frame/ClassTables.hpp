// ClassTables.hpp: the rows of a class's tables, and the class record that carries them.
//
// A class file ends with its tables and its record:
//
//   REALmethodDefinition methods[] = {
//       method<"mediaType as string", mediaType>(),
//       property<"appendable as boolean", appendable, setAppendable>(),
//   };
//   REALclassDefinition DRBurnClass = frame::wrapperClass({.name = "DRBurnQRX", ...});
#pragma once

#include "plugin/frame/Declaration.hpp"
#include "plugin/objc/FixedString.hpp"

#include <span>

namespace frame {

// The one place where a table's function gives up its signature: the declaration beside it keeps it.
//
// Tables and records are static; the library's own start fills them, before the host can call anything in it. No other
// static object may be made from them.
template <class Function>
REALproc code(Function* function) {
    return reinterpret_cast<REALproc>(function);
}

template <objc::FixedString declaration, auto function>
REALmethodDefinition method(uintptr_t flags = kREALMemberFlags) {
    static_assert(SignatureOf<decltype(function)>::value() ==
                      ofInstance(parseDeclaration(declaration.view())),
                  "the function does not fit the declaration of this method");
    static constexpr auto text = declaration;
    return {.function = code(function), .setter = nullptr, .declaration = text.c_str(), .flags = flags};
}

template <objc::FixedString declaration, auto getter, auto setter>
REALmethodDefinition property() {
    constexpr Signature declared = parseDeclaration(declaration.view());
    static_assert(SignatureOf<decltype(getter)>::value() == ofInstance(declared),
                  "the getter does not fit the declaration of this property");
    static_assert(SignatureOf<decltype(setter)>::value() == setterOf(declared),
                  "the setter does not fit the declaration of this property");
    static constexpr auto text = declaration;
    return {.function = code(getter),
            .setter = code(setter),
            .declaration = text.c_str(),
            .flags = kREALMemberFlags};
}

template <objc::FixedString declaration, auto function>
REALmethodDefinition sharedMethod() {
    static_assert(SignatureOf<decltype(function)>::value() == parseDeclaration(declaration.view()),
                  "the function does not fit the declaration of this shared method");
    static constexpr auto text = declaration;
    return {.function = code(function),
            .setter = nullptr,
            .declaration = text.c_str(),
            .flags = kREALMemberFlags};
}

// Stands in classes whose objects programs do not make themselves, and does nothing.
void DummyConstructor(REALobject object);

// The row of that placeholder. In four classes it carries the host's mark for members that are not for
// programs; DRMSFQRX keeps the ordinary flags on purpose, so a program may create an empty one.
inline REALmethodDefinition placeholderConstructor(uintptr_t flags = kREALMemberFlags |
                                                                     kREALMemberNotForPrograms) {
    return method<"Constructor", DummyConstructor>(flags);
}

// What a class says of itself; everything else in the record is the same in every class.
struct ClassDescription {
    const char* name;
    const char* superName = nullptr;
    uintptr_t dataSize = 0;
    void (*constructor)(REALobject) = nullptr;
    void (*destructor)(REALobject) = nullptr;
    std::span<REALmethodDefinition> methods{};
    std::span<REALevent> events{};
    std::span<REALconstant> constants{};
    std::span<REALmethodDefinition> sharedMethods{};
};

REALclassDefinition makeClass(const ClassDescription& description);

// The instance data of a class that holds a platform object: one reference, written as the 4 bytes that it
// takes on the machine the interface was made for. Registration rounds it up to 16, which holds a reference
// of either size.
inline constexpr uintptr_t platformObjectSize = 4;

} // namespace frame
