// Making names legal, and telling those apart that became the same.
#include "Names.hpp"
#include "Failure.hpp"
#include "Utf8.hpp"
#include "hfsplus/Names.hpp"
#include "udf/Text.hpp"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

namespace engine::plan {
namespace {

constexpr size_t isoNameLimit = 30; // of level 2 and up, with the dot
constexpr size_t jolietNameLimit = 64;
constexpr char32_t noText = 0xFFFFFFFF;

// A dot in front of a name, or at its end, begins no extension.
size_t extensionOf(std::string_view name, bool isFolder) {
    const size_t dot = name.rfind('.');
    return isFolder || dot == 0 || dot == std::string_view::npos || dot + 1 == name.size() ? name.size()
                                                                                           : dot;
}

// Without its last character, whose bytes behind the first are 10xxxxxx.
void dropLast(std::string& text) {
    while (text.size() > 1 && (text.back() & 0xC0) == 0x80)
        text.pop_back();
    if (!text.empty()) text.pop_back();
}

struct Cut {
    std::string stem, extension; // the latter with its dot
};

// What stays of a name around a suffix, so that all of it fits. Suffixes of digits are alike when they are of one length.
Cut cutFor(std::string_view name, bool isFolder, std::string_view suffix, const NameForm& form) {
    const size_t dot = extensionOf(name, isFolder);
    Cut cut{std::string(name.substr(0, dot)), std::string(name.substr(dot))};
    while (!form.fits(cut.stem + std::string(suffix) + cut.extension, isFolder) &&
           !(cut.stem.empty() && cut.extension.empty()))
        // An extension that leaves no room for the name is cut, too.
        dropLast(cut.stem.size() > 1 || cut.extension.empty() ? cut.stem : cut.extension);
    return cut;
}

std::string withSuffix(std::string_view name, bool isFolder, std::string_view suffix, const NameForm& form) {
    const Cut cut = cutFor(name, isFolder, suffix, form);
    return cut.stem + std::string(suffix) + cut.extension;
}

// Each character as `put` has it; what is no UTF-8 is a character of its own.
template <typename Put>
void forEachCharacter(std::string_view text, const Put& put) {
    while (!text.empty()) {
        if (const auto first = static_cast<unsigned char>(text[0]); first < 0x80) {
            put(char32_t{first}, text.substr(0, 1));
            text.remove_prefix(1);
            continue;
        }
        const auto character = firstCharacter(text);
        const size_t bytes = character ? character->bytes : 1;
        put(character ? character->value : noText, text.substr(0, bytes));
        text.remove_prefix(bytes);
    }
}

// ASCII as ISO 9660 holds it, of level 1 and of the others; 0 for what can't stand there. Dots are seen to before.
constexpr auto isoCharacters = [] {
    std::array<std::array<char, 0x80>, 2> all{};
    for (char c = '!'; c < 0x7F; ++c) {
        const char big = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
        const bool isInAll = (big >= 'A' && big <= 'Z') || (big >= '0' && big <= '9') || big == '_';
        const bool isInOthers = std::string_view("!\"%&'()*+-:<=>?").find(big) != std::string_view::npos;
        all[0][static_cast<size_t>(c)] = isInAll ? big : '\0';
        all[1][static_cast<size_t>(c)] = isInAll || isInOthers ? big : '\0';
    }
    all[1][' '] = ' ';
    return all;
}();

char32_t withoutMarks(char32_t c) {
    // HFS+ leaves signs together that others take apart.
    constexpr std::pair<char32_t, char32_t> signs[] = {
        {U'\u2260', U'='}, {U'\u226E', U'<'}, {U'\u226F', U'>'}, {U'\u212A', U'K'}, {U'\u212B', U'A'}};
    for (const auto& [sign, plain] : signs)
        if (c == sign) return plain;
    return hfsplus::withoutMarks(c);
}

std::string isoText(std::string_view text, uint8_t level) {
    const std::array<char, 0x80>& table = isoCharacters[level > 1];
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text[0]);
        char32_t c = first;
        size_t bytes = 1;
        if (first >= 0x80) {
            const auto character = firstCharacter(text);
            c = character ? withoutMarks(character->value) : U'\uFFFD';
            bytes = character ? character->bytes : 1;
        }
        text.remove_prefix(bytes);
        if (c < 0x80 && table[c] != 0) result += table[c];
    }
    return result;
}

size_t unitsOf(std::string_view utf8) {
    size_t units = 0;
    forEachCharacter(utf8, [&](char32_t c, std::string_view) { units += c > 0xFFFF && c != noText ? 2 : 1; });
    return units;
}

