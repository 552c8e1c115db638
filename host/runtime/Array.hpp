// Array.hpp: arrays of one dimension, packed as plug-ins read them; indices start at 0, an upper bound of -1
// is empty.
#pragma once

#include "host/runtime/Value.hpp"

#include <cstdint>

namespace host {

// A new array with one reference; elements have the type's default. Arrays of Variant hold boxed values
// (objects).
Ref newArray(const Type& element, int32_t upperBound = -1);
REALarray arrayHandle(REALobject array);
REALobject arrayObject(REALarray array);

Type elementType(REALobject array);
int32_t upperBound(REALobject array);
// All raise OutOfBoundsException for a bad index ("index 3 is out of bounds: the array's last index is 2")
// and TypeMismatchException for a value that is none of the element type.
Value arrayGet(REALobject array, int64_t index);
void arraySet(REALobject array, int64_t index, const Value& value);
void arrayInsert(REALobject array, int64_t index, const Value& value); // index up to upper bound + 1
void arrayAppend(REALobject array, const Value& value);
void arrayRemove(REALobject array, int64_t index);
void arrayResize(REALobject array,
                 int64_t upperBound); // Redim: keeps what stays, new elements have the default
// Index of the first equal element, or -1.
int32_t arrayIndexOf(REALobject array, const Value& value, int32_t from = 0);
// Gives an array of plain objects a class for its elements, as a declared result type says.
void setElementClass(REALobject array, const Type& element);

} // namespace host
