// ProgressPanelsTest.cpp: what the burn's and the erase's progress panel have in common: how they are made, and their end.
#include "tests/plugin/ProgressPanel.hpp"

namespace {

using namespace test;

using ProgressPanels = ProgressTest;
INSTANTIATE_TEST_SUITE_P(, ProgressPanels, bothKinds());

constexpr const char* description = "Description as string";
const Raised tooOften{"UnsupportedOperationException",
                      "Constructor called too often. Object is already initialized."};

// ---- the constructor -----------------------------------------------------------------------------------

TEST_P(ProgressPanels, ThePanelIsKeptRetained) {
    const Ref panel = progress({});
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_EQ(retains(fake::shared), 2u);
}

TEST_P(ProgressPanels, ADelegateIsInstalledWithOrWithoutEventsAndHoldsTheObject) {
    for (const bool any : {false, true}) {
        const Ref panel = any ? listening(WillBegin) : progress({});
        ASSERT_NE(delegate(), nullptr);
        EXPECT_EQ(hostOfDelegate(), panel.get());
        EXPECT_EQ(job(), nullptr);
        EXPECT_EQ(harness::references(panel.get()), 2u);
    }
}

TEST_P(ProgressPanels, OnlyTheErasesIsRegistered) {
    const Ref panel = progress({});
    EXPECT_EQ(FindInstance(fake::shared), kind().ofBurn() ? nullptr : panel.get())
        << "deliberately different";
}

TEST_P(ProgressPanels, ASecondConstructorCallRaisesAndLeavesTheFirstPanelInPlace) {
    const Ref panel = progress({});
    const Id first = fake::shared, firstDelegate = delegate();
    const Id other = fake::newPanel(kind().ofBurn() ? "DRBurnProgressPanel" : "DREraseProgressPanel");
    UnregisterInstance(first);
    construct(kind().className, panel);
    EXPECT_EQ(raised(), tooOften);
    EXPECT_EQ(frame::held(panel.get()), first);
    EXPECT_EQ(FindInstance(first), nullptr) << "nor is it registered again";
    EXPECT_EQ(objc::send<"delegate">(first), firstDelegate);
    EXPECT_EQ(retains(first), 2u);
    EXPECT_EQ(objc::send<"delegate">(other), nullptr) << "none was asked for";
    EXPECT_EQ(harness::references(panel.get()), 2u);
    EXPECT_EQ(FindInstance(other), nullptr);
}

TEST_P(ProgressPanels, TheConstructorRunsPlatformStartUpAndARefusedOneDoesNot) {
    const Ref panel = objectWith(kind().className, {});
    fake::newPanel("DRBurnProgressPanel");
    instances = nullptr;
    construct(kind().className, panel);
    EXPECT_EQ(instances, companion::registry);
    instances = nullptr;
    construct(kind().className, panel);
    EXPECT_EQ(raised(), tooOften);
    EXPECT_EQ(instances, nullptr);
}

TEST_P(ProgressPanels, WithoutAPlatformPanelTheObjectStaysEmptyAndMayBeConstructedAgain) {
    const Ref panel = objectWith(kind().className, {});
    construct(kind().className, panel);
    EXPECT_FALSE(raised());
    EXPECT_EQ(frame::held(panel.get()), nullptr);
    EXPECT_EQ(harness::references(panel.get()), 1u);
    begin(panel, aJob().get());
    destroy(panel);
    EXPECT_TRUE(fake::told.empty());
    EXPECT_FALSE(raised());
    fake::newPanel("DRBurnProgressPanel");
    construct(kind().className, panel);
    EXPECT_FALSE(raised());
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
}

TEST_P(ProgressPanels, APlatformThatRaisesInTheConstructorLeavesTheObjectEmpty) {
    const Ref panel = objectWith(kind().className, {});
    const Id refusing = fake::newPanel("DRBurnProgressPanel");
    for (const char* message : {"progressPanel", "setDelegate:"}) {
        fake::raising = message;
        construct(kind().className, panel);
        EXPECT_EQ(raised(), panelIsBroken) << message;
        EXPECT_EQ(frame::held(panel.get()), nullptr) << message;
        EXPECT_EQ(retains(refusing), 1u) << message;
        EXPECT_EQ(FindInstance(refusing), nullptr) << message;
        objc::release(delegate());
    }
    fake::raising.clear();
    construct(kind().className, panel);
    EXPECT_EQ(frame::held(panel.get()), refusing);
}

// ---- the description -----------------------------------------------------------------------------------

TEST_P(ProgressPanels, TheDescriptionCrosses) {
    const Ref panel = progress({});
    const auto set = harness::setterOf<void(REALobject, REALstring)>(kind().className, description);
    const auto get = [&] { return textOf(call<REALstring>(kind().className, description, panel.get())); };
    EXPECT_EQ(get(), "") << "the panel has none";
    set(panel.get(), String("Fotos für Ümit").get());
    EXPECT_EQ(get(), "Fotos für Ümit");
    set(panel.get(), nullptr);
    EXPECT_EQ(get(), "");
    EXPECT_FALSE(raised());
}

TEST_P(ProgressPanels, ADescriptionThatThePlatformRefusesRaisesAndIsEmpty) {
    const Ref panel = progress({});
    const auto set = harness::setterOf<void(REALobject, REALstring)>(kind().className, description);
    set(panel.get(), String("before").get());
    fake::raising = fake::everyMessage;
    set(panel.get(), String("after").get());
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(call<REALstring>(kind().className, description, panel.get()), nullptr);
    EXPECT_EQ(raised(), panelIsBroken);
    fake::raising.clear();
}

TEST_P(ProgressPanels, WithoutAPanelTheDescriptionIsEmptyAndSettingItDoesNothing) {
    const Ref panel = objectWith(kind().className, {});
    harness::setterOf<void(REALobject, REALstring)>(kind().className, description)(panel.get(),
                                                                                   String("x").get());
    EXPECT_EQ(call<REALstring>(kind().className, description, panel.get()), nullptr);
    EXPECT_FALSE(raised());
}

// ---- the end -------------------------------------------------------------------------------------------

TEST_P(ProgressPanels, TheDestructorRemovesTheDelegateAndReleasesThePanel) {
    const Ref panel = listening(WillBegin), begun = aJob();
    begin(panel, begun.get());
    const Id ours = objc::retained(delegate()), platformPanel = fake::shared;
    EXPECT_EQ(harness::references(panel.get()), 2u);
    EXPECT_EQ(harness::references(begun.get()), 2u);
    destroy(panel);
    EXPECT_EQ(objc::send<"delegate">(platformPanel), nullptr);
    EXPECT_EQ(retains(ours), 1u) << "the plug-in's reference is gone";
    EXPECT_EQ(retains(platformPanel), 1u);
    EXPECT_EQ(frame::held(panel.get()), nullptr);
    objc::release(ours);
    EXPECT_EQ(harness::references(panel.get()), 1u) << "the delegate dropped it at its own end";
    EXPECT_EQ(harness::references(begun.get()), 1u);
    destroy(panel); // an empty one has nothing to let go of
    EXPECT_EQ(retains(platformPanel), 1u);
    EXPECT_FALSE(raised());
}

TEST_P(ProgressPanels, TheDestructorReleasesAPanelThatHasNoDelegateAnyMore) {
    const Ref panel = progress({});
    const Id ours = delegate();
    objc::send<"setDelegate:", void>(fake::shared, Id{});
    fake::raising = "setDelegate:"; // which is not said again
    destroy(panel);
    EXPECT_FALSE(raised());
    EXPECT_EQ(retains(fake::shared), 1u);
    EXPECT_EQ(frame::held(panel.get()), nullptr);
    EXPECT_EQ(harness::references(panel.get()), 2u) << "whoever removed the delegate has it";
    objc::release(ours);
}

TEST_P(ProgressPanels, TheDestructorRunsNoPlatformStartUp) {
    const Ref panel = progress({});
    instances = nullptr;
    destroy(panel);
    EXPECT_EQ(frame::held(panel.get()), nullptr);
    EXPECT_EQ(instances, nullptr);
}

TEST_P(ProgressPanels, TheDestructorTakesNoPanelOutOfTheRegistry) {
    const Ref panel = progress({});
    destroy(panel);
    EXPECT_EQ(FindInstance(fake::shared), kind().ofBurn() ? nullptr : panel.get()) << "kept deliberately";
}

TEST_P(ProgressPanels, WhatThePlatformRaisesInTheDestructorBecomesAHostException) {
    const Ref panel = progress({});
    fake::raising = "delegate";
    destroy(panel);
    EXPECT_EQ(raised(), panelIsBroken);
    fake::raising.clear();
}

TEST_P(ProgressPanels, AnObjectOutlivesTheProgramsReferencesWhileThePanelHasItsDelegate) {
    Ref panel = progress({});
    panel = Ref();
    const auto living = harness::liveInstances();
    EXPECT_TRUE(std::ranges::any_of(living, [](const auto& one) {
        return one.first.starts_with("ProgramsPanel");
    })) << "kept deliberately";
    EXPECT_NE(delegate(), nullptr);
}

} // namespace
