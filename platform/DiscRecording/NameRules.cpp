// NameRules: what becomes of a name in each file system of a disc, alone and among its siblings.
#include "NameRules.hpp"
#include "PathNames.hpp"
#include "hfsplus/Names.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <unordered_map>

namespace discrecording {
namespace {

constexpr size_t rockRidgeLimit = 255; // bytes

struct Parts {
    std::u16string stem;
    std::u16string extension; // without the "."
};

// A "." in front of a name begins no extension.
Parts split(std::u16string_view name, bool isFolder) {
    const size_t dot = name.rfind(u'.');
    if (isFolder || dot == std::u16string_view::npos || dot == 0 || dot + 1 == name.size())
        return {std::u16string(name), {}};
    return {std::u16string(name.substr(0, dot)), std::u16string(name.substr(dot + 1))};
}

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

bool isASCII(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
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

// Cut to the limit with `reserved` units left for a suffix.
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

// Whoever looks a name of ISO 9660 up doesn't see spaces at the end of it or in front of its dot, nor a dot at its end.
std::u16string withoutSpacesAtEnds(const std::u16string& name) {
    const auto trimmed = [](std::u16string_view text) {
        return text.substr(0, text.find_last_not_of(u' ') + 1);
    };
    const size_t dot = std::min(name.rfind(u'.'), name.size());
    std::u16string key(trimmed(std::u16string_view(name).substr(0, dot)));
    key += u'.';
    return key += trimmed(std::u16string_view(name).substr(std::min(dot + 1, name.size())));
}

// Of ASCII: what the file systems that don't tell capitals from small letters take for the same.
constexpr char16_t lower(NameRule rule, char16_t unit) {
    const bool folds = rule == NameRule::HFSPlus || rule == NameRule::Joliet;
    return folds && unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

// Two names that the file system takes for the same have the same key. HFS+ has a table of its own, as the volume has that is
// written; Joliet's readers don't tell capitals from small letters in the scripts that have them.
std::u16string keyOf(NameRule rule, std::u16string name) {
    if (rule == NameRule::ISOLevelTwo) return withoutSpacesAtEnds(name);
    if (rule != NameRule::HFSPlus && rule != NameRule::Joliet) return name;
    if (rule == NameRule::HFSPlus && !isASCII(name)) return engine::hfsplus::foldedName(name);
    for (char16_t& unit : name) {
        if ((unit >= u'A' && unit <= u'Z') || (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) ||
            (unit >= 0x391 && unit <= 0x3A9) || (unit >= 0x410 && unit <= 0x42F)) {
            unit = static_cast<char16_t>(unit + 32);
        } else if (unit >= 0x400 && unit <= 0x40F) {
            unit = static_cast<char16_t>(unit + 80);
        }
    }
    return name;
}

// As the volume that is written holds it: what comes may be composed in part, and has its limit in units of the other form.
Parts apart(const Parts& parts) {
    const std::u16string name = joined(parts);
    if (isASCII(name)) return parts;
    std::u16string stored = engine::hfsplus::storedName(pathnames::encode(name), SIZE_MAX);
    std::ranges::replace(stored, u'/', u':'); // the other one is stored
    return split(stored, parts.extension.empty());
}

size_t powerOfTen(size_t exponent) {
    size_t power = 1;
    while (exponent-- > 0)
        power *= 10;
    return power;
}

// Which names of a list are taken, as a table of places in it: small, so that many names don't wait for memory.
class Taken {
  public:
    Taken(NameRule rule, const std::vector<std::u16string>& names)
        : rule_(rule), names_(names), slots_(std::bit_ceil(2 * names.size() + 1)) {}

    // False when a name that is the same is taken already. The name must not change any more.
    bool take(size_t index) {
        const std::u16string& name = names_[index];
        const uint32_t hash = hashOf(name);
        for (size_t at = hash & (slots_.size() - 1);; at = (at + 1) & (slots_.size() - 1)) {
            Slot& slot = slots_[at];
            if (slot.next == 0) {
                slot = {hash, static_cast<uint32_t>(index + 1)};
                return true;
            }
            if (slot.hash == hash && keyOf(rule_, names_[slot.next - 1]) == keyOf(rule_, name)) return false;
        }
    }

  private:
    struct Slot {
        uint32_t hash = 0, next = 0; // the place behind it; 0 for none
    };

    // The same for two names of one key, and for most names made without the key. The multiplier is 2 to the 64th by the
    // golden ratio (Knuth, The Art of Computer Programming 6.4): the high half then depends on every unit.
    uint32_t hashOf(const std::u16string& name) const {
        uint64_t hash = 0;
        const auto add = [&](char16_t unit) { hash = (hash + unit + 1) * 0x9E3779B97F4A7C15; };
        const bool dots = rule_ == NameRule::ISOLevelTwo; // its keys have a dot and no spaces at ends
        if (!isASCII(name) || (dots && name.find(u' ') != name.npos)) {
            for (const char16_t unit : keyOf(rule_, name))
                add(unit);
        } else {
            for (const char16_t unit : name)
                add(lower(rule_, unit));
            if (dots && name.find(u'.') == name.npos) add(u'.');
        }
        return static_cast<uint32_t>(hash >> 32);
    }

    NameRule rule_;
    const std::vector<std::u16string>& names_;
    std::vector<Slot> slots_; // half of them stay empty
};

// Gives names out that may be taken. The numbers tried so far are kept for each stem as it is when cut, so that none is tried
// twice, whatever it was cut from; and where each name stands is kept, too, so that one more of it takes a step.
class Names {
  public:
    explicit Names(NameRule rule) : rule_(rule) {}

    std::u16string another(const Sibling& sibling) {
        Wanted& wanted = wanted_[sibling.isFolder ? sibling.name + u'/' : sibling.name];
        while (wanted.number == nullptr || *wanted.number == wanted.end)
            takeMoreDigits(wanted, sibling);
        std::u16string name = wanted.stem;
        appendNumber(name, (*wanted.number)++, wanted.digits);
        return name += wanted.extension;
    }

  private:
    struct Wanted {
        std::u16string stem, extension; // what is left of it beside the number
        size_t digits = 2;
        size_t* number = nullptr; // of next_
        size_t end = 0;
    };

    static void appendNumber(std::u16string& to, size_t number, size_t digits) {
        to += u'_';
        to.resize(to.size() + digits, u'0');
        for (size_t at = to.size(); number > 0; number /= 10)
            to[--at] = static_cast<char16_t>(u'0' + number % 10);
    }

    void takeMoreDigits(Wanted& wanted, const Sibling& sibling) {
        const size_t digits = ++wanted.digits;
        Parts parts = fitting(rule_, split(sibling.name, sibling.isFolder), digits + 1);
        wanted.stem = std::move(parts.stem);
        wanted.extension = parts.extension.empty() ? u"" : u'.' + parts.extension;
        std::u16string zeros = wanted.stem;
        appendNumber(zeros, 0, digits);
        const size_t first = digits == 3 ? 1 : powerOfTen(digits - 1);
        wanted.number = &next_.try_emplace(keyOf(rule_, zeros + wanted.extension), first).first->second;
        wanted.end = powerOfTen(digits);
    }

    NameRule rule_;
    std::unordered_map<std::u16string, size_t> next_;
    std::unordered_map<std::u16string, Wanted> wanted_;
};

} // namespace

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

std::u16string nameKey(NameRule rule, std::u16string name) { return keyOf(rule, std::move(name)); }

std::vector<std::u16string> mangledNames(NameRule rule, const std::vector<Sibling>& siblings) {
    std::vector<std::u16string> result(siblings.size());
    Taken taken(rule, result);
    std::vector<size_t> others;
    for (size_t i = 0; i < siblings.size(); ++i) {
        result[i] = siblings[i].name;
        if (!taken.take(i)) others.push_back(i);
    }
    Names names(rule);
    for (const size_t i : others)
        do
            result[i] = names.another(siblings[i]);
        while (!taken.take(i));
    return result;
}

struct GrowingNames::State {
    explicit State(NameRule wanted) : rule(wanted), others(wanted) {}

    NameRule rule;
    Names others; // begins anew with numbers that are taken, and passes over them once
    std::unordered_map<std::u16string, bool> taken; // by key, and whether it's so for a suffix
};

GrowingNames::GrowingNames(NameRule rule, const std::vector<Sibling>& siblings,
                           const std::vector<std::u16string>& mangled)
    : state_(std::make_unique<State>(rule)) {
    for (size_t i = 0; i < siblings.size(); ++i)
        state_->taken.emplace(keyOf(rule, mangled[i]), mangled[i] != siblings[i].name);
}

GrowingNames::GrowingNames(GrowingNames&&) noexcept = default;
GrowingNames& GrowingNames::operator=(GrowingNames&&) noexcept = default;
GrowingNames::~GrowingNames() = default;

std::optional<std::u16string> GrowingNames::add(const Sibling& sibling) {
    auto& taken = state_->taken;
    const auto [same, isNew] = taken.try_emplace(keyOf(state_->rule, sibling.name), false);
    if (isNew) return sibling.name;
    if (same->second) return {};
    while (true) {
        std::u16string name = state_->others.another(sibling);
        if (taken.try_emplace(keyOf(state_->rule, name), true).second) return name;
    }
}

} // namespace discrecording
