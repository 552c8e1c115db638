// Fitting types, and their names in sentences.
#include "Types.hpp"

namespace host::basic {

namespace {

int bits(Kind kind) { return static_cast<int>(sizeOf(kind) * 8); }
bool isUnsigned(Kind kind) { return kind >= Kind::UInt8 && kind <= Kind::UInt64; }
bool isReal(Kind kind) { return kind == Kind::Single || kind == Kind::Double; }

int numberFit(Kind from, Kind to) {
    if (from == to) return 0;
    if (isIntegerKind(from) && isIntegerKind(to)) {
        const bool holdsAll = isUnsigned(from) == isUnsigned(to) ? bits(to) >= bits(from)
                                                                 : !isUnsigned(to) && bits(to) > bits(from);
        return holdsAll ? 1 : 3;
    }
    if (isIntegerKind(from)) return to == Kind::Double ? 2 : 4;
    if (isReal(from) && isReal(to)) return to == Kind::Double ? 1 : 2;
    return 6;
}

int classFit(const Type& from, const Type& to) {
    if (to.className.empty() || sameName(to.className, "Object")) return 8;
    if (sameName(from.className, to.className)) return 0;
    const Class* have = findClass(from.className);
    int distance = 0;
    for (const Class* at = have; at; at = at->superOrNull()) {
        if (sameName(at->name(), to.className)) return distance;
        if (distance < 7) ++distance;
    }
    return -1;
}

} // namespace

int typeFit(const Type& from, const Type& to) {
    if (from.kind == Kind::None || to.kind == Kind::None) return -1;
    if (isVariant(to)) return isVariant(from) ? 0 : 10;
    if (isVariant(from)) return 9; // what it holds is seen when it is there
    if (from.kind == Kind::Nil) return to.array || to.kind == Kind::Object ? 1 : -1;
    if (from.array || to.array) {
        if (from.array && !to.array) return to.kind == Kind::Object && isAnyObject(to) ? 8 : -1;
        if (!from.array) return -1;
        if (from.kind == Kind::Object && to.kind == Kind::Object)
            return classFit(from.element(), to.element());
        return from.kind == to.kind ? 0 : -1;
    }
    if (isNumberKind(from.kind) && isNumberKind(to.kind)) return numberFit(from.kind, to.kind);
    if (from.kind == Kind::Object && to.kind == Kind::Object) return classFit(from, to);
    return from.kind == to.kind ? 0 : -1;
}

Type arithmeticType(const Type& left, const Type& right) {
    if (isReal(left.kind) || isReal(right.kind)) return {Kind::Double, {}, false};
    if (left.kind == Kind::UInt64 || right.kind == Kind::UInt64) return {Kind::UInt64, {}, false};
    const auto wide = [](Kind kind) { return kind == Kind::Int64 || kind == Kind::UInt32; };
    return {wide(left.kind) || wide(right.kind) ? Kind::Int64 : Kind::Int32, {}, false};
}

std::string described(const Type& type) {
    if (type.array)
        return "an array of " + (isAnyObject(type.element()) ? std::string("objects")
                                 : type.kind == Kind::Int32  ? "Integer"
                                                             : type.element().text());
    switch (type.kind) {
    case Kind::None:
        return "no value";
    case Kind::Nil:
        return "Nil";
    case Kind::Int32:
        return "an Integer";
    case Kind::Object:
        return isAnyObject(type) ? "an object" : "a " + type.className;
    default: {
        const std::string text = type.text();
        return (text.starts_with('I') ? "an " : "a ") + text;
    }
    }
}

} // namespace host::basic
