// Marshal.hpp: values as the machine arguments and results of plug-in functions, both ways.
#pragma once

#include "host/runtime/Declaration.hpp"

#include <cstdint>
#include <ffi.h>

namespace host {

// Room for one machine value. Results narrower than a word come back widened (libffi's rule), hence `word`.
union Slot {
    int8_t int8;
    int16_t int16;
    int32_t int32;
    int64_t int64;
    uint8_t uint8;
    uint16_t uint16;
    uint32_t uint32;
    uint64_t uint64;
    float single;
    double real;
    REALstring string;
    REALobject object;
    void* pointer;
    ffi_arg word;
};

ffi_type* foreignType(const Type& type, bool byRef = false);

// Stores a value that already has the type. Strings and objects (variants, arrays) are stored with a
// reference of their own: drop it with dropSlot, or leave it to whom the slot is given.
void storeSlot(const Value& value, const Type& type, Slot& slot);
// Reads a value and takes over the slot's reference.
Value takeSlot(const Type& type, const Slot& slot);
// Reads a value and leaves the slot's reference where it is.
Value peekSlot(const Type& type, const Slot& slot);
void dropSlot(const Type& type, const Slot& slot);

// The result of a foreign call, or of a closure: small integers are widened to a word.
Value takeResult(const Type& type, const Slot& slot);
void storeResult(const Value& value, const Type& type, void* result);
void zeroResult(const Type& type, void* result);

} // namespace host
