// MangledNames: names that differ from those of their siblings.
#include "NameParts.hpp"
#include "hfsplus/Names.hpp"

#include <algorithm>
#include <bit>
#include <unordered_map>

namespace discrecording {
namespace {

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
