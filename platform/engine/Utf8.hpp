// Reading UTF-8 strictly: no overlong forms, no surrogates, nothing past U+10FFFF (RFC 3629).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace engine {

/// The character at the front and how many bytes it takes; empty when the bytes are no UTF-8.
struct Utf8Character {
    char32_t value;
    size_t bytes;
};
std::optional<Utf8Character> firstCharacter(std::string_view text) noexcept;

bool isUtf8(std::string_view text) noexcept;

/// The text with '?' for each byte that is no UTF-8 and for each control character.
std::string printable(std::string_view text);

} // namespace engine
