// FrameTest.cpp: what the plug-in declares to the host when it is loaded.
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/frame/PluginIdentity.hpp"
#include "plugin/frame/Resolver.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <algorithm>
#include <set>

namespace {

using namespace test;

const std::vector<std::string> inOrder = {"DRMSFQRX",
                                          "DRBurnQRX",
                                          "DRBurnProgressPanelQRX",
                                          "DRBurnSetupPanelQRX",
                                          "DRCDTextBlockQRX",
                                          "DRDeviceQRX",
                                          "DREraseQRX",
                                          "DREraseProgressPanelQRX",
                                          "DREraseSetupPanelQRX",
                                          "DRFSObjectQRX",
                                          "DRFileQRX",
                                          "DRFolderQRX",
                                          "DRSetupPanelQRX",
                                          "DRTrackQRX"};

using Frame = PluginTest;

TEST_F(Frame, AnnouncesInterfaceVersionNineAndReadsTheHostsVersion) {
    load();
    EXPECT_EQ(harness::announcedPluginVersion(), 9);
    EXPECT_EQ(frame::hostVersion, 2013.0);
}

TEST_F(Frame, TheHostVersionIsZeroWhereTheHostDoesNotTell) {
    harness::setHostVersion(0);
    load();
    EXPECT_EQ(frame::hostVersion, 0.0);
}

TEST_F(Frame, RegistersTheFourteenClassesInTheirFixedOrder) {
    load();
    EXPECT_EQ(harness::registrations(), inOrder);
}

TEST_F(Frame, RecordsItsNameAndVersion) {
    load();
    EXPECT_STREQ(frame::pluginIdentity.name, "DiscRecording");
    EXPECT_STREQ(frame::pluginIdentity.version, "$$ Plugin version: 13.2 (2013) $$");
}

TEST_F(Frame, AHostWithoutRegistrationRegistersNothingAndGoesOn) {
    harness::withdraw("PluginRegisterClass");
    load();
    EXPECT_TRUE(harness::registrations().empty());
}

TEST_F(Frame, DataSizesReachTheHostRoundedUpToMultiplesOfSixteen) {
    load();
    EXPECT_EQ(harness::definition("DRMSFQRX")->dataSize, 16u);
    EXPECT_EQ(harness::definition("DRFileQRX")->dataSize, 0u);
    for (const std::string& name : inOrder)
        EXPECT_EQ(harness::definition(name)->dataSize % 16, 0u) << name;
    static REALclassDefinition sixteen = frame::makeClass({.name = "TestSixteen", .dataSize = 16});
    static REALclassDefinition seventeen = frame::makeClass({.name = "TestSeventeen", .dataSize = 17});
    frame::MyREALRegisterClass(&sixteen);
    frame::MyREALRegisterClass(&seventeen);
    EXPECT_EQ(sixteen.dataSize, 16u);
    EXPECT_EQ(seventeen.dataSize, 32u);
}

TEST_F(Frame, OnlyTheWrapperClassesHaveInstanceData) {
    load();
    const std::set<std::string> wrappers = {"DRMSFQRX",   "DRBurnQRX",     "DRCDTextBlockQRX", "DRDeviceQRX",
                                            "DREraseQRX", "DRFSObjectQRX", "DRTrackQRX"};
    for (const std::string& name : inOrder)
        EXPECT_EQ(harness::definition(name)->dataSize, wrappers.contains(name) ? 16u : 0u) << name;
}

TEST_F(Frame, SuperclassesMayBeRegisteredAfterTheirSubclasses) {
    load();
    const auto superOf = [](const char* name) {
        const char* super = harness::definition(name)->superName;
        return std::string(super ? super : "");
    };
    for (const char* panel : {"DRBurnSetupPanelQRX", "DREraseSetupPanelQRX"})
        EXPECT_EQ(superOf(panel), "DRSetupPanelQRX");
    for (const char* panel : {"DRSetupPanelQRX", "DRBurnProgressPanelQRX", "DREraseProgressPanelQRX"})
        EXPECT_EQ(superOf(panel), "NSPanelQRX");
    for (const char* object : {"DRFileQRX", "DRFolderQRX"})
        EXPECT_EQ(superOf(object), "DRFSObjectQRX");
    EXPECT_EQ(superOf("DRMSFQRX"), "");
}

TEST_F(Frame, FourClassesRelyOnTheirSuperclassForConstructorAndDestructor) {
    load();
    const std::set<std::string> without = {"DRBurnSetupPanelQRX", "DREraseSetupPanelQRX", "DRFileQRX",
                                           "DRFolderQRX"};
    for (const std::string& name : inOrder) {
        EXPECT_EQ(harness::definition(name)->constructor == nullptr, without.contains(name)) << name;
        EXPECT_EQ(harness::definition(name)->destructor == nullptr, without.contains(name)) << name;
    }
}

TEST_F(Frame, EveryRecordHasVersionNineFlagsFourAndNoUnusedTables) {
    load();
    for (const std::string& name : inOrder) {
        const REALclassDefinition& record = *harness::definition(name);
        EXPECT_EQ(record.version, 9u) << name;
        EXPECT_EQ(record.name, name);
        EXPECT_EQ(record.flags, 4u) << name;
        EXPECT_EQ(record.properties, nullptr) << name;
        EXPECT_EQ(record.eventInstances, nullptr) << name;
        EXPECT_EQ(record.interfaces, nullptr) << name;
        EXPECT_EQ(record.attributes, nullptr) << name;
        EXPECT_EQ(record.sharedProperties, nullptr) << name;
        EXPECT_EQ(record.propertyCount + record.eventInstanceCount + record.attributeCount +
                      record.sharedPropertyCount + record.reserved,
                  0u)
            << name;
        EXPECT_EQ(record.methods == nullptr, record.methodCount == 0) << name;
        EXPECT_EQ(record.sharedMethods == nullptr, record.sharedMethodCount == 0) << name;
    }
}

TEST_F(Frame, MembersHaveFlagsFourButThePlaceholderOfFourClasses) {
    load();
    std::set<std::string> marked;
    for (const std::string& name : inOrder) {
        const REALclassDefinition& record = *harness::definition(name);
        for (uintptr_t i = 0; i < record.methodCount; ++i) {
            const REALmethodDefinition& member = record.methods[i];
            EXPECT_NE(member.function, nullptr) << member.declaration;
            if (member.flags == 0x84 && std::string(member.declaration) == "Constructor")
                marked.insert(name);
            else
                EXPECT_EQ(member.flags, 4u) << name << " " << member.declaration;
        }
        for (uintptr_t i = 0; i < record.sharedMethodCount; ++i) {
            EXPECT_NE(record.sharedMethods[i].function, nullptr) << record.sharedMethods[i].declaration;
            EXPECT_EQ(record.sharedMethods[i].setter, nullptr) << record.sharedMethods[i].declaration;
            EXPECT_EQ(record.sharedMethods[i].flags, 4u) << record.sharedMethods[i].declaration;
        }
    }
    EXPECT_EQ(marked,
              (std::set<std::string>{"DRDeviceQRX", "DRCDTextBlockQRX", "DRSetupPanelQRX", "DRFSObjectQRX"}));
}

TEST_F(Frame, DeclarationsOfAClassDifferFromEachOther) {
    load();
    for (const std::string& name : inOrder) {
        const REALclassDefinition& record = *harness::definition(name);
        std::set<std::string> seen;
        for (uintptr_t i = 0; i < record.methodCount; ++i)
            EXPECT_TRUE(seen.insert(record.methods[i].declaration).second) << record.methods[i].declaration;
        for (uintptr_t i = 0; i < record.sharedMethodCount; ++i)
            EXPECT_TRUE(seen.insert(record.sharedMethods[i].declaration).second)
                << record.sharedMethods[i].declaration;
    }
}

TEST_F(Frame, AStringConstantWorksBeforeAnyObjectWasMade) {
    load();
    EXPECT_EQ(textOf(call<REALstring>("DRDeviceQRX", "DRDeviceAppearedNotification as string")),
              "DRDeviceAppearedNotification");
    EXPECT_EQ(textOf(call<REALstring>("DRBurnQRX", "DRStatusStateKey as string")), "DRStatusStateKey");
}

TEST_F(Frame, EveryStringConstantThatThePlatformHasAnswersItsName) {
    load();
    std::size_t constants = 0;
    for (const std::string& name : inOrder) {
        const REALclassDefinition& record = *harness::definition(name);
        for (uintptr_t i = 0; i < record.sharedMethodCount; ++i) {
            const std::string declaration = record.sharedMethods[i].declaration;
            if (!declaration.starts_with("DR") || !declaration.ends_with(" as string") ||
                declaration.find('(') != std::string::npos)
                continue;
            const auto get = reinterpret_cast<REALstring (*)()>(record.sharedMethods[i].function);
            EXPECT_EQ(textOf(get()), declaration.substr(0, declaration.find(' '))) << name;
            ++constants;
        }
    }
    // Devices, burns, erases, tracks, file-system objects, files, panels.
    EXPECT_EQ(constants, 119u + 53u + 4u + 62u + 45u + 3u + 5u);
}

TEST_F(Frame, ThePlaceholderConstructorDoesNothing) {
    load();
    const Ref device = make("DRDeviceQRX");
    call<void>("DRDeviceQRX", "Constructor", device.get());
    EXPECT_EQ(frame::slot(device.get()), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

// The declarations' parser runs at compile time; these are its facts.
using frame::Crossing;
constexpr auto parsed =
    frame::parseDeclaration("f(a() as DRTrackQRX, byref b as uint32, c as Boolean) as UInt64");
static_assert(parsed.count == 3 && parsed.result == Crossing::UInt64);
static_assert(parsed.parameters[0] == Crossing::Array && parsed.parameters[1] == Crossing::Address &&
              parsed.parameters[2] == Crossing::Boolean);
static_assert(frame::parseDeclaration("devices as DRDeviceQRX()").result == Crossing::Array);
static_assert(frame::parseDeclaration("abort") == frame::Signature{});
static_assert(frame::setterOf(frame::parseDeclaration("name(fs as string) as string")).count == 3);

} // namespace
