// ErrorsTest.cpp: argument faults, platform exceptions and platform start-up, with a companion and without
// one.
#include "plugin/bridge/Errors.hpp"
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Startup.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"
#include "tests/plugin/Replaced.hpp"

#include <stdexcept>
#include <utility>
#include <vector>

extern "C" void NSDeallocateObject(objc::Id object);

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

// A window class of a companion, so that panels can be made.
void registerPanelClass() {
    static REALclassDefinition record = frame::makeClass({.name = "NSPanelQRX", .dataSize = 16});
    REALRegisterClass(&record);
}

TEST_F(Startup, RunsWithTheConstructionOfAnyObjectAndTheDestructionOfWrappersButNotOfPanels) {
    companion::offerRegistry();
    registerPanelClass();
    for (const auto& [name, destructorRunsIt] :
         {std::pair("DRMSFQRX", true), std::pair("DRBurnQRX", true), std::pair("DRCDTextBlockQRX", true),
          std::pair("DRDeviceQRX", true), std::pair("DREraseQRX", true), std::pair("DRFSObjectQRX", true),
          std::pair("DRFileQRX", true), std::pair("DRFolderQRX", true), std::pair("DRTrackQRX", true),
          std::pair("DRSetupPanelQRX", false), std::pair("DRBurnProgressPanelQRX", false),
          std::pair("DREraseProgressPanelQRX", false)}) {
        instances = nullptr;
        Ref object = make(name);
        ASSERT_TRUE(object) << name;
        EXPECT_EQ(instances, companion::registry) << name;
        instances = nullptr;
        object = Ref();
        EXPECT_EQ(instances, destructorRunsIt ? companion::registry : nullptr) << name;
    }
}

std::vector<std::string> steps;

void* registryStep(Id, objc::Sel) {
    steps.push_back("registry");
    return companion::registry;
}
void prepareStep(Id, objc::Sel) { steps.push_back("prepare"); }
Id applicationStep(Id, objc::Sel) {
    steps.push_back("application");
    return nullptr;
}

TEST_F(Startup, LoadsTheApplicationOnceBetweenRegistryAndExceptionsHoweverOftenItRuns) {
    companion::offerRegistry();
    companion::addToNSException<"PrepareNSExceptionQRX", prepareStep>();
    objc::ClassBuilder("NSObject", "NSApplication").finish();
    objc::class_addMethod(objc_getMetaClass("NSApplication"), objc::selector<"sharedApplication">(),
                          reinterpret_cast<objc::Imp>(applicationStep), "@@:");
    for (int i = 0; i < 10; ++i)
        CocoaInit();
    EXPECT_EQ(steps, (std::vector<std::string>{"application", "prepare"}));
    EXPECT_EQ(companion::registryAsked, 1);
}

TEST_F(Startup, TheRegistryIsAskedForFirst) {
    companion::registry = CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr);
    companion::addToNSException<"GetInstancesDictionaryQRX", registryStep>();
    companion::addToNSException<"PrepareNSExceptionQRX", prepareStep>();
    objc::ClassBuilder("NSObject", "NSApplication").finish();
    objc::class_addMethod(objc_getMetaClass("NSApplication"), objc::selector<"sharedApplication">(),
                          reinterpret_cast<objc::Imp>(applicationStep), "@@:");
    CocoaInit();
    EXPECT_EQ(steps, (std::vector<std::string>{"registry", "application", "prepare"}));
}

TEST_F(Startup, AMissingApplicationFrameworkIsNoFault) {
    ASSERT_EQ(objc::classNamed<"NSApplication">(), nullptr);
    CocoaInit();
    CocoaInit();
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Startup, IsNotRunByTheStringConstantsNorByTheBurnsOwnConstructor) {
    companion::offerRegistry();
    textOf(call<REALstring>("DRDeviceQRX", "DRDeviceAppearedNotification as string"));
    EXPECT_EQ(companion::registryAsked, 0);
    const Ref burn = make("DRBurnQRX");
    EXPECT_EQ(companion::registryAsked, 1);
    instances = nullptr;
    call<void>("DRBurnQRX", "Constructor(device as DRDeviceQRX)", burn.get(), REALobject{nullptr});
    EXPECT_EQ(companion::registryAsked, 1);
}

TEST_F(Startup, IsRunByTheSharedFactories) {
    companion::offerRegistry();
    int32_t asked = 0;
    const auto expectRun = [&](const char* what) {
        EXPECT_EQ(companion::registryAsked, ++asked) << what;
        instances = nullptr;
    };
    // Making the wrapper asks too, when the first step has found no registry; here it has.
    Ref::adopt(call<REALobject>("DRMSFQRX", "msf as DRMSFQRX"));
    asked = companion::registryAsked - 1;
    expectRun("msf");
    EXPECT_EQ((call<REALobject>("DRFolderQRX", "virtualFolderWithName(name as string) as DRFolderQRX",
                                REALstring{nullptr})),
              nullptr);
    expectRun("virtualFolderWithName");
    EXPECT_EQ((call<REALobject>("DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX",
                                REALobject{nullptr})),
              nullptr);
    expectRun("trackForRootFolder");
}

Id makesNothing(Id, objc::Sel, Id) { return nullptr; }
Id beginsNothing(Id self, objc::Sel, Id) {
    NSDeallocateObject(self); // as an initialiser does with an object that it does not answer
    return nullptr;
}

