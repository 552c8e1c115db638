// GeometryTest.cpp: the platform's four structures and the host objects that carry them.
#include "plugin/bridge/Geometry.hpp"
#include "plugin/bridge/Variants.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/PlatformObjects.hpp"

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

// As on the machine that the classes were made for, and twice that where words are twice as long.
static_assert(sizeof(NSRange) == 2 * sizeof(void*) && sizeof(NSPoint) == 2 * sizeof(void*) &&
              sizeof(NSSize) == 2 * sizeof(void*) && sizeof(NSRect) == 4 * sizeof(void*));

class Geometry : public LoadedTest {
  protected:
    void SetUp() override {
        LoadedTest::SetUp();
        registerHostClass("NSRangeQRX", sizeof(NSRange));
        registerHostClass("NSRectQRX", sizeof(NSRect));
        registerHostClass("NSSizeQRX", sizeof(NSSize));
        registerHostClass("NSPointQRX", sizeof(NSPoint));
    }
};

using GeometryWithoutCompanion = LoadedTest;

bool isEqual(Id one, Id other) { return send<"isEqual:", objc::Boolean>(one, other) != 0; }

constexpr NSRange someRange{3, 4'000'000'000};
constexpr NSRect someRect{{1.5f, -2}, {30, 40.25f}};
constexpr NSSize someSize{30, 40.25f};
constexpr NSPoint somePoint{1.5f, -2};

Id rangeValue() { return sendClass<"NSValue", "valueWithRange:">(someRange); }
Id rectValue() { return sendClass<"NSValue", "valueWithRect:">(someRect); }
Id sizeValue() { return sendClass<"NSValue", "valueWithSize:">(someSize); }
Id pointValue() { return sendClass<"NSValue", "valueWithPoint:">(somePoint); }

TEST_F(Geometry, AValueBecomesItsHostObjectAndComesBackEqual) {
    const std::pair<Id, const char*> cases[] = {{rangeValue(), "NSRangeQRX"},
                                                {rectValue(), "NSRectQRX"},
                                                {sizeValue(), "NSSizeQRX"},
                                                {pointValue(), "NSPointQRX"}};
    for (const auto& [value, className] : cases) {
        const Ref object = Ref::adopt(NewVariantFromNSObject(value));
        ASSERT_TRUE(host::isA(object.get(), className)) << className;
        EXPECT_EQ(harness::references(object.get()), 1u);
        const Id back = GetVariantAsNSObject(object.get());
        EXPECT_TRUE(objc::isKindOf<"NSValue">(back));
        EXPECT_TRUE(isEqual(back, value)) << className;
    }
}

TEST_F(Geometry, TheInstanceDataIsTheStructureAsItIs) {
    const Ref range = Ref::adopt(NewNSRangeQRX(someRange)), rect = Ref::adopt(NewNSRectQRX(someRect)),
              size = Ref::adopt(NewNSSizeQRX(someSize)), point = Ref::adopt(NewNSPointQRX(somePoint));
    const auto* words = static_cast<unsigned long*>(host::instanceData(range.get()));
    EXPECT_EQ(words[0], 3u);
    EXPECT_EQ(words[1], 4'000'000'000u);
    const auto* sides = static_cast<CGFloat*>(host::instanceData(rect.get()));
    EXPECT_EQ(sides[0], 1.5f);
    EXPECT_EQ(sides[1], -2);
    EXPECT_EQ(sides[2], 30);
    EXPECT_EQ(sides[3], 40.25f);
    EXPECT_EQ(GetNSRange(range.get()).length, someRange.length);
    EXPECT_EQ(GetNSRect(rect.get()).size.height, someRect.size.height);
    EXPECT_EQ(GetNSSize(size.get()).width, someSize.width);
    EXPECT_EQ(GetNSPoint(point.get()).y, somePoint.y);
}

TEST_F(Geometry, ANullObjectIsAllZeros) {
    EXPECT_EQ(GetNSRange(nullptr).location, 0u);
    EXPECT_EQ(GetNSRange(nullptr).length, 0u);
    EXPECT_EQ(GetNSRect(nullptr).origin.x, 0);
    EXPECT_EQ(GetNSRect(nullptr).size.height, 0);
    EXPECT_EQ(GetNSSize(nullptr).width, 0);
    EXPECT_EQ(GetNSPoint(nullptr).y, 0);
}

NSRect answerRect(Id, objc::Sel) { return someRect; }
NSSize answerSize(Id, objc::Sel) { return someSize; }
NSRange answerRange(Id, objc::Sel) { return someRange; }
NSPoint answerPoint(Id, objc::Sel) { return somePoint; }

TEST_F(Geometry, TheTextsOf32BitMachinesAreKnownOnEveryMachine) {
    typedValue("");
    addToTestValue<"rectValue", answerRect>();
    addToTestValue<"sizeValue", answerSize>();
    addToTestValue<"rangeValue", answerRange>();
    addToTestValue<"pointValue", answerPoint>();
    const Ref rect = Ref::adopt(NewVariantFromNSObject(typedValue("{_NSRect={_NSPoint=ff}{_NSSize=ff}}")));
    const Ref size = Ref::adopt(NewVariantFromNSObject(typedValue("{_NSSize=ff}")));
    const Ref range = Ref::adopt(NewVariantFromNSObject(typedValue("{_NSRange=II}")));
    const Ref point = Ref::adopt(NewVariantFromNSObject(typedValue("{_NSPoint=ff}")));
    EXPECT_EQ(GetNSRect(rect.get()).size.height, someRect.size.height);
    EXPECT_EQ(GetNSSize(size.get()).width, someSize.width);
    EXPECT_EQ(GetNSRange(range.get()).length, someRange.length);
    EXPECT_EQ(GetNSPoint(point.get()).x, somePoint.x);
    EXPECT_TRUE(host::isA(point.get(), "NSPointQRX"));
}

#if __SIZEOF_POINTER__ == 4
TEST_F(Geometry, ThisPlatformsTextsAreThoseOf32BitMachinesLetterForLetter) {
    const auto type = [](Id value) { return std::string(send<"objCType", const char*>(value)); };
    EXPECT_EQ(type(rectValue()), "{_NSRect={_NSPoint=ff}{_NSSize=ff}}");
    EXPECT_EQ(type(sizeValue()), "{_NSSize=ff}");
    EXPECT_EQ(type(rangeValue()), "{_NSRange=II}");
    EXPECT_EQ(type(pointValue()), "{_NSPoint=ff}");
}
#endif

TEST_F(GeometryWithoutCompanion, EveryValueIsNull) {
    for (const Id value : {rangeValue(), rectValue(), sizeValue(), pointValue()})
        EXPECT_EQ(NewVariantFromNSObject(value), nullptr);
    EXPECT_EQ(NewNSRangeQRX(someRange), nullptr);
    EXPECT_EQ(NewNSRectQRX(someRect), nullptr);
    EXPECT_EQ(NewNSSizeQRX(someSize), nullptr);
    EXPECT_EQ(NewNSPointQRX(somePoint), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
