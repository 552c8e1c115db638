// Type.hpp: the types that values, parameters, fields and array elements can have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

enum class Kind : uint8_t {
    None, // no type: a Sub has no result
    Nil,  // the type of the value nil only
    Boolean,
    Int8,
    Int16,
    Int32,
    Int64,
    UInt8,
    UInt16,
    UInt32,
    UInt64,
    Single,
    Double,
    String,
    Object, // an object; Type::className says of which class, "" for any
    Variant // any value; only types have this kind, values never
};

// A declared type. An array of T is Type{T.kind, T.className, true}.
struct Type {
    Kind kind = Kind::None;
    std::string className; // only with Kind::Object: as it was written; "" or "Object" fits every object
    bool array = false;

    Type element() const { return {kind, className, false}; }
    // Memory blocks, strings, objects, arrays and variants: nil (or the empty string) is a null pointer.
    bool isReference() const {
        return array || kind == Kind::String || kind == Kind::Object || kind == Kind::Variant;
    }
    // Case-insensitive in class names.
    bool operator==(const Type& other) const;
    // "Int32", "DRTrackQRX()", ...; "" for None.
    std::string text() const;
};

// "integer", "UInt8", "folderitem", "Foo", "Foo()"...: never fails, an unknown name is the name of a class
// that may come later. "Integer" is Int32.
Type typeNamed(std::string_view name);

bool isIntegerKind(Kind kind);
bool isNumberKind(Kind kind); // integers, single and double
// Bytes of one packed element or machine argument; references are one machine word.
std::size_t sizeOf(Kind kind);
const char* nameOf(Kind kind);

// Names of classes and members are compared without regard to ASCII case.
bool sameName(std::string_view a, std::string_view b);
std::string lowerName(std::string_view name);
struct NameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};

} // namespace host
