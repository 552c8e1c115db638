// Reading UTF-8 strictly.
#include "Utf8.hpp"

namespace engine {

std::optional<Utf8Character> firstCharacter(std::string_view text) noexcept {
    if (text.empty()) return std::nullopt;
    const auto byteAt = [&](size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byteAt(0);
    if (first < 0x80) return Utf8Character{first, 1};
    const size_t length = first >= 0xC2 && first < 0xE0   ? 2
                          : (first & 0xF0) == 0xE0        ? 3
                          : first >= 0xF0 && first < 0xF5 ? 4
                                                          : 0;
    if (length == 0 || text.size() < length) return std::nullopt;
    char32_t value = first & (0xFFu >> (length + 1));
    for (size_t index = 1; index < length; ++index) {
        if ((byteAt(index) & 0xC0) != 0x80) return std::nullopt;
        value = (value << 6) | (byteAt(index) & 0x3Fu);
    }
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (value < smallest[length] || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000))
        return std::nullopt;
    return Utf8Character{value, length};
}

bool isUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const auto character = firstCharacter(text);
        if (!character) return false;
        text.remove_prefix(character->bytes);
    }
    return true;
}

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto character = firstCharacter(text);
        const size_t length = character ? character->bytes : 1;
        const bool control =
            !character || character->value < 0x20 || (character->value >= 0x7F && character->value < 0xA0);
        if (control) {
            result += '?';
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return result;
}

} // namespace engine
