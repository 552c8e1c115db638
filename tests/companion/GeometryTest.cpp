// GeometryTest.cpp: host objects whose data is the platform's structure, byte for byte.
#include "tests/companion/CompanionTest.hpp"

#include <cstring>

namespace {

using namespace test;

// The platform's numbers on either word size.
using Number = std::conditional_t<sizeof(void*) == 8, double, float>;
using Index = unsigned long;

using Geometry = WithCompanion;

template <class Element, std::size_t count>
std::array<Element, count> dataOf(const Value& object) {
    std::array<Element, count> data;
    std::memcpy(data.data(), object.object() + 1, sizeof data);
    return data;
}

TEST_F(Geometry, DataIsExactlyTheStructure) {
    EXPECT_EQ(harness::definition("NSRangeQRX")->dataSize, 2 * sizeof(Index));
    EXPECT_EQ(harness::definition("NSRectQRX")->dataSize, 4 * sizeof(Number));
    EXPECT_EQ(harness::definition("NSSizeQRX")->dataSize, 2 * sizeof(Number));
    EXPECT_EQ(harness::definition("NSPointQRX")->dataSize, 2 * sizeof(Number));
    if (sizeof(void*) == 4) {
        EXPECT_EQ(harness::definition("NSRangeQRX")->dataSize, 8u);
        EXPECT_EQ(harness::definition("NSRectQRX")->dataSize, 16u);
    }
}

TEST_F(Geometry, ConstructorsFillTheFieldsInTheirOrder) {
    EXPECT_EQ((dataOf<Index, 2>(make("NSRangeQRX", {3, 9}))), (std::array<Index, 2>{3, 9}));
    EXPECT_EQ((dataOf<Number, 4>(make("NSRectQRX", {1.5, -2, 3, 4.25}))),
              (std::array<Number, 4>{1.5, -2, 3, 4.25}));
    EXPECT_EQ((dataOf<Number, 2>(make("NSSizeQRX", {640, 480.5}))), (std::array<Number, 2>{640, 480.5}));
    EXPECT_EQ((dataOf<Number, 2>(make("NSPointQRX", {-1, 2}))), (std::array<Number, 2>{-1, 2}));
}

TEST_F(Geometry, NewObjectsAreZero) {
    EXPECT_EQ((dataOf<Index, 2>(make("NSRangeQRX"))), (std::array<Index, 2>{}));
    EXPECT_EQ((dataOf<Number, 4>(make("NSRectQRX"))), (std::array<Number, 4>{}));
    EXPECT_EQ((dataOf<Number, 2>(make("NSSizeQRX"))), (std::array<Number, 2>{}));
    EXPECT_EQ((dataOf<Number, 2>(make("NSPointQRX"))), (std::array<Number, 2>{}));
}

TEST_F(Geometry, EveryPropertyReadsAndWritesItsOwnField) {
    const auto check = [](const char* className, std::vector<const char*> fields) {
        const Value object = make(className);
        for (std::size_t i = 0; i < fields.size(); ++i)
            set(object, fields[i], static_cast<int>(i) + 10);
        for (std::size_t i = 0; i < fields.size(); ++i)
            EXPECT_EQ(ask(object, fields[i]).toInt32(), static_cast<int>(i) + 10) << className << fields[i];
    };
    check("NSRangeQRX", {"location", "length"});
    check("NSRectQRX", {"x", "y", "width", "height"});
    check("NSSizeQRX", {"width", "height"});
    check("NSPointQRX", {"x", "y"});
    const Value rect = make("NSRectQRX");
    set(rect, "x", 1);
    set(rect, "y", 2);
    set(rect, "width", 3);
    set(rect, "height", 4);
    EXPECT_EQ((dataOf<Number, 4>(rect)), (std::array<Number, 4>{1, 2, 3, 4}));
}

TEST_F(Geometry, RangesHoldTheWholeWidthOfTheirNumbers) {
    const auto largest = static_cast<Index>(-1);
    const Value range = make("NSRangeQRX", {Value(largest), Value(largest - 1)});
    EXPECT_EQ((dataOf<Index, 2>(range)), (std::array<Index, 2>{largest, largest - 1}));
    EXPECT_EQ(ask(range, "location").toUInt64(), uint64_t{largest});
}

} // namespace
