// BoxTest.cpp: host objects boxed for the platform's collections.
#include "host/runtime/Lock.hpp"
#include "tests/companion/CompanionTest.hpp"

#include <atomic>
#include <chrono>
#include <thread>

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

// ---- released on threads of the platform's ----------------------------------------------------------

// Releases the box on another thread, which has tried it when the body runs, and ends after the body.
template <class Body>
void whileReleasedElsewhere(Id boxed, Body body) {
    std::thread other;
    {
        const host::Locked lock;
        std::atomic<bool> started = false;
        other = std::thread([&started, boxed] {
            const Pool inner;
            started = true;
            objc::send<"release", void>(boxed);
        });
        while (!started)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        body();
    }
    other.join();
}

// A box that only the caller holds.
Id ownBox(const Value& value) {
    const Pool inner;
    return objc::send<"retain">(box(value));
}

TEST_F(Boxes, LetGoOfTheirObjectOnAnyThreadButItsDestructorWaitsForTheLock) {
    Value set = make("NSIndexSetQRX", {2, 3});
    const Id indexes = slot(set.object()), boxed = ownBox(set);
    const auto before = retains(indexes); // the pool has one of them
    set = Value();
    whileReleasedElsewhere(boxed, [&] {
        EXPECT_EQ(harness::liveInstances()["NSIndexSetQRX"], 1u);
        EXPECT_EQ(retains(indexes), before);
    });
    EXPECT_EQ(harness::liveInstances()["NSIndexSetQRX"], 0u);
    EXPECT_EQ(retains(indexes), before - 1);
}

using BoxesOfBoth = WithBoth;

// Who holds the lock may find the object in the table of wrappers until the very end.
TEST_F(BoxesOfBoth, AnObjectThatIsFoundWhileItsLastReferenceGoesLivesOn) {
    Value drive = askClass("DRDeviceQRX", "device", {0});
    const REALobject known = drive.object();
    const Id boxed = ownBox(drive);
    drive = Value();
    whileReleasedElsewhere(boxed, [&] { drive = askClass("DRDeviceQRX", "device", {0}); });
    EXPECT_EQ(drive.object(), known);
    EXPECT_EQ(harness::references(drive.object()), 1u);
    EXPECT_TRUE(ask(drive, "isValid").toBoolean());
    EXPECT_EQ(askClass("DRDeviceQRX", "device", {0}).object(), known);
}

TEST_F(BoxesOfBoth, MayBeReleasedOnOneThreadWhileAnotherLooksTheirObjectsUp) {
    for (int i = 0; i < 300; ++i) {
        Value drive;
        Id boxed;
        {
            const host::Locked lock;
            drive = askClass("DRDeviceQRX", "device", {0});
            boxed = ownBox(drive);
            drive = Value();
        }
        std::thread other([boxed] {
            const Pool inner;
            objc::send<"release", void>(boxed);
        });
        {
            const host::Locked lock;
            const Pool inner;
            drive = askClass("DRDeviceQRX", "device", {0});
            EXPECT_TRUE(ask(drive, "isValid").toBoolean());
            drive = Value();
        }
        other.join();
    }
    EXPECT_EQ(harness::liveInstances()["DRDeviceQRX"], 0u);
}

} // namespace
