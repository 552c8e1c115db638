// Arithmetic, logic, comparison and conversion of values.
#include "Operators.hpp"

#include "host/runtime/Exceptions.hpp"

#include <cmath>

namespace host::basic {

using ast::Operator;

namespace {

[[noreturn]] void mismatch(const char* what, const Value& left, const Value& right) {
    raise("TypeMismatchException",
          std::string(what) + ", not " + left.typeName() + " and " + right.typeName());
}

bool isReal(const Value& value) { return value.kind() == Kind::Single || value.kind() == Kind::Double; }
bool isWide(const Value& value) {
    return value.kind() == Kind::Int64 || value.kind() == Kind::UInt64 || value.kind() == Kind::UInt32;
}

Value integerResult(uint64_t bits, const Value& left, const Value& right) {
    if (left.kind() == Kind::UInt64 || right.kind() == Kind::UInt64) return Value(bits);
    const auto number = static_cast<int64_t>(bits);
    if (isWide(left) || isWide(right) || number < INT32_MIN || number > INT32_MAX) return Value(number);
    return Value(static_cast<int32_t>(number));
}

uint64_t integerPower(uint64_t base, uint64_t exponent) {
    uint64_t result = 1;
    for (; exponent > 0; exponent >>= 1) {
        if (exponent & 1) result *= base;
        base *= base;
    }
    return result;
}

Value integers(Operator op, const Value& left, const Value& right) {
    const auto a = static_cast<uint64_t>(left.toInt64());
    const auto b = static_cast<uint64_t>(right.toInt64());
    const bool isUnsigned = left.kind() == Kind::UInt64 || right.kind() == Kind::UInt64;
    const auto sa = static_cast<int64_t>(a), sb = static_cast<int64_t>(b);
    switch (op) {
    case Operator::add:
        return integerResult(a + b, left, right);
    case Operator::subtract:
        return integerResult(a - b, left, right);
    case Operator::multiply:
        return integerResult(a * b, left, right);
    case Operator::integerDivide:
    case Operator::modulo: {
        const bool quotient = op == Operator::integerDivide;
        if (b == 0) raise("DivisionByZeroException", quotient ? "\\ divides by zero" : "Mod divides by zero");
        if (isUnsigned) return integerResult(quotient ? a / b : a % b, left, right);
        if (sb == -1)
            return integerResult(quotient ? 0 - a : 0, left, right); // the smallest number has no opposite
        return integerResult(static_cast<uint64_t>(quotient ? sa / sb : sa % sb), left, right);
    }
    case Operator::power:
        if (isUnsigned || sb >= 0) {
            // Exact as long as it fits; what is larger than 64 bits is a real number.
            const double estimate = std::pow(left.toDouble(), right.toDouble());
            if (std::fabs(estimate) < 9e18) return integerResult(integerPower(a, b), left, right);
        }
        return Value(std::pow(left.toDouble(), right.toDouble()));
    default:
        return Value(left.toDouble() / right.toDouble());
    }
}

Value reals(Operator op, double a, double b) {
    switch (op) {
    case Operator::add:
        return a + b;
    case Operator::subtract:
        return a - b;
    case Operator::multiply:
        return a * b;
    case Operator::divide:
        return a / b;
    case Operator::power:
        return std::pow(a, b);
    case Operator::modulo:
        if (b == 0) raise("DivisionByZeroException", "Mod divides by zero");
        return std::fmod(a, b);
    default:
        if (b == 0) raise("DivisionByZeroException", "\\ divides by zero");
        return Value(Value(a / b).toInt64());
    }
}

} // namespace

Value arithmetic(Operator op, const Value& left, const Value& right) {
    if (left.isNumber() && right.isNumber()) {
        if (op == Operator::divide || isReal(left) || isReal(right))
            return reals(op, left.toDouble(), right.toDouble());
        return integers(op, left, right);
    }
    if (op == Operator::add && left.isString() && right.isString()) return joined(left, right);
    if (op == Operator::add)
        mismatch("'+' adds two numbers or joins two texts (use & to join others)", left, right);
    mismatch("this operator takes two numbers", left, right);
}

Value negated(const Value& value) {
    if (isReal(value))
        return value.kind() == Kind::Single ? Value(-static_cast<float>(value.toDouble()))
                                            : Value(-value.toDouble());
    if (!value.isInteger()) raise("TypeMismatchException", "'-' takes a number, not " + value.typeName());
    // The type of an unsigned number is left: -x is below zero.
    const auto bits = 0 - static_cast<uint64_t>(value.toInt64());
    const auto number = static_cast<int64_t>(bits);
    if (isWide(value) || number < INT32_MIN || number > INT32_MAX) return Value(number);
    return Value(static_cast<int32_t>(number));
}

Value logical(Operator op, const Value& left, const Value& right) {
    const bool booleans = left.kind() == Kind::Boolean && right.kind() == Kind::Boolean;
    if (!booleans && !(left.isInteger() && right.isInteger()))
        mismatch("And, Or and Xor take two booleans or two integers", left, right);
    const auto a = static_cast<uint64_t>(left.toInt64());
    const auto b = static_cast<uint64_t>(right.toInt64());
    const uint64_t bits = op == Operator::logicalAnd ? a & b : op == Operator::logicalOr ? a | b : a ^ b;
    if (booleans) return Value(bits != 0);
    return integerResult(bits, left, right);
}

Value inverted(const Value& value) {
    if (value.kind() == Kind::Boolean) return Value(!value.toBoolean());
    if (value.isInteger()) return Value::integer(value.kind(), ~value.toInt64());
    raise("TypeMismatchException", "Not takes a boolean or an integer, not " + value.typeName());
}

bool compared(Operator op, const Value& left, const Value& right) {
    if (op == Operator::equal) return equalValues(left, right);
    if (op == Operator::notEqual) return !equalValues(left, right);
    if (op == Operator::is)
        return (left.isNil() && right.isNil()) || (left.object() && left.object() == right.object());
    if (left.isNumber() && right.isNumber() && (isReal(left) || isReal(right))) {
        const double a = left.toDouble(), b = right.toDouble(); // nothing is less or greater than "no number"
        switch (op) {
        case Operator::less:
            return a < b;
        case Operator::lessOrEqual:
            return a <= b;
        case Operator::greater:
            return a > b;
        default:
            return a >= b;
        }
    }
    const int order = compareValues(left, right);
    switch (op) {
    case Operator::less:
        return order < 0;
    case Operator::lessOrEqual:
        return order <= 0;
    case Operator::greater:
        return order > 0;
    default:
        return order >= 0;
    }
}

Value joined(const Value& left, const Value& right) {
    if (left.isString() && right.isString()) {
        // Data stays data: bytes without a known encoding are joined as they are.
        const uint32_t a = encodingOf(left.string()), b = encodingOf(right.string());
        const auto plain = [](uint32_t encoding) {
            return encoding == kREALEncodingUTF8 || encoding == kREALEncodingASCII;
        };
        const bool data = (a == kREALEncodingUnknown && plain(b)) || (b == kREALEncodingUnknown && plain(a));
        if (a == b || data) {
            std::string both;
            both.reserve(bytesOf(left.string()).size() + bytesOf(right.string()).size());
            both.append(bytesOf(left.string())).append(bytesOf(right.string()));
            return Value::adopt(newString(both, data ? uint32_t{kREALEncodingUnknown} : a));
        }
    }
    return Value(left.toText() + right.toText());
}

bool isTrue(const Value& value) {
    if (value.kind() == Kind::Boolean) return value.toBoolean();
    if (value.isInteger()) return value.toInt64() != 0;
    raise("TypeMismatchException", "a condition must be a boolean, not " + value.typeName());
}

Value converted(Value value, const Type& type, bool fromVariant, std::string_view what) {
    if (type.kind == Kind::Variant && !type.array) return value;
    if (!type.array && type.kind != Kind::Object) {
        if (value.kind() == type.kind) return value;
        const bool numbers = value.isNumber() && isNumberKind(type.kind);
        if (numbers || (fromVariant && !value.isArray())) {
            switch (type.kind) {
            case Kind::Boolean:
                return Value(value.toBoolean());
            case Kind::Single:
                return Value(static_cast<float>(value.toDouble()));
            case Kind::Double:
                return Value(value.toDouble());
            case Kind::String:
                return Value(value.toText());
            case Kind::Int32:
                return value.isInteger() ? Value::integer(Kind::Int32, value.toInt64())
                                         : Value(value.toInt32());
            case Kind::UInt64:
                return Value(value.isInteger() ? static_cast<uint64_t>(value.toInt64()) : value.toUInt64());
            default:
                return Value::integer(type.kind, value.toInt64());
            }
        }
    }
    if (value.isNil() && type.isReference() && type.kind != Kind::String) return value;
    return convert(value, type, what);
}

} // namespace host::basic
