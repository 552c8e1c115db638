// PathNames.cpp: bytes of file names to UTF-16 and back without loss.
#include "host/services/PathNames.hpp"

#include "host/runtime/String.hpp"

namespace host {
namespace {

constexpr char16_t kFirstByte = 0xEF80, kLastByte = 0xEFFF, kByteBase = 0xEF00;

bool isEscape(char32_t point) { return point >= kFirstByte && point <= kLastByte; }

void appendUTF8(std::string& out, char32_t point) {
    const auto put = [&](char32_t bits) { out += static_cast<char>(static_cast<unsigned char>(bits)); };
    if (point < 0x80) return put(point);
    if (point < 0x800) {
        put(0xC0 | point >> 6);
    } else {
        if (point < 0x10000) {
            put(0xE0 | point >> 12);
        } else {
            put(0xF0 | point >> 18);
            put(0x80 | (point >> 12 & 0x3F));
        }
        put(0x80 | (point >> 6 & 0x3F));
    }
    put(0x80 | (point & 0x3F));
}

// The character at the start of valid UTF-8.
char32_t decoded(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes[0]);
    if (bytes.size() == 1) return lead;
    char32_t point = lead & (0x7Fu >> bytes.size());
    for (const char c : bytes.substr(1))
        point = point << 6 | (static_cast<unsigned char>(c) & 0x3Fu);
    return point;
}

} // namespace

std::u16string nameFromDisk(std::string_view bytes) {
    std::u16string name;
    while (!bytes.empty()) {
        std::size_t length = 1;
        while (length <= 4 && length <= bytes.size() && !isValidUTF8(bytes.substr(0, length)))
            ++length;
        const bool isText = length <= 4 && length <= bytes.size();
        const char32_t point = isText ? decoded(bytes.substr(0, length)) : 0;
        if (!isText || isEscape(point)) {
            if (!isText) length = 1;
            for (const char c : bytes.substr(0, length))
                name += static_cast<char16_t>(kByteBase + static_cast<unsigned char>(c));
        } else if (point >= 0x10000) {
            name += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
            name += static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
        } else {
            name += static_cast<char16_t>(point);
        }
        bytes.remove_prefix(length);
    }
    return name;
}

std::string nameOnDisk(std::u16string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool isPair = unit >= 0xD800 && unit < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                            text[i + 1] < 0xE000;
        if (isEscape(unit))
            bytes += static_cast<char>(static_cast<unsigned char>(unit - kByteBase));
        else if (isPair)
            appendUTF8(bytes, 0x10000 + (char32_t(unit - 0xD800) << 10) + (text[++i] - 0xDC00));
        else
            appendUTF8(bytes, unit);
    }
    return bytes;
}

} // namespace host
