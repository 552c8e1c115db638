// DeviceTest.cpp: drives, through the members that DRDeviceQRX declares.
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace {

using namespace test;

constexpr const char* className = "DRDeviceQRX";
constexpr const char* byIndex = "device(index as UInt32) as DRDeviceQRX";

class Device : public LoadedTest {
  protected:
    explicit Device(bool anyDrive = true) : drives(anyDrive) {}

    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
    }

    Ref first() { return Ref::adopt(call<REALobject>(className, byIndex, uint32_t{0})); }
    std::string stringOf(const Ref& drive, const char* declaration) {
        return textOf(call<REALstring>(className, declaration, drive.get()));
    }
    bool flag(const Ref& drive, const char* declaration) {
        return call<bool>(className, declaration, drive.get());
    }
    int32_t blocks(const Ref& drive, const char* declaration) {
        const Ref msf = Ref::adopt(call<REALobject>(className, declaration, drive.get()));
        return call<int32_t>("DRMSFQRX", "sectors as integer", msf.get());
    }

    OwnDrives drives;
};

class NoDevice : public Device {
  protected:
    NoDevice() : Device(false) {}
};

TEST_F(Device, DeclaresThirtyTwoMembersAndAHundredTwentyNineSharedOnes) {
    EXPECT_EQ(harness::definition(className)->methodCount, 32u);
    EXPECT_EQ(harness::definition(className)->sharedMethodCount, 129u);
}

TEST_F(Device, WithoutAnythingSetUpThereIsOneWithABlankRewritableMedium) {
    EXPECT_EQ((call<uint32_t>(className, "deviceCount as UInt32")), 1u);
    const Ref drive = first();
    ASSERT_TRUE(drive);
    EXPECT_EQ(stringOf(drive, "displayName as string"), "Virtual Disc Drive 1");
    EXPECT_EQ(stringOf(drive, "mediaType as string"), "DRDeviceMediaTypeDVDPlusRW");
    EXPECT_TRUE(flag(drive, "mediaIsPresent as boolean"));
    EXPECT_TRUE(flag(drive, "mediaIsBlank as boolean"));
    EXPECT_TRUE(flag(drive, "mediaIsAppendable as boolean"));
    EXPECT_TRUE(flag(drive, "mediaIsOverwritable as boolean"));
    EXPECT_TRUE(flag(drive, "mediaIsErasable as boolean"));
    EXPECT_FALSE(flag(drive, "mediaIsBusy as boolean"));
    EXPECT_TRUE(flag(drive, "isValid as boolean"));
    EXPECT_TRUE(flag(drive, "writesDVD as boolean"));
    EXPECT_EQ(blocks(drive, "mediaSpaceFree as DRMSFQRX"), 2295104);
    EXPECT_EQ(blocks(drive, "mediaSpaceUsed as DRMSFQRX"), 0);
    EXPECT_EQ(blocks(drive, "mediaSpaceOverwritable as DRMSFQRX"), 2295104);
}

TEST_F(Device, TheSameDriveIsTheSameHostObjectWhereverItComesFrom) {
    const Ref one = first(), two = first();
    EXPECT_EQ(one.get(), two.get());
    EXPECT_EQ(harness::references(one.get()), 2u);
    const Ref all =
        Ref::adopt(reinterpret_cast<REALobject>(call<REALarray>(className, "devices as DRDeviceQRX()")));
    const auto array = reinterpret_cast<REALarray>(all.get());
    ASSERT_EQ(REALGetArrayUBound(array), 0);
    EXPECT_EQ(Ref::adopt(REALGetArrayObject(array, 0)).get(), one.get());
    const Ref byPath =
        Ref::adopt(call<REALobject>(className, "deviceForIORegistryEntryPath(path as string) as DRDeviceQRX",
                                    String(stringOf(one, "ioRegistryEntryPath as string")).get()));
    EXPECT_EQ(byPath.get(), one.get());
}

TEST_F(Device, AnIndexPastTheEndRaisesWhatThePlatformRaises) {
    testing::internal::CaptureStderr();
    EXPECT_EQ((call<REALobject>(className, byIndex, uint32_t{1})), nullptr);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("A NSRangeException: "), std::string::npos);
    EXPECT_EQ(raised()->className, "RuntimeException");
}

