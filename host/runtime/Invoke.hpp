// Invoke.hpp: how programs use objects: make, call, read, assign, raise events.
//
// Everything here raises host::Exception: NilObjectException for a nil target, UnsupportedOperationException
// for a member that is not there (naming what there is when the name fits but the arguments do not:
// TypeMismatchException). Names are case-insensitive. ByRef arguments are written back into `arguments`.
#pragma once

#include "host/runtime/Class.hpp"
#include "host/runtime/Exceptions.hpp"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// New X(arguments): a new object, then the declared constructor that fits (the class's own, else inherited).
// A class without any takes no arguments. Raises UnsupportedOperationException for a class whose own
// constructor is not for programs ("DRDeviceQRX objects are not made with New; ask the class's own methods
// for one").
Value construct(Class& objectClass, Arguments arguments);

// object.Name(arguments): a method, or a property read, or a constant. An array result may be indexed by the
// caller.
Value invoke(const Value& target, std::string_view name, Arguments arguments);
// object.Name(arguments) = value: a property with or without parameters, or a method with an Assigns
// parameter.
void assign(const Value& target, std::string_view name, Arguments arguments, const Value& value);
// ClassName.Name(arguments): shared methods and properties, constants.
Value invokeShared(Class& objectClass, std::string_view name, Arguments arguments);
void assignShared(Class& objectClass, std::string_view name, Arguments arguments, const Value& value);
// Super.Name(arguments): as invoke, but looks from `start` (a superclass of the object's class) upwards.
Value invokeFrom(Class& start, const Value& self, std::string_view name, Arguments arguments);
void assignFrom(Class& start, const Value& self, std::string_view name, Arguments arguments,
                const Value& value);

// Picks the overload that fits the arguments best; exact matches win over conversions, the most derived
// class's over its superclasses'. `forAssign`: arguments end with the assigned value. Raises when none fits.
const Member& select(std::span<const Member* const> overloads, std::span<const Value> arguments,
                     bool forAssign, std::string_view what);
// Null when none fits; and what is raised then.
const Member* bestOf(std::span<const Member* const> overloads, std::span<const Value> arguments,
                     bool forAssign);
[[noreturn]] void refuseAll(std::span<const Member* const> overloads, std::span<const Value> arguments,
                            bool forAssign, std::string_view what);
// Calls one member with arguments that are converted here; missing optional ones are filled in.
Value call(const Member& member, REALobject self, Arguments arguments);
void callSetter(const Member& member, REALobject self, Arguments parameters, const Value& value);

// Calls the object's handler of an event if its class has one; `handled` (may be null) says whether. Without
// a handler the result is the default of the event's result type.
Value raiseEvent(REALobject object, std::string_view eventName, Arguments arguments, bool* handled = nullptr);

// ---- global functions --------------------------------------------------------------------------------
// Those
// that plug-ins reach by declaration ("VarType(value As Variant) As Int32", "LenB( s as string ) as
// integer"), which are also callable by programs. The host defines these two; the standard library may add
// more.

void defineGlobal(std::string_view declaration, Body body);
std::vector<const Member*> findGlobal(std::string_view name);
const Member* findGlobalDeclared(const Declaration& declaration);
Value invokeGlobal(std::string_view name, Arguments arguments);

} // namespace host
