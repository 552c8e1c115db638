// Variant.cpp: boxes, type codes, and the properties that every variant has.
#include "host/runtime/Variant.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Builtins.hpp"

#include <array>

namespace host {
namespace {

struct Box {
    Value value;
};

Class* boxClass = nullptr;

enum TypeCode {
    kNilCode = 0,
    kIntegerCode = 2,
    kInt64Code = 3,
    kSingleCode = 4,
    kDoubleCode = 5,
    kDateCode = 7,
    kStringCode = 8,
    kObjectCode = 9,
    kBooleanCode = 11,
    kArrayCode = 4096
};

int32_t codeOf(Kind kind) {
    switch (kind) {
    case Kind::Boolean:
        return kBooleanCode;
    case Kind::Int8:
    case Kind::Int16:
    case Kind::Int32:
    case Kind::UInt8:
    case Kind::UInt16:
        return kIntegerCode;
    case Kind::Int64:
    case Kind::UInt32:
    case Kind::UInt64:
        return kInt64Code;
    case Kind::Single:
        return kSingleCode;
    case Kind::Double:
        return kDoubleCode;
    case Kind::String:
        return kStringCode;
    case Kind::Object:
    case Kind::Variant:
        return kObjectCode;
    case Kind::None:
    case Kind::Nil:
        return kNilCode;
    }
    return kNilCode;
}

// The code says how a plug-in reads the packed elements, so only types of exactly that width have one of the
// numbers'.
int32_t codeOfArray(const Type& element) {
    switch (element.kind) {
    case Kind::Int8:
    case Kind::Int16:
    case Kind::UInt8:
    case Kind::UInt16:
        return kArrayCode;
    case Kind::UInt32:
        return kArrayCode + kIntegerCode;
    case Kind::Object:
        return kArrayCode + (sameName(element.className, "Date") ? kDateCode : kObjectCode);
    default:
        return kArrayCode + codeOf(element.kind);
    }
}

struct VariantProperty {
    const char* name;
    const char* type;
    Value (*read)(const Value&);
};

Value dateOf(const Value& value) { return value.isObject() && isA(value.object(), "Date") ? value : Value(); }
Value objectOf(const Value& value) { return value.isObject() ? value : Value(); }

constexpr auto kProperties = std::to_array<VariantProperty>({
    {"Type", "Int32", [](const Value& v) -> Value { return variantType(v); }},
    {"StringValue", "String", [](const Value& v) -> Value { return v.toString(); }},
    {"Int32Value", "Int32", [](const Value& v) -> Value { return v.toInt32(); }},
    {"IntegerValue", "Int32", [](const Value& v) -> Value { return v.toInt32(); }},
    {"LongValue", "Int64", [](const Value& v) -> Value { return v.toInt64(); }},
    {"Int64Value", "Int64", [](const Value& v) -> Value { return v.toInt64(); }},
    {"UInt32Value", "UInt32", [](const Value& v) -> Value { return static_cast<uint32_t>(v.toInt64()); }},
    {"UInt64Value", "UInt64", [](const Value& v) -> Value { return v.toUInt64(); }},
    {"SingleValue", "Single", [](const Value& v) -> Value { return static_cast<float>(v.toDouble()); }},
    {"DoubleValue", "Double", [](const Value& v) -> Value { return v.toDouble(); }},
    {"BooleanValue", "Boolean", [](const Value& v) -> Value { return v.toBoolean(); }},
    {"DateValue", "Date", dateOf},
    {"ObjectValue", "Object", objectOf},
});

} // namespace

int32_t variantType(const Value& value) {
    if (!value.isObject()) return codeOf(value.kind());
    if (isA(value.object(), "Date")) return kDateCode;
    const Type element = elementType(value.object());
    return element.kind == Kind::None ? int32_t{kObjectCode} : codeOfArray(element);
}

int32_t variantType(REALvariant variant) { return variantType(unboxVariant(variant)); }

REALvariant boxVariant(const Value& value) {
    if (value.isNil()) return nullptr;
    if (value.isObject()) {
        retain(value.object());
        return value.object();
    }
    findClass("Variant");
    REALobject box = newObject(*boxClass);
    dataOf<Box>(box).value = value;
    return box;
}

Value unboxVariant(REALvariant variant) {
    if (variant && &classOf(variant) == boxClass) return dataOf<Box>(variant).value;
    return Value::borrow(variant);
}

std::optional<Value> variantProperty(const Value& value, std::string_view name) {
    for (const auto& property : kProperties)
        if (sameName(property.name, name)) return property.read(value);
    return std::nullopt;
}

void defineVariantClass() {
    std::vector<MemberSpec> members;
    for (const auto& known : kProperties) {
        const auto declaration = std::string(known.name) + " As " + known.type;
        members.push_back(property(declaration, [read = known.read](REALobject self, Arguments) {
            return read(dataOf<Box>(self).value);
        }));
    }
    boxClass = &defineBuiltin(builtinWith<Box>("Variant", std::move(members)));
}

} // namespace host
