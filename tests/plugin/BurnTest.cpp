// BurnTest.cpp: burns, through the members that DRBurnQRX declares.
#include "host/runtime/Array.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <chrono>
#include <cstring>
#include <thread>

namespace {

using namespace test;

constexpr const char* className = "DRBurnQRX";
constexpr const char* arrayLayout = "writeLayout(tracks() as DRTrackQRX)";
const Raised noDevice{"NilObjectException", "device is nil"};
const Raised tooOften{"UnsupportedOperationException",
                      "Constructor called too often. Object is already initialized."};

class Burn : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        writeFile(drives.scratch / "content/read me.txt", "burned by a test\n");
    }

    Ref device() {
        return Ref::adopt(
            call<REALobject>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    }
    void construct(const Ref& burn, const Ref& drive) {
        call<void>(className, "Constructor(device as DRDeviceQRX)", burn.get(), drive.get());
    }
    Ref burnFor(const Ref& drive) {
        Ref burn = make(className);
        construct(burn, drive);
        return burn;
    }
    Ref track() {
        const Ref folder =
            Ref::adopt(call<REALobject>("DRFolderQRX", "folderWithPath(path as string) as DRFolderQRX",
                                        String((drives.scratch / "content").string()).get()));
        return Ref::adopt(call<REALobject>(
            "DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX", folder.get()));
    }
    Ref status(const Ref& burn) {
        return Ref::adopt(call<REALobject>(className, "status as dictionary", burn.get()));
    }
    std::string state(const Ref& burn) {
        const Ref all = status(burn);
        const Ref key = Ref::adopt(REALNewVariantString(String("DRStatusStateKey").get()));
        const Ref value = Ref::adopt(GetDictionaryValue(all.get(), key.get()));
        REALstring text = nullptr;
        REALGetPropValueString(value.get(), "StringValue", &text);
        return textOf(text);
    }
    std::string finalState(const Ref& burn) {
        for (int i = 0; i < 1000; ++i) {
            const std::string now = state(burn);
            if (now == "DRStatusStateDone" || now == "DRStatusStateFailed") return now;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return "still " + state(burn);
    }

    OwnDrives drives;
};

TEST_F(Burn, ANilDriveIsRefusedFirstAlsoOnABurnThatIsAlreadyMade) {
    const Ref burn = make(className), empty = make("DRDeviceQRX");
    construct(burn, Ref());
    EXPECT_EQ(raised(), noDevice);
    construct(burn, empty);
    EXPECT_EQ(raised(), noDevice);
    EXPECT_EQ(frame::slot(burn.get()), nullptr);
    construct(burn, device());
    EXPECT_EQ(raised(), std::nullopt);
    construct(burn, Ref());
    EXPECT_EQ(raised(), noDevice) << "deliberately before the test for a second call";
    construct(burn, device());
    EXPECT_EQ(raised(), tooOften);
}

TEST_F(Burn, TheConstructorRegistersSoThatThePlatformBurnComesBackAsIt) {
    const Ref burn = burnFor(device());
    EXPECT_EQ(FindInstance(frame::slot(burn.get())), burn.get());
}

TEST_F(Burn, KnowsItsDriveAndItsStateBeforeTheStart) {
    const Ref drive = device(), burn = burnFor(drive);
    EXPECT_EQ(Ref::adopt(call<REALobject>(className, "device as DRDeviceQRX", burn.get())).get(),
              drive.get());
    EXPECT_EQ(state(burn), "DRStatusStateNone");
    const Ref shared = Ref::adopt(
        call<REALobject>(className, "burnForDevice(device as DRDeviceQRX) as DRBurnQRX", drive.get()));
    EXPECT_EQ(state(shared), "DRStatusStateNone");
}

TEST_F(Burn, PropertiesReadTheirDefaultsAndWhatWasAssigned) {
    const Ref burn = burnFor(device());
    const auto flag = [&](const char* declaration) { return call<bool>(className, declaration, burn.get()); };
    const auto assign = [&](const char* declaration, bool value) {
        harness::setterOf<void(REALobject, bool)>(className, declaration)(burn.get(), value);
    };
    EXPECT_TRUE(flag("verifyDisc as boolean"));
    EXPECT_FALSE(flag("appendable as boolean"));
    EXPECT_FALSE(flag("Overwrite as boolean"));
    for (const char* declaration :
         {"verifyDisc as boolean", "appendable as boolean", "Overwrite as boolean"}) {
        for (const bool value : {true, false, true}) {
            assign(declaration, value);
            EXPECT_EQ(flag(declaration), value) << declaration;
        }
    }
    const float maximum = call<float>("DRDeviceQRX", "DRDeviceBurnSpeedMax as single");
    harness::setterOf<void(REALobject, float)>(className, "requestedBurnSpeed as single")(burn.get(),
                                                                                          maximum);
    EXPECT_EQ((call<float>(className, "requestedBurnSpeed as single", burn.get())), maximum);
    harness::setterOf<void(REALobject, REALstring)>(className, "completionAction as string")(
        burn.get(), String("DRBurnCompletionActionMount").get());
    EXPECT_EQ(textOf(call<REALstring>(className, "completionAction as string", burn.get())),
              "DRBurnCompletionActionMount");
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Burn, AStringPropertyReadsBackAndANilTextIsRefusedWithThePreviousValueKept) {
    const Ref burn = burnFor(device());
    const char* declaration = "BurnFailureAction as string";
    const auto assign = harness::setterOf<void(REALobject, REALstring)>(className, declaration);
    EXPECT_EQ(textOf(call<REALstring>(className, declaration, burn.get())), "") << "not set";
    assign(burn.get(), String("DRBurnFailureActionNone").get());
    EXPECT_EQ(textOf(call<REALstring>(className, declaration, burn.get())), "DRBurnFailureActionNone");
    testing::internal::CaptureStderr();
    assign(burn.get(), nullptr);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(raised()->className, "RuntimeException");
    EXPECT_EQ(textOf(call<REALstring>(className, declaration, burn.get())), "DRBurnFailureActionNone");
}

TEST_F(Burn, AnEmptyOneAnswersEmptyAndIgnoresAssignments) {
    const Ref burn = make(className);
    EXPECT_FALSE(status(burn));
    EXPECT_EQ((call<REALobject>(className, "device as DRDeviceQRX", burn.get())), nullptr);
    EXPECT_EQ((call<float>(className, "requestedBurnSpeed as single", burn.get())), 0.0f);
    harness::setterOf<void(REALobject, bool)>(className, "Overwrite as boolean")(burn.get(), true);
    EXPECT_FALSE((call<bool>(className, "Overwrite as boolean", burn.get())));
    call<void>(className, "abort", burn.get());
    call<void>(className, "writeLayout(track as DRTrackQRX)", burn.get(), track().get());
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Burn, WritingNothingDoesNothingAndRaisesNothing) {
    const Ref burn = burnFor(device()), empty = make("DRTrackQRX");
    call<void>(className, "writeLayout(track as DRTrackQRX)", burn.get(), REALobject{nullptr});
    call<void>(className, "writeLayout(track as DRTrackQRX)", burn.get(), empty.get());
    EXPECT_EQ(state(burn), "DRStatusStateNone");
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Burn, ATrackIsBurnedAndTheMediumIsNoLongerBlank) {
    const Ref drive = device(), burn = burnFor(drive);
    harness::setterOf<void(REALobject, REALstring)>(className, "completionAction as string")(
        burn.get(), String("DRBurnCompletionActionMount").get());
    call<void>(className, "writeLayout(track as DRTrackQRX)", burn.get(), track().get());
    EXPECT_EQ(finalState(burn), "DRStatusStateDone");
    EXPECT_FALSE((call<bool>("DRDeviceQRX", "mediaIsBlank as boolean", drive.get())));
}

TEST_F(Burn, DroppingTheLastReferenceStopsARunningBurn) {
    const Ref drive = device();
    const auto asks = [&](const char* declaration) {
        return call<bool>("DRDeviceQRX", declaration, drive.get());
    };
    const auto untilIts = [](auto condition) {
        for (int i = 0; i < 1000 && !condition(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return condition();
    };
    writeFile(drives.scratch / "content/large", std::string(60'000'000, 'x'));
    {
        const Ref burn = burnFor(drive);
        harness::setterOf<void(REALobject, float)>(className, "requestedBurnSpeed as single")(burn.get(),
                                                                                              500);
        harness::setterOf<void(REALobject, REALstring)>(className, "completionAction as string")(
            burn.get(), String("DRBurnCompletionActionMount").get());
        harness::setterOf<void(REALobject, REALstring)>(className, "BurnFailureAction as string")(
            burn.get(), String("DRBurnFailureActionNone").get());
        call<void>(className, "writeLayout(track as DRTrackQRX)", burn.get(), track().get());
        ASSERT_TRUE(untilIts([&] { return state(burn) == "DRStatusStateTrackWrite"; })) << state(burn);
        EXPECT_TRUE(asks("mediaIsBusy as boolean"));
    }
    // By itself it would take two minutes, and the medium would not be blank then.
    EXPECT_TRUE(untilIts([&] { return !asks("mediaIsBusy as boolean"); }));
    EXPECT_TRUE(asks("mediaIsBlank as boolean"));
}

TEST_F(Burn, AnArrayOfTracksIsBurnedWithoutItsNilAndEmptyElements) {
    const Ref drive = device(), burn = burnFor(drive);
    const Ref tracks = host::newArray(host::typeNamed("Object"));
    for (const host::Value& element : {host::Value(track()), host::Value(), host::Value(make("DRTrackQRX"))})
        host::arrayAppend(tracks.get(), element);
    call<void>(className, arrayLayout, burn.get(), host::arrayHandle(tracks.get()));
    EXPECT_EQ(raised(), std::nullopt);
    EXPECT_EQ(finalState(burn), "DRStatusStateDone");
}

TEST_F(Burn, AnArrayOfTracksOnAnEmptyBurnDoesNothing) {
    const Ref tracks = host::newArray(host::typeNamed("Object"));
    const Ref empty = make(className);
    call<void>(className, arrayLayout, empty.get(), host::arrayHandle(tracks.get()));
    call<void>(className, arrayLayout, empty.get(), REALarray{nullptr});
    EXPECT_EQ(raised(), std::nullopt);
}

constexpr const char* imageByPath = "writeImageFile(ImagePath as String) as boolean";
constexpr const char* imageByItem = "writeImageFile(ImageFile as FolderItem) as boolean";

// The first burn makes an image, and the medium is emptied for the next.
class ImageBurn : public Burn {
  protected:
    void SetUp() override {
        Burn::SetUp();
        const Ref first = device(), burn = burnFor(first);
        stay(burn);
        call<void>(className, "writeLayout(track as DRTrackQRX)", burn.get(), track().get());
        ASSERT_EQ(finalState(burn), "DRStatusStateDone");
        const std::string drive =
            textOf(call<REALstring>("DRDeviceQRX", "ioRegistryEntryPath as string", first.get()));
        std::filesystem::copy(std::filesystem::path(drive) / "medium.iso", image());
    }
    void stay(const Ref& burn) {
        harness::setterOf<void(REALobject, REALstring)>(className, "completionAction as string")(
            burn.get(), String("DRBurnCompletionActionMount").get());
        harness::setterOf<void(REALobject, bool)>(className, "Overwrite as boolean")(burn.get(), true);
    }
    std::filesystem::path image() { return drives.scratch / "image.iso"; }
    bool writePath(const Ref& burn, const String& path) {
        return call<bool>(className, imageByPath, burn.get(), path.get());
    }
};

TEST_F(ImageBurn, AnImageIsBurnedByItsPath) {
    const Ref burn = burnFor(device());
    stay(burn);
    EXPECT_TRUE(writePath(burn, String(image().string())));
    EXPECT_EQ(finalState(burn), "DRStatusStateDone");
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(ImageBurn, AnImageIsBurnedByItsFolderItem) {
    const Ref burn = burnFor(device());
    stay(burn);
    const Ref item = host::newFolderItem(image().string());
    EXPECT_TRUE((call<bool>(className, imageByItem, burn.get(), item.get())));
    EXPECT_EQ(finalState(burn), "DRStatusStateDone");
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(ImageBurn, WhatIsNoReadableImageAnswersFalseAndStartsNothing) {
    writeFile(drives.scratch / "no image.iso", "this is no image");
    writeFile(drives.scratch / "empty.iso", "");
    const Ref burn = burnFor(device());
    testing::internal::CaptureStderr();
    for (const char* name : {"not there.iso", "no image.iso", "empty.iso", "content"})
        EXPECT_FALSE(writePath(burn, String((drives.scratch / name).string()))) << name;
    EXPECT_FALSE((call<bool>(className, imageByPath, burn.get(), REALstring{nullptr}))) << "no path";
    EXPECT_FALSE((call<bool>(className, imageByItem, burn.get(), REALfolderItem{nullptr}))) << "no item";
    const Ref missing = host::newFolderItem((drives.scratch / "none.iso").string());
    EXPECT_FALSE((call<bool>(className, imageByItem, burn.get(), missing.get())));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(raised(), std::nullopt);
    EXPECT_EQ(state(burn), "DRStatusStateNone");
}

TEST_F(ImageBurn, ABurnWithoutADriveAnswersFalse) {
    const Ref burn = make(className);
    EXPECT_FALSE(writePath(burn, String(image().string())));
    const Ref item = host::newFolderItem(image().string());
    EXPECT_FALSE((call<bool>(className, imageByItem, burn.get(), item.get())));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(ImageBurn, WhatThePlatformRaisesMakesItFalse) {
    const Ref burn = burnFor(device());
    stay(burn);
    EXPECT_TRUE(writePath(burn, String(image().string())));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(writePath(burn, String(image().string()))) << "a burn is good for one";
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(raised()->className, "RuntimeException");
    EXPECT_EQ(finalState(burn), "DRStatusStateDone");
}

TEST_F(Burn, EveryPropertyOfAKeyReadsEmptyUntilItIsSetAndThenWhatWasSet) {
    const Ref burn = burnFor(device());
    for (const char* declaration :
         {"Overwrite as boolean", "UnderrunProtection as boolean", "Testing as boolean"}) {
        EXPECT_FALSE((call<bool>(className, declaration, burn.get()))) << declaration;
        harness::setterOf<void(REALobject, bool)>(className, declaration)(burn.get(), true);
        EXPECT_TRUE((call<bool>(className, declaration, burn.get()))) << declaration;
    }
    const char* zone = "DoubleLayerL0DataZoneBlocks as double";
    EXPECT_EQ((call<double>(className, zone, burn.get())), 0.0);
    harness::setterOf<void(REALobject, double)>(className, zone)(burn.get(), 0.75);
    EXPECT_EQ((call<double>(className, zone, burn.get())), 0.75);
    const char* number = "MediaCatalogNumber as memoryblock";
    EXPECT_EQ((call<REALmemoryBlock>(className, number, burn.get())), nullptr);
    const std::string digits = "0123456789012";
    const Ref block = host::newMemoryBlock(static_cast<int64_t>(digits.size()));
    std::memcpy(REALMemoryBlockGetPtr(block.get()), digits.data(), digits.size());
    harness::setterOf<void(REALobject, REALmemoryBlock)>(className, number)(burn.get(), block.get());
    const Ref now = Ref::adopt(call<REALmemoryBlock>(className, number, burn.get()));
    ASSERT_TRUE(now);
    ASSERT_EQ(REALMemoryBlockGetSize(now.get()), static_cast<int>(digits.size()));
    EXPECT_EQ(std::memcmp(REALMemoryBlockGetPtr(now.get()), digits.data(), digits.size()), 0);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Burn, ThePlatformsBurnComesBackAsTheHostObjectThatMadeIt) {
    const Ref burn = burnFor(device());
    const Ref again = Ref::adopt(NewDRBurnQRX(frame::slot(burn.get())));
    EXPECT_EQ(again.get(), burn.get());
}

} // namespace
