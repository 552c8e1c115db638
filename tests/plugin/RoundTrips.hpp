// RoundTrips.hpp: host values of every kind, nested at random, and what each is when it comes back from the platform.
#pragma once

#include "host/runtime/Array.hpp"
#include "host/runtime/Date.hpp"
#include "host/runtime/Dictionary.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/Harness.hpp"
#include "host/runtime/Invoke.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "host/runtime/Variant.hpp"
#include "tests/plugin/Drives.hpp"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <functional>
#include <limits>
#include <random>
#include <set>

namespace test {

// A value, what it must be afterwards, and whether a platform array takes it (nil is refused there).
struct Trip {
    host::Value sent, back;
    bool isNilThere = false;
};

// Has no state of its own but the random numbers, so a seed gives the same values in every run.
class Trips {
  public:
    // More makers add kinds of objects that only some hosts have.
    std::vector<std::function<Trip(std::mt19937&)>> more;

    explicit Trips(unsigned seed) : random_(seed) {}

    Trip any(int depth) {
        const auto extra = static_cast<unsigned>(more.size());
        const unsigned kind = below((depth > 0 ? 19u : 16u) + extra);
        if (kind < extra) return more[kind](random_);
        switch (kind - extra) {
        case 0:
            return {host::Value(), host::Value(), true};
        case 1:
            return same(below(2) == 1);
        case 2:
            return integer(static_cast<int8_t>(random_()));
        case 3:
            return integer(static_cast<uint8_t>(random_()));
        case 4:
            return integer(static_cast<int16_t>(random_()));
        case 5:
            return integer(static_cast<uint16_t>(random_()));
        case 6:
            return integer(static_cast<int32_t>(word()));
        case 7:
            return integer(static_cast<uint32_t>(word()));
        case 8:
            return integer(static_cast<int64_t>(word()));
        case 9:
            return integer(word());
        case 10:
            return same(single());
        case 11:
            return same(static_cast<double>(random_()) / 3.0);
        case 12:
            return text();
        case 13:
            return same(date());
        case 14:
            return block();
        case 15:
            return item();
        case 16:
            return typedArray();
        case 17:
            return array(depth);
        default:
            return dictionary(depth);
        }
    }

    static Trip same(const host::Value& value) { return {value, value}; }

  private:
    unsigned below(unsigned bound) { return static_cast<unsigned>(random_()) % bound; }

    // Often one of the limits of the platform's types.
    uint64_t word() {
        constexpr int64_t limits[] = {0,
                                      -1,
                                      std::numeric_limits<int32_t>::max(),
                                      std::numeric_limits<int32_t>::min(),
                                      std::numeric_limits<uint32_t>::max(),
                                      std::numeric_limits<int64_t>::max(),
                                      std::numeric_limits<int64_t>::min()};
        if (below(3) == 0) return static_cast<uint64_t>(limits[below(std::size(limits))]) + below(3) - 1;
        return (uint64_t{random_()} << 32 | random_()) >> below(64);
    }
    float single() { return static_cast<float>(random_() >> 8) / 16.0f; } // exact

    // All integers go over by their 64 bits, with the sign that those have. The platform keeps what lies inside of
    // an int's range, limits left out, as an int, and all other as a 64-bit number, with words of either size.
    static host::Value platformInteger(int64_t value) {
        if (value > std::numeric_limits<int32_t>::min() && value < std::numeric_limits<int32_t>::max())
            return static_cast<int32_t>(value);
        return value;
    }
    template <class T>
    static Trip integer(T value) {
        return {value, platformInteger(static_cast<int64_t>(value))};
    }

    // A zero character ends a text on the way to the host.
    Trip text() {
        const std::string before = std::string(below(4), 'x') + (below(2) ? "é𝄞" : "");
        if (below(4) != 0) return same(before);
        return {before + std::string(1, '\0') + "hidden", before};
    }

    // Far from the hours that a zone has twice a year or never.
    host::Value date() {
        std::tm parts{};
        parts.tm_year = 70 + static_cast<int>(below(66));
        parts.tm_mon = static_cast<int>(below(12));
        parts.tm_mday = 15;
        parts.tm_hour = 12;
        parts.tm_sec = static_cast<int>(below(3600));
        parts.tm_isdst = -1;
        return host::Value(host::newDate(std::mktime(&parts)));
    }

    // A block of no bytes is nil on the platform.
    Trip block() {
        const auto size = below(6);
        const host::Value made = host::newMemoryBlock(size);
        for (std::byte& byte : host::memoryOf(made.object()))
            byte = static_cast<std::byte>(random_());
        return {made, size == 0 ? host::Value() : made, size == 0};
    }

    // An item is known by its own reference or by its folder's; with neither it is nil.
    Trip item() {
        switch (below(3)) {
        case 0:
            return same(host::Value(host::newFolderItem(scratch_.path())));
        case 1:
            return same(host::Value(host::newFolderItem((scratch_ / "not yet").string())));
        default:
            return {host::Value(host::newFolderItem((scratch_ / "no folder" / "file").string())),
                    host::Value(), true};
        }
    }

    // Arrays come back as arrays of variants.
    static host::Value variantsOf(const std::vector<Trip>& elements) {
        const host::Ref made = host::newArray(host::typeNamed("Variant"));
        for (const Trip& element : elements)
            host::arrayAppend(made.get(), element.back);
        return host::Value(made);
    }
    static Trip arrayOf(const char* type, const std::vector<Trip>& elements) {
        const host::Ref made = host::newArray(host::typeNamed(type));
        for (const Trip& element : elements)
            host::arrayAppend(made.get(), element.sent);
        return {host::Value(made), variantsOf(elements)};
    }

