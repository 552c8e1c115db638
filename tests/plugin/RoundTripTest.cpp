// RoundTripTest.cpp: values of every kind, nested at random, to the platform and back.
#include "plugin/bridge/Variants.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Dictionary.hpp"

#include <random>

namespace {

using namespace test;

using RoundTrips = LoadedTest;

Value randomValue(std::mt19937& random, int depth) {
    switch (random() % (depth > 0 ? 9u : 7u)) {
    case 0:
        return Value();
    case 1:
        return (random() & 1) != 0;
    case 2:
        return static_cast<int32_t>(random());
    case 3:
        return static_cast<int64_t>((uint64_t{random()} << 32) | random());
    case 4:
        return static_cast<float>(random() >> 8) / 16.0f; // exact in a single
    case 5:
        return static_cast<double>(random()) / 3.0;
    case 6:
        return std::string(random() % 4, 'x') + (random() % 2 ? "é𝄞" : "");
    case 7: {
        Ref array = host::newArray(host::typeNamed("Variant"));
        for (auto count = random() % 4; count > 0; --count) {
            // A nil element is refused by the platform's arrays.
            if (Value element = randomValue(random, depth - 1); !element.isNil())
                host::arrayAppend(array.get(), element);
        }
        return array;
    }
    default: {
        Ref dictionary = host::newDictionary();
        for (auto count = random() % 4; count > 0; --count)
            host::dictionarySet(dictionary.get(), "key" + std::to_string(count),
                                randomValue(random, depth - 1));
        return dictionary;
    }
    }
}

// Values keep kind and number; only a 64-bit integer that fits into 32 bits may come back as the smaller
// kind, where the platform does not tell the two apart.
bool same(const Value& one, const Value& other) {
    if (one.isArray()) {
        if (!other.isArray() || host::upperBound(one.object()) != host::upperBound(other.object()))
            return false;
        for (int32_t i = 0; i <= host::upperBound(one.object()); ++i) {
            const Value element = host::arrayGet(one.object(), i);
            const Value converted =
                valueOf(Ref::adopt(REALGetArrayObject(host::arrayHandle(other.object()), i)));
            if (!same(element, converted)) return false;
        }
        return true;
    }
    if (one.isObject()) {
        const auto count = host::dictionaryCount(one.object());
        if (!other.isObject() || host::dictionaryCount(other.object()) != count) return false;
        for (std::size_t i = 0; i < count; ++i) {
            const Value key = host::dictionaryKey(one.object(), static_cast<int64_t>(i));
            if (!host::dictionaryHas(other.object(), key) ||
                !same(host::dictionaryGet(one.object(), key), host::dictionaryGet(other.object(), key)))
                return false;
        }
        return true;
    }
    if (one.isInteger()) return other.isInteger() && one.toInt64() == other.toInt64();
    if (one.isString()) return other.isString() && one.toText() == other.toText();
    return one.kind() == other.kind() && one.toDouble() == other.toDouble();
}

TEST_F(RoundTrips, WhatGoesOverAndBackIsEqual) {
    std::mt19937 random(20260131); // the same values in every run
    for (int round = 0; round < 300; ++round) {
        const Pool inner;
        const Value value = randomValue(random, 5);
        const Ref dictionary = host::newDictionary();
        host::dictionarySet(dictionary.get(), "value", value);
        const Ref back = Ref::adopt(NSDictionaryRB(NewNSDictionary(dictionary.get())));
        ASSERT_TRUE(same(value, host::dictionaryGet(back.get(), "value"))) << "round " << round;
    }
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
