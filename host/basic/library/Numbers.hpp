// Numbers as text: how Print shows them, what Val reads, and the patterns of Format.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host::basic {

/// The shortest text that reads back as the same number; whole numbers have no decimal point.
std::string numberText(double value);
std::string numberText(float value);

/// The number at the start of a text, 0 when there is none. Leading blanks are passed over; &h, &o and &b are
/// known.
double leadingNumber(std::string_view text);
/// The same for whole numbers; nothing when the text begins with none that fits.
std::optional<int64_t> leadingInteger(std::string_view text);

/// A number by a pattern: # digit or nothing, 0 digit or zero, one '.' and one ',' for groups of three, %
/// (hundredfold), E for powers of ten, + - sign, "\" takes the next character as it is, texts before and
/// after stay. Up to three patterns, separated by ';': for positive numbers, negative numbers and zero.
std::string formatNumber(double value, std::string_view pattern);

/// An unsigned number in base 2, 8 or 16, in capitals.
std::string inBase(uint64_t value, unsigned base);

} // namespace host::basic
