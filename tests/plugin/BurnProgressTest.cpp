// BurnProgressTest.cpp: what is the burn's alone about its progress panel: tracks, sheets, status texts and the stop.
#include "tests/plugin/PanelTest.hpp"

namespace {

using namespace test;

constexpr const char* className = "DRBurnProgressPanelQRX";
constexpr const char* sheetOfOne =
    "beginProgressSheetForBurn(burn as DRBurnQRX, track as DRTrackQRX, docWindow as NSWindowQRX)";
constexpr const char* sheetOfMany =
    "beginProgressSheetForBurn(burn as DRBurnQRX, tracks() as DRTrackQRX, docWindow as NSWindowQRX)";
constexpr const char* panelOfOne = "beginProgressPanelForBurn(burn as DRBurnQRX, track as DRTrackQRX)";
constexpr const char* panelOfMany = "beginProgressPanelForBurn(burn as DRBurnQRX, tracks() as DRTrackQRX)";
constexpr const char* sheetMessage = "beginProgressSheetForBurn:layout:modalForWindow:";
constexpr const char* panelMessage = "beginProgressPanelForBurn:layout:";
constexpr const char* verbose = "VerboseProgressStatus as boolean";

class BurnProgress : public PanelTest {
  protected:
    void SetUp() override {
        PanelTest::SetUp();
        window = make("NSWindowQRX");
        frame::slot(window.get()) = platformWindow = objc::sendClass<"NSArray", "array">();
    }
    void TearDown() override { frame::slot(window.get()) = nullptr; }

    // One whose delegate remembers what was begun.
    Ref listening() {
        return panelWith(className,
                         {on("burnProgressPanelWillBegin", [](REALobject, Arguments) { return Value(); })});
    }
    void beginSheet(const Ref& panel, REALobject burn, REALobject track, REALobject of) {
        call<void>(className, sheetOfOne, panel.get(), burn, track, of);
    }
    void beginSheet(const Ref& panel, REALobject burn, const Ref& tracks, REALobject of) {
        call<void>(className, sheetOfMany, panel.get(), burn, reinterpret_cast<REALarray>(tracks.get()), of);
    }
    void beginPanel(const Ref& panel, REALobject burn, REALobject track) {
        call<void>(className, panelOfOne, panel.get(), burn, track);
    }
    void beginPanel(const Ref& panel, REALobject burn, const Ref& tracks) {
        call<void>(className, panelOfMany, panel.get(), burn, reinterpret_cast<REALarray>(tracks.get()));
    }
    static std::vector<Id> elements(Id array) {
        std::vector<Id> found;
        for (unsigned long i = 0; i < objc::send<"count", unsigned long>(array); ++i)
            found.push_back(objc::send<"objectAtIndex:">(array, i));
        return found;
    }

