// Convert.cpp: values for declared types, and comparisons.
#include "host/runtime/Array.hpp"
#include "host/runtime/Class.hpp"
#include "host/runtime/Exceptions.hpp"

#include <cmath>
#include <limits>

namespace host {
namespace {

// Costs of conversions when overloads compete: lower is better, 0 is exact.
enum Cost {
    kExact = 0,
    kNilCost = 1,
    kWider = 2,
    kReal = 4,
    kNarrower = 6,
    kBooleanCost = 30,
    kVariantCost = 40
};

int fitArray(const Value& value, const Type& type) {
    if (value.isNil()) return kNilCost;
    if (!value.isArray()) return -1;
    const Type element = elementType(value.object());
    const Type wanted = type.element();
    if (element == wanted) return kExact;
    if (element.kind != Kind::Object || wanted.kind != Kind::Object) return -1;
    // An array of a subclass serves where one of the superclass is due, and an array of any objects serves
    // for all.
    if (wanted.className.empty() || element.className.empty()) return kWider;
    const Class* from = findClass(element.className);
    const Class* to = findClass(wanted.className);
    return from && to && from->isA(*to) ? kWider : -1;
}

int fitObject(const Value& value, const Type& type) {
    if (value.isNil()) return kNilCost;
    if (!value.isObject()) return -1;
    if (type.className.empty()) return kNarrower;
    // Written as it was declared, nearly always: the registry needn't be asked.
    int distance = 0;
    for (const Class* c = &classOf(value.object()); c; c = c->superOrNull(), ++distance)
        if (c->name() == type.className) return distance;
    const Class* wanted = findClass(type.className);
    if (!wanted) return -1;
    distance = 0;
    for (const Class* c = &classOf(value.object()); c; c = c->superOrNull(), ++distance)
        if (c == wanted) return distance;
    return -1;
}

int fitNumber(const Value& value, Kind kind) {
    if (value.kind() == kind) return kExact;
    if (value.kind() == Kind::Boolean) return kBooleanCost;
    if (!value.isNumber()) return -1;
    const bool toReal = kind == Kind::Single || kind == Kind::Double;
    if (!value.isInteger()) return toReal ? (kind == Kind::Double ? kWider : kReal) : kNarrower + 10;
    if (toReal) return kReal + (kind == Kind::Single ? 1 : 0);
    return sizeOf(kind) >= sizeOf(value.kind()) ? kWider + (sizeOf(kind) > 4 ? 1 : 0) : kNarrower;
}

// The range check of assignments: a number that does not fit is cut, as BASIC does for integers, but reals
// are clamped.
Value toKind(const Value& value, Kind kind) {
    if (kind == Kind::Single) return static_cast<float>(value.toDouble());
    if (kind == Kind::Double) return value.toDouble();
    if (kind == Kind::UInt64) return value.toUInt64();
    return Value::integer(kind, value.toInt64());
}

} // namespace

int fit(const Value& value, const Type& type) {
    if (type.array) return fitArray(value, type);
    switch (type.kind) {
    case Kind::None:
        return -1;
    case Kind::Nil:
        return value.isNil() ? kExact : -1;
    case Kind::Variant:
        return kVariantCost;
    case Kind::String:
        return value.isString() ? kExact : -1;
    case Kind::Object:
        return fitObject(value, type);
    case Kind::Boolean:
        return value.kind() == Kind::Boolean ? int{kExact} : value.isInteger() ? int{kBooleanCost} : -1;
    default:
        return fitNumber(value, type.kind);
    }
}

Value convert(const Value& value, const Type& type, std::string_view what) {
    if (fit(value, type) < 0) {
        const std::string due = type.kind == Kind::None ? "no value" : type.text();
        raise("TypeMismatchException",
              std::string(what) + " must be " + due + ", not " + (value.isNil() ? "nil" : value.typeName()));
    }
    return fitted(value, type);
}

Value fitted(const Value& value, const Type& type) {
    if (type.isReference() || value.kind() == type.kind) return value;
    if (type.kind == Kind::Boolean) return value.toInt64() != 0;
    return toKind(value, type.kind);
}

bool equalValues(const Value& a, const Value& b) {
    if (a.isNil() || b.isNil()) return a.isNil() && b.isNil();
    if (a.isString() && b.isString())
        return a.string() == b.string() || foldCase(utf8Of(a.string())) == foldCase(utf8Of(b.string()));
    if (a.isObject() && b.isObject()) {
        if (a.object() == b.object()) return true;
        return isA(a.object(), "Date") && isA(b.object(), "Date") && a.toDouble() == b.toDouble();
    }
    if (a.isObject() || b.isObject() || a.isString() || b.isString()) return false;
    return compareValues(a, b) == 0;
}

int compareValues(const Value& a, const Value& b) {
    const auto order = [](auto x, auto y) { return x < y ? -1 : x > y ? 1 : 0; };
    if (a.isString() && b.isString())
        return foldCase(utf8Of(a.string())).compare(foldCase(utf8Of(b.string())));
    const auto isPlain = [](const Value& v) { return v.isNumber() || v.kind() == Kind::Boolean; };
    if (isPlain(a) && isPlain(b)) {
        const auto isReal = [](const Value& v) {
            return v.kind() == Kind::Single || v.kind() == Kind::Double;
        };
        if (isReal(a) || isReal(b)) return order(a.toDouble(), b.toDouble());
        const bool aLarge = a.kind() == Kind::UInt64 && a.toInt64() < 0;
        const bool bLarge = b.kind() == Kind::UInt64 && b.toInt64() < 0;
        if (aLarge || bLarge) return aLarge && bLarge ? order(a.toUInt64(), b.toUInt64()) : aLarge ? 1 : -1;
        return order(a.toInt64(), b.toInt64());
    }
    if (a.isObject() && b.isObject() && isA(a.object(), "Date") && isA(b.object(), "Date"))
        return order(a.toDouble(), b.toDouble());
    raise("TypeMismatchException", "a " + a.typeName() + " can't be compared with a " + b.typeName());
}

} // namespace host
