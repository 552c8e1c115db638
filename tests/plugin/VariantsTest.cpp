// VariantsTest.cpp: values of every kind from the platform to the host.
#include "plugin/bridge/Variants.hpp"
#include "plugin/objc/Guard.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Array.hpp"

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

using FromPlatform = LoadedTest;

Ref fromPlatform(Id value) { return Ref::adopt(NewVariantFromNSObject(value)); }

Id arrayOf(std::initializer_list<Id> elements) {
    const Id array = sendClass<"NSMutableArray", "array">();
    for (const Id element : elements)
        send<"addObject:", void>(array, element);
    return array;
}

Id platformNull() { return sendClass<"NSNull", "null">(); }

TEST_F(FromPlatform, NilAndThePlatformsNullAreNil) {
    EXPECT_FALSE(fromPlatform(nullptr));
    EXPECT_FALSE(fromPlatform(platformNull()));
}

TEST_F(FromPlatform, AnArrayOfANumberATextAndANullIsAnArrayOfThoseAndNil) {
    const Ref array =
        fromPlatform(arrayOf({sendClass<"NSNumber", "numberWithInt:">(1), nsString("text"), platformNull()}));
    ASSERT_EQ(REALGetArrayUBound(handleOf(array)), 2);
    const Ref number = Ref::adopt(REALGetArrayObject(handleOf(array), 0)),
              string = Ref::adopt(REALGetArrayObject(handleOf(array), 1)),
              nothing = Ref::adopt(REALGetArrayObject(handleOf(array), 2));
    EXPECT_EQ(valueOf(number).kind(), Kind::Int32);
    EXPECT_EQ(valueOf(number).toInt32(), 1);
    EXPECT_EQ(valueOf(string).kind(), Kind::String);
    EXPECT_EQ(valueOf(string).toText(), "text");
    EXPECT_FALSE(nothing);
    EXPECT_EQ(harness::references(number.get()), 2u) << "the array's, and the one of this look";
}

TEST_F(FromPlatform, ArraysNest) {
    const Ref outer = fromPlatform(arrayOf({arrayOf({arrayOf({nsString("deep")})})}));
    const Ref middle = Ref::adopt(REALGetArrayObject(handleOf(outer), 0));
    const Ref inner = Ref::adopt(REALGetArrayObject(handleOf(middle), 0));
    const Ref text = Ref::adopt(REALGetArrayObject(handleOf(inner), 0));
    EXPECT_EQ(valueOf(text).toText(), "deep");
}

TEST_F(FromPlatform, TextIsAStringAlsoWhenItIsEmpty) {
    EXPECT_EQ(valueOf(fromPlatform(nsString("Größe"))).toText(), "Größe");
    const Ref empty = fromPlatform(nsString(""));
    ASSERT_TRUE(empty);
    EXPECT_EQ(valueOf(empty).kind(), Kind::String);
    EXPECT_EQ(valueOf(empty).toText(), "");
}

TEST_F(FromPlatform, DataIsAMemoryBlock) {
    const Ref block =
        fromPlatform(sendClass<"NSData", "dataWithBytes:length:">(static_cast<const void*>("a\0b"), 3ul));
    ASSERT_TRUE(IsMemoryBlock(block.get()));
    EXPECT_EQ(REALMemoryBlockGetSize(block.get()), 3);
    EXPECT_EQ(std::string(static_cast<char*>(REALMemoryBlockGetPtr(block.get())), 3), std::string("a\0b", 3));
}

TEST_F(FromPlatform, EmptyDataIsAnEmptyMemoryBlock) {
    const Ref block = fromPlatform(sendClass<"NSData", "data">());
    ASSERT_TRUE(IsMemoryBlock(block.get()));
    EXPECT_EQ(REALMemoryBlockGetSize(block.get()), 0);
}

// ---- numbers -----------------------------------------------------------------------------------------

struct NumberRow {
    const char* type;
    double number;
    const char* accessor;
    Kind kind;
    double expected;

