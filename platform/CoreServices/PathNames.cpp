// PathNames: reversible conversion between names on disk and UTF-16.
#include "PathNames.hpp"

#include <cstdint>

namespace pathnames {
namespace {

constexpr char32_t escapeBase = 0xEF00;
constexpr char32_t notText = 0xFFFFFFFF;

constexpr bool isEscape(char32_t c) { return c >= escapeBase + 0x80 && c <= escapeBase + 0xFF; }

struct Scalar {
    char32_t value; // notText when the front of the bytes is no character
    size_t bytes;
};

// RFC 3629, section 4: shortest forms only, no surrogates, nothing above U+10FFFF.
Scalar scalarAt(std::string_view bytes) {
    const auto lead = static_cast<uint8_t>(bytes[0]);
    if (lead < 0x80) return {lead, 1};
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {notText, 1};
    char32_t value = lead & (0xFFu >> (length + 1));
    for (size_t i = 1; i < length; i++) {
        const auto next = static_cast<uint8_t>(bytes[i]);
        if ((next & 0xC0) != 0x80) return {notText, 1};
        value = value << 6 | (next & 0x3Fu);
    }
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (value < least[length] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
        return {notText, 1};
    return {value, length};
}

void appendUtf8(std::string& bytes, char32_t value) {
    const auto put = [&bytes](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    if (value < 0x80) {
        put(value);
    } else if (value < 0x800) {
        put(0xC0 | value >> 6);
        put(0x80 | (value & 0x3F));
    } else if (value < 0x10000) {
        put(0xE0 | value >> 12);
        put(0x80 | (value >> 6 & 0x3F));
        put(0x80 | (value & 0x3F));
    } else {
        put(0xF0 | value >> 18);
        put(0x80 | (value >> 12 & 0x3F));
        put(0x80 | (value >> 6 & 0x3F));
        put(0x80 | (value & 0x3F));
    }
}

} // namespace

std::u16string decode(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const Scalar scalar = scalarAt(bytes);
        if (scalar.value == notText || isEscape(scalar.value)) {
            for (size_t i = 0; i < scalar.bytes; i++) {
                text.push_back(static_cast<char16_t>(escapeBase + static_cast<uint8_t>(bytes[i])));
            }
        } else if (scalar.value >= 0x10000) {
            text.push_back(static_cast<char16_t>(0xD800 + ((scalar.value - 0x10000) >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + ((scalar.value - 0x10000) & 0x3FF)));
        } else {
            text.push_back(static_cast<char16_t>(scalar.value));
        }
        bytes.remove_prefix(scalar.bytes);
    }
    return text;
}

std::string encode(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 2);
    for (size_t i = 0; i < text.size(); i++) {
        const char32_t unit = text[i];
        if (isEscape(unit)) {
            bytes.push_back(static_cast<char>(unit - escapeBase));
        } else if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                   text[i + 1] <= 0xDFFF) {
            appendUtf8(bytes, 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00u));
            i++;
        } else {
            appendUtf8(bytes, unit);
        }
    }
    return bytes;
}

} // namespace pathnames
