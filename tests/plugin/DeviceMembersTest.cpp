// DeviceMembersTest.cpp: that each member of a drive sends its own message, with its own argument, and what becomes of
// what the platform raises.
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/PluginTest.hpp"
#include "tests/plugin/Replaced.hpp"

namespace {

using namespace test;
using objc::Id;
using objc::Sel;

constexpr const char* className = "DRDeviceQRX";
constexpr const char* isEqual = "isEqualToDevice(value as DRDeviceQRX) as boolean";
constexpr const char* byName = "deviceForBSDName(bsdName as string) as DRDeviceQRX";

// ---- a drive that notes what it is asked, and answers what the test chooses -------------------------------------

std::string asked;
constexpr objc::Boolean bytes[] = {0, 1, 3};
objc::Boolean chosen = 0;
Id argument = nullptr;

template <objc::FixedString name>
objc::Boolean flag(Id, Sel) {
    asked = name.c_str();
    return chosen;
}
template <objc::FixedString name>
void noted(Id, Sel) {
    asked = name.c_str();
}
template <objc::FixedString name>
Id itsName(Id, Sel) {
    return nsString(name.c_str());
}
template <uint32_t blocks>
Id length(Id, Sel) {
    return objc::sendClass<"DRMSF", "msfWithFrames:">(blocks);
}
template <objc::FixedString name>
Id dictionary(Id, Sel) {
    return objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(nsString(name.c_str()),
                                                                           nsString("Asked"));
}
objc::Boolean comparesWith(Id, Sel, Id other) {
    argument = other;
    return chosen;
}

#define FLAGS(X)                                                                                             \
    X(trayIsOpen)                                                                                            \
    X(mediaIsPresent)                                                                                        \
    X(mediaIsTransitioning)                                                                                  \
    X(mediaIsBusy)                                                                                           \
    X(mediaIsAppendable)                                                                                     \
    X(mediaIsBlank)                                                                                          \
    X(mediaIsOverwritable)                                                                                   \
    X(mediaIsErasable)                                                                                       \
    X(mediaIsReserved)                                                                                       \
    X(isValid)                                                                                               \
    X(openTray)                                                                                              \
    X(closeTray)                                                                                             \
    X(ejectMedia)                                                                                            \
    X(acquireExclusiveAccess)                                                                                \
    X(writesCD)                                                                                              \
    X(writesDVD)
#define ORDERS(X) X(releaseExclusiveAccess) X(acquireMediaReservation) X(releaseMediaReservation)
#define TEXTS(X) X(mediaType) X(bsdName) X(displayName) X(ioRegistryEntryPath)
#define DICTIONARIES(X) X(info) X(status)

Id notingDrive() {
#define FLAG(name) builder.method<#name, flag<#name>>();
#define ORDER(name) builder.method<#name, noted<#name>>();
#define TEXT(name) builder.method<#name, itsName<#name>>();
#define DICTIONARY(name) builder.method<#name, dictionary<#name>>();
    objc::ClassBuilder builder("NSObject", "NotingDrive");
    FLAGS(FLAG)
    ORDERS(ORDER) TEXTS(TEXT) DICTIONARIES(DICTIONARY) builder.method<"mediaSpaceFree", length<11>>();
    builder.method<"mediaSpaceUsed", length<22>>();
    builder.method<"mediaSpaceOverwritable", length<33>>();
    builder.method<"isEqualToDevice:", comparesWith>();
    return objc::autoreleased(
        objc::send<"init">(objc::send<"alloc">(reinterpret_cast<Id>(builder.finish()))));
}

class DeviceMembers : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        platform = notingDrive();
        drive = Ref::adopt(NewDRDeviceQRX(platform));
        asked.clear();
    }
    void TearDown() override { drive = Ref(); }
    void expectQuiet() { EXPECT_EQ(raised(), std::nullopt); }

    OwnDrives drives;
    Id platform = nullptr;
    Ref drive;
};

