// SetupPanelsTest.cpp: how setup panels are made, kept and let go.
#include "tests/plugin/SetupPanel.hpp"

namespace {

using namespace test;

using SetupPanels = SetupPanelTest;

// ---- the constructor -----------------------------------------------------------------------------------

TEST_F(SetupPanels, ThePanelIsKeptRetained) {
    for (const char* className : {burnSetup, eraseSetup}) {
        const Ref panel = plain(className);
        EXPECT_EQ(frame::held(panel.get()), fake::shared) << className;
        EXPECT_EQ(retains(fake::shared), 2u) << className;
    }
}

TEST_F(SetupPanels, WithoutAnEventThereIsNoDelegate) {
    for (const char* className : {burnSetup, eraseSetup}) {
        const Ref panel = plain(className);
        EXPECT_EQ(delegate(), nullptr) << className;
        EXPECT_EQ(harness::references(panel.get()), 1u) << className;
    }
}

TEST_F(SetupPanels, WithAnEventADelegateHoldsTheObject) {
    for (const char* className : {burnSetup, eraseSetup}) {
        const Ref panel = deciding(className);
        ASSERT_NE(delegate(), nullptr) << className;
        EXPECT_EQ(hostOfDelegate(), panel.get()) << className;
        EXPECT_EQ(harness::references(panel.get()), 2u) << className;
    }
}

TEST_F(SetupPanels, AHostThatKnowsNoEventsGetsNoDelegate) {
    harness::withdraw("GetEventInstance");
    const Ref panel = deciding();
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_EQ(delegate(), nullptr);
}

TEST_F(SetupPanels, ASecondConstructorCallStoresTheSharedPanelAgainAndKeepsTheEarlierReference) {
    const Ref panel = plain();
    construct(burnSetup, panel);
    EXPECT_FALSE(raised());
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_EQ(retains(fake::shared), 3u) << "kept deliberately";
}

TEST_F(SetupPanels, ASecondConstructorCallInstallsAnotherDelegateAndTheFirstStays) {
    const Ref panel = deciding();
    const Id first = delegate();
    construct(burnSetup, panel);
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
    construct(burnSetup, panel);
    EXPECT_FALSE(raised());
    EXPECT_EQ(frame::held(panel.get()), nullptr);
}

TEST_F(SetupPanels, AConstructorThatThePlatformRefusesRaisesAndStoresNil) {
    for (const char* className : {burnSetup, eraseSetup}) {
        const Ref panel = plain(className);
        fake::raising = "setupPanel";
        construct(className, panel);
        EXPECT_EQ(raised(), panelIsBroken) << className;
        EXPECT_EQ(frame::held(panel.get()), nullptr) << className;
        fake::raising.clear();
    }
}

TEST_F(SetupPanels, APanelThatRefusesItsDelegateIsNeitherKeptNorReleased) {
    const Ref panel = objectWith(burnSetup, {aDecision()});
    const Id refusing = fake::newPanel("DRBurnSetupPanel");
    fake::raising = "setDelegate:";
    construct(burnSetup, panel);
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(frame::held(panel.get()), nullptr) << "what is not owned is not stored";
    EXPECT_EQ(retains(refusing), 1u);
}

TEST_F(SetupPanels, ThePlaceholderConstructorMakesNoPanel) {
    const Ref panel = make(setupBase);
    fake::newPanel("DRBurnSetupPanel");
    construct(setupBase, panel);
    EXPECT_EQ(frame::held(panel.get()), nullptr);
    EXPECT_FALSE(raised());
}

TEST_F(SetupPanels, TheConstructorRunsPlatformStartUp) {
    for (const char* className : {burnSetup, eraseSetup}) {
        const Ref panel = objectWith(className, {});
        instances = nullptr;
        construct(className, panel);
        EXPECT_EQ(instances, companion::registry) << className;
    }
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

TEST_F(SetupPanels, TheDestructorRunsForBothKinds) {
    for (const char* className : {burnSetup, eraseSetup}) {
        Ref panel = plain(className);
        const Id other = objc::send<"init">(objc::alloc<"NSObject">());
        objc::send<"setDelegate:", void>(fake::shared, objc::retained(other));
        panel = Ref();
        EXPECT_EQ(delegate(), nullptr) << className;
        EXPECT_EQ(retains(other), 1u) << "whoever's it was: " << className;
        objc::release(other);
    }
}

TEST_F(SetupPanels, TheDestructorTellsAPanelWithoutADelegateNothing) {
    const Ref panel = plain();
    fake::raising = "setDelegate:";
    destroy(panel);
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
