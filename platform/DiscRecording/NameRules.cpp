// NameRules: what becomes of a name in each file system of a disc, alone.
#include "NameParts.hpp"
#include "PathNames.hpp"
#include "hfsplus/Names.hpp"

#include <algorithm>
#include <array>

namespace discrecording {
namespace {

constexpr size_t rockRidgeLimit = 255; // bytes

std::u16string joined(const Parts& parts) {
    return parts.extension.empty() ? parts.stem : parts.stem + u'.' + parts.extension;
}

// Never between the two halves of a character.
std::u16string cut(std::u16string text, size_t limit) {
    if (text.size() <= limit) return text;
    if (limit > 0 && text[limit] >= 0xDC00 && text[limit] < 0xE000) --limit;
    text.resize(limit);
    return text;
}

constexpr bool isControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

constexpr char16_t noText = 0xEFFF;

// Stands for a byte of a name on disk that is no text. Rock Ridge holds the byte itself.
constexpr bool isNoText(char16_t unit) { return unit >= 0xEF80 && unit <= 0xEFFF; }

// Of UTF-8: a character of two units has four, one half each. A byte that is no text is itself.
size_t bytesOf(char16_t unit) {
    const bool isHalf = unit >= 0xD800 && unit < 0xE000;
    return unit < 0x80 || isNoText(unit) ? 1 : unit < 0x800 || isHalf ? 2 : 3;
}

size_t bytesOf(std::u16string_view text) {
    size_t bytes = 0;
    for (const char16_t unit : text)
        bytes += bytesOf(unit);
    return bytes;
}

std::u16string cutToBytes(std::u16string text, size_t limit) {
    size_t bytes = 0, units = 0;
    while (units < text.size() && bytes + bytesOf(text[units]) <= limit)
        bytes += bytesOf(text[units++]);
    return cut(std::move(text), units);
}

constexpr char16_t upper(char16_t unit) {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

// The unit as the file system holds it, 0 for one that is left out. Dots are seen to before.
constexpr char16_t legalUnit(NameRule rule, char16_t unit) {
    constexpr std::u16string_view levelTwo = u" !\"%&'()*+-:<=>?_";
    constexpr std::u16string_view notInJoliet = u"\"$*/;<>?\\|";
    switch (rule) {
    case NameRule::ISOLevelOne:
    case NameRule::ISOLevelTwo: {
        const char16_t big = upper(unit);
        if ((big >= u'A' && big <= u'Z') || (big >= u'0' && big <= u'9') || big == u'_') return big;
        return rule == NameRule::ISOLevelTwo && levelTwo.find(big) != levelTwo.npos ? big : u'\0';
    }
    case NameRule::Joliet:
        return isControl(unit) || isNoText(unit) || notInJoliet.find(unit) != notInJoliet.npos ? u'\0' : unit;
    case NameRule::HFSPlus:
        return unit == u'/' ? u':' : isNoText(unit) ? u'_' : unit;
    case NameRule::UDF:
        return unit == u'/' || isNoText(unit) ? u'_' : unit;
    case NameRule::RockRidge:
        return unit;
    }
    return u'\0';
}

constexpr bool isISO(NameRule rule) { return rule == NameRule::ISOLevelOne || rule == NameRule::ISOLevelTwo; }
constexpr bool hasOneDot(NameRule rule) { return isISO(rule) || rule == NameRule::Joliet; }

// What becomes of ASCII's units, by rule.
constexpr auto plainUnits = [] {
    std::array<std::array<char16_t, 128>, nameRules + 1> units{};
    for (size_t rule = 0; rule < units.size(); ++rule)
        for (char16_t unit = 0; unit < 128; ++unit)
            units[rule][unit] = unit == u'.' ? unit : legalUnit(static_cast<NameRule>(rule), unit);
    return units;
}();
// No name of ASCII is cut that has no more units than that; nor one in level 1, when it has no extension.
constexpr std::array<size_t, nameRules + 1> plainLengths{8, 30, 64, 255, 253, rockRidgeLimit};

// The short way for most names: of ASCII, short enough, and no unit or dot is to be left out. Empty for all others.
std::u16string plainName(NameRule rule, std::u16string_view name, bool isFolder) {
    const auto index = static_cast<size_t>(rule);
    if (name.empty() || name.size() > plainLengths[index] || name.front() == u'.') return {};
    std::u16string plain(name.size(), u'\0');
    size_t dots = 0;
    for (size_t i = 0; i < name.size(); ++i) {
        if (name[i] >= 128 || plainUnits[index][name[i]] == 0) return {};
        plain[i] = plainUnits[index][name[i]];
        dots += name[i] == u'.';
    }
    const bool maySplit = rule != NameRule::ISOLevelOne && !(isFolder && isISO(rule));
    if (hasOneDot(rule) && dots > 0 && (dots > 1 || !maySplit || name.back() == u'.')) return {};
    return plain;
}

// No file system holds half of a character.
bool isPartnerless(std::u16string_view text, size_t at) {
    const auto isFirst = [](char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; };
    const auto isSecond = [](char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
    if (isFirst(text[at])) return at + 1 == text.size() || !isSecond(text[at + 1]);
    return isSecond(text[at]) && (at == 0 || !isFirst(text[at - 1]));
}

std::u16string legalUnits(NameRule rule, const std::u16string& text) {
    std::u16string legal;
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = isPartnerless(text, i) ? noText : text[i];
        if (unit == u'.' && hasOneDot(rule)) continue;
        if (const char16_t held = unit == u'.' ? unit : legalUnit(rule, unit)) legal += held;
    }
    return legal;
}

// Units that a whole name may have. UDF counts bytes, of which one tells how wide the others are.
size_t limitOf(NameRule rule, const Parts& parts) {
    switch (rule) {
    case NameRule::ISOLevelOne:
        return parts.extension.empty() ? 8 : 12;
    case NameRule::ISOLevelTwo:
        return 30;
    case NameRule::Joliet:
        return 64;
    case NameRule::HFSPlus:
        return 255;
    case NameRule::UDF:
    case NameRule::RockRidge: // counts bytes and is cut by them
        break;
    }
    const std::u16string whole = parts.stem + parts.extension;
    return std::any_of(whole.begin(), whole.end(), [](char16_t unit) { return unit > 0xFF; }) ? 126 : 253;
}

// As the volume that is written holds it: what comes may be composed in part, and has its limit in units of the other form.
Parts apart(const Parts& parts) {
    const std::u16string name = joined(parts);
    if (isASCII(name)) return parts;
    std::u16string stored = engine::hfsplus::storedName(pathnames::encode(name), SIZE_MAX);
    std::ranges::replace(stored, u'/', u':'); // the other one is stored
    return split(stored, parts.extension.empty());
}

} // namespace

Parts split(std::u16string_view name, bool isFolder) {
    const size_t dot = name.rfind(u'.');
    if (isFolder || dot == std::u16string_view::npos || dot == 0 || dot + 1 == name.size())
        return {std::u16string(name), {}};
    return {std::u16string(name.substr(0, dot)), std::u16string(name.substr(dot + 1))};
}

bool isASCII(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

Parts fitting(NameRule rule, Parts parts, size_t reserved) {
    if (rule == NameRule::RockRidge) {
        parts.extension = cutToBytes(std::move(parts.extension), rockRidgeLimit - 2 - reserved);
        const size_t behind = parts.extension.empty() ? 0 : bytesOf(parts.extension) + 1;
        parts.stem = cutToBytes(std::move(parts.stem), rockRidgeLimit - behind - reserved);
        return parts;
    }
    const size_t limit = limitOf(rule, parts);
    if (rule == NameRule::ISOLevelOne) {
        parts.extension = cut(std::move(parts.extension), 3);
        parts.stem = cut(std::move(parts.stem), 8 - reserved);
        return parts;
    }
    if (!parts.extension.empty()) parts.extension = cut(std::move(parts.extension), limit - 2 - reserved);
    const size_t behind = parts.extension.empty() ? 0 : parts.extension.size() + 1;
    parts.stem = cut(std::move(parts.stem), limit - behind - reserved);
    return parts;
}

std::u16string legalName(NameRule rule, std::u16string_view name, bool isFolder) {
    if (std::u16string plain = plainName(rule, name, isFolder); !plain.empty()) return plain;
    Parts parts = split(name, isFolder && isISO(rule));
    parts.stem = legalUnits(rule, parts.stem);
    parts.extension = legalUnits(rule, parts.extension);
    if (rule == NameRule::HFSPlus) parts = apart(parts);
    if (parts.stem.empty()) parts.stem += u'_';
    // "." and ".." are no names of their own anywhere.
    if (parts.extension.empty() && (parts.stem == u"." || parts.stem == u".."))
        std::replace(parts.stem.begin(), parts.stem.end(), u'.', u'_');
    return joined(fitting(rule, std::move(parts), 0));
}

std::u16string rockRidgeName(std::u16string_view name, bool isFolder) {
    if (bytesOf(name) <= rockRidgeLimit) return std::u16string(name);
    return joined(fitting(NameRule::RockRidge, split(name, isFolder), 0));
}

} // namespace discrecording
