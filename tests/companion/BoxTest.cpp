// BoxTest.cpp: host objects boxed for the platform's collections.
#include "tests/companion/CompanionTest.hpp"

namespace {

using namespace test;

using Boxes = WithCompanion;

Id box(const Value& value) { return objc::sendClass<"QRXREALobjectWrapper", "wrap:">(value.object()); }
REALobject unboxed(Id box) { return objc::send<"unwrap", REALobject>(box); }

TEST_F(Boxes, KeepOneReferenceForAsLongAsTheyLive) {
    const Value object = make("NSRangeQRX");
    {
        const Pool inner;
        box(object);
        EXPECT_EQ(harness::references(object.object()), 2u);
    }
    EXPECT_EQ(harness::references(object.object()), 1u);
}

TEST_F(Boxes, AnswerTheVeryObjectWithAReferenceOfTheCallers) {
    const Value object = make("NSRangeQRX");
    const Id boxed = box(object);
    {
        const Ref back = Ref::adopt(unboxed(boxed));
        EXPECT_EQ(back.get(), object.object());
        EXPECT_EQ(harness::references(object.object()), 3u);
    }
    EXPECT_EQ(harness::references(object.object()), 2u);
}

TEST_F(Boxes, KeepAnObjectAliveThatNobodyElseHolds) {
    const Pool inner;
    const Id boxed = box(make("NSRangeQRX", {7, 8}));
    const Value back = Value::adopt(unboxed(boxed));
    EXPECT_EQ(ask(back, "location").toInt32(), 7);
}

TEST_F(Boxes, OfNothingAreNil) { EXPECT_EQ(box(Value()), nullptr); }

TEST_F(Boxes, OfTheSameObjectAreEqualAndOfOthersAreNot) {
    const Value one = make("NSRangeQRX"), other = make("NSRangeQRX");
    EXPECT_TRUE((objc::send<"isEqual:", objc::Boolean>(box(one), box(one))));
    EXPECT_FALSE((objc::send<"isEqual:", objc::Boolean>(box(one), box(other))));
    EXPECT_FALSE((objc::send<"isEqual:", objc::Boolean>(box(one), nsString("text"))));
    EXPECT_FALSE((objc::send<"isEqual:", objc::Boolean>(box(one), Id(nullptr))));
    EXPECT_EQ((objc::send<"hash", unsigned long>(box(one))), (objc::send<"hash", unsigned long>(box(one))));
}

TEST_F(Boxes, MayBeKeysAndValuesOfADictionary) {
    const Value key = make("NSRangeQRX"), value = make("NSSizeQRX");
    {
        const Pool inner;
        const Id dictionary = objc::sendClass<"NSMutableDictionary", "dictionary">();
        objc::send<"setObject:forKey:", void>(dictionary, box(value), box(key));
        const Ref found = Ref::adopt(unboxed(objc::send<"objectForKey:">(dictionary, box(key))));
        EXPECT_EQ(found.get(), value.object());
    }
    EXPECT_EQ(harness::references(key.object()), 1u);
    EXPECT_EQ(harness::references(value.object()), 1u);
}

} // namespace
