// JobArgumentsTest.cpp: what burns and erases hand to the platform as it is, and what becomes of what the platform raises.
#include "host/runtime/Array.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"
#include "tests/plugin/Replaced.hpp"

extern "C" void NSDeallocateObject(objc::Id object);

namespace {

using namespace test;
using objc::Id;
using objc::Sel;

constexpr const char* constructor = "Constructor(device as DRDeviceQRX)";
constexpr const char* trackLayout = "writeLayout(track as DRTrackQRX)";
constexpr const char* arrayLayout = "writeLayout(tracks() as DRTrackQRX)";
constexpr const char* burnFactory = "burnForDevice(device as DRDeviceQRX) as DRBurnQRX";
constexpr const char* eraseFactory = "eraseForDevice(device as DRDeviceQRX) as DREraseQRX";

// ---- messages that are noted -----------------------------------------------------------------------------------------

int calls = 0;
Id given = nullptr;
int givenByte = -1;

void takes(Id, Sel, Id value) {
    ++calls;
    given = value;
}
void takesByte(Id, Sel, objc::Boolean value) {
    ++calls;
    givenByte = value;
}
Id refuses(Id self, Sel, Id) {
    NSDeallocateObject(self); // as an initialiser does with an object that it does not answer
    raiseTestException();
    return nullptr;
}
Id answersNothing(Id, Sel, Id value) {
    ++calls;
    given = value;
    return nullptr;
}
Id beginsNothing(Id self, Sel selector, Id value) {
    NSDeallocateObject(self);
    return answersNothing(nullptr, selector, value);
}

class JobArguments : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        calls = 0;
        given = reinterpret_cast<Id>(this); // none of the tests' objects
    }

    Ref device() {
        return Ref::adopt(
            call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    }
    Ref jobOf(const char* className) {
        Ref job = make(className);
        call<void>(className, constructor, job.get(), device().get());
        return job;
    }

    OwnDrives drives;
};

