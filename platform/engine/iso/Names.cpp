// Names of ISO 9660 and Joliet.
#include "Names.hpp"
#include "Utf8.hpp"

#include <algorithm>
#include <charconv>

namespace engine::iso {
namespace {

struct Parts {
    std::string_view name, extension;
    uint32_t version = 1;
};

constexpr uint32_t noVersion = 0;

// The number behind the ';' (ECMA-119 7.5.1: 1 to 32767); noVersion when it is none.
uint32_t versionOf(std::string_view digits) noexcept {
    uint32_t version = noVersion;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), version);
    if (error != std::errc() || end != digits.data() + digits.size() || version > 32767) return noVersion;
    return version;
}

// Deliberate: Joliet's names are compared whole. They may have many dots, and those who read them see no extension.
Parts partsOf(std::string_view stored, Form form) noexcept {
    Parts parts{stored, {}, 1};
    if (form == Form::Joliet) {
        for (size_t at = 0; at + 1 < stored.size(); at += 2) {
            if (stored[at] != 0 || stored[at + 1] != ';') continue;
            char digits[5];
            size_t count = 0;
            for (size_t digit = at + 3; digit < stored.size() && count < sizeof digits; digit += 2)
                digits[count++] = stored[digit];
            parts = {stored.substr(0, at), {}, versionOf({digits, count})};
            break;
        }
        return parts;
    }
    if (const size_t at = stored.find(';'); at != std::string_view::npos)
        parts = {stored.substr(0, at), {}, versionOf(stored.substr(at + 1))};
    if (const size_t dot = parts.name.rfind('.'); dot != std::string_view::npos) {
        parts.extension = parts.name.substr(dot + 1);
        parts.name = parts.name.substr(0, dot);
    }
    return parts;
}

// As if the shorter one were filled up: with spaces in ISO 9660, with zeros in Joliet.
int comparePadded(std::string_view a, std::string_view b, Form form) noexcept {
    const size_t common = std::min(a.size(), b.size());
    if (const int order = a.substr(0, common).compare(b.substr(0, common)); order != 0) return order;
    const char fill = form == Form::Iso ? ' ' : '\0';
    const auto tail = [&](std::string_view longer) {
        for (const char c : longer.substr(common))
            if (c != fill) return static_cast<unsigned char>(c) < static_cast<unsigned char>(fill) ? -1 : 1;
        return 0;
    };
    return a.size() > b.size() ? tail(a) : -tail(b);
}

bool isDCharacter(char c) noexcept { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'; }

std::string isoFaultOf(std::string_view name, bool isFolder, const Rules& rules) {
    const auto where = [&rules] { return "in ISO 9660 level " + std::to_string(rules.level); };
    std::string_view plain = name;
    if (const size_t at = name.find(';'); !isFolder && at != std::string_view::npos) {
        if (versionOf(name.substr(at + 1)) == noVersion)
            return where() + " versions are numbers from 1 to 32767";
        plain = name.substr(0, at);
    }
    if (plain == "." || plain == "..") return where() + " no item has that name";
    const size_t dots = static_cast<size_t>(std::ranges::count(plain, '.'));
    if (!rules.anyCharacter) {
        if (isFolder && dots > 0) return where() + " names of folders have no dot";
        if (dots > 1) return where() + " names have only one dot";
    }
    for (const char c : plain) {
        if (c == '.' || isDCharacter(c)) continue;
        if (!rules.anyCharacter) return where() + " names are made of A to Z, 0 to 9 and _";
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F || c == '/' || c == ';')
            return where() + " names have no control characters, and no / and ;";
    }
    const Parts parts = isFolder ? Parts{plain, {}, 1} : partsOf(plain, Form::Iso);
    if (parts.name.empty() && parts.extension.empty()) return where() + " a name has one character at least";
    if (isFolder) {
        const size_t most = rules.level == 1 ? 8 : 31;
        if (plain.size() > most)
            return where() + " names of folders have up to " + std::to_string(most) + " characters";
    } else if (rules.level == 1) {
        if (parts.name.size() > 8 || parts.extension.size() > 3)
            return where() + " names of files have up to 8 characters, and 3 behind the dot";
    } else if (parts.name.size() + parts.extension.size() > 30) {
        return where() + " names of files have up to 30 characters, without the dot";
    }
    return {};
}

