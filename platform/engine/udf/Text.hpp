// UDF's texts: OSTA compressed Unicode (UDF 1.02, section 2.1.1) and what is kept of a name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace engine::udf {

/// The longest name of a file, in bytes of compressed Unicode with its leading compression byte.
inline constexpr size_t nameLimit = 255;

/// A compression byte, 8 or 16, then one byte for each character (all up to U+00FF), or UTF-16 with the high byte
/// first. Characters past U+FFFF become surrogate pairs. What is no UTF-8 becomes '_'. Never longer than `limit`:
/// it is cut between characters. Empty for empty text.
std::string compressed(std::string_view utf8, size_t limit);

/// A dstring of fixed size (ECMA-167 1/7.2.12): the compressed text, zeros, and in the last byte its length.
void putFixedText(std::span<std::byte> field, std::string_view utf8);

} // namespace engine::udf
