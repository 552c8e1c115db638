// Marshal.cpp: one value to and from one machine slot.
#include "host/plugin/Marshal.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Variant.hpp"

#include <cstring>

namespace host {
namespace {

bool isObjectSlot(const Type& type) {
    return type.array || type.kind == Kind::Object || type.kind == Kind::Variant;
}

Value readPlain(Kind kind, const Slot& slot) {
    switch (kind) {
    case Kind::Boolean:
        return slot.uint8 != 0;
    case Kind::Int8:
        return slot.int8;
    case Kind::Int16:
        return slot.int16;
    case Kind::Int32:
        return slot.int32;
    case Kind::Int64:
        return slot.int64;
    case Kind::UInt8:
        return slot.uint8;
    case Kind::UInt16:
        return slot.uint16;
    case Kind::UInt32:
        return slot.uint32;
    case Kind::UInt64:
        return slot.uint64;
    case Kind::Single:
        return slot.single;
    case Kind::Double:
        return slot.real;
    default:
        return {};
    }
}

// An array of plain objects that comes from a plug-in gets the class that the declaration says.
Value ofDeclaredClass(Value value, const Type& type) {
    if (type.array && type.kind == Kind::Object && value.isArray())
        setElementClass(value.object(), type.element());
    return value;
}

} // namespace

ffi_type* foreignType(const Type& type, bool byRef) {
    if (byRef || type.isReference()) return &ffi_type_pointer;
    switch (type.kind) {
    case Kind::None:
        return &ffi_type_void;
    case Kind::Boolean:
    case Kind::UInt8:
        return &ffi_type_uint8;
    case Kind::Int8:
        return &ffi_type_sint8;
    case Kind::Int16:
        return &ffi_type_sint16;
    case Kind::Int32:
        return &ffi_type_sint32;
    case Kind::Int64:
        return &ffi_type_sint64;
    case Kind::UInt16:
        return &ffi_type_uint16;
    case Kind::UInt32:
        return &ffi_type_uint32;
    case Kind::UInt64:
        return &ffi_type_uint64;
    case Kind::Single:
        return &ffi_type_float;
    case Kind::Double:
        return &ffi_type_double;
    default:
        return &ffi_type_pointer;
    }
}

void storeSlot(const Value& value, const Type& type, Slot& slot) {
    slot.uint64 = 0;
    if (type.array || type.kind == Kind::Object) {
        slot.object = value.object();
        retain(slot.object);
        return;
    }
    switch (type.kind) {
    case Kind::Variant:
        slot.object = boxVariant(value);
        break;
    case Kind::String:
        slot.string = value.string();
        retain(slot.string);
        break;
    case Kind::Single:
        slot.single = static_cast<float>(value.toDouble());
        break;
    case Kind::Double:
        slot.real = value.toDouble();
        break;
    case Kind::Boolean:
        slot.uint8 = value.toBoolean() ? 1 : 0;
        break;
    case Kind::Int8:
    case Kind::UInt8:
        slot.uint8 = static_cast<uint8_t>(value.toInt64());
        break;
    case Kind::Int16:
    case Kind::UInt16:
        slot.uint16 = static_cast<uint16_t>(value.toInt64());
        break;
    case Kind::Int32:
    case Kind::UInt32:
        slot.uint32 = static_cast<uint32_t>(value.toInt64());
        break;
    case Kind::Int64:
    case Kind::UInt64:
        slot.uint64 = value.toUInt64();
        break;
    default:
        break;
    }
}

Value takeSlot(const Type& type, const Slot& slot) {
    if (isObjectSlot(type)) {
        Value object = ofDeclaredClass(Value::adopt(slot.object), type);
        return type.kind == Kind::Variant && !type.array ? unboxVariant(object.object()) : object;
    }
    if (type.kind == Kind::String) return Value::adopt(slot.string);
    return readPlain(type.kind, slot);
}

Value peekSlot(const Type& type, const Slot& slot) {
    if (isObjectSlot(type)) {
        if (type.kind == Kind::Variant && !type.array) return unboxVariant(slot.object);
        return Value::borrow(slot.object);
    }
    if (type.kind == Kind::String) return Value::borrow(slot.string);
    return readPlain(type.kind, slot);
}

void dropSlot(const Type& type, const Slot& slot) {
    if (isObjectSlot(type))
        release(slot.object);
    else if (type.kind == Kind::String)
        release(slot.string);
}

Value takeResult(const Type& type, const Slot& slot) {
    if (type.isReference() || type.kind == Kind::Single || type.kind == Kind::Double ||
        sizeOf(type.kind) >= sizeof(ffi_arg))
        return takeSlot(type, slot);
    Slot narrow;
    narrow.uint64 = 0;
    switch (sizeOf(type.kind)) { // by value, so that it is right in either byte order
    case 1:
        narrow.uint8 = static_cast<uint8_t>(slot.word);
        break;
    case 2:
        narrow.uint16 = static_cast<uint16_t>(slot.word);
        break;
    case 4:
        narrow.uint32 = static_cast<uint32_t>(slot.word);
        break;
    default:
        break;
    }
    return readPlain(type.kind, narrow);
}

void storeResult(const Value& value, const Type& type, void* result) {
    if (type.kind == Kind::None) return;
    Slot slot;
    storeSlot(value, type, slot);
    const bool isWhole = type.isReference() || type.kind == Kind::Single || type.kind == Kind::Double;
    if (isWhole || sizeOf(type.kind) >= sizeof(ffi_arg)) {
        std::memcpy(result, &slot, type.isReference() ? sizeof(void*) : sizeOf(type.kind));
        return;
    }
    const bool isSigned = type.kind == Kind::Int8 || type.kind == Kind::Int16 || type.kind == Kind::Int32;
    const auto number = value.toInt64();
    ffi_arg word = 0;
    if (isSigned)
        word = static_cast<ffi_arg>(static_cast<ffi_sarg>(readPlain(type.kind, slot).toInt64()));
    else
        word = static_cast<ffi_arg>(type.kind == Kind::Boolean ? number != 0
                                                               : readPlain(type.kind, slot).toInt64());
    std::memcpy(result, &word, sizeof word);
}

void zeroResult(const Type& type, void* result) {
    if (type.kind == Kind::None) return;
    const std::size_t size = type.isReference() ? sizeof(void*) : sizeOf(type.kind);
    std::memset(result, 0, size < sizeof(ffi_arg) && type.kind != Kind::Single ? sizeof(ffi_arg) : size);
}

} // namespace host