TEST_F(DeviceMembers, EachFlagSendsItsOwnMessageAndHandsTheByteOver) {
#define EXPECT_FLAG(name)                                                                                    \
    for (const objc::Boolean byte : bytes) {                                                                 \
        chosen = byte;                                                                                       \
        EXPECT_EQ((call<uint8_t>(className, #name " as boolean", drive.get())), byte) << #name;              \
        EXPECT_EQ(asked, #name);                                                                             \
    }
    FLAGS(EXPECT_FLAG)
    expectQuiet();
}

TEST_F(DeviceMembers, EachOrderSendsItsOwnMessage) {
#define EXPECT_ORDER(name)                                                                                   \
    call<void>(className, #name, drive.get());                                                               \
    EXPECT_EQ(asked, #name);
    ORDERS(EXPECT_ORDER)
    expectQuiet();
}

TEST_F(DeviceMembers, EachTextLengthAndDictionaryIsThePlatformsOwn) {
#define EXPECT_TEXT(name)                                                                                    \
    EXPECT_EQ(textOf(call<REALstring>(className, #name " as string", drive.get())), #name);
    TEXTS(EXPECT_TEXT)
    const std::pair<const char*, int32_t> lengths[] = {{"mediaSpaceFree as DRMSFQRX", 11},
                                                       {"mediaSpaceUsed as DRMSFQRX", 22},
                                                       {"mediaSpaceOverwritable as DRMSFQRX", 33}};
    for (const auto& [declaration, blocks] : lengths) {
        const Ref msf = Ref::adopt(call<REALobject>(className, declaration, drive.get()));
        EXPECT_EQ((call<int32_t>("DRMSFQRX", "sectors as integer", msf.get())), blocks) << declaration;
    }
    const Ref key = Ref::adopt(REALNewVariantString(String("Asked").get()));
#define EXPECT_DICTIONARY(name)                                                                              \
    {                                                                                                        \
        const Ref all = Ref::adopt(call<REALobject>(className, #name " as dictionary", drive.get()));        \
        const Ref value = Ref::adopt(GetDictionaryValue(all.get(), key.get()));                              \
        REALstring text = nullptr;                                                                           \
        REALGetPropValueString(value.get(), "StringValue", &text);                                           \
        EXPECT_EQ(textOf(text), #name);                                                                      \
    }
    DICTIONARIES(EXPECT_DICTIONARY)
    expectQuiet();
}

// What the plug-in knows of nil it does not use: the platform compares.
TEST_F(DeviceMembers, IsEqualToDeviceHandsTheArgumentOverAsItIsAndOnlyOneIsTrue) {
    const Ref empty = make(className);
    const auto compare = [&](REALobject value) { return call<bool>(className, isEqual, drive.get(), value); };
    chosen = 1;
    argument = platform;
    EXPECT_TRUE(compare(nullptr));
    EXPECT_EQ(argument, nullptr);
    argument = platform;
    EXPECT_TRUE(compare(empty.get()));
    EXPECT_EQ(argument, nullptr);
    EXPECT_TRUE(compare(drive.get()));
    EXPECT_EQ(argument, platform);
    for (const objc::Boolean other : std::initializer_list<objc::Boolean>{0, 2, 255}) {
        chosen = other;
        EXPECT_FALSE(compare(drive.get())) << int{other};
    }
    expectQuiet();
}

// ---- look-ups -------------------------------------------------------------------------------------------------------

bool lookedUp = false;
Id wanted = nullptr;
Id looksUp(Id, Sel, Id name) {
    lookedUp = true;
    wanted = name;
    return nullptr;
}

TEST_F(DeviceMembers, ALookUpWithANilNameIsStillThePlatforms) {
    replaceClassMethod<"deviceForBSDName:", looksUp>("DRDevice");
    wanted = platform;
    EXPECT_EQ((call<REALobject>(className, byName, REALstring{nullptr})), nullptr);
    EXPECT_TRUE(lookedUp);
    EXPECT_EQ(wanted, nullptr) << "a nil text is passed as nil";
    expectQuiet();
}

TEST_F(DeviceMembers, ADriveIsFoundByItsNameAsTheSameHostObject) {
    const Ref first =
        Ref::adopt(call<REALobject>(className, "device(index as UInt32) as DRDeviceQRX", uint32_t{0}));
    const std::string name = textOf(call<REALstring>(className, "bsdName as string", first.get()));
    ASSERT_NE(name, "");
    EXPECT_EQ(Ref::adopt(call<REALobject>(className, byName, String(name).get())).get(), first.get());
    EXPECT_EQ((call<REALobject>(className, "deviceForIORegistryEntryPath(path as string) as DRDeviceQRX",
                                REALstring{nullptr})),
              nullptr);
    expectQuiet();
}

// ---- what the platform raises -----------------------------------------------------------------------------------

Id onlyDrive = nullptr;
int given = 0;
Id itself(Id self, Sel) { return self; }
Id raisesAtTheSecond(Id, Sel) {
    if (given++ > 0) raiseTestException();
    return onlyDrive;
}
Id listThatRaises(Id, Sel) {
    static const objc::Class cls = objc::ClassBuilder("NSObject", "TestList")
                                       .method<"objectEnumerator", itself>()
                                       .method<"nextObject", raisesAtTheSecond>()
                                       .finish();
    return objc::autoreleased(objc::send<"init">(objc::send<"alloc">(reinterpret_cast<Id>(cls))));
}
Id listRefused(Id, Sel) {
    raiseTestException();
    return nullptr;
}

objc::Boolean comparisonRefused(Id, Sel, Id) {
    raiseTestException();
    return 1;
}

TEST_F(DeviceMembers, AnInterconnectOrAComparisonThatRaisesAnswersNothing) {
    replaceMethod<"info", listRefused>("NotingDrive");
    replaceMethod<"isEqualToDevice:", comparisonRefused>("NotingDrive");
    testing::internal::CaptureStderr();
    for (const char* declaration :
         {"PhysicalInterconnect as string", "PhysicalInterconnectLocation as string"}) {
        EXPECT_EQ((call<REALstring>(className, declaration, drive.get())), nullptr) << declaration;
        EXPECT_EQ(raised()->className, "RuntimeException") << declaration;
    }
    EXPECT_FALSE(call<bool>(className, isEqual, drive.get(), drive.get()));
    EXPECT_EQ(raised()->className, "RuntimeException");
    testing::internal::GetCapturedStderr();
}

TEST_F(DeviceMembers, AListThatRaisesMidwayHoldsTheDrivesThatCameBefore) {
    onlyDrive = platform;
    replaceClassMethod<"devices", listThatRaises>("DRDevice");
    testing::internal::CaptureStderr();
    const Ref all =
        Ref::adopt(reinterpret_cast<REALobject>(call<REALarray>(className, "devices as DRDeviceQRX()")));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(raised()->className, "RuntimeException");
    ASSERT_TRUE(all) << "never nil";
    const auto array = reinterpret_cast<REALarray>(all.get());
    ASSERT_EQ(REALGetArrayUBound(array), 0);
    EXPECT_EQ(Ref::adopt(REALGetArrayObject(array, 0)).get(), drive.get());
}

TEST_F(DeviceMembers, AListThatIsRefusedCountsNoneAndHoldsNone) {
    replaceClassMethod<"devices", listRefused>("DRDevice");
    testing::internal::CaptureStderr();
    EXPECT_EQ((call<uint32_t>(className, "deviceCount as UInt32")), 0u);
    EXPECT_EQ(raised()->className, "RuntimeException");
    const Ref all =
        Ref::adopt(reinterpret_cast<REALobject>(call<REALarray>(className, "devices as DRDeviceQRX()")));
    EXPECT_EQ(raised()->className, "RuntimeException");
    testing::internal::GetCapturedStderr();
    ASSERT_TRUE(all);
    EXPECT_EQ(REALGetArrayUBound(reinterpret_cast<REALarray>(all.get())), -1);
}

} // namespace
