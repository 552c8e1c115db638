// MSFTest.cpp: lengths on a disc, through the members that DRMSFQRX declares.
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Startup.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace {

using namespace test;

constexpr const char* className = "DRMSFQRX";

class MSF : public LoadedTest {
  protected:
    Ref empty() { return make(className); }

    Ref withFrames(int32_t frames) {
        Ref object = empty();
        call<void>(className, "Constructor(frames as integer)", object.get(), frames);
        return object;
    }

    Ref withText(const char* text) {
        Ref object = empty();
        call<void>(className, "Constructor(s as string)", object.get(), String(text).get());
        return object;
    }

    int32_t number(const Ref& object, const char* declaration) {
        return call<int32_t>(className, declaration, object.get());
    }
    int32_t sectors(const Ref& object) { return number(object, "sectors as integer"); }

    std::string description(const Ref& object) {
        return textOf(call<REALstring>(className, "description as string", object.get()));
    }
    std::string formatted(const Ref& object, const char* format) {
        return textOf(call<REALstring>(className, "descriptionWithFormat(format as string) as string",
                                       object.get(), String(format).get()));
    }

    Ref add(const Ref& a, const Ref& b) {
        return Ref::adopt(
            call<REALobject>(className, "msfByAdding(value as DRMSFQRX) as DRMSFQRX", a.get(), b.get()));
    }
    Ref subtract(const Ref& a, const Ref& b) {
        return Ref::adopt(
            call<REALobject>(className, "msfBySubtracting(value as DRMSFQRX) as DRMSFQRX", a.get(), b.get()));
    }
    bool equal(const Ref& a, const Ref& b) {
        return call<bool>(className, "isEqualToMSF(value as DRMSFQRX) as boolean", a.get(), b.get());
    }
};

TEST_F(MSF, DeclaresTwelveMembersAndThreeSharedOnesInTheirOrder) {
    const REALclassDefinition& record = *harness::definition(className);
    ASSERT_EQ(record.methodCount, 12u);
    ASSERT_EQ(record.sharedMethodCount, 3u);
    EXPECT_STREQ(record.methods[0].declaration, "Constructor(frames as integer)");
    EXPECT_STREQ(record.methods[1].declaration, "Constructor(s as string)");
    EXPECT_STREQ(record.methods[2].declaration, "Constructor");
    EXPECT_EQ(record.methods[2].flags, 4u) << "programs may make an empty value";
    EXPECT_STREQ(record.methods[11].declaration, "descriptionWithFormat(format as string) as string");
    EXPECT_STREQ(record.sharedMethods[2].declaration, "msf as DRMSFQRX");
}

TEST_F(MSF, AnEmptyValueAnswersZeroAndNilForEver) {
    const Ref value = empty();
    call<void>(className, "Constructor", value.get());
    for (const char* part :
         {"minutes as integer", "seconds as integer", "frames as integer", "sectors as integer"})
        EXPECT_EQ(number(value, part), 0) << part;
    EXPECT_EQ(description(value), "");
    EXPECT_EQ(formatted(value, "%m"), "");
    EXPECT_FALSE(equal(value, withFrames(0)));
    EXPECT_FALSE(equal(value, value));
    EXPECT_FALSE(add(value, withFrames(1)));
    EXPECT_FALSE(subtract(value, withFrames(1)));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(MSF, AFrameCountComesBackFromSectorsAndThePlatformSplitsIt) {
    const Ref value = withFrames(24822);
    EXPECT_EQ(sectors(value), 24822);
    EXPECT_EQ(number(value, "minutes as integer"), 5);
    EXPECT_EQ(number(value, "seconds as integer"), 30);
    EXPECT_EQ(number(value, "frames as integer"), 72);
    EXPECT_EQ(description(value), "05:30:72");
}

TEST_F(MSF, ANegativeCountCrossesUnchanged) { EXPECT_EQ(sectors(withFrames(-1)), -1); }

TEST_F(MSF, TextIsThePlatformsToRead) {
    EXPECT_EQ(sectors(withText("74:00:00")), 333000);
    EXPECT_EQ(sectors(withText("nonsense")), 0);
    const Ref fromNil = empty();
    call<void>(className, "Constructor(s as string)", fromNil.get(), REALstring{nullptr});
    EXPECT_EQ(sectors(fromNil), 0);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(MSF, AddingAndSubtractingMakeNewValues) {
    const Ref a = withFrames(100), b = withFrames(30);
    EXPECT_EQ(sectors(add(a, b)), 130);
    EXPECT_EQ(sectors(subtract(a, b)), 70);
    EXPECT_EQ(sectors(a), 100);
}

TEST_F(MSF, ArithmeticWithNilOrAnEmptyValueGivesNilAndRaisesNothing) {
    const Ref value = withFrames(100);
    EXPECT_FALSE(add(value, Ref()));
    EXPECT_FALSE(subtract(value, Ref()));
    EXPECT_FALSE(add(value, empty()));
    EXPECT_FALSE(subtract(value, empty()));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(MSF, ComparesByValueAndNilIsNeverEqual) {
    EXPECT_TRUE(equal(withFrames(100), withFrames(100)));
    EXPECT_FALSE(equal(withFrames(100), withFrames(101)));
    EXPECT_FALSE(equal(withFrames(100), Ref()));
    EXPECT_FALSE(equal(withFrames(0), empty()));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(MSF, FormatsAsThePlatformDoes) {
    EXPECT_EQ(formatted(withFrames(14190), "%02m:%02s"), "03:10"); // 3 m 9 s 15 f rounds up
    EXPECT_EQ(formatted(withFrames(14175), "%02m:%02s"), "03:09");
    EXPECT_EQ(formatted(withFrames(150), "100%% %s"), "100% 2");
}

TEST_F(MSF, ASecondConstructorRaisesAndKeepsTheFirstValue) {
    const Ref value = withFrames(100);
    const Raised tooOften{"UnsupportedOperationException",
                          "Constructor called too often. Object is already initialized."};
    call<void>(className, "Constructor(frames as integer)", value.get(), 200);
    EXPECT_EQ(raised(), tooOften);
    call<void>(className, "Constructor(s as string)", value.get(), String("10:00:00").get());
    EXPECT_EQ(raised(), tooOften);
    EXPECT_EQ(sectors(value), 100);
}

TEST_F(MSF, AValueFromThePlatformRefusesAConstructorToo) {
    const Ref value =
        Ref::adopt(call<REALobject>(className, "msfWithFrames(frames as integer) as DRMSFQRX", int32_t{100}));
    call<void>(className, "Constructor(frames as integer)", value.get(), 200);
    EXPECT_EQ(raised()->className, "UnsupportedOperationException");
    EXPECT_EQ(sectors(value), 100);
}

TEST_F(MSF, SharedFactoriesMakeValues) {
    const Ref frames = Ref::adopt(
        call<REALobject>(className, "msfWithFrames(frames as integer) as DRMSFQRX", int32_t{4500}));
    EXPECT_EQ(description(frames), "01:00:00");
    const Ref text = Ref::adopt(
        call<REALobject>(className, "msfWithString(s as string) as DRMSFQRX", String("00:02:00").get()));
    EXPECT_EQ(sectors(text), 150);
    const Ref zero = Ref::adopt(call<REALobject>(className, "msf as DRMSFQRX"));
    EXPECT_EQ(sectors(zero), 0);
    EXPECT_NE(frame::slot(zero.get()), nullptr);
}

TEST_F(MSF, AConstructedValueIsRegisteredSoThePlatformObjectComesBackAsIt) {
    companion::offerRegistry();
    const Ref value = withFrames(100);
    EXPECT_EQ(FindInstance(frame::slot(value.get())), value.get());
    const Ref again = Ref::adopt(NewDRMSFQRX(frame::slot(value.get())));
    EXPECT_EQ(again.get(), value.get());
}

TEST_F(MSF, TheConstructorsReferenceIsTheOnlyOneAndTheDestructorGivesItUp) {
    objc::Id platform = nullptr;
    {
        const Ref value = withFrames(100);
        platform = objc::retained(frame::slot(value.get()));
        EXPECT_EQ((objc::send<"retainCount", unsigned long>(platform)), 2u);
    }
    EXPECT_EQ((objc::send<"retainCount", unsigned long>(platform)), 1u);
    objc::release(platform);
}

} // namespace