// The drives' and the jobs' too. What they look for is not there, so no wrapper is made that would run it as well.
TEST_F(Startup, IsRunByTheFactoriesOfDrivesAndJobsAlsoWhenTheyFindNothing) {
    const OwnDrives none(false);
    companion::offerRegistry();
    CocoaInit();
    const auto expectRun = [&](const char* what, const auto& ask) {
        instances = nullptr;
        const int32_t before = companion::registryAsked;
        ask();
        EXPECT_EQ(companion::registryAsked, before + 1) << what;
    };
    expectRun("deviceCount", [&] { call<uint32_t>("DRDeviceQRX", "deviceCount as UInt32"); });
    expectRun("devices", [&] {
        Ref::adopt(reinterpret_cast<REALobject>(call<REALarray>("DRDeviceQRX", "devices as DRDeviceQRX()")));
    });
    expectRun("device", [&] {
        testing::internal::CaptureStderr();
        call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0});
        testing::internal::GetCapturedStderr();
        raised();
    });
    for (const char* name : {"deviceForBSDName(bsdName as string) as DRDeviceQRX",
                             "deviceForIORegistryEntryPath(path as string) as DRDeviceQRX"})
        expectRun(name, [&] { call<REALobject>("DRDeviceQRX", name, REALstring{nullptr}); });
    replaceClassMethod<"burnForDevice:", makesNothing>("DRBurn");
    replaceMethod<"initWithDevice:", beginsNothing>("DRErase");
    expectRun("burnForDevice", [&] {
        EXPECT_EQ((call<REALobject>("DRBurnQRX", "burnForDevice(device as DRDeviceQRX) as DRBurnQRX",
                                    REALobject{nullptr})),
                  nullptr);
    });
    expectRun("eraseForDevice", [&] {
        EXPECT_EQ((call<REALobject>("DREraseQRX", "eraseForDevice(device as DRDeviceQRX) as DREraseQRX",
                                    REALobject{nullptr})),
                  nullptr);
    });
}

Id nothingFrom(Id, objc::Sel, Id) { return nullptr; }
Id nothingFromTwo(Id, objc::Sel, Id, Id) { return nullptr; }

// The others of files and folders. Nothing is made, be it that the platform answers nothing: a wrapper would run it, too.
TEST_F(Startup, IsRunByTheFactoriesOfFilesAndFolders) {
    companion::offerRegistry();
    CocoaInit();
    replaceClassMethod<"fileWithPath:", nothingFrom>("DRFile");
    replaceClassMethod<"virtualFileWithName:data:", nothingFromTwo>("DRFile");
    const auto expectRun = [this](const char* className, const char* declaration, auto... arguments) {
        instances = nullptr;
        const int32_t before = companion::registryAsked;
        EXPECT_EQ((call<REALobject>(className, declaration, arguments...)), nullptr) << declaration;
        EXPECT_EQ(companion::registryAsked, before + 1) << declaration;
    };
    expectRun("DRFileQRX", "fileWithPath(path as string) as DRFileQRX", REALstring{nullptr});
    expectRun("DRFileQRX", "fileWithPath(path as folderitem) as DRFileQRX", REALfolderItem{nullptr});
    expectRun("DRFileQRX", "virtualFileWithName(name as string, data as memoryblock) as DRFileQRX",
              REALstring{nullptr}, REALmemoryBlock{nullptr});
    expectRun("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX", REALstring{nullptr});
    expectRun("DRFolderQRX", "folderWithPath(path as folderitem) as DRFolderQRX", REALfolderItem{nullptr});
}

// The links, made of nothing, so that no wrapper runs it. One of the four does not, deliberately: an original that has a
// platform object has seen the start-up.
TEST_F(Startup, IsRunByTheFactoriesOfLinksButForTheOneOfAnyType) {
    companion::offerRegistry();
    CocoaInit();
    const auto asked = [this](const char* declaration, auto... arguments) {
        instances = nullptr;
        const int32_t before = companion::registryAsked;
        EXPECT_EQ((call<REALobject>("DRFileQRX", declaration, arguments...)), nullptr) << declaration;
        return companion::registryAsked - before;
    };
    for (const char* declaration :
         {"hardLinkPointingTo(original as DRFileQRX, filesystem as string) as DRFileQRX",
          "symLinkPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX",
          "finderAliasPointingTo(original as DRFSObjectQRX, filesystem as string) as DRFileQRX"})
        EXPECT_EQ(asked(declaration, REALobject{nullptr}, REALstring{nullptr}), 1) << declaration;
    EXPECT_EQ(
        asked("linkWithLinkType(linkType as string, original as DRFSObjectQRX, filesystem as string) as "
              "DRFileQRX",
              String("Symbolic Link").get(), REALobject{nullptr}, String("ISO").get()),
        0);
}

TEST_F(Startup, IsRunByAnErasesConstructorBeforeItLooksAtTheDriveAndNotByASecondCall) {
    const OwnDrives drives;
    companion::offerRegistry();
    const char* constructor = "Constructor(device as DRDeviceQRX)";
    const Ref drive =
        Ref::adopt(call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    const auto asked = [&](const char* className, const Ref& job, REALobject device) {
        instances = nullptr;
        const int32_t before = companion::registryAsked;
        call<void>(className, constructor, job.get(), device);
        raised();
        const int32_t times = companion::registryAsked - before;
        CocoaInit();
        return times;
    };
    const Ref erase = make("DREraseQRX");
    EXPECT_EQ(asked("DREraseQRX", erase, nullptr), 1) << "deliberately before the test for nil";
    EXPECT_EQ(asked("DREraseQRX", erase, drive.get()), 1);
    EXPECT_EQ(asked("DREraseQRX", erase, drive.get()), 0) << "a second call is refused before it";
    const Ref burn = make("DRBurnQRX");
    EXPECT_EQ(asked("DRBurnQRX", burn, drive.get()), 0)
        << "deliberately: a burn's class constructor has run it";
}

} // namespace