std::string jolietFaultOf(std::string_view name, bool isFolder, const Rules& rules) {
    if (!isUtf8(name)) return "in Joliet names are text, in UTF-8";
    std::string_view plain = name;
    if (const size_t at = name.find(';'); !isFolder && at != std::string_view::npos) {
        if (versionOf(name.substr(at + 1)) == noVersion)
            return "in Joliet versions are numbers from 1 to 32767";
        plain = name.substr(0, at);
    }
    if (plain.empty() || plain == "." || plain == "..") return "in Joliet no item has that name";
    // Deliberate: the standard forbids ":", too, which programs are told that a name keeps.
    const auto forbidden = [](char c) {
        return static_cast<unsigned char>(c) < ' ' ||
               std::string_view("*/;?\\").find(c) != std::string_view::npos;
    };
    if (std::ranges::any_of(plain, forbidden))
        return "in Joliet names have no control characters, and none of * / ; ? \\";
    const size_t most = rules.longJoliet ? 103 : 64;
    if (plain.size() > most && wideOf(plain).size() / 2 > most)
        return "in Joliet names have up to " + std::to_string(most) + " UTF-16 units";
    return {};
}

} // namespace

void appendWide(std::string& to, char32_t character) {
    const auto unit = [&to](char32_t value) {
        to += static_cast<char>(value >> 8);
        to += static_cast<char>(value & 0xFF);
    };
    if (character <= 0xFFFF) return unit(character);
    unit(0xD800 + ((character - 0x10000) >> 10));
    unit(0xDC00 + ((character - 0x10000) & 0x3FF));
}

std::string wideOf(std::string_view utf8) {
    std::string result;
    result.reserve(2 * utf8.size());
    while (!utf8.empty()) {
        if (static_cast<unsigned char>(utf8[0]) < 0x80) {
            result.append({'\0', utf8[0]});
            utf8.remove_prefix(1);
            continue;
        }
        const auto character = firstCharacter(utf8);
        appendWide(result, character ? character->value : U'_');
        utf8.remove_prefix(character ? character->bytes : 1);
    }
    return result;
}

std::string utf8Of(std::string_view wide) {
    const auto unitAt = [wide](size_t at) {
        return char32_t{static_cast<unsigned char>(wide[at])} << 8 | static_cast<unsigned char>(wide[at + 1]);
    };
    std::string result;
    for (size_t at = 0; at + 1 < wide.size(); at += 2) {
        char32_t c = unitAt(at);
        if (c >= 0xD800 && c < 0xE000) {
            const char32_t second = c < 0xDC00 && at + 3 < wide.size() ? unitAt(at + 2) : 0;
            const bool isPair = second >= 0xDC00 && second < 0xE000;
            c = isPair ? 0x10000 + ((c & 0x3FF) << 10) + (second & 0x3FF) : U'_';
            if (isPair) at += 2;
        }
        const auto add = [&result](char32_t byte) { result += static_cast<char>(byte); };
        const auto more = [&](int shift) { add(0x80 | (c >> shift & 0x3F)); };
        if (c < 0x80) {
            add(c);
        } else if (c < 0x800) {
            add(0xC0 | c >> 6);
            more(0);
        } else if (c < 0x10000) {
            add(0xE0 | c >> 12);
            more(6);
            more(0);
        } else {
            add(0xF0 | c >> 18);
            more(12);
            more(6);
            more(0);
        }
    }
    return result;
}

std::string faultOf(std::string_view name, bool isFolder, Form form, const Rules& rules) {
    return form == Form::Iso ? isoFaultOf(name, isFolder, rules) : jolietFaultOf(name, isFolder, rules);
}

std::string rockRidgeFaultOf(std::string_view name) {
    if (name.empty() || name == "." || name == "..") return "in Rock Ridge no item has that name";
    if (name.size() > 255) return "in Rock Ridge names have up to 255 bytes";
    if (name.find('/') != std::string_view::npos || name.find('\0') != std::string_view::npos)
        return "in Rock Ridge names have no / and no zeros";
    return {};
}

int compareNames(std::string_view a, std::string_view b, Form form) noexcept {
    const Parts left = partsOf(a, form), right = partsOf(b, form);
    if (const int order = comparePadded(left.name, right.name, form); order != 0) return order;
    if (const int order = comparePadded(left.extension, right.extension, form); order != 0) return order;
    return left.version == right.version ? 0 : left.version > right.version ? -1 : 1; // the newest one first
}

int compareFolders(std::string_view a, std::string_view b, Form form) noexcept {
    return comparePadded(a, b, form);
}

} // namespace engine::iso