TEST_F(JobArguments, ABurnForNoDriveIsThePlatformsToMake) {
    replaceClassMethod<"burnForDevice:", answersNothing>("DRBurn");
    const Ref empty = make("DRDeviceQRX");
    for (const REALobject drive : {REALobject{nullptr}, empty.get()}) {
        calls = 0;
        given = reinterpret_cast<Id>(this);
        EXPECT_EQ((call<REALobject>("DRBurnQRX", burnFactory, drive)), nullptr);
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(given, nullptr);
    }
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(JobArguments, ABurnOfTheFactoryIsRegistered) {
    const Ref burn = Ref::adopt(call<REALobject>("DRBurnQRX", burnFactory, device().get()));
    ASSERT_TRUE(burn);
    EXPECT_EQ(FindInstance(frame::slot(burn.get())), burn.get());
    EXPECT_EQ(Ref::adopt(NewDRBurnQRX(frame::slot(burn.get()))).get(), burn.get());
}

TEST_F(JobArguments, AConstructorThatThePlatformRefusesRaisesAndLeavesTheObjectEmpty) {
    replaceMethod<"initWithDevice:", refuses>("DRBurn");
    replaceMethod<"initWithDevice:", refuses>("DRErase");
    const Ref drive = device();
    for (const char* className : {"DRBurnQRX", "DREraseQRX"}) {
        const Ref job = make(className);
        testing::internal::CaptureStderr();
        call<void>(className, constructor, job.get(), drive.get());
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(raised()->className, "RuntimeException") << className;
        EXPECT_EQ(frame::slot(job.get()), nullptr) << className;
    }
}

TEST_F(JobArguments, AnEraseOfTheFactoryThatThePlatformRefusesRaisesAndIsNil) {
    replaceMethod<"initWithDevice:", refuses>("DRErase");
    const Ref drive = device();
    testing::internal::CaptureStderr();
    EXPECT_EQ((call<REALobject>("DREraseQRX", eraseFactory, drive.get())), nullptr);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(raised()->className, "RuntimeException");
}

TEST_F(JobArguments, ASecondConstructorLeavesTheFirstPlatformBurnInPlace) {
    const Ref burn = jobOf("DRBurnQRX");
    const Id held = frame::slot(burn.get());
    ASSERT_NE(held, nullptr);
    call<void>("DRBurnQRX", constructor, burn.get(), device().get());
    EXPECT_EQ(raised()->className, "UnsupportedOperationException");
    call<void>("DRBurnQRX", constructor, burn.get(), REALobject{nullptr});
    EXPECT_EQ(raised()->className, "NilObjectException");
    EXPECT_EQ(frame::slot(burn.get()), held);
    EXPECT_EQ(FindInstance(held), burn.get());
}

TEST_F(JobArguments, ANilTrackIsNoLayoutAndNilAndEmptyArraysAreThePlatforms) {
    replaceMethod<"writeLayout:", takes>("DRBurn");
    const Ref burn = jobOf("DRBurnQRX"), empty = make("DRTrackQRX");
    for (const REALobject track : {REALobject{nullptr}, empty.get()})
        call<void>("DRBurnQRX", trackLayout, burn.get(), track);
    EXPECT_EQ(calls, 0);
    call<void>("DRBurnQRX", arrayLayout, burn.get(), REALarray{nullptr});
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(given, nullptr);
    const Ref none = host::newArray(host::typeNamed("Object"));
    call<void>("DRBurnQRX", arrayLayout, burn.get(), host::arrayHandle(none.get()));
    EXPECT_EQ(calls, 2);
    ASSERT_NE(given, nullptr);
    EXPECT_EQ((objc::send<"count", unsigned long>(given)), 0u);
    EXPECT_EQ(raised(), std::nullopt);
}

// The real platform: nothing is written, nothing is raised, and the burn can still be used.
TEST_F(JobArguments, ANilArrayDoesNothing) {
    const Ref burn = jobOf("DRBurnQRX");
    call<void>("DRBurnQRX", arrayLayout, burn.get(), REALarray{nullptr});
    EXPECT_EQ(raised(), std::nullopt);
    const Ref none = host::newArray(host::typeNamed("Object"));
    testing::internal::CaptureStderr();
    call<void>("DRBurnQRX", arrayLayout, burn.get(), host::arrayHandle(none.get()));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("NSInvalidArgumentException"), std::string::npos);
    EXPECT_EQ(raised()->className, "RuntimeException") << "an empty layout is the platform's to refuse";
}

TEST_F(JobArguments, FlagsAreHandedOverByteForByte) {
    replaceMethod<"setAppendable:", takesByte>("DRBurn");
    replaceMethod<"setVerifyDisc:", takesByte>("DRBurn");
    const Ref burn = jobOf("DRBurnQRX");
    for (const char* property : {"appendable as boolean", "verifyDisc as boolean"})
        for (const int byte : {0, 1, 2, 255}) {
            harness::setterOf<void(REALobject, uint8_t)>("DRBurnQRX", property)(burn.get(),
                                                                                static_cast<uint8_t>(byte));
            EXPECT_EQ(givenByte, byte) << property;
        }
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(JobArguments, NilTextsAndDictionariesStayNil) {
    replaceMethod<"setCompletionAction:", takes>("DRBurn");
    replaceMethod<"setProperties:", takes>("DRBurn");
    replaceMethod<"setProperties:", takes>("DRErase");
    const Ref burn = jobOf("DRBurnQRX"), erase = jobOf("DREraseQRX");
    harness::setterOf<void(REALobject, REALstring)>("DRBurnQRX", "completionAction as string")(burn.get(),
                                                                                               nullptr);
    EXPECT_EQ(given, nullptr);
    for (const auto& [className, job] :
         {std::pair("DRBurnQRX", burn.get()), std::pair("DREraseQRX", erase.get())}) {
        given = reinterpret_cast<Id>(this);
        harness::setterOf<void(REALobject, REALobject)>(className, "properties as dictionary")(job, nullptr);
        EXPECT_EQ(given, nullptr) << className;
    }
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(JobArguments, AnEraseForNoDriveIsThePlatformsToMake) {
    replaceMethod<"initWithDevice:", beginsNothing>("DRErase");
    EXPECT_EQ((call<REALobject>("DREraseQRX", eraseFactory, REALobject{nullptr})), nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(given, nullptr);
}

} // namespace
