// CrossingTest.cpp: values that need both plug-ins, through a burn's properties and back.
#include "tests/companion/CompanionTest.hpp"

#include "host/runtime/Array.hpp"

namespace {

using namespace test;

using Number = std::conditional_t<sizeof(void*) == 8, double, float>;
struct Rect {
    Number x, y, width, height;
};
struct Pair {
    Number first, second;
};
struct Range {
    unsigned long location, length;
};

class Crossing : public WithBoth {
  protected:
    // What the platform holds after a program has assigned the value as a property.
    Id sent(const Value& value) {
        const Ref dictionary = host::newDictionary();
        host::dictionarySet(dictionary.get(), "TestKey", value);
        set(burn, "properties", Value(dictionary));
        return objc::send<"objectForKey:">(objc::send<"properties">(slot(burn.object())),
                                           nsString("TestKey"));
    }
    // What a program reads then.
    Value back() { return host::dictionaryGet(ask(burn, "properties").object(), "TestKey"); }

    static bool equal(Id one, Id other) { return objc::send<"isEqual:", objc::Boolean>(one, other) != 0; }

    void TearDown() override {
        burn = Value();
        WithBoth::TearDown();
    }

    Value burn = make("DRBurnQRX", {askClass("DRDeviceQRX", "device", {0})});
};

TEST_F(Crossing, GeometryBecomesThePlatformsStructuresAndComesBackEqual) {
    EXPECT_TRUE(equal(sent(make("NSRectQRX", {1.5, 2, 3, -4})),
                      objc::sendClass<"NSValue", "valueWithRect:">(Rect{1.5, 2, 3, -4})));
    const Value rect = back();
    EXPECT_EQ(rect.typeName(), "NSRectQRX");
    EXPECT_EQ(ask(rect, "x").toDouble(), 1.5);
    EXPECT_EQ(ask(rect, "height").toDouble(), -4);

    EXPECT_TRUE(
        equal(sent(make("NSSizeQRX", {5, 6})), objc::sendClass<"NSValue", "valueWithSize:">(Pair{5, 6})));
    EXPECT_EQ(back().typeName(), "NSSizeQRX");
    EXPECT_EQ(ask(back(), "height").toDouble(), 6);

    EXPECT_TRUE(
        equal(sent(make("NSPointQRX", {7, 8})), objc::sendClass<"NSValue", "valueWithPoint:">(Pair{7, 8})));
    EXPECT_EQ(back().typeName(), "NSPointQRX");
    EXPECT_EQ(ask(back(), "y").toDouble(), 8);

    EXPECT_TRUE(equal(sent(make("NSRangeQRX", {9, 10})),
                      objc::sendClass<"NSValue", "valueWithRange:">(Range{9, 10})));
    EXPECT_EQ(back().typeName(), "NSRangeQRX");
    EXPECT_EQ(ask(back(), "length").toInt32(), 10);
}

TEST_F(Crossing, WrappedObjectsGoOverAsWhatTheyAre) {
    for (const Value& value : {make("NSIndexSetQRX", {2, 3}), make("NSAttributedStringQRX", {"text"}),
                               make("NSCharacterSetQRX", {"abc"})}) {
        EXPECT_EQ(sent(value), slot(value.object()));
        const Value again = back();
        EXPECT_EQ(again.typeName(), value.typeName());
        EXPECT_NE(again.object(), value.object()) << "deliberately not registered";
        EXPECT_EQ(slot(again.object()), slot(value.object()));
    }
}

// Deliberate: of the plug-in's own classes only burns go over as themselves.
TEST_F(Crossing, OtherHostObjectsAreBoxedAndComeBackAsTheVeryObject) {
    const Value drive = askClass("DRDeviceQRX", "device", {0});
    for (const Value& value : {drive, make("DRMSFQRX", {75}), holding("NSErrorQRX", nsString("any")),
                               make("NSWindowQRX"), make("RuntimeException", {"text"})}) {
        const auto before = harness::references(value.object());
        {
            const Pool inner;
            const Id box = sent(value);
            EXPECT_EQ(text(objc::send<"className">(box)), "QRXREALobjectWrapper") << value.typeName();
            EXPECT_EQ(harness::references(value.object()), before + 1) << value.typeName();
            EXPECT_EQ(back().object(), value.object());
        }
        EXPECT_EQ(harness::references(value.object()), before + 1) << "reading leaves no reference behind";
        {
            const Pool inner;
            sent("something else");
        }
        EXPECT_EQ(harness::references(value.object()), before) << value.typeName();
    }
}

TEST_F(Crossing, BoxedObjectsMayBeKeysAndLieInArrays) {
    const Value drive = askClass("DRDeviceQRX", "device", {0});
    const Ref inner = host::newDictionary(), list = host::newArray(host::typeNamed("Variant"));
    host::dictionarySet(inner.get(), drive, "by drive");
    host::arrayAppend(list.get(), drive);
    host::dictionarySet(inner.get(), "list", Value(list));
    sent(Value(inner));
    const Value read = back();
    EXPECT_EQ(host::dictionaryGet(read.object(), drive).toText(), "by drive");
    const Value array = host::dictionaryGet(read.object(), "list");
    EXPECT_EQ(host::arrayGet(array.object(), 0).object(), drive.object());
}

TEST_F(Crossing, ErrorsOfThePlatformComeAsObjects) {
    const Id error =
        objc::sendClass<"NSError", "errorWithDomain:code:userInfo:">(nsString("Domain"), 5l, Id(nullptr));
    objc::send<"setProperties:", void>(
        slot(burn.object()),
        objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(error, nsString("TestKey")));
    EXPECT_EQ(back().typeName(), "NSErrorQRX");
    EXPECT_EQ(ask(back(), "code").toInt32(), 5);
}

// ---- the same without the companion ------------------------------------------------------------------

class Alone : public CompanionTest {};

TEST_F(Alone, WithoutTheCompanionSuchValuesAreNil) {
    loadPlugin();
    Value burn = make("DRBurnQRX", {askClass("DRDeviceQRX", "device", {0})});
    const auto read = [&](Id value) {
        objc::send<"setProperties:", void>(
            slot(burn.object()),
            objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(value, nsString("TestKey")));
        return host::dictionaryGet(ask(burn, "properties").object(), "TestKey");
    };
    EXPECT_EQ(read(nsString("text")).toText(), "text");
    EXPECT_TRUE(read(objc::sendClass<"NSValue", "valueWithRange:">(Range{9, 10})).isNil());
    EXPECT_TRUE(read(objc::sendClass<"NSIndexSet", "indexSetWithIndex:">(1ul)).isNil());
}

} // namespace