    friend void PrintTo(const NumberRow& row, std::ostream* out) { *out << row.type << " " << row.number; }
};

class Numbers : public LoadedTest, public testing::WithParamInterface<NumberRow> {};

INSTANTIATE_TEST_SUITE_P(
    EveryType, Numbers,
    testing::Values(NumberRow{"c", 5, "boolValue", Kind::Boolean, 1}, // never a small integer
                    NumberRow{"c", 0, "boolValue", Kind::Boolean, 0},
                    NumberRow{"C", 200, "unsignedCharValue", Kind::Int32, 200}, // also where booleans are "C"
                    NumberRow{"s", -7, "shortValue", Kind::Int32, -7},
                    NumberRow{"S", 65535, "unsignedShortValue", Kind::Int32, 65535},
                    NumberRow{"i", -2147483648.0, "intValue", Kind::Int32, -2147483648.0},
                    NumberRow{"I", 4294967295.0, "unsignedIntValue", Kind::UInt32, 4294967295.0},
                    NumberRow{"l", -2147483647.0, "longValue", Kind::Int32, -2147483647.0},
                    NumberRow{"L", 4294967290.0, "unsignedLongValue", Kind::UInt32, 4294967290.0},
                    NumberRow{"q", -5e9, "longLongValue", Kind::Int64, -5e9},
                    NumberRow{"Q", 4294967290.0, "unsignedLongValue", Kind::UInt64, 4294967290.0},
                    NumberRow{"f", 0.5, "floatValue", Kind::Single, 0.5},
                    NumberRow{"d", 0.1, "doubleValue", Kind::Double, 0.1},
                    NumberRow{"{odd=i}", 2.5, "doubleValue", Kind::Double, 2.5}));

TEST_P(Numbers, BecomeTheHostTypeOfTheirTypeText) {
    const NumberRow& row = GetParam();
    const Value value = valueOf(fromPlatform(typedNumber(row.type, row.number)));
    EXPECT_EQ(asked, row.accessor);
    EXPECT_EQ(value.kind(), row.kind);
    EXPECT_EQ(value.toDouble(), row.expected);
}

TEST_F(FromPlatform, ThePlatformsOwnBooleansAreBooleans) {
    for (const bool expected : {true, false}) {
        const Value value =
            valueOf(fromPlatform(sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{expected})));
        EXPECT_EQ(value.kind(), Kind::Boolean);
        EXPECT_EQ(value.toBoolean(), expected);
    }
}

TEST_F(FromPlatform, DeliberatelyAnUnsigned64BitNumberLosesItsHigh32Bits) {
    const Value value =
        valueOf(fromPlatform(sendClass<"NSNumber", "numberWithUnsignedLongLong:">((1ull << 63) + 7)));
    EXPECT_EQ(value.kind(), Kind::UInt64);
    EXPECT_EQ(value.toUInt64(), 7u);
    EXPECT_EQ(valueOf(fromPlatform(typedNumber("Q", 4294967296.0 + 7))).toUInt64(), 7u);
}

// ---- URLs, values, boxes, and everything else --------------------------------------------------------

TEST_F(FromPlatform, AURLThatIsNoFileIsItsText) {
    const Ref text = fromPlatform(sendClass<"NSURL", "URLWithString:">(nsString("http://example.com/a%20b")));
    EXPECT_EQ(valueOf(text).kind(), Kind::String);
    EXPECT_EQ(valueOf(text).toText(), "http://example.com/a%20b");
}

TEST_F(FromPlatform, AFileURLIsAFolderItem) {
    const Ref item = fromPlatform(sendClass<"NSURL", "fileURLWithPath:">(nsString("/etc/passwd")));
    EXPECT_TRUE(IsFolderItem(item.get()));
}

REALobject timeObject = nullptr;

template <char mark>
REALobject answerTime(Id, objc::Sel) {
    asked = mark;
    REALLockObject(timeObject);
    return timeObject;
}