    Ref window;
    Id platformWindow = nullptr;
};

// ---- one track -----------------------------------------------------------------------------------------

TEST_F(BurnProgress, OneTrackIsTheLayoutItself) {
    const Ref panel = listening(), burn = aBurn(), track = aTrack();
    beginPanel(panel, burn.get(), track.get());
    beginSheet(panel, burn.get(), track.get(), window.get());
    ASSERT_EQ(fake::told.size(), 2u);
    EXPECT_EQ(fake::told[0].message, panelMessage);
    EXPECT_EQ(fake::told[1].message, sheetMessage);
    for (const auto& one : fake::told) {
        EXPECT_EQ(one.first, frame::held(burn.get())) << one.message;
        EXPECT_EQ(one.second, frame::held(track.get())) << one.message;
    }
    EXPECT_EQ(job(), burn.get());
}

TEST_F(BurnProgress, ASheetGetsTheWindowAndNilForNone) {
    const Ref panel = listening(), burn = aBurn(), track = aTrack(), tracks = arrayOf({track.get()});
    const Ref empty = make("NSWindowQRX");
    for (const REALobject of : {window.get(), empty.get(), REALobject{nullptr}}) {
        beginSheet(panel, burn.get(), track.get(), of);
        EXPECT_EQ(fake::told.back().third, of == window.get() ? platformWindow : nullptr);
        beginSheet(panel, burn.get(), tracks, of);
        EXPECT_EQ(fake::told.back().third, of == window.get() ? platformWindow : nullptr);
    }
    EXPECT_EQ(timesTold(sheetMessage), 6);
}

TEST_F(BurnProgress, ANilTrackIsThePlatformsToRefuse) {
    const Ref panel = listening(), burn = aBurn(), empty = make("DRTrackQRX");
    for (const REALobject track : {empty.get(), REALobject{nullptr}}) {
        beginPanel(panel, burn.get(), track);
        beginSheet(panel, burn.get(), track, window.get());
    }
    ASSERT_EQ(fake::told.size(), 4u);
    for (const auto& one : fake::told)
        EXPECT_EQ(one.second, nullptr) << one.message;
}

TEST_F(BurnProgress, WithOneTrackABurnWithoutAPlatformBurnDoesNothing) {
    const Ref panel = listening(), empty = make("DRBurnQRX"), track = aTrack();
    for (const REALobject burn : {empty.get(), REALobject{nullptr}}) {
        beginPanel(panel, burn, track.get());
        beginSheet(panel, burn, track.get(), window.get());
    }
    EXPECT_TRUE(fake::told.empty());
    EXPECT_EQ(job(), nullptr);
    EXPECT_FALSE(raised());
}

// ---- several tracks ------------------------------------------------------------------------------------

TEST_F(BurnProgress, SeveralTracksAreALayoutInTheirOrder) {
    const Ref panel = listening(), burn = aBurn(), one = aTrack(), two = aTrack(), empty = make("DRTrackQRX");
    const Ref tracks = arrayOf({one.get(), nullptr, two.get(), empty.get()});
    beginPanel(panel, burn.get(), tracks);
    beginSheet(panel, burn.get(), tracks, window.get());
    ASSERT_EQ(fake::told.size(), 2u);
    EXPECT_EQ(fake::told[0].message, panelMessage);
    EXPECT_EQ(fake::told[1].message, sheetMessage);
    for (const auto& told : fake::told) {
        EXPECT_EQ(told.first, frame::held(burn.get())) << told.message;
        EXPECT_EQ(elements(told.second), (std::vector<Id>{frame::held(one.get()), frame::held(two.get())}));
    }
    EXPECT_EQ(job(), burn.get());
}

TEST_F(BurnProgress, WithSeveralTracksABurnWithoutAPlatformBurnIsThePlatformsToRefuse) {
    const Ref empty = make("DRBurnQRX"), track = aTrack(), tracks = arrayOf({track.get()});
    for (const REALobject burn : {empty.get(), REALobject{nullptr}}) {
        const Ref panel = listening();
        beginPanel(panel, burn, tracks);
        ASSERT_EQ(fake::told.size(), 1u);
        EXPECT_EQ(job(), burn) << "as it was passed";
        beginSheet(panel, burn, tracks, window.get());
        ASSERT_EQ(fake::told.size(), 2u);
        for (const auto& told : fake::told) {
            EXPECT_EQ(told.first, nullptr) << told.message;
            EXPECT_EQ(elements(told.second), std::vector<Id>{frame::held(track.get())}) << told.message;
        }
    }
    EXPECT_EQ(harness::references(empty.get()), 2u) << "the first panel's delegate has it";
    EXPECT_FALSE(raised());
}

TEST_F(BurnProgress, ANilBurnTakesThePlaceOfTheOneBefore) {
    const Ref panel = listening(), burn = aBurn(), tracks = arrayOf({});
    beginPanel(panel, burn.get(), tracks);
    EXPECT_EQ(harness::references(burn.get()), 2u);
    beginPanel(panel, nullptr, tracks);
    EXPECT_EQ(job(), nullptr);
    EXPECT_EQ(harness::references(burn.get()), 1u);
}

TEST_F(BurnProgress, NoTracksAreAnEmptyLayoutAndNoArrayIsNone) {
    const Ref panel = listening(), burn = aBurn();
    beginPanel(panel, burn.get(), arrayOf({}));
    ASSERT_NE(fake::told.back().second, nullptr);
    EXPECT_EQ(elements(fake::told.back().second), std::vector<Id>{});
    beginPanel(panel, burn.get(), Ref());
    EXPECT_EQ(fake::told.back().second, nullptr);
    EXPECT_EQ(fake::told.size(), 2u);
}

// ---- the other members ---------------------------------------------------------------------------------

TEST_F(BurnProgress, WithoutAPanelNothingHappens) {
    const Ref panel = objectWith(className, {}), burn = aBurn(), track = aTrack();
    const Ref tracks = arrayOf({track.get()});
    beginPanel(panel, burn.get(), track.get());
    beginPanel(panel, burn.get(), tracks);
    beginSheet(panel, burn.get(), track.get(), window.get());
    beginSheet(panel, burn.get(), tracks, window.get());
    call<void>(className, "stopBurn", panel.get());
    harness::setterOf<void(REALobject, REALboolean)>(className, verbose)(panel.get(), REALboolean{1});
    EXPECT_EQ(call<REALboolean>(className, verbose, panel.get()), 0);
    EXPECT_TRUE(fake::told.empty());
    EXPECT_FALSE(raised());
}

TEST_F(BurnProgress, WhatThePlatformRaisesBecomesAHostException) {
    const Ref panel = listening(), burn = aBurn(), track = aTrack(), tracks = arrayOf({track.get()});
    const auto setVerbose = harness::setterOf<void(REALobject, REALboolean)>(className, verbose);
    setVerbose(panel.get(), REALboolean{1});
    fake::raising = panelMessage;
    beginPanel(panel, burn.get(), track.get());
    EXPECT_EQ(raised(), panelIsBroken);
    beginPanel(panel, burn.get(), tracks);
    EXPECT_EQ(raised(), panelIsBroken);
    fake::raising = sheetMessage;
    beginSheet(panel, burn.get(), track.get(), window.get());
    EXPECT_EQ(raised(), panelIsBroken);
    beginSheet(panel, burn.get(), tracks, window.get());
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_TRUE(fake::told.empty());
    fake::raising = fake::everyMessage;
    call<void>(className, "stopBurn", panel.get());
    EXPECT_EQ(raised(), panelIsBroken);
    setVerbose(panel.get(), REALboolean{0});
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_EQ(call<REALboolean>(className, verbose, panel.get()), 0) << "empty, though it is set";
    EXPECT_EQ(raised(), panelIsBroken);
    fake::raising.clear();
}

TEST_F(BurnProgress, VerboseStatusIsReadAndSet) {
    const Ref panel = listening();
    for (const bool wanted : {true, false}) {
        harness::setterOf<void(REALobject, REALboolean)>(className, verbose)(panel.get(),
                                                                             REALboolean{wanted});
        EXPECT_EQ((objc::send<"verboseProgressStatus", objc::Boolean>(fake::shared)), wanted);
        EXPECT_EQ(call<REALboolean>(className, verbose, panel.get()), wanted);
    }
}

TEST_F(BurnProgress, TheStopIsSentByThePanelItself) {
    const Ref panel = listening();
    call<void>(className, "stopBurn", panel.get());
    ASSERT_EQ(fake::told.size(), 1u);
    EXPECT_EQ(fake::told[0].message, "stopBurn:");
    EXPECT_EQ(fake::told[0].first, fake::shared);
}

TEST_F(BurnProgress, TheNotificationsNamesAreReadWithoutAnyObject) {
    for (const std::string name :
         {"DRBurnProgressPanelDidFinishNotification", "DRBurnProgressPanelWillBeginNotification"})
        EXPECT_EQ(textOf(call<REALstring>(className, (name + " as string").c_str())), name);
}

} // namespace
