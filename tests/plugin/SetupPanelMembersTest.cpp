// SetupPanelMembersTest.cpp: what setup panels are told, and what they answer.
#include "tests/plugin/SetupPanel.hpp"

#include <functional>

namespace {

using namespace test;

constexpr const char* runPanel = "runSetupPanel as integer";
constexpr const char* burnOf = "burnObject as DRBurnQRX";
constexpr const char* eraseOf = "eraseObject as DREraseQRX";
constexpr const char* setTitle = "setDefaultButtonTitle(title as string)";
constexpr const char* setTest = "setCanSelectTestBurn(flag as boolean)";
constexpr const char* setAppendable = "setCanSelectAppendableMedia(flag as boolean)";

const char* const actions[] = {"ok", "cancel", "eject", "open", "close"};
const char* const burnActions[] = {"expand",           "burnSpeed", "appendable",
                                   "completionAction", "testBurn",  "verifyBurn"};

class SetupPanelMembers : public SetupPanelTest {
  protected:
    void everyAction(const Ref& panel, const std::function<void(const char*)>& after) {
        for (const char* action : actions)
            call<void>(setupBase, action, panel.get()), after(action);
        for (const char* action : burnActions)
            call<void>(burnSetup, action, panel.get()), after(action);
    }
};

TEST_F(SetupPanelMembers, ActionsAreSentByThePanelItself) {
    const Ref panel = plain();
    everyAction(panel, [](const char* action) {
        EXPECT_EQ(fake::told.back().message, std::string(action) + ":");
        EXPECT_EQ(fake::told.back().first, fake::shared) << action;
    });
    EXPECT_EQ(fake::told.size(), 11u);
}

TEST_F(SetupPanelMembers, TheControlsOfABurnAreActionsAndAnswerNothing) {
    for (const char* action : {"burnSpeed", "appendable", "completionAction", "testBurn", "verifyBurn"}) {
        EXPECT_NE(harness::function(burnSetup, action), nullptr) << action;
        EXPECT_EQ(harness::setter(burnSetup, action), nullptr) << action;
        for (const char* type : {" as boolean", " as single", " as string"})
            EXPECT_EQ(harness::function(burnSetup, std::string(action) + type), nullptr) << action << type;
    }
}

TEST_F(SetupPanelMembers, SettingsCross) {
    const Ref panel = plain();
    call<void>(burnSetup, setTitle, panel.get(), String("Größe").get());
    EXPECT_EQ(text(fake::told.at(0).first), "Größe");
    call<void>(burnSetup, setTitle, panel.get(), REALstring{nullptr});
    EXPECT_EQ(fake::told.at(1).first, nullptr);
    for (const bool flag : {true, false}) {
        const std::string answer = flag ? "YES" : "NO";
        call<void>(burnSetup, setTest, panel.get(), REALboolean{flag});
        EXPECT_EQ(fake::told.back().message, "setCanSelectTestBurn:" + answer);
        call<void>(burnSetup, setAppendable, panel.get(), REALboolean{flag});
        EXPECT_EQ(fake::told.back().message, "setCanSelectAppendableMedia:" + answer);
    }
}

TEST_F(SetupPanelMembers, TheEndOfAPanelIsOneOfTheTwoConstants) {
    const Ref panel = plain();
    std::vector<std::string> declared;
    const auto* record = harness::definition(setupBase);
    for (std::size_t i = 0; i < record->constantCount; ++i)
        declared.push_back(record->constants[i].declaration);
    EXPECT_EQ(declared, (std::vector<std::string>{"NSCancelButton = 0", "NSOKButton = 1"}));
    for (const int code : {0, 1}) {
        fake::endCode = code;
        EXPECT_EQ(call<int32_t>(setupBase, runPanel, panel.get()), code);
    }
}

TEST_F(SetupPanelMembers, TheBurnOfAPanelIsTheHostObjectThatAConstructorMadeForIt) {
    const Ref panel = plain(), device = Ref::adopt(NewDRDeviceQRX(aDevice())), burn = make("DRBurnQRX");
    EXPECT_EQ(call<REALobject>(burnSetup, burnOf, panel.get()), nullptr) << "the panel gives none";
    call<void>("DRBurnQRX", "Constructor(device as DRDeviceQRX)", burn.get(), device.get());
    fake::answered = frame::held(burn.get());
    ASSERT_NE(fake::answered, nullptr);
    const Ref given = Ref::adopt(call<REALobject>(burnSetup, burnOf, panel.get()));
    EXPECT_EQ(given.get(), burn.get());
    EXPECT_EQ(harness::references(burn.get()), 2u);
}

TEST_F(SetupPanelMembers, TheEraseOfAPanelIsAnotherHostObjectThanTheConstructorsAndTheSameEachTime) {
    const Ref panel = plain(eraseSetup), device = Ref::adopt(NewDRDeviceQRX(aDevice()));
    const Ref erase = make("DREraseQRX");
    EXPECT_EQ(call<REALobject>(eraseSetup, eraseOf, panel.get()), nullptr) << "the panel gives none";
    call<void>("DREraseQRX", "Constructor(device as DRDeviceQRX)", erase.get(), device.get());
    fake::answered = frame::held(erase.get());
    ASSERT_NE(fake::answered, nullptr);
    const Ref given = Ref::adopt(call<REALobject>(eraseSetup, eraseOf, panel.get()));
    EXPECT_NE(given.get(), erase.get()) << "a constructed erase is deliberately not registered";
    EXPECT_EQ(frame::held(given.get()), fake::answered);
    EXPECT_EQ(Ref::adopt(call<REALobject>(eraseSetup, eraseOf, panel.get())).get(), given.get());
}

TEST_F(SetupPanelMembers, TheTitleConstantIsReadWithoutAnyObject) {
    EXPECT_EQ(textOf(call<REALstring>(burnSetup, "DRBurnSetupPanelDefaultButtonDefaultTitle as string")),
              "DRBurnSetupPanelDefaultButtonDefaultTitle");
}

TEST_F(SetupPanelMembers, WhatThePlatformRaisesBecomesAHostExceptionAndTheResultIsEmpty) {
    const Ref panel = plain(), eraser = plain(eraseSetup), burn = aBurn();
    fake::answered = frame::held(burn.get());
    fake::raising = fake::everyMessage;
    everyAction(panel, [&](const char* action) { EXPECT_EQ(raised(), panelIsBroken) << action; });
    EXPECT_EQ(call<int32_t>(setupBase, runPanel, panel.get()), 0);
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(call<REALobject>(burnSetup, burnOf, panel.get()), nullptr);
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(call<REALobject>(eraseSetup, eraseOf, eraser.get()), nullptr);
    EXPECT_EQ(raised(), panelIsBroken);
    call<void>(burnSetup, setTitle, panel.get(), String("Go").get());
    EXPECT_EQ(raised(), panelIsBroken);
    call<void>(burnSetup, setTest, panel.get(), REALboolean{1});
    EXPECT_EQ(raised(), panelIsBroken);
    call<void>(burnSetup, setAppendable, panel.get(), REALboolean{1});
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_TRUE(fake::told.empty());
    fake::raising.clear();
}

TEST_F(SetupPanelMembers, WithoutAPanelEveryMemberIsEmptyAndRaisesNothing) {
    const Ref panel = objectWith(burnSetup, {}), eraser = objectWith(eraseSetup, {});
    fake::answered = aDevice();
    for (const bool constructed : {false, true}) {
        if (constructed) construct(burnSetup, panel), construct(eraseSetup, eraser);
        EXPECT_EQ(frame::held(panel.get()), nullptr);
        everyAction(panel, [](const char*) {});
        EXPECT_EQ(call<int32_t>(setupBase, runPanel, panel.get()), 0);
        EXPECT_EQ(call<REALobject>(burnSetup, burnOf, panel.get()), nullptr);
        EXPECT_EQ(call<REALobject>(eraseSetup, eraseOf, eraser.get()), nullptr);
        call<void>(burnSetup, setTitle, panel.get(), String("Go").get());
        call<void>(burnSetup, setTest, panel.get(), REALboolean{1});
        call<void>(burnSetup, setAppendable, panel.get(), REALboolean{1});
        EXPECT_FALSE(raised());
    }
    EXPECT_TRUE(fake::told.empty());
}

} // namespace
