// LoadingTest.cpp: the companion comes before or after the plug-in, or stays away.
#include "tests/companion/CompanionTest.hpp"

#include <cstring>
#include <dlfcn.h>

namespace {

using namespace test;

class Loading : public CompanionTest {
  protected:
    static bool isThere() {
        const Id exceptionClass = objc::classNamed<"NSException">();
        return objc::respondsTo<"GetInstancesDictionaryQRX">(exceptionClass) &&
               objc::respondsTo<"PrepareNSExceptionQRX">(exceptionClass) &&
               objc::respondsTo<"NewNSExceptionQRX:">(exceptionClass);
    }

    // A drive is the same object each time, and what the platform raises is an NSExceptionQRX.
    static void expectBothWork() {
        const Value drive = askClass("DRDeviceQRX", "device", {0});
        ASSERT_TRUE(drive.isObject());
        EXPECT_EQ(askClass("DRDeviceQRX", "device", {0}).object(), drive.object());
        std::string raised;
        logOf([&] { raised = raisedBy([] { askClass("DRDeviceQRX", "device", {7}); }); });
        EXPECT_TRUE(raised.starts_with("NSExceptionQRX: Index 7")) << raised;
    }
};

TEST_F(Loading, BeforeThePlugin) {
    loadCompanion();
    loadPlugin();
    EXPECT_TRUE(isThere());
    expectBothWork();
}

TEST_F(Loading, AfterThePlugin) {
    loadPlugin();
    EXPECT_FALSE(isThere());
    loadCompanion();
    EXPECT_TRUE(isThere());
    expectBothWork();
}

TEST_F(Loading, AfterThePluginWasUsed) {
    loadPlugin();
    EXPECT_TRUE(askClass("DRDeviceQRX", "device", {0}).isObject());
    loadCompanion();
    expectBothWork();
}

TEST_F(Loading, WithoutItADriveComesBackAsAnotherObjectAndExceptionsAreTheHosts) {
    loadPlugin();
    const Value first = askClass("DRDeviceQRX", "device", {0});
    const Value second = askClass("DRDeviceQRX", "device", {0});
    EXPECT_NE(first.object(), second.object());
    EXPECT_TRUE(ask(first, "isEqualToDevice", {second}).toBoolean());
    std::string raised;
    logOf([&] { raised = raisedBy([] { askClass("DRDeviceQRX", "device", {7}); }); });
    EXPECT_TRUE(raised.starts_with("RuntimeException: Index 7")) << raised;
}

TEST_F(Loading, DeclaresElevenClassesAndEveryDeclarationIsUnderstood) {
    const auto& loaded = host::loadPlugin(COMPANION);
    EXPECT_EQ(loaded.problems, std::vector<std::string>{});
    EXPECT_EQ(harness::registrations(),
              (std::vector<std::string>{"NSExceptionQRX", "NSWindowQRX", "NSPanelQRX", "NSRangeQRX",
                                        "NSRectQRX", "NSSizeQRX", "NSPointQRX", "NSAttributedStringQRX",
                                        "NSCharacterSetQRX", "NSErrorQRX", "NSIndexSetQRX"}));
    EXPECT_EQ(harness::announcedPluginVersion(), kREALPluginVersion);
}

TEST_F(Loading, AHostThatLacksAServiceGetsNoCompanionAndThePluginWorksAlone) {
    harness::withdraw("StringToVariant");
    loadCompanion();
    EXPECT_EQ(harness::registrations(), std::vector<std::string>{});
    EXPECT_FALSE(isThere());
    const Value boxed = Value(host::newDictionary());
    EXPECT_EQ((objc::sendClass<"QRXREALobjectWrapper", "wrap:">(boxed.object())), nullptr);
    loadPlugin();
    EXPECT_EQ(ask(make("DRMSFQRX", {75}), "sectors").toInt32(), 75);
}

// Every other name stays inside, so that plug-ins never meet each other's functions.
TEST_F(Loading, OneNameLeavesTheLibrary) {
    loadCompanion();
    void* library = dlopen(COMPANION, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr);
    Dl_info found{};
    const auto inside = [&](const char* name) {
        void* address = dlsym(library, name);
        return address && dladdr(address, &found) && std::strcmp(found.dli_fname, COMPANION) == 0;
    };
    EXPECT_TRUE(inside("REALPluginMain"));
    EXPECT_FALSE(inside("NSWindowQRXClass"));
    EXPECT_FALSE(inside("newHostException"));
    EXPECT_FALSE(inside("host"));
    dlclose(library);
}

} // namespace
