// What is known of types before a program runs: what may be assigned to what, and how well it fits.
#pragma once

#include "host/runtime/Class.hpp"
#include "host/runtime/Type.hpp"

#include <string>

namespace host::basic {

/// How well a value of one type fits a variable of another: 0 the same, more is worse, -1 not at all.
int typeFit(const Type& from, const Type& to);

inline bool isAnyObject(const Type& type) {
    return type.kind == Kind::Object && !type.array &&
           (type.className.empty() || sameName(type.className, "Object"));
}
inline bool isVariant(const Type& type) { return type.kind == Kind::Variant && !type.array; }
inline bool isText(const Type& type) { return type.kind == Kind::String && !type.array; }
inline bool isNumber(const Type& type) { return !type.array && isNumberKind(type.kind); }
inline bool isInteger(const Type& type) { return !type.array && isIntegerKind(type.kind); }
inline bool isBoolean(const Type& type) { return type.kind == Kind::Boolean && !type.array; }

/// The type of left op right for two integers, or for a real one among them.
Type arithmeticType(const Type& left, const Type& right);

/// As a sentence names it: "an Integer", "a DRTrackQRX", "an array of String", "nil".
std::string described(const Type& type);

} // namespace host::basic
