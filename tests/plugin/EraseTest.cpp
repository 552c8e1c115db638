// EraseTest.cpp: erases, through the members that DREraseQRX declares.
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <chrono>
#include <thread>

namespace {

using namespace test;

constexpr const char* className = "DREraseQRX";
constexpr const char* constructor = "Constructor(device as DRDeviceQRX)";
constexpr const char* factory = "eraseForDevice(device as DRDeviceQRX) as DREraseQRX";
const Raised noDevice{"NilObjectException", "device is nil"};
const Raised tooOften{"UnsupportedOperationException",
                      "Constructor called too often. Object is already initialized."};

class Erase : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
    }

    Ref device() {
        return Ref::adopt(
            call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    }
    void construct(const Ref& erase, const Ref& drive) {
        call<void>(className, constructor, erase.get(), drive.get());
    }
    Ref eraseFor(const Ref& drive) {
        Ref erase = make(className);
        construct(erase, drive);
        return erase;
    }
    Ref shared(const Ref& drive) { return Ref::adopt(call<REALobject>(className, factory, drive.get())); }
    Ref status(const Ref& erase) {
        return Ref::adopt(call<REALobject>(className, "status as dictionary", erase.get()));
    }
    std::string textIn(const Ref& dictionary, const char* key) {
        const Ref name = Ref::adopt(REALNewVariantString(String(key).get()));
        const Ref value = Ref::adopt(GetDictionaryValue(dictionary.get(), name.get()));
        REALstring text = nullptr;
        REALGetPropValueString(value.get(), "StringValue", &text);
        return textOf(text);
    }
    std::string state(const Ref& erase) { return textIn(status(erase), "DRStatusStateKey"); }
    std::string finalState(const Ref& erase) {
        for (int i = 0; i < 1000; ++i) {
            const std::string now = state(erase);
            if (now == "DRStatusStateDone" || now == "DRStatusStateFailed") return now;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return "still " + state(erase);
    }
    // The medium is written afterwards, and still in the drive.
    void burnSomething(const Ref& drive) {
        constexpr const char* burns = "DRBurnQRX";
        writeFile(drives.scratch / "content/read me.txt", "burned by a test\n");
        const Ref folder =
            Ref::adopt(call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                        String((drives.scratch / "content").string()).get()));
        const Ref track = Ref::adopt(call<REALobject>(
            "DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX", folder.get()));
        const Ref burn = make(burns);
        call<void>(burns, "Constructor(device as DRDeviceQRX)", burn.get(), drive.get());
        harness::setterOf<void(REALobject, REALstring)>(burns, "completionAction as string")(
            burn.get(), String("DRBurnCompletionActionMount").get());
        call<void>(burns, "writeLayout(track as DRTrackQRX)", burn.get(), track.get());
        const auto now = [&] {
            return textIn(Ref::adopt(call<REALobject>(burns, "status as dictionary", burn.get())),
                          "DRStatusStateKey");
        };
        for (int i = 0; i < 1000 && now() != "DRStatusStateDone" && now() != "DRStatusStateFailed"; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_EQ(now(), "DRStatusStateDone");
    }
    std::string type(const Ref& erase) {
        return textOf(call<REALstring>(className, "eraseType as string", erase.get()));
    }
    void setType(const Ref& erase, const String& type) {
        harness::setterOf<void(REALobject, REALstring)>(className, "eraseType as string")(erase.get(),
                                                                                          type.get());
    }

    OwnDrives drives;
};

TEST_F(Erase, WithANilDriveTheConstructorRaisesAndTheObjectAnswersNilForEver) {
    const Ref erase = make(className), empty = make("DRDeviceQRX");
    construct(erase, Ref());
    EXPECT_EQ(raised(), noDevice);
    construct(erase, empty);
    EXPECT_EQ(raised(), noDevice) << "the slot was left empty, so this is no second call";
    EXPECT_EQ(frame::slot(erase.get()), nullptr);
    EXPECT_EQ((call<REALobject>(className, "device as DRDeviceQRX", erase.get())), nullptr);
    EXPECT_EQ((call<REALobject>(className, "status as dictionary", erase.get())), nullptr);
    EXPECT_EQ((call<REALobject>(className, "properties as dictionary", erase.get())), nullptr);
    EXPECT_EQ((call<REALstring>(className, "eraseType as string", erase.get())), nullptr);
    setType(erase, String("DREraseTypeComplete"));
    EXPECT_EQ((call<REALstring>(className, "eraseType as string", erase.get())), nullptr);
    harness::setterOf<void(REALobject, REALobject)>(className, "properties as dictionary")(erase.get(),
                                                                                           nullptr);
    call<void>(className, "start", erase.get());
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Erase, ASecondCallIsRefusedBeforeAnyTestForNil) {
    const Ref drive = device(), erase = eraseFor(drive);
    EXPECT_EQ(raised(), std::nullopt);
    const objc::Id held = frame::slot(erase.get());
    ASSERT_NE(held, nullptr);
    construct(erase, drive);
    EXPECT_EQ(raised(), tooOften);
    construct(erase, Ref());
    EXPECT_EQ(raised(), tooOften) << "deliberately before the test for nil, unlike a burn's";
    EXPECT_EQ(frame::slot(erase.get()), held);
}

TEST_F(Erase, TheConstructorDeliberatelyDoesNotRegister) {
    const Ref erase = eraseFor(device());
    const objc::Id held = frame::slot(erase.get());
    EXPECT_EQ(FindInstance(held), nullptr);
    const Ref again = Ref::adopt(NewDREraseQRX(held));
    EXPECT_NE(again.get(), erase.get()) << "what the platform hands back is another host object";
    EXPECT_EQ(Ref::adopt(NewDREraseQRX(held)).get(), again.get()) << "that one is registered";
}

TEST_F(Erase, TheFactoryRegistersAndKeepsTheReferenceOfTheAllocation) {
    const Ref drive = device();
    objc::Id held = nullptr;
    {
        const Ref erase = shared(drive);
        ASSERT_TRUE(erase);
        held = frame::slot(erase.get());
        EXPECT_EQ(FindInstance(held), erase.get());
        // One for the slot, and the one that is deliberately never given up.
        EXPECT_EQ((objc::send<"retainCount", std::size_t>(held)), 2u);
    }
    EXPECT_EQ(FindInstance(held), nullptr);
    EXPECT_EQ((objc::send<"retainCount", std::size_t>(held)), 1u) << "it outlives its last host object";
    EXPECT_EQ(text(objc::send<"eraseType">(held)), "DREraseTypeQuick");
    objc::release(held); // so that the test leaves nothing behind
    const Ref own = eraseFor(drive);
    EXPECT_EQ((objc::send<"retainCount", std::size_t>(frame::slot(own.get()))), 1u)
        << "the constructor's is the slot's";
}

TEST_F(Erase, TheFactoryLeavesANilDriveToThePlatform) {
    const Ref empty = make("DRDeviceQRX");
    for (const Ref& drive : {Ref(), empty}) {
        const Ref erase = shared(drive);
        EXPECT_EQ(raised(), std::nullopt);
        ASSERT_TRUE(erase) << "this platform makes an erase that fails when it is started";
        EXPECT_EQ((call<REALobject>(className, "device as DRDeviceQRX", erase.get())), nullptr);
        call<void>(className, "start", erase.get());
        EXPECT_EQ(finalState(erase), "DRStatusStateFailed");
        objc::release(frame::slot(erase.get()));
    }
}

TEST_F(Erase, KnowsItsDriveItsTypeAndItsStateBeforeTheStart) {
    const Ref drive = device(), erase = eraseFor(drive);
    EXPECT_EQ(Ref::adopt(call<REALobject>(className, "device as DRDeviceQRX", erase.get())).get(),
              drive.get());
    EXPECT_EQ(state(erase), "DRStatusStateNone");
    EXPECT_EQ(type(erase), "DREraseTypeQuick");
    const String complete = String::adopt(call<REALstring>(className, "DREraseTypeComplete as string"));
    setType(erase, complete);
    EXPECT_EQ(type(erase), complete.utf8());
    EXPECT_EQ(textIn(status(erase), "DRStatusEraseTypeKey"), "DREraseTypeComplete");
}

TEST_F(Erase, ANilTypeGoesToThePlatformAsNil) {
    const Ref erase = eraseFor(device());
    setType(erase, String("DREraseTypeComplete"));
    harness::setterOf<void(REALobject, REALstring)>(className, "eraseType as string")(erase.get(), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
    EXPECT_EQ(type(erase), "DREraseTypeQuick") << "which takes the key away";
}

TEST_F(Erase, PropertiesAreHandedOverWhole) {
    const Ref erase = eraseFor(device());
    const char* declaration = "properties as dictionary";
    setType(erase, String("DREraseTypeComplete"));
    const Ref properties = Ref::adopt(call<REALobject>(className, declaration, erase.get()));
    EXPECT_EQ(textIn(properties, "DREraseTypeKey"), "DREraseTypeComplete");
    const auto assign = harness::setterOf<void(REALobject, REALobject)>(className, declaration);
    assign(erase.get(), Ref::adopt(NewDictionary()).get());
    EXPECT_EQ(type(erase), "DREraseTypeQuick");
    assign(erase.get(), properties.get());
    EXPECT_EQ(type(erase), "DREraseTypeComplete");
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Erase, StringConstantsReadAsTheirNames) {
    for (const char* name :
         {"DREraseTypeKey", "DREraseTypeQuick", "DREraseTypeComplete", "DREraseStatusChangedNotification"}) {
        EXPECT_EQ(textOf(call<REALstring>(className, (std::string(name) + " as string").c_str())), name);
    }
}

TEST_F(Erase, AWrittenMediumIsBlankInTheEndAndAnEraseStartsOnce) {
    const Ref drive = device(), erase = eraseFor(drive);
    const auto isBlank = [&] { return call<bool>("DRDeviceQRX", "mediaIsBlank as boolean", drive.get()); };
    burnSomething(drive);
    ASSERT_FALSE(isBlank());
    EXPECT_EQ(state(erase), "DRStatusStateNone");
    call<void>(className, "start", erase.get());
    EXPECT_EQ(raised(), std::nullopt);
    EXPECT_EQ(finalState(erase), "DRStatusStateDone");
    EXPECT_TRUE(isBlank());
    testing::internal::CaptureStderr();
    call<void>(className, "start", erase.get());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(raised()->className, "RuntimeException") << "the platform's refusal of a second start";
}

} // namespace