TEST_F(Device, AnUnknownNameGivesNilWithoutAnException) {
    const char* declaration = "deviceForBSDName(bsdName as string) as DRDeviceQRX";
    EXPECT_EQ((call<REALobject>(className, declaration, String("no-such-drive").get())), nullptr);
    EXPECT_EQ((call<REALobject>(className, declaration, String("").get())), nullptr);
    EXPECT_EQ((call<REALobject>(className, declaration, REALstring{nullptr})), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Device, TheLocationDeliberatelyAnswersTheInterconnect) {
    const Ref drive = first();
    const std::string interconnect = stringOf(drive, "PhysicalInterconnect as string");
    EXPECT_TRUE(interconnect.starts_with("DRDevicePhysicalInterconnect")) << interconnect;
    EXPECT_EQ(stringOf(drive, "PhysicalInterconnectLocation as string"), interconnect);
}

TEST_F(Device, IsEqualToItselfAndNotToNil) {
    const char* declaration = "isEqualToDevice(value as DRDeviceQRX) as boolean";
    const Ref drive = first(), empty = make(className);
    EXPECT_TRUE((call<bool>(className, declaration, drive.get(), drive.get())));
    EXPECT_FALSE((call<bool>(className, declaration, drive.get(), REALobject{nullptr})));
    EXPECT_FALSE((call<bool>(className, declaration, drive.get(), empty.get())));
    EXPECT_FALSE((call<bool>(className, declaration, empty.get(), drive.get())));
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Device, OneThatAProgramMadeAnswersEmptyToEveryMember) {
    const Ref empty = make(className);
    const REALclassDefinition& record = *harness::definition(className);
    for (uintptr_t i = 0; i < record.methodCount; ++i) {
        const std::string declaration = record.methods[i].declaration;
        const REALproc function = record.methods[i].function;
        if (declaration.ends_with(" as string"))
            EXPECT_EQ(reinterpret_cast<REALstring (*)(REALobject)>(function)(empty.get()), nullptr)
                << declaration;
        else if (declaration.ends_with(" as boolean") && declaration.find('(') == std::string::npos)
            EXPECT_FALSE(reinterpret_cast<bool (*)(REALobject)>(function)(empty.get())) << declaration;
        else if (declaration.ends_with(" as DRMSFQRX") || declaration.ends_with(" as dictionary"))
            EXPECT_EQ(reinterpret_cast<REALobject (*)(REALobject)>(function)(empty.get()), nullptr)
                << declaration;
        else if (declaration.find(' ') == std::string::npos)
            reinterpret_cast<void (*)(REALobject)>(function)(empty.get());
    }
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Device, TellsInfoAndStatusAsDictionaries) {
    const Ref drive = first();
    for (const char* declaration : {"info as dictionary", "status as dictionary"}) {
        const Ref dictionary = Ref::adopt(call<REALobject>(className, declaration, drive.get()));
        int32_t count = 0;
        EXPECT_TRUE(REALGetPropValueInt32(dictionary.get(), "Count", &count));
        EXPECT_GT(count, 4) << declaration;
    }
}

// A drive whose answers the test chooses.
objc::Id chosenInfo = nullptr;
objc::Id answersInfo(objc::Id, objc::Sel) { return chosenInfo; }
objc::Boolean answersTwo(objc::Id, objc::Sel, objc::Id) { return 2; }
objc::Boolean answersByteTwo(objc::Id, objc::Sel) { return 2; }

TEST_F(Device, AnInterconnectThatIsMissingOrNoTextIsEmptyAndAnAnswerOtherThanOneIsNotEqual) {
    objc::ClassBuilder("NSObject", "TestDrive")
        .method<"info", answersInfo>()
        .method<"isEqualToDevice:", answersTwo>()
        .method<"mediaIsBlank", answersByteTwo>()
        .finish();
    const objc::Adopted platform(objc::sendClass<"TestDrive", "new">());
    const Ref drive = Ref::adopt(NewDRDeviceQRX(platform.get()));
    const auto infoWith = [](objc::Id value) {
        return objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(
            value, nsString("DRDevicePhysicalInterconnectKey"));
    };
    for (const char* declaration :
         {"PhysicalInterconnect as string", "PhysicalInterconnectLocation as string"}) {
        chosenInfo = nullptr;
        EXPECT_EQ(stringOf(drive, declaration), "");
        chosenInfo = objc::sendClass<"NSDictionary", "dictionary">();
        EXPECT_EQ(stringOf(drive, declaration), "");
        chosenInfo = infoWith(objc::sendClass<"NSNumber", "numberWithInt:">(7));
        EXPECT_EQ(stringOf(drive, declaration), "");
        chosenInfo = infoWith(nsString("something"));
        EXPECT_EQ(stringOf(drive, declaration), "something");
    }
    EXPECT_FALSE((
        call<bool>(className, "isEqualToDevice(value as DRDeviceQRX) as boolean", drive.get(), drive.get())));
    EXPECT_EQ((call<uint8_t>(className, "mediaIsBlank as boolean", drive.get())), 2) << "the byte as it is";
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Device, AnUnknownRegistryPathGivesNil) {
    EXPECT_EQ((call<REALobject>(className, "deviceForIORegistryEntryPath(path as string) as DRDeviceQRX",
                                String("/no/such/drive").get())),
              nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Device, BurnSpeedsAreThePlatformsValues) {
    EXPECT_EQ((call<float>(className, "DRDeviceBurnSpeedCD1x as single")), 176.4f);
    EXPECT_EQ((call<float>(className, "DRDeviceBurnSpeedDVD1x as single")), 1385.0f);
    EXPECT_EQ((call<float>(className, "DRDeviceBurnSpeedBD1x as single")), 4496.0f);
    EXPECT_EQ((call<float>(className, "DRDeviceBurnSpeedHDDVD1x as single")), 4496.0f);
    EXPECT_EQ((call<float>(className, "DRDeviceBurnSpeedMax as single")), 65535.0f);
}

TEST_F(NoDevice, TheListIsEmptyAndTheFirstIndexRaises) {
    EXPECT_EQ((call<uint32_t>(className, "deviceCount as UInt32")), 0u);
    const Ref all =
        Ref::adopt(reinterpret_cast<REALobject>(call<REALarray>(className, "devices as DRDeviceQRX()")));
    ASSERT_TRUE(all);
    EXPECT_EQ(REALGetArrayUBound(reinterpret_cast<REALarray>(all.get())), -1);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(first());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(raised()->className, "RuntimeException");
}

} // namespace
