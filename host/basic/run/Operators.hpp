// The operators on values whose kinds are known only when they are there, and conversions between types.
#pragma once

#include "host/basic/syntax/Ast.hpp"
#include "host/runtime/Value.hpp"

namespace host::basic {

/// Integers are computed with 64 bits and wrap around there; a result that fits stays 32 bits wide when both
/// operands were. Unsigned 64-bit numbers make the result unsigned. A real operand makes the result real.
/// Raises TypeMismatchException for operands that the operator does not take, DivisionByZeroException for
/// \ and Mod.
Value arithmetic(ast::Operator op, const Value& left, const Value& right);
Value negated(const Value& value);
/// And, Or, Xor of two booleans or of the bits of two integers.
Value logical(ast::Operator op, const Value& left, const Value& right);
Value inverted(const Value& value);
bool compared(ast::Operator op, const Value& left, const Value& right);
/// left & right, both shown as text.
Value joined(const Value& left, const Value& right);

/// The truth of a condition. Raises TypeMismatchException for what is no boolean.
bool isTrue(const Value& value);

/// As a variable of the type takes it. `fromVariant`: texts and numbers become each other too.
Value converted(Value value, const Type& type, bool fromVariant, std::string_view what);

} // namespace host::basic
