// ErrorsTest.cpp: argument faults, platform exceptions and platform start-up, with a companion and without
// one.
#include "plugin/bridge/Errors.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Startup.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <stdexcept>

namespace {

using namespace test;
using objc::Id;

using Errors = LoadedTest;

TEST_F(Errors, AnArgumentFaultRaisesTheClassWithTheMessage) {
    RaiseException("NilObjectException", "device is nil", kREALEncodingASCII);
    EXPECT_EQ(raised(), (Raised{"NilObjectException", "device is nil"}));
    EXPECT_EQ(harness::liveStrings(), 0u) << "the message was let go";
}

TEST_F(Errors, TheEncodingArgumentIsAcceptedAndNotUsed) {
    RaiseException("NilObjectException", "device is nil", kREALEncodingUTF16);
    EXPECT_EQ(raised(), (Raised{"NilObjectException", "device is nil"}));
}

TEST_F(Errors, AClassThatTheHostDoesNotKnowBecomesARuntimeException) {
    RaiseException("NoSuchException", "still said", kREALEncodingASCII);
    EXPECT_EQ(raised(), (Raised{"RuntimeException", "still said"}));
}

TEST_F(Errors, AHostWithoutTheFallbackClassRaisesNothing) {
    harness::hideClass("RuntimeException");
    RaiseException("NoSuchException", "unheard", kREALEncodingASCII);
    EXPECT_EQ(raised(), std::nullopt);
    EXPECT_EQ(harness::liveStrings(), 0u);
}

TEST_F(Errors, NoMessageRaisesWithoutOne) {
    RaiseException("NilObjectException", nullptr, kREALEncodingASCII);
    EXPECT_EQ(raised(), (Raised{"NilObjectException", ""}));
}

// ---- platform exceptions -----------------------------------------------------------------------------

int32_t elementPastTheEnd() {
    return bridge::guarded([]() -> int32_t {
        objc::send<"objectAtIndex:">(objc::sendClass<"NSArray", "array">(), 3ul);
        return 7;
    });
}

class PlatformExceptions : public PluginTest {
  protected:
    void SetUp() override { load(); }

    // What the platform's log got while the body ran.
    template <class Body>
    std::string logOf(Body body) {
        testing::internal::CaptureStderr();
        body();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(PlatformExceptions, WithoutACompanionBecomeARuntimeExceptionWithTheReason) {
    const std::string log = logOf([] { EXPECT_EQ(elementPastTheEnd(), 0); });
    const auto exception = raised();
    ASSERT_TRUE(exception);
    EXPECT_EQ(exception->className, "RuntimeException");
    EXPECT_NE(exception->message.find("Index 3"), std::string::npos) << exception->message;
    EXPECT_NE(log.find("A NSRangeException: " + exception->message), std::string::npos) << log;
}

TEST_F(PlatformExceptions, WithACompanionBecomeItsExceptionObject) {
    companion::offerExceptions();
    const std::string log = logOf([] { EXPECT_EQ(elementPastTheEnd(), 0); });
    EXPECT_EQ(raised(), (Raised{"UnsupportedOperationException", ""}));
    EXPECT_EQ(text(objc::send<"name">(companion::converted)), "NSRangeException");
    EXPECT_NE(log.find("A NSRangeException: "), std::string::npos) << log;
}

TEST_F(PlatformExceptions, ACompanionThatConvertsToNothingRaisesNothing) {
    companion::offerExceptions();
    companion::exceptionClass = nullptr;
    logOf([] { EXPECT_EQ(elementPastTheEnd(), 0); });
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(PlatformExceptions, AreLoggedInOneLineWithNameReasonAndUserInformation) {
    const std::string log = logOf([] {
        const Id info = objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(nsString("value"),
                                                                                        nsString("key"));
        RaiseNSExceptionQRX(objc::sendClass<"NSException", "exceptionWithName:reason:userInfo:">(
            nsString("TestException"), nsString("for a reason"), info));
    });
    EXPECT_NE(log.find("A TestException: for a reason, Info: {key = value; }\n"), std::string::npos) << log;
    EXPECT_EQ(raised(), (Raised{"RuntimeException", "for a reason"}));
}

TEST_F(PlatformExceptions, AReasonOutsideASCIIArrivesWhole) {
    logOf([] {
        RaiseNSExceptionQRX(objc::sendClass<"NSException", "exceptionWithName:reason:userInfo:">(
            nsString("TestException"), nsString("Größe ♫"), Id{nullptr}));
    });
    EXPECT_EQ(raised(), (Raised{"RuntimeException", "Größe ♫"}));
}

TEST_F(PlatformExceptions, TheGuardGivesEveryTypeItsEmptyResult) {
    const auto raise = [] { objc::send<"objectAtIndex:">(objc::sendClass<"NSArray", "array">(), 3ul); };
    logOf([&] {
        EXPECT_EQ(bridge::guarded([&] { return raise(), true; }), false);
        EXPECT_EQ(bridge::guarded([&] { return raise(), 2.5; }), 0.0);
        EXPECT_EQ(bridge::guarded([&]() -> REALstring { return raise(), String("x").detach(); }), nullptr);
        EXPECT_EQ(bridge::guarded([&]() -> REALobject { return raise(), nullptr; }), nullptr);
        bridge::guarded([&] { raise(); });
    });
    EXPECT_TRUE(raised());
}

TEST_F(PlatformExceptions, WhatIsNoPlatformExceptionFliesThroughTheGuard) {
    EXPECT_THROW(bridge::guarded([] { throw std::runtime_error("not ours"); }), std::runtime_error);
    EXPECT_EQ(raised(), std::nullopt);
}

// ---- start-up ----------------------------------------------------------------------------------------

using Startup = LoadedTest;

TEST_F(Startup, NothingHappensAtLoadTime) {
    companion::offerRegistry();
    EXPECT_EQ(instances, nullptr);
    EXPECT_EQ(companion::registryAsked, 0);
}

TEST_F(Startup, TakesEveryStepOnceHoweverOftenItRuns) {
    companion::offerRegistry();
    companion::offerExceptions();
    for (int i = 0; i < 10; ++i)
        CocoaInit();
    EXPECT_EQ(companion::registryAsked, 1);
    EXPECT_EQ(companion::prepared, 1);
    EXPECT_EQ(instances, companion::registry);
}

TEST_F(Startup, AsksAgainForACompanionThatComesLater) {
    CocoaInit();
    EXPECT_EQ(instances, nullptr);
    companion::offerRegistry();
    companion::offerExceptions();
    CocoaInit();
    EXPECT_EQ(instances, companion::registry);
    EXPECT_EQ(companion::prepared, 1);
}

TEST_F(Startup, RunsWithTheConstructionOfAnyObject) {
    companion::offerRegistry();
    for (const char* name : {"DRMSFQRX"}) {
        const Ref object = make(name);
        EXPECT_EQ(instances, companion::registry);
    }
}

TEST_F(Startup, AMissingApplicationFrameworkIsNoFault) {
    CocoaInit();
    CocoaInit();
    EXPECT_EQ(raised(), std::nullopt);
}

} // namespace