TEST_F(FromPlatform, TimesAreWhatACompanionAnswersAndNilWithoutOne) {
    const char* types[] = {"{?=qll}", "{?={?=qll}{?=qll}}", "{?=qiIq}", "{?={?=qiIq}{?=qiIq}}",
                           "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}"};
    for (const char* type : types)
        EXPECT_FALSE(fromPlatform(typedValue(type)));
    addToTestValue<"QTTimeValueQRX", answerTime<'0'>>();
    addToTestValue<"QTTimeRangeValueQRX", answerTime<'1'>>();
    addToTestValue<"CMTimeValueQRX", answerTime<'2'>>();
    addToTestValue<"CMTimeRangeValueQRX", answerTime<'3'>>();
    addToTestValue<"CMTimeMappingValueQRX", answerTime<'4'>>();
    const Ref time = make("Dictionary");
    timeObject = time.get();
    for (std::size_t i = 0; i < std::size(types); ++i) {
        EXPECT_EQ(fromPlatform(typedValue(types[i])).get(), time.get()) << types[i];
        EXPECT_EQ(asked, std::to_string(i));
    }
}

TEST_F(FromPlatform, AValueOfAnyOtherTypeIsNil) {
    offerBoxes();
    EXPECT_FALSE(fromPlatform(typedValue("{?=dd}")));
    EXPECT_FALSE(fromPlatform(typedValue("")));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(FromPlatform, ABoxIsTheHostObjectInIt) {
    offerBoxes();
    registerHolderClass("QRXREALobjectWrapperQRX"); // unboxing comes before the search by name
    const Ref object = make("DRMSFQRX");
    const Id box = sendClass<"QRXREALobjectWrapper", "wrap:">(object.get());
    EXPECT_EQ(fromPlatform(box).get(), object.get());
    EXPECT_EQ(harness::references(object.get()), 1u);
}

TEST_F(FromPlatform, AnythingElseIsTheHostClassNamedAfterIt) {
    objc::ClassBuilder("NSObject", "TestThing").finish();
    const Id thing = objc::autoreleased(sendClass<"TestThing", "new">());
    EXPECT_FALSE(fromPlatform(thing));
    registerHolderClass("TestThingQRX");
    const Ref wrapped = fromPlatform(thing);
    EXPECT_EQ(frame::held(wrapped.get()), thing);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(FromPlatform, AnArrayThatContainsItselfEnds) {
    const Id array = arrayOf({nsString("first")});
    send<"addObject:", void>(array, array);
    {
        const Ref converted = fromPlatform(array);
        ASSERT_EQ(REALGetArrayUBound(handleOf(converted)), 1);
        EXPECT_FALSE(Ref::adopt(REALGetArrayObject(handleOf(converted), 1)));
    }
    send<"removeAllObjects", void>(array);
}

TEST_F(FromPlatform, AnArrayThatTheHostCannotMakeIsNil) {
    harness::withdraw("RuntimeArrayCreateSingleDimBoundedArray");
    EXPECT_EQ(NewVariantFromNSObject(arrayOf({nsString("text")})), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

REALobject raiseMidway(Id, objc::Sel) {
    sendClass<"NSException", "raise:format:", void>(nsString("TestException"), nsString("midway"));
    return nullptr;
}

TEST_F(FromPlatform, WhatThePlatformRaisesMidwayLeavesNothingBehind) {
    typedValue("");
    addToTestValue<"QTTimeValueQRX", raiseMidway>();
    const Id array = arrayOf({nsString("first"), typedValue("{?=qll}")});
    const auto strings = harness::liveStrings();
    const auto objects = harness::liveInstances();
    EXPECT_NE(objc::caughtIn([=] { NewVariantFromNSObject(array); }), nullptr);
    EXPECT_EQ(harness::liveStrings(), strings);
    EXPECT_EQ(harness::liveInstances(), objects);
}

} // namespace
