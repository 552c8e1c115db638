// Compressed Unicode.
#include "Text.hpp"
#include "Utf8.hpp"

#include <algorithm>
#include <cstring>

namespace engine::udf {
namespace {

std::u32string charactersOf(std::string_view utf8) {
    std::u32string result;
    while (!utf8.empty()) {
        const auto character = firstCharacter(utf8);
        result += character ? character->value : U'_';
        utf8.remove_prefix(character ? character->bytes : 1);
    }
    return result;
}

void appendUnit(std::string& to, char32_t unit) {
    to += static_cast<char>(unit >> 8);
    to += static_cast<char>(unit & 0xFF);
}

} // namespace

std::string compressed(std::string_view utf8, size_t limit) {
    const std::u32string characters = charactersOf(utf8);
    if (characters.empty() || limit < 2) return {};
    const bool isNarrow = std::ranges::all_of(characters, [](char32_t c) { return c < 0x100; });
    std::string result(1, isNarrow ? '\x08' : '\x10');
    for (const char32_t character : characters) {
        const size_t bytes = isNarrow ? 1 : character > 0xFFFF ? 4 : 2;
        if (result.size() + bytes > limit) break;
        if (isNarrow) {
            result += static_cast<char>(character);
        } else if (character > 0xFFFF) {
            appendUnit(result, 0xD800 + ((character - 0x10000) >> 10));
            appendUnit(result, 0xDC00 + ((character - 0x10000) & 0x3FF));
        } else {
            appendUnit(result, character);
        }
    }
    return result;
}

void putFixedText(std::span<std::byte> field, std::string_view utf8) {
    std::ranges::fill(field, std::byte{0});
    const std::string text = compressed(utf8, field.size() - 1);
    if (text.empty()) return;
    std::memcpy(field.data(), text.data(), text.size());
    field.back() = static_cast<std::byte>(text.size());
}

} // namespace engine::udf