// Never between the two halves of a character.
void cutToUnits(std::string& utf8, size_t limit) {
    if (utf8.size() <= limit) return;
    size_t bytes = 0, units = 0;
    forEachCharacter(utf8, [&](char32_t c, std::string_view character) {
        units += c > 0xFFFF && c != noText ? 2 : 1;
        if (units <= limit) bytes += character.size();
    });
    utf8.resize(bytes);
}

// Without what can't stand in Joliet; dots are seen to before. Deliberate: the standard forbids ":", which programs are told
// that a name keeps; readers take it.
std::string jolietText(std::string_view text) {
    static constexpr std::u32string_view others = U".\"$*/;<>?\\|";
    static constexpr auto plain = [] {
        std::array<bool, 256> units{};
        for (char32_t c = 0x20; c < 0x7F; ++c)
            units[c] = others.find(c) == others.npos;
        return units;
    }();
    if (std::ranges::all_of(text, [](char c) { return plain[static_cast<unsigned char>(c)]; }))
        return std::string(text);
    std::string result;
    result.reserve(text.size());
    forEachCharacter(text, [&](char32_t c, std::string_view bytes) {
        const bool isControl = c < 0x20 || (c >= 0x7F && c < 0xA0);
        // Programs know bytes that are no text by these characters.
        const bool isNoText = c == noText || (c >= 0xEF80 && c <= 0xEFFF);
        if (!isControl && !isNoText && others.find(c) == others.npos) result += bytes;
    });
    return result;
}

// Gives numbers out: what a name is cut to for its number goes on where the last such one stopped. Where each name stands
// is kept, so that one more of it takes a step.
class Numbers {
  public:
    Numbers(const NameForm& form, size_t expected) : form_(form) { taken_.reserve(expected); }

    bool take(std::string_view name) { return taken_.insert(form_.keyOf(name)).second; }

    std::string another(const std::string& name, bool isFolder) {
        Wanted& wanted = wanted_[isFolder ? name + '/' : name];
        while (true) {
            while (wanted.number == nullptr || *wanted.number == wanted.end)
                takeMoreDigits(wanted, name, isFolder);
            std::string tried = wanted.cut.stem + suffixOf((*wanted.number)++, wanted.digits);
            tried += wanted.cut.extension;
            if (take(tried)) return tried;
        }
    }

  private:
    struct Wanted {
        Cut cut;
        size_t digits = 2;
        uint64_t* number = nullptr; // of next_
        uint64_t end = 0;
    };

    static std::string suffixOf(uint64_t number, size_t digits) {
        std::string suffix = std::to_string(number);
        return suffix.insert(0, "_" + std::string(digits - std::min(digits, suffix.size()), '0'));
    }

    static uint64_t powerOfTen(size_t exponent) {
        uint64_t power = 1;
        while (exponent-- > 0)
            power *= 10;
        return power;
    }

    void takeMoreDigits(Wanted& wanted, const std::string& name, bool isFolder) {
        const size_t digits = ++wanted.digits;
        const std::string zeros = suffixOf(0, digits);
        wanted.cut = cutFor(name, isFolder, zeros, form_);
        const std::string first = wanted.cut.stem + zeros + wanted.cut.extension;
        if (!form_.fits(first, isFolder))
            fail(ErrorCode::TooManyNameConflicts,
                 "More items of one folder would be named " + inQuotes(name) +
                     " on the disc than numbers can tell apart there; rename some of them, or move them to "
                     "other folders.",
                 name);
        const std::string key = form_.keyOf(first);
        wanted.number = &next_.try_emplace(key, digits == 3 ? 1 : powerOfTen(digits - 1)).first->second;
        wanted.end = powerOfTen(digits);
    }

    const NameForm& form_;
    std::unordered_set<std::string> taken_;
    std::unordered_map<std::string, uint64_t> next_;
    std::unordered_map<std::string, Wanted> wanted_;
};

} // namespace

std::string IsoForm::legal(std::string_view name, bool isFolder) const {
    const size_t dot = extensionOf(name, isFolder);
    std::string stem = isoText(name.substr(0, dot), level_);
    std::string extension;
    if (dot < name.size()) extension = isoText(name.substr(dot + 1), level_);
    if (stem.empty()) stem += '_';
    extension.resize(std::min<size_t>(extension.size(), level_ == 1 ? 3 : isoNameLimit - 2));
    const size_t behind = extension.empty() ? 0 : extension.size() + 1;
    stem.resize(std::min<size_t>(stem.size(), level_ == 1 ? 8 : isoNameLimit - behind));
    return extension.empty() ? stem : stem + '.' + extension;
}

