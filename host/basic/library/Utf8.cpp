// Text by characters. Case comes from the C library's Unicode tables, whatever the user's locale is.
#include "Utf8.hpp"

#include <algorithm>
#include <clocale>
#include <cstring>
#include <cwctype>
#include <locale.h>

namespace host::basic::utf8 {

namespace {

locale_t unicodeLocale() {
    static const locale_t made = [] {
        locale_t found = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return found ? found : ::newlocale(LC_CTYPE_MASK, "C", nullptr);
    }();
    return made;
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char32_t lowered(char32_t c) {
    if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
    return static_cast<char32_t>(::towlower_l(static_cast<wint_t>(c), unicodeLocale()));
}
char32_t raised(char32_t c) {
    if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 32 : c;
    return static_cast<char32_t>(::towupper_l(static_cast<wint_t>(c), unicodeLocale()));
}

constexpr char32_t kStrayByte = 0xDC80;

} // namespace

char32_t next(std::string_view text, size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const auto stray = [&] {
        ++at;
        return static_cast<char32_t>(kStrayByte + lead);
    };
    if (lead < 0x80) {
        ++at;
        return lead;
    }
    const size_t length = lead >= 0xF0 && lead < 0xF5   ? 4
                          : lead >= 0xE0 && lead < 0xF0 ? 3
                          : lead >= 0xC2 && lead < 0xE0 ? 2
                                                        : 0;
    if (length == 0 || at + length > text.size()) return stray();
    auto value = static_cast<char32_t>(lead & (0xFFu >> (length + 1)));
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        if ((byte & 0xC0) != 0x80) return stray();
        value = (value << 6) | (byte & 0x3Fu);
    }
    at += length;
    return value;
}

void append(std::string& text, char32_t c) {
    if (c >= kStrayByte + 0x80 && c <= kStrayByte + 0xFF) {
        text.push_back(static_cast<char>(c - kStrayByte));
    } else if (c < 0x80) {
        text.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        text.push_back(static_cast<char>(0xC0 | (c >> 6)));
        text.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        text.push_back(static_cast<char>(0xE0 | (c >> 12)));
        text.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        text.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        text.push_back(static_cast<char>(0xF0 | (c >> 18)));
        text.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        text.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        text.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

size_t count(std::string_view text) {
    size_t at = 0, characters = 0;
    while (at < text.size()) {
        next(text, at);
        ++characters;
    }
    return characters;
}

size_t offsetOf(std::string_view text, size_t character) {
    size_t at = 0;
    while (character > 0 && at < text.size()) {
        next(text, at);
        --character;
    }
    return at;
}

std::string lower(std::string_view text) {
    std::string made;
    made.reserve(text.size());
    for (size_t at = 0; at < text.size();)
        append(made, lowered(next(text, at)));
    return made;
}

std::string upper(std::string_view text) {
    std::string made;
    made.reserve(text.size());
    for (size_t at = 0; at < text.size();)
        append(made, raised(next(text, at)));
    return made;
}

std::string title(std::string_view text) {
    std::string made;
    bool first = true;
    for (size_t at = 0; at < text.size();) {
        const char32_t c = next(text, at);
        append(made, first ? raised(c) : lowered(c));
        first = c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '-';
    }
    return made;
}

int compare(std::string_view a, std::string_view b) {
    size_t i = 0, k = 0;
    while (i < a.size() && k < b.size()) {
        const char32_t left = lowered(next(a, i));
        const char32_t right = lowered(next(b, k));
        if (left != right) return left < right ? -1 : 1;
    }
    return i < a.size() ? 1 : k < b.size() ? -1 : 0;
}

Match find(std::string_view text, std::string_view part, size_t from, bool caseCounts) {
    if (from > text.size()) return {};
    if (caseCounts || part.empty()) return {text.find(part, from), part.size()};
    if (isAscii(part)) {
        const auto same = [](char x, char y) {
            const auto small = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
            return small(x) == small(y);
        };
        const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                       part.begin(), part.end(), same);
        if (found == text.end()) return {};
        return {static_cast<size_t>(found - text.begin()), part.size()};
    }
    for (size_t start = from; start < text.size();) {
        size_t i = start, k = 0;
        bool same = true;
        while (k < part.size() && same)
            same = i < text.size() && lowered(next(text, i)) == lowered(next(part, k));
        if (same) return {start, i - start};
        next(text, start);
    }
    return {};
}

std::string_view trim(std::string_view text, bool left, bool right) {
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (left && !text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (right && !text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace host::basic::utf8
