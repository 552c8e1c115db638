// ValueEntries.cpp: the services about variants and arrays.
#include "host/runtime/Array.hpp"
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Pending.hpp"
#include "host/runtime/Variant.hpp"
#include "host/services/Entries.hpp"

#include <array>

namespace host::entries {
namespace {

REALvariant boxed(const Value& value) {
    return guarded<REALvariant>([&] { return boxVariant(value); });
}

template <class T>
T unboxed(REALvariant variant, T (*as)(const Value&)) {
    return guarded<T>([=] { return as(unboxVariant(variant)); });
}

// The element types that plug-ins ask for by number.
struct ElementType {
    int32_t number;
    const char* name;
};
constexpr auto kElementTypes = std::to_array<ElementType>({{1, "Int32"},
                                                           {2, "String"},
                                                           {3, "Double"},
                                                           {kREALArrayOfObjects, "Object"},
                                                           {5, "Single"},
                                                           {6, "Boolean"},
                                                           {7, "Int64"}});

// Runs an array's access and leaves what it raises pending.
template <class Result, class Work>
Result raising(Work work) noexcept {
    try {
        return work();
    } catch (const Exception& exception) {
        setPendingException(exception.object());
    } catch (...) {
    }
    return Result();
}

void insertObject(REALarray array, int32_t index, REALobject value) {
    raising<int>([=] {
        const auto object = arrayObject(array);
        // A variant array takes what is in a box, an array of objects the object itself, be it a box.
        if (elementType(object).kind == Kind::Variant)
            arrayInsert(object, index, unboxVariant(value));
        else
            arrayInsert(object, index, Value::borrow(value));
        return 0;
    });
}

bool isIndex(REALarray array, int32_t index) {
    return array && index >= 0 && index <= upperBound(arrayObject(array));
}

// Elements as they are packed; objects and strings with one more reference. 0 outside of the bounds.
template <class T>
T packedAt(REALarray array, int32_t index) {
    return isIndex(array, index) ? static_cast<T*>(array->elements)[index] : T();
}

REALobject objectAt(REALarray array, int32_t index) {
    return Ref::borrow(packedAt<REALobject>(array, index)).detach();
}

REALstring stringAt(REALarray array, int32_t index) {
    return String::borrow(packedAt<REALstring>(array, index)).detach();
}

template <class Procedure>
REALproc procedure(Procedure address) {
    return reinterpret_cast<REALproc>(address);
}

} // namespace

REALvariant StringToVariant(REALstring value) { return boxed(Value::borrow(value)); }
REALvariant Int32ToVariant(int32_t value) { return boxed(value); }
REALvariant DoubleToVariant(double value) { return boxed(value); }
REALvariant BooleanToVariant(uint8_t value) { return boxed(value != 0); }
REALvariant UInt32ToVariant(uint32_t value) { return boxed(value); }
REALvariant Int64ToVariant(int64_t value) { return boxed(value); }
REALvariant UInt64ToVariant(uint64_t value) { return boxed(value); }
REALvariant SingleToVariant(float value) { return boxed(value); }

REALstring VariantToString(REALvariant value) {
    if (!value) return nullptr;
    return unboxed<REALstring>(value, [](const Value& v) { return v.toString().detach(); });
}
int32_t VariantToInt32(REALvariant value) {
    return unboxed<int32_t>(value, [](const Value& v) { return v.toInt32(); });
}
int64_t VariantToInt64(REALvariant value) {
    return unboxed<int64_t>(value, [](const Value& v) { return v.toInt64(); });
}
float VariantToSingle(REALvariant value) {
    return unboxed<float>(value, [](const Value& v) { return static_cast<float>(v.toDouble()); });
}
double VariantToDouble(REALvariant value) {
    return unboxed<double>(value, [](const Value& v) { return v.toDouble(); });
}

REALarray RuntimeArrayCreateSingleDimBoundedArray(int32_t elementType, int32_t upperBound) {
    if (upperBound < -1) return nullptr;
    for (const auto& known : kElementTypes) {
        if (known.number != elementType) continue;
        return guarded<REALarray>(
            [&] { return arrayHandle(newArray(typeNamed(known.name), upperBound).detach()); });
    }
    return nullptr;
}

int32_t RuntimeUBound(REALarray array) { return array ? upperBound(arrayObject(array)) : -1; }

REALobject RuntimeDirectReadObjectArray(REALarray array, int32_t index) { return objectAt(array, index); }

REALarrayInsertProc RuntimeArrayDirectGetInsertProc(REALarray array) {
    const Type element = array ? elementType(arrayObject(array)) : Type{};
    return element.kind == Kind::Object || element.kind == Kind::Variant ? insertObject : nullptr;
}

REALproc RuntimeArrayDirectGetGetProc(REALarray array) {
    if (!array) return nullptr;
    switch (elementType(arrayObject(array)).kind) {
    case Kind::Object:
    case Kind::Variant:
        return procedure(objectAt);
    case Kind::String:
        return procedure(stringAt);
    case Kind::Boolean:
    case Kind::Int8:
    case Kind::UInt8:
        return procedure(packedAt<uint8_t>);
    case Kind::Int16:
    case Kind::UInt16:
        return procedure(packedAt<uint16_t>);
    case Kind::Int32:
    case Kind::UInt32:
        return procedure(packedAt<int32_t>);
    case Kind::Int64:
    case Kind::UInt64:
        return procedure(packedAt<int64_t>);
    case Kind::Single:
        return procedure(packedAt<float>);
    case Kind::Double:
        return procedure(packedAt<double>);
    default:
        return nullptr;
    }
}

} // namespace host::entries
