// Value.hpp: any value of a BASIC program, and its conversions.
//
// Variants have no kind of their own: a variable of type Variant holds a Value as it is. Where a variant
// crosses to a plug-in it becomes an object (Variant.hpp).
#pragma once

#include "host/runtime/Object.hpp"
#include "host/runtime/String.hpp"
#include "host/runtime/Type.hpp"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace host {

class Value {
  public:
    Value() = default; // nil
    // bool gives Boolean; integers give the kind of their size and sign.
    template <std::integral T>
    Value(T number) : kind_(kindOf<T>()) {
        word_.integer = static_cast<int64_t>(number);
    }
    Value(float number) : kind_(Kind::Single) { word_.real = static_cast<double>(number); }
    Value(double number) : kind_(Kind::Double) { word_.real = number; }
    Value(std::string_view utf8) : Value(String(utf8)) {}
    Value(const std::string& utf8) : Value(std::string_view(utf8)) {}
    Value(const char* utf8) : Value(std::string_view(utf8)) {}
    Value(String string) : kind_(Kind::String) { word_.string = string.detach(); }
    Value(Ref object) : kind_(object ? Kind::Object : Kind::Nil) { word_.object = object.detach(); }

    Value(const Value& other);
    Value(Value&& other) noexcept : kind_(other.kind_), word_(other.word_) { other.kind_ = Kind::Nil; }
    Value& operator=(Value other) noexcept {
        std::swap(kind_, other.kind_);
        std::swap(word_, other.word_);
        return *this;
    }
    ~Value() {
        if (kind_ == Kind::String || kind_ == Kind::Object) drop();
    }

    // A null object is nil; a null string is the empty string.
    static Value adopt(REALobject object) { return Ref::adopt(object); }
    static Value borrow(REALobject object) { return Ref::borrow(object); }
    static Value adopt(REALstring string) { return String::adopt(string); }
    static Value borrow(REALstring string) { return String::borrow(string); }
    // An integer of that kind: bits that do not fit are cut off.
    static Value integer(Kind kind, int64_t number);
    // What a variable of the type holds before anything is assigned: 0, false, "", nil.
    static Value defaultFor(const Type& type);

    Kind kind() const { return kind_; }
    bool isNil() const { return kind_ == Kind::Nil; }
    bool isString() const { return kind_ == Kind::String; }
    bool isObject() const { return kind_ == Kind::Object; }
    bool isArray() const;
    bool isInteger() const { return isIntegerKind(kind_); }
    bool isNumber() const { return isNumberKind(kind_); }
    // "Int32", "String", the class's name, "DRTrackQRX()", "Nil".
    std::string typeName() const;

    // Borrowed; null unless the value is a string or an object.
    REALstring string() const { return kind_ == Kind::String ? word_.string : nullptr; }
    REALobject object() const { return kind_ == Kind::Object ? word_.object : nullptr; }

    // What a variant answers. Text is read as a number as far as it is one ("12 MB" is 12, "&hFF" is 255);
    // true is 1; nil and objects are 0 (a Date: its TotalSeconds). Reals are cut towards zero and clamped.
    bool toBoolean() const; // text: "true" in any case, or a number that is not 0; objects: true
    int32_t toInt32() const;
    int64_t toInt64() const;
    uint64_t toUInt64() const;
    double toDouble() const;
    // "True", "12", "0.1", "1.5e+20", the text; nil is ""; a Date its SQLDateTime; any other object "".
    std::string toText() const;
    String toString() const;

  private:
    template <class T>
    static constexpr Kind kindOf() {
        if constexpr (std::is_same_v<T, bool>) return Kind::Boolean;
        constexpr bool isSigned = std::is_signed_v<T>;
        switch (sizeof(T)) {
        case 1:
            return isSigned ? Kind::Int8 : Kind::UInt8;
        case 2:
            return isSigned ? Kind::Int16 : Kind::UInt16;
        case 4:
            return isSigned ? Kind::Int32 : Kind::UInt32;
        default:
            return isSigned ? Kind::Int64 : Kind::UInt64;
        }
    }

    void drop();

    Kind kind_ = Kind::Nil;
    union {
        int64_t integer; // booleans and all integers; UInt64 by its bits
        double real;     // single and double
        REALstring string;
        REALobject object;
    } word_{};
};

// How well a value fits a declared type: 0 exact, higher is worse, -1 not at all. Nil fits every reference
// but String.
int fit(const Value& value, const Type& type);
// The value as the declared type. Raises TypeMismatchException, its message beginning with `what` ("argument
// path of folderWithPath"), when it does not fit. Numbers convert to numbers, anything to Variant; text never
// to a number.
Value convert(const Value& value, const Type& type, std::string_view what);
// The value as a type that it fits.
Value fitted(const Value& value, const Type& type);
// As convert(), but what the message begins with is made only for a message.
template <class Describe>
Value convertOr(const Value& value, const Type& type, const Describe& what) {
    return fit(value, type) < 0 ? convert(value, type, what()) : fitted(value, type);
}
// BASIC's "=": numbers by value, text without regard to case, objects by identity, nil equals only nil.
bool equalValues(const Value& a, const Value& b);
// Negative, 0 or positive; text is compared without regard to case. Raises TypeMismatchException for mixed
// kinds.
int compareValues(const Value& a, const Value& b);

} // namespace host
