// Variant.hpp: values as the objects that stand for variants in plug-ins.
//
// An object (arrays, dates, dictionaries... included) is its own variant and nil is null; numbers, booleans
// and text are boxed in an object of class "Variant" with the properties Type, StringValue, Int32Value,
// IntegerValue, LongValue, Int64Value, UInt32Value, UInt64Value, SingleValue, DoubleValue, BooleanValue,
// DateValue, ObjectValue. Those properties can be read of every object that has none of its own by that name.
#pragma once

#include "host/runtime/Value.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

// The type codes of VarType: 0 nil, 2 integer, 3 64-bit integer, 4 single, 5 double, 7 date, 8 string, 9
// object, 11 boolean; 4096 more for arrays. Unsigned 32-bit and 64-bit integers are 3, smaller integers 2.
int32_t variantType(const Value& value);
int32_t variantType(REALvariant variant);

// A reference that the caller owns; null for nil.
REALvariant boxVariant(const Value& value);
// The value in the box; an object that is no box is the value itself. Borrows.
Value unboxVariant(REALvariant variant);

// The properties named above, of any value; nothing when the name is none of them.
std::optional<Value> variantProperty(const Value& value, std::string_view name);

} // namespace host
