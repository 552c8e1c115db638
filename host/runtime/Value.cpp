// Value.cpp: values and the conversions that variants make.
#include "host/runtime/Value.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Class.hpp"
#include "host/runtime/Date.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

namespace host {
namespace {

// The number at the start of a text: blanks, sign, digits with point and exponent, or &h, &o, &b.
double numberAtStart(std::string_view text) {
    const auto start = text.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos) return 0;
    text.remove_prefix(start);
    if (text.size() > 2 && text[0] == '&') {
        const char letter = lowerName(text.substr(1, 1))[0];
        const int base = letter == 'h' ? 16 : letter == 'o' ? 8 : letter == 'b' ? 2 : 0;
        uint64_t number = 0;
        if (base) std::from_chars(text.data() + 2, text.data() + text.size(), number, base);
        return static_cast<double>(number);
    }
    if (text[0] == '+') text.remove_prefix(1);
    // from_chars also reads "inf" and "nan", which are no numbers of a BASIC text.
    const auto digit = text.find_first_not_of('-');
    if (digit == std::string_view::npos ||
        (!std::isdigit(static_cast<unsigned char>(text[digit])) && text[digit] != '.'))
        return 0;
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// Whole numbers of text are read as such, so that large ones stay exact.
bool wholeNumber(std::string_view text, int64_t& number) {
    const auto end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc{} &&
           (result.ptr == end || (*result.ptr != '.' && *result.ptr != 'e' && *result.ptr != 'E'));
}

template <class T>
T clamped(double real) {
    if (std::isnan(real)) return 0;
    if (real <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
    if (real >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
    return static_cast<T>(real);
}

std::string realText(double real, bool isSingle) {
    if (std::isnan(real)) return "nan";
    if (std::isinf(real)) return real < 0 ? "-inf" : "inf";
    char buffer[64];
    const auto result = isSingle ? std::to_chars(buffer, buffer + sizeof buffer, static_cast<float>(real))
                                 : std::to_chars(buffer, buffer + sizeof buffer, real);
    return {buffer, result.ptr};
}

bool isDate(REALobject object) { return object && isA(object, "Date"); }

} // namespace

Value::Value(const Value& other) : kind_(other.kind_), word_(other.word_) {
    if (kind_ == Kind::String) retain(word_.string);
    if (kind_ == Kind::Object) retain(word_.object);
}

void Value::drop() {
    if (kind_ == Kind::String) release(word_.string);
    if (kind_ == Kind::Object) release(word_.object);
}

Value Value::integer(Kind kind, int64_t number) {
    switch (kind) {
    case Kind::Boolean:
        return number != 0;
    case Kind::Int8:
        return static_cast<int8_t>(number);
    case Kind::Int16:
        return static_cast<int16_t>(number);
    case Kind::Int32:
        return static_cast<int32_t>(number);
    case Kind::UInt8:
        return static_cast<uint8_t>(number);
    case Kind::UInt16:
        return static_cast<uint16_t>(number);
    case Kind::UInt32:
        return static_cast<uint32_t>(number);
    case Kind::UInt64:
        return static_cast<uint64_t>(number);
    default:
        return number;
    }
}

Value Value::defaultFor(const Type& type) {
    if (type.array) return newArray(type.element());
    if (type.kind == Kind::Boolean || isIntegerKind(type.kind)) return integer(type.kind, 0);
    if (type.kind == Kind::Single) return 0.0f;
    if (type.kind == Kind::Double) return 0.0;
    if (type.kind == Kind::String) return String();
    return {};
}

bool Value::isArray() const { return kind_ == Kind::Object && elementType(word_.object).kind != Kind::None; }

std::string Value::typeName() const {
    return kind_ == Kind::Object ? classOf(word_.object).name() : nameOf(kind_);
}

bool Value::toBoolean() const {
    switch (kind_) {
    case Kind::Nil:
        return false;
    case Kind::Single:
    case Kind::Double:
        return word_.real != 0;
    case Kind::String: {
        const auto text = utf8Of(word_.string);
        return sameName(text, "true") || numberAtStart(text) != 0;
    }
    case Kind::Object:
        return true;
    default:
        return word_.integer != 0;
    }
}

int32_t Value::toInt32() const {
    if (kind_ == Kind::Single || kind_ == Kind::Double) return clamped<int32_t>(word_.real);
    return static_cast<int32_t>(toInt64());
}

int64_t Value::toInt64() const {
    switch (kind_) {
    case Kind::Nil:
        return 0;
    case Kind::Single:
    case Kind::Double:
        return clamped<int64_t>(word_.real);
    case Kind::String: {
        const auto text = utf8Of(word_.string);
        int64_t whole = 0;
        return wholeNumber(text, whole) ? whole : clamped<int64_t>(numberAtStart(text));
    }
    case Kind::Object:
        return clamped<int64_t>(toDouble());
    default:
        return word_.integer;
    }
}

uint64_t Value::toUInt64() const {
    if (kind_ == Kind::Single || kind_ == Kind::Double)
        return word_.real < 0 ? static_cast<uint64_t>(toInt64()) : clamped<uint64_t>(word_.real);
    return static_cast<uint64_t>(toInt64());
}

double Value::toDouble() const {
    switch (kind_) {
    case Kind::Nil:
        return 0;
    case Kind::Single:
    case Kind::Double:
        return word_.real;
    case Kind::String:
        return numberAtStart(utf8Of(word_.string));
    case Kind::Object:
        return isDate(word_.object) ? dateTotalSeconds(word_.object) : 0;
    case Kind::UInt64:
        return static_cast<double>(static_cast<uint64_t>(word_.integer));
    default:
        return static_cast<double>(word_.integer);
    }
}

std::string Value::toText() const {
    switch (kind_) {
    case Kind::Nil:
        return "";
    case Kind::Boolean:
        return word_.integer ? "True" : "False";
    case Kind::Single:
        return realText(word_.real, true);
    case Kind::Double:
        return realText(word_.real, false);
    case Kind::String:
        return utf8Of(word_.string);
    case Kind::Object:
        return isDate(word_.object) ? dateText(word_.object) : "";
    case Kind::UInt64:
        return std::to_string(static_cast<uint64_t>(word_.integer));
    default:
        return std::to_string(word_.integer);
    }
}

String Value::toString() const {
    if (kind_ == Kind::String) return String::borrow(word_.string);
    return String(toText());
}

} // namespace host
