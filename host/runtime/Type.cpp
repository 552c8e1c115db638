// Type.cpp: type names and sizes.
#include "host/runtime/Type.hpp"

#include <algorithm>
#include <array>

namespace host {
namespace {

char lowerChar(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

struct Named {
    const char* name;
    Kind kind;
};

// The first name of a kind is the one that messages use.
constexpr auto kNames =
    std::to_array<Named>({{"Boolean", Kind::Boolean}, {"Int8", Kind::Int8},       {"Int16", Kind::Int16},
                          {"Int32", Kind::Int32},     {"Int64", Kind::Int64},     {"UInt8", Kind::UInt8},
                          {"UInt16", Kind::UInt16},   {"UInt32", Kind::UInt32},   {"UInt64", Kind::UInt64},
                          {"Single", Kind::Single},   {"Double", Kind::Double},   {"String", Kind::String},
                          {"Variant", Kind::Variant}, {"Object", Kind::Object},   {"Nil", Kind::Nil},
                          {"Integer", Kind::Int32},   {"UInteger", Kind::UInt32}, {"Byte", Kind::UInt8},
                          {"Text", Kind::String},     {"Auto", Kind::Variant}});

} // namespace

bool sameName(std::string_view a, std::string_view b) {
    if (a == b) return true; // nearly always, and quickly
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return lowerChar(x) == lowerChar(y); });
}

std::string lowerName(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), lowerChar);
    return lower;
}

bool NameLess::operator()(std::string_view a, std::string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return lowerChar(x) < lowerChar(y); });
}

bool Type::operator==(const Type& other) const {
    return kind == other.kind && array == other.array && sameName(className, other.className);
}

std::string Type::text() const {
    if (kind == Kind::None) return "";
    std::string name = kind == Kind::Object && !className.empty() ? className : nameOf(kind);
    return array ? name + "()" : name;
}

Type typeNamed(std::string_view name) {
    Type type;
    if (name.ends_with("()")) {
        type.array = true;
        name.remove_suffix(2);
    }
    for (const auto& known : kNames) {
        if (!sameName(known.name, name)) continue;
        type.kind = known.kind;
        return type;
    }
    type.kind = Kind::Object;
    type.className = name;
    return type;
}

bool isIntegerKind(Kind kind) { return kind >= Kind::Int8 && kind <= Kind::UInt64; }
bool isNumberKind(Kind kind) { return isIntegerKind(kind) || kind == Kind::Single || kind == Kind::Double; }

std::size_t sizeOf(Kind kind) {
    switch (kind) {
    case Kind::None:
        return 0;
    case Kind::Boolean:
    case Kind::Int8:
    case Kind::UInt8:
        return 1;
    case Kind::Int16:
    case Kind::UInt16:
        return 2;
    case Kind::Int32:
    case Kind::UInt32:
    case Kind::Single:
        return 4;
    case Kind::Int64:
    case Kind::UInt64:
    case Kind::Double:
        return 8;
    case Kind::Nil:
    case Kind::String:
    case Kind::Object:
    case Kind::Variant:
        return sizeof(void*);
    }
    return 0;
}

const char* nameOf(Kind kind) {
    for (const auto& known : kNames)
        if (known.kind == kind) return known.name;
    return "";
}

} // namespace host
