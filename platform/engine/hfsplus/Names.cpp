// Decomposition, canonical order, and comparison without case.
#include "Names.hpp"
#include "Tables.hpp"
#include "Utf8.hpp"

#include <algorithm>

namespace engine::hfsplus {
namespace {

// Hangul syllables are taken apart by arithmetic (Unicode, 3.12).
constexpr char32_t firstSyllable = 0xAC00, syllables = 11172;
constexpr char32_t firstLeading = 0x1100, firstVowel = 0x1161, beforeTrailing = 0x11A7;
constexpr char32_t trailings = 28, vowelsAndTrailings = 21 * trailings;

uint8_t combiningOrder(char32_t character) {
    if (character < combiningRanges.front().first || character > combiningRanges.back().last) return 0;
    const auto found = std::ranges::lower_bound(combiningRanges, character, {},
                                                [](const auto& range) { return range.last; });
    return found != combiningRanges.end() && character >= found->first ? found->order : 0;
}

void appendApart(std::u32string& to, char32_t character) {
    const auto syllable = character - firstSyllable;
    if (character >= firstSyllable && syllable < syllables) {
        to += firstLeading + syllable / vowelsAndTrailings;
        to += firstVowel + syllable % vowelsAndTrailings / trailings;
        if (syllable % trailings != 0) to += beforeTrailing + syllable % trailings;
        return;
    }
    const auto found = std::ranges::lower_bound(parts, character, {}, &Parts::character);
    if (found == parts.end() || found->character != character) {
        to += character;
        return;
    }
    appendApart(to, found->first);
    if (found->second != 0) appendApart(to, found->second);
}

// Marks on one letter have an order of their own.
void sortMarks(std::u32string& text) {
    for (auto start = text.begin(); start != text.end();) {
        const auto isMark = [](char32_t character) { return combiningOrder(character) != 0; };
        start = std::find_if(start, text.end(), isMark);
        const auto end = std::find_if_not(start, text.end(), isMark);
        std::stable_sort(start, end,
                         [](char32_t a, char32_t b) { return combiningOrder(a) < combiningOrder(b); });
        start = end;
    }
}

char32_t stored(char32_t character) {
    switch (character) {
    case U':':
        return U'/';
    case U'/':
        return U':';
    case 0: // four of them begin the name of the folder for hard links
        return U'_';
    default:
        return character;
    }
}

bool appendUnits(std::u16string& to, char32_t character, size_t limit) {
    const size_t units = character > 0xFFFF ? 2 : 1;
    if (to.size() + units > limit) return false;
    if (units == 2) {
        to += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
        to += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
    } else {
        to += static_cast<char16_t>(character);
    }
    return true;
}

} // namespace

std::u16string storedName(std::string_view utf8, size_t limit) {
    if (utf8.empty()) return u"_";
    std::u16string result;
    // Most names are plain.
    if (utf8.size() <= limit && std::ranges::all_of(utf8, [](char c) { return c > 0; })) {
        result.reserve(utf8.size());
        for (const char character : utf8)
            result += static_cast<char16_t>(stored(static_cast<char32_t>(character)));
        return result;
    }
    std::u32string apart;
    while (!utf8.empty()) {
        const auto character = firstCharacter(utf8);
        appendApart(apart, character ? stored(character->value) : U'_');
        utf8.remove_prefix(character ? character->bytes : 1);
    }
    sortMarks(apart);
    for (const char32_t character : apart)
        if (!appendUnits(result, character, limit)) break;
    return result;
}

char32_t withoutMarks(char32_t character) {
    if (character < 0x80) return character;
    for (auto found = std::ranges::lower_bound(parts, character, {}, &Parts::character);
         found != parts.end() && found->character == character;
         found = std::ranges::lower_bound(parts, character, {}, &Parts::character))
        character = found->first;
    return character;
}

std::u16string foldedName(std::u16string_view stored) {
    std::u16string result;
    result.reserve(stored.size());
    for (const char16_t unit : stored) {
        if (unit >= u'a' && unit <= u'z') {
            result += unit;
            continue;
        }
        const auto found = std::ranges::lower_bound(foldings, unit, {}, &Folding::character);
        if (found == foldings.end() || found->character != unit)
            result += unit;
        else if (found->as != 0)
            result += found->as;
    }
    return result;
}

} // namespace engine::hfsplus