// Names that differ only in spaces, or a dot, at an end are the same.
std::string IsoForm::keyOf(std::string_view legal) const {
    const auto trimmed = [](std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); };
    const size_t dot = std::min(legal.rfind('.'), legal.size());
    std::string key(trimmed(legal.substr(0, dot)));
    key += '.';
    return key += trimmed(legal.substr(std::min(dot + 1, legal.size())));
}

bool IsoForm::fits(std::string_view legal, bool) const {
    if (level_ > 1) return legal.size() <= isoNameLimit;
    const size_t dot = std::min(legal.rfind('.'), legal.size());
    return dot <= 8 && legal.size() - std::min(dot + 1, legal.size()) <= 3;
}

// A folder's name has an extension, too.
std::string JolietForm::legal(std::string_view name, bool) const {
    const size_t dot = extensionOf(name, false);
    std::string stem = jolietText(name.substr(0, dot));
    std::string extension = dot < name.size() ? jolietText(name.substr(dot + 1)) : std::string();
    if (stem.empty()) stem += '_';
    cutToUnits(extension, jolietNameLimit - 2);
    const size_t behind = extension.empty() ? 0 : unitsOf(extension) + 1;
    cutToUnits(stem, jolietNameLimit - behind);
    return extension.empty() ? stem : stem + '.' + extension;
}

// Those who read it don't tell capitals from small letters.
std::string JolietForm::keyOf(std::string_view legal) const {
    // A name of ASCII is the same as others of ASCII only, and no other's key looks like it.
    if (std::ranges::all_of(legal, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        std::string lower(legal);
        for (char& c : lower)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
        return lower;
    }
    std::u32string key;
    forEachCharacter(legal, [&key](char32_t c, std::string_view) {
        const bool isBig = (c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
                           (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F);
        key += isBig ? c + 32 : c >= 0x400 && c <= 0x40F ? c + 80 : c;
    });
    return {reinterpret_cast<const char*>(key.data()), key.size() * sizeof(char32_t)};
}

bool JolietForm::fits(std::string_view legal, bool) const { return unitsOf(legal) <= jolietNameLimit; }

std::string UdfForm::keyOf(std::string_view legal) const { return udf::compressed(legal, udf::nameLimit); }
bool UdfForm::fits(std::string_view legal, bool) const {
    return udf::compressed(legal, 2 * udf::nameLimit).size() <= udf::nameLimit;
}

std::string HfsPlusForm::keyOf(std::string_view legal) const {
    const std::u16string folded = hfsplus::foldedName(hfsplus::storedName(legal));
    return {reinterpret_cast<const char*>(folded.data()), folded.size() * sizeof(char16_t)};
}
// A stored name is cut at the limit: one that reaches it may have been.
bool HfsPlusForm::fits(std::string_view legal, bool) const {
    return hfsplus::storedName(legal).size() < hfsplus::nameLimit;
}

bool canBecome(std::string_view name, bool isFolder, std::string_view stored, const NameForm& form) {
    const std::string legal = form.legal(name, isFolder);
    if (legal == stored) return true;
    const std::string_view stem = stored.substr(0, extensionOf(stored, isFolder));
    const size_t bar = stem.rfind('_');
    if (bar == std::string_view::npos || stem.size() - bar < 4) return false;
    const std::string_view suffix = stem.substr(bar);
    return suffix.find_first_not_of("0123456789", 1) == suffix.npos &&
           withSuffix(legal, isFolder, suffix, form) == stored;
}

std::vector<std::string> distinctNames(const std::vector<GivenName>& given, const NameForm& form) {
    std::vector<std::string> result(given.size());
    std::vector<uint32_t> others;
    Numbers numbers(form, given.size());
    for (uint32_t i = 0; i < given.size(); ++i) {
        result[i] = form.legal(given[i].name, given[i].isFolder);
        if (!numbers.take(result[i])) others.push_back(i);
    }
    if (others.empty()) return result;
    std::unordered_set<std::string_view> names;
    for (const GivenName& one : given)
        if (!one.isOwn && !names.insert(one.name).second)
            fail(ErrorCode::FileLocationConflict,
                 "Two items of one folder are named " + inQuotes(one.name) +
                     "; give one of them another name.",
                 std::string(one.name));
    for (const uint32_t i : others)
        result[i] = numbers.another(result[i], given[i].isFolder);
    return result;
}

} // namespace engine::plan
