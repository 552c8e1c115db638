// SetupPanelsTest.cpp: the setup panels' objects: how their panel is made and kept, what it is told, and what it answers.
#include "tests/plugin/PanelTest.hpp"

#include <functional>

namespace {

using namespace test;

constexpr const char* base = "DRSetupPanelQRX";
constexpr const char* burnPanel = "DRBurnSetupPanelQRX";
constexpr const char* erasePanel = "DREraseSetupPanelQRX";
constexpr const char* couldBe = "DeviceCouldBeTarget(device As DRDeviceQRX) As Boolean";
constexpr const char* runPanel = "runSetupPanel as integer";
constexpr const char* burnOf = "burnObject as DRBurnQRX";
constexpr const char* eraseOf = "eraseObject as DREraseQRX";
constexpr const char* setTitle = "setDefaultButtonTitle(title as string)";
constexpr const char* setTest = "setCanSelectTestBurn(flag as boolean)";
constexpr const char* setAppendable = "setCanSelectAppendableMedia(flag as boolean)";

const char* const actions[] = {"ok", "cancel", "eject", "open", "close"};
const char* const burnActions[] = {"expand",           "burnSpeed", "appendable",
                                   "completionAction", "testBurn",  "verifyBurn"};

class SetupPanels : public PanelTest {
  protected:
    Ref plain(const char* className = burnPanel) { return panelWith(className, {}); }
    Ref deciding(const char* className = burnPanel) {
        return panelWith(className, {on(couldBe, [](REALobject, Arguments) { return Value(true); })});
    }
    void destroy(const Ref& panel) { harness::definition(base)->destructor(panel.get()); }
    void everyAction(const Ref& panel, const std::function<void(const char*)>& after) {
        for (const char* action : actions)
            call<void>(base, action, panel.get()), after(action);
        for (const char* action : burnActions)
            call<void>(burnPanel, action, panel.get()), after(action);
    }
};

// ---- the constructor -----------------------------------------------------------------------------------

TEST_F(SetupPanels, ThePanelIsKeptRetained) {
    for (const char* className : {burnPanel, erasePanel}) {
        const Ref panel = plain(className);
        EXPECT_EQ(frame::held(panel.get()), fake::shared) << className;
        EXPECT_EQ(retains(fake::shared), 2u) << className;
    }
}

TEST_F(SetupPanels, WithoutAnEventThereIsNoDelegate) {
    for (const char* className : {burnPanel, erasePanel}) {
        const Ref panel = plain(className);
        EXPECT_EQ(delegate(), nullptr) << className;
        EXPECT_EQ(harness::references(panel.get()), 1u) << className;
    }
}

TEST_F(SetupPanels, WithAnEventADelegateHoldsTheObject) {
    for (const char* className : {burnPanel, erasePanel}) {
        const Ref panel = deciding(className);
        ASSERT_NE(delegate(), nullptr) << className;
        EXPECT_EQ(hostOfDelegate(), panel.get()) << className;
        EXPECT_EQ(harness::references(panel.get()), 2u) << className;
    }
}

TEST_F(SetupPanels, ASecondConstructorCallStoresTheSharedPanelAgainAndKeepsTheEarlierReference) {
    const Ref panel = plain();
    construct(burnPanel, panel);
    EXPECT_FALSE(raised());
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_EQ(retains(fake::shared), 3u) << "kept deliberately";
}

TEST_F(SetupPanels, ASecondConstructorCallInstallsAnotherDelegateAndTheFirstStays) {
    const Ref panel = deciding();
    const Id first = delegate();
    construct(burnPanel, panel);
    EXPECT_NE(delegate(), first);
    EXPECT_EQ(hostOfDelegate(), panel.get());
    EXPECT_EQ(harness::references(panel.get()), 3u) << "one for each delegate";
    destroy(panel);
    EXPECT_EQ(harness::references(panel.get()), 2u) << "the panel knew only the second";
    EXPECT_EQ(retains(first), 1u);
    objc::release(first);
    EXPECT_EQ(harness::references(panel.get()), 1u);
}

TEST_F(SetupPanels, ASecondConstructorCallThatGetsNoPanelStoresNil) {
    const Ref panel = plain();
    fake::shared = nullptr;
    construct(burnPanel, panel);
    EXPECT_FALSE(raised());
    EXPECT_EQ(frame::held(panel.get()), nullptr);
}

TEST_F(SetupPanels, AConstructorThatThePlatformRefusesRaisesAndStoresNil) {
    for (const char* className : {burnPanel, erasePanel}) {
        const Ref panel = plain(className);
        fake::raising = "setupPanel";
        construct(className, panel);
        EXPECT_EQ(raised(), panelIsBroken) << className;
        EXPECT_EQ(frame::held(panel.get()), nullptr) << className;
        fake::raising.clear();
    }
}

TEST_F(SetupPanels, APanelThatRefusesItsDelegateIsNeitherKeptNorReleased) {
    const Ref panel = objectWith(burnPanel, {on(couldBe, [](REALobject, Arguments) { return Value(true); })});
    const Id refusing = fake::newPanel("DRBurnSetupPanel");
    fake::raising = "setDelegate:";
    construct(burnPanel, panel);
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(frame::held(panel.get()), nullptr) << "what is not owned is not stored";
    EXPECT_EQ(retains(refusing), 1u);
}

TEST_F(SetupPanels, ThePlaceholderConstructorMakesNoPanel) {
    const Ref panel = make(base);
    fake::newPanel("DRBurnSetupPanel");
    construct(base, panel);
    EXPECT_EQ(frame::held(panel.get()), nullptr);
    EXPECT_FALSE(raised());
}

TEST_F(SetupPanels, TheConstructorRunsPlatformStartUp) {
    for (const char* className : {burnPanel, erasePanel}) {
        const Ref panel = objectWith(className, {});
        instances = nullptr;
        construct(className, panel);
        EXPECT_EQ(instances, companion::registry) << className;
    }
}

// ---- members -------------------------------------------------------------------------------------------

TEST_F(SetupPanels, ActionsAreSentByThePanelItself) {
    const Ref panel = plain();
    everyAction(panel, [](const char* action) {
        EXPECT_EQ(fake::told.back().message, std::string(action) + ":");
        EXPECT_EQ(fake::told.back().first, fake::shared) << action;
    });
    EXPECT_EQ(fake::told.size(), 11u);
}

TEST_F(SetupPanels, TheControlsOfABurnAreActionsAndAnswerNothing) {
    for (const char* action : {"burnSpeed", "appendable", "completionAction", "testBurn", "verifyBurn"}) {
        EXPECT_NE(harness::function(burnPanel, action), nullptr) << action;
        EXPECT_EQ(harness::setter(burnPanel, action), nullptr) << action;
        for (const char* type : {" as boolean", " as single", " as string"})
            EXPECT_EQ(harness::function(burnPanel, std::string(action) + type), nullptr) << action << type;
    }
}

TEST_F(SetupPanels, SettingsCross) {
    const Ref panel = plain();
    call<void>(burnPanel, setTitle, panel.get(), String("Größe").get());
    EXPECT_EQ(text(fake::told.at(0).first), "Größe");
    call<void>(burnPanel, setTitle, panel.get(), REALstring{nullptr});
    EXPECT_EQ(fake::told.at(1).first, nullptr);
    for (const bool flag : {true, false}) {
        const std::string answer = flag ? "YES" : "NO";
        call<void>(burnPanel, setTest, panel.get(), REALboolean{flag});
        EXPECT_EQ(fake::told.back().message, "setCanSelectTestBurn:" + answer);
        call<void>(burnPanel, setAppendable, panel.get(), REALboolean{flag});
        EXPECT_EQ(fake::told.back().message, "setCanSelectAppendableMedia:" + answer);
    }
}

TEST_F(SetupPanels, TheEndOfAPanelIsOneOfTheTwoConstants) {
    const Ref panel = plain();
    std::vector<std::string> declared;
    const auto* record = harness::definition(base);
    for (std::size_t i = 0; i < record->constantCount; ++i)
        declared.push_back(record->constants[i].declaration);
    EXPECT_EQ(declared, (std::vector<std::string>{"NSCancelButton = 0", "NSOKButton = 1"}));
    for (const int code : {0, 1}) {
        fake::endCode = code;
        EXPECT_EQ(call<int32_t>(base, runPanel, panel.get()), code);
    }
}

TEST_F(SetupPanels, TheBurnOfAPanelIsTheHostObjectThatAConstructorMadeForIt) {
    const Ref panel = plain(), device = Ref::adopt(NewDRDeviceQRX(aDevice())), burn = make("DRBurnQRX");
    EXPECT_EQ(call<REALobject>(burnPanel, burnOf, panel.get()), nullptr) << "the panel gives none";
    call<void>("DRBurnQRX", "Constructor(device as DRDeviceQRX)", burn.get(), device.get());
    fake::answered = frame::held(burn.get());
    ASSERT_NE(fake::answered, nullptr);
    const Ref given = Ref::adopt(call<REALobject>(burnPanel, burnOf, panel.get()));
    EXPECT_EQ(given.get(), burn.get());
    EXPECT_EQ(harness::references(burn.get()), 2u);
}

TEST_F(SetupPanels, TheEraseOfAPanelIsAnotherHostObjectThanTheConstructorsAndTheSameEachTime) {
    const Ref panel = plain(erasePanel), device = Ref::adopt(NewDRDeviceQRX(aDevice()));
    const Ref erase = make("DREraseQRX");
    EXPECT_EQ(call<REALobject>(erasePanel, eraseOf, panel.get()), nullptr) << "the panel gives none";
    call<void>("DREraseQRX", "Constructor(device as DRDeviceQRX)", erase.get(), device.get());
    fake::answered = frame::held(erase.get());
    ASSERT_NE(fake::answered, nullptr);
    const Ref given = Ref::adopt(call<REALobject>(erasePanel, eraseOf, panel.get()));
    EXPECT_NE(given.get(), erase.get()) << "a constructed erase is deliberately not registered";
    EXPECT_EQ(frame::held(given.get()), fake::answered);
    EXPECT_EQ(Ref::adopt(call<REALobject>(erasePanel, eraseOf, panel.get())).get(), given.get());
}

TEST_F(SetupPanels, TheTitleConstantIsReadWithoutAnyObject) {
    EXPECT_EQ(textOf(call<REALstring>(burnPanel, "DRBurnSetupPanelDefaultButtonDefaultTitle as string")),
              "DRBurnSetupPanelDefaultButtonDefaultTitle");
}

TEST_F(SetupPanels, WhatThePlatformRaisesBecomesAHostExceptionAndTheResultIsEmpty) {
    const Ref panel = plain(), eraser = plain(erasePanel), burn = aBurn();
    fake::answered = frame::held(burn.get());
    fake::raising = fake::everyMessage;
    everyAction(panel, [&](const char* action) { EXPECT_EQ(raised(), panelIsBroken) << action; });
    EXPECT_EQ(call<int32_t>(base, runPanel, panel.get()), 0);
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(call<REALobject>(burnPanel, burnOf, panel.get()), nullptr);
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(call<REALobject>(erasePanel, eraseOf, eraser.get()), nullptr);
    EXPECT_EQ(raised(), panelIsBroken);
    call<void>(burnPanel, setTitle, panel.get(), String("Go").get());
    EXPECT_EQ(raised(), panelIsBroken);
    call<void>(burnPanel, setTest, panel.get(), REALboolean{1});
    EXPECT_EQ(raised(), panelIsBroken);
    call<void>(burnPanel, setAppendable, panel.get(), REALboolean{1});
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_TRUE(fake::told.empty());
    fake::raising.clear();
}

TEST_F(SetupPanels, WithoutAPanelEveryMemberIsEmptyAndRaisesNothing) {
    const Ref panel = objectWith(burnPanel, {}), eraser = objectWith(erasePanel, {});
    fake::answered = aDevice();
    for (const bool constructed : {false, true}) {
        if (constructed) construct(burnPanel, panel), construct(erasePanel, eraser);
        EXPECT_EQ(frame::held(panel.get()), nullptr);
        everyAction(panel, [](const char*) {});
        EXPECT_EQ(call<int32_t>(base, runPanel, panel.get()), 0);
        EXPECT_EQ(call<REALobject>(burnPanel, burnOf, panel.get()), nullptr);
        EXPECT_EQ(call<REALobject>(erasePanel, eraseOf, eraser.get()), nullptr);
        call<void>(burnPanel, setTitle, panel.get(), String("Go").get());
        call<void>(burnPanel, setTest, panel.get(), REALboolean{1});
        call<void>(burnPanel, setAppendable, panel.get(), REALboolean{1});
        EXPECT_FALSE(raised());
    }
    EXPECT_TRUE(fake::told.empty());
}

// ---- the end -------------------------------------------------------------------------------------------

TEST_F(SetupPanels, TheDestructorRemovesTheDelegateAndLeavesThePanelToItsSuperclass) {
    const Ref panel = deciding();
    const auto before = retains(fake::shared);
    destroy(panel);
    EXPECT_EQ(delegate(), nullptr);
    EXPECT_EQ(harness::references(panel.get()), 1u) << "the delegate is gone, and its reference";
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_EQ(retains(fake::shared), before);
    destroy(panel); // without a delegate nothing happens
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_FALSE(raised());
}

TEST_F(SetupPanels, TheDestructorRunsNoPlatformStartUp) {
    const Ref panel = deciding();
    instances = nullptr;
    destroy(panel);
    EXPECT_EQ(delegate(), nullptr);
    EXPECT_EQ(instances, nullptr);
}

TEST_F(SetupPanels, WhatThePlatformRaisesInTheDestructorBecomesAHostException) {
    const Ref panel = deciding();
    fake::raising = "delegate";
    destroy(panel);
    EXPECT_EQ(raised(), panelIsBroken);
    fake::raising.clear();
    EXPECT_NE(delegate(), nullptr);
}

TEST_F(SetupPanels, AnObjectWithADelegateOutlivesTheProgramsReferencesAndOneWithoutDoesNot) {
    const auto living = [] {
        std::size_t count = 0;
        for (const auto& [name, number] : harness::liveInstances())
            if (name.starts_with("ProgramsPanel")) count += number;
        return count;
    };
    Ref panel = plain();
    panel = Ref();
    EXPECT_EQ(living(), 0u);
    panel = deciding();
    panel = Ref();
    EXPECT_EQ(living(), 1u) << "kept deliberately";
    EXPECT_NE(delegate(), nullptr);
}

} // namespace
