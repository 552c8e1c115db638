// Builtins.hpp: how the host defines its own classes.
#pragma once

#include "host/runtime/Class.hpp"

#include <new>
#include <vector>

namespace host {

// A class of the host's own: its instance data are a C++ value of any type.
struct BuiltinSpec {
    ClassSpec spec;
    std::size_t dataSize = 0;
    void (*constructor)(REALobject) = nullptr;
    void (*destructor)(REALobject) = nullptr;
};

template <class Data>
BuiltinSpec builtinWith(std::string name, std::vector<MemberSpec> members) {
    static_assert(alignof(Data) <= 16 || alignof(Data) <= alignof(std::max_align_t));
    BuiltinSpec builtin;
    builtin.spec.name = std::move(name);
    builtin.spec.members = std::move(members);
    builtin.dataSize = sizeof(Data);
    builtin.constructor = [](REALobject object) { new (instanceData(object)) Data(); };
    builtin.destructor = [](REALobject object) { dataOf<Data>(object).~Data(); };
    return builtin;
}

Class& defineBuiltin(BuiltinSpec builtin);
// A class that findClass does not know, such as that of arrays of one element type. It lives as long as the
// process.
Class& defineHidden(BuiltinSpec builtin);

// Members from their declaration texts.
MemberSpec method(std::string_view declaration, Body body);
MemberSpec sharedMethod(std::string_view declaration, Body body);
MemberSpec property(std::string_view declaration, Body getter, Body setter = {});
MemberSpec storedProperty(std::string_view declaration);

// One maker per file of built-in classes; called once, superclasses first.
void defineExceptionClasses();
void defineMemoryBlockClass();
void defineDictionaryClass();
void defineDateClass();
void defineFolderItemClass();
void defineVariantClass();
void defineGlobals();

} // namespace host