    Trip typedArray() {
        struct Kind {
            const char* type;
            std::function<Trip()> element;
        };
        const Kind kinds[] = {
            {"Int32", [&] { return integer(static_cast<int32_t>(word())); }},
            // Read as the signed numbers of the same width.
            {"UInt32",
             [&] {
                 const auto number = static_cast<uint32_t>(word());
                 return Trip{number, platformInteger(static_cast<int32_t>(number))};
             }},
            {"Int64", [&] { return integer(static_cast<int64_t>(word())); }},
            {"UInt64", [&] { return integer(word()); }},
            {"Single", [&] { return same(single()); }},
            {"Double", [&] { return same(static_cast<double>(random_()) / 3.0); }},
            {"Boolean", [&] { return same(below(2) == 1); }},
            {"String", [&] { return text(); }},
            {"Date", [&] { return same(date()); }},
            {"FolderItem", [&] { return same(host::Value(host::newFolderItem(scratch_.path()))); }},
        };
        const Kind& kind = kinds[below(std::size(kinds))];
        std::vector<Trip> elements(below(4));
        std::generate(elements.begin(), elements.end(), kind.element);
        return arrayOf(kind.type, elements);
    }

    Trip array(int depth) {
        // Elements of a width that has no code of its own: the whole array is nil.
        if (below(8) == 0)
            return {host::Value(host::newArray(host::typeNamed("Int16"), 1)), host::Value(), true};
        std::vector<Trip> elements;
        for (auto count = below(4); count > 0; --count)
            if (Trip element = any(depth - 1); !element.isNilThere) elements.push_back(element);
        return arrayOf("Variant", elements);
    }

    // Entries of nil keys are dropped, nil values are kept, and a key that the platform lacks becomes nil.
    Trip dictionary(int depth) {
        const host::Ref made = host::newDictionary(), back = host::newDictionary();
        const auto put = [&](const Trip& key, const Trip& value) {
            host::dictionarySet(made.get(), key.sent, value.sent);
            if (!key.sent.isNil()) host::dictionarySet(back.get(), key.back, value.back);
        };
        for (int i = 0; i < 4; ++i)
            if (below(2)) put(key(i), any(depth - 1));
        return {host::Value(made), host::Value(back)};
    }

    // Each index gives other keys than all others.
    Trip key(int index) {
        switch (index) {
        case 0:
            return below(2) ? same("key é") : integer(below(2) ? word() | 2 : uint64_t{2});
        case 1:
            return same(0.5);
        case 2:
            return below(2) ? Trip{} : same(date());
        default:
            return item();
        }
    }

    std::mt19937 random_;
    ScratchFolder scratch_;
};

// Equal in kind and content, all the way down; other objects are the very same.
inline bool areSame(const host::Value& one, const host::Value& other) {
    if (one.kind() != other.kind()) return false;
    if (one.isString()) return one.toString().bytes() == other.toString().bytes();
    if (!one.isObject()) return one.toText() == other.toText();
    if (one.isArray()) {
        // Of variants, which lie in boxes where the plug-in made the array.
        const auto element = [](const host::Value& array, int32_t index) {
            const host::Value held = host::arrayGet(array.object(), index);
            return held.isObject() ? host::unboxVariant(held.object()) : held;
        };
        if (!other.isArray()) return false;
        if (host::upperBound(one.object()) != host::upperBound(other.object())) return false;
        for (int32_t i = 0; i <= host::upperBound(one.object()); ++i)
            if (!areSame(element(one, i), element(other, i))) return false;
        return true;
    }
    if (one.typeName() != other.typeName()) return false;
    const std::string type = one.typeName();
    if (type == "Dictionary") {
        const auto count = static_cast<int64_t>(host::dictionaryCount(one.object()));
        if (static_cast<int64_t>(host::dictionaryCount(other.object())) != count) return false;
        // The platform gives keys in an order of its own, and new objects for objects that are keys.
        std::set<int64_t> matched;
        for (int64_t i = 0; i < count; ++i) {
            const host::Value key = host::dictionaryKey(one.object(), i);
            for (int64_t j = 0; j < count; ++j) {
                const host::Value otherKey = host::dictionaryKey(other.object(), j);
                if (!matched.contains(j) && areSame(key, otherKey) &&
                    areSame(host::dictionaryGet(one.object(), key),
                            host::dictionaryGet(other.object(), otherKey))) {
                    matched.insert(j);
                    break;
                }
            }
        }
        return static_cast<int64_t>(matched.size()) == count;
    }
    if (type == "Date") return host::dateSeconds(one.object()) == host::dateSeconds(other.object());
    if (type == "FolderItem") return host::pathOf(one.object()) == host::pathOf(other.object());
    if (type == "MemoryBlock")
        return std::ranges::equal(host::memoryOf(one.object()), host::memoryOf(other.object()));
    for (const char* geometry : {"NSRangeQRX", "NSRectQRX", "NSSizeQRX", "NSPointQRX"})
        if (type == geometry) {
            const auto size = host::harness::definition(geometry)->dataSize;
            return std::memcmp(one.object() + 1, other.object() + 1, size) == 0;
        }
    // Wrappers are made anew around the very object of the platform that they hold.
    for (const char* holder : {"NSIndexSetQRX", "NSAttributedStringQRX", "NSCharacterSetQRX", "DRBurnQRX"})
        if (type == holder) return std::memcmp(one.object() + 1, other.object() + 1, sizeof(void*)) == 0;
    return one.object() == other.object();
}

} // namespace test
