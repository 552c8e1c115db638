// EraseProgressTest.cpp: what is the erase's alone about its progress panel: its two beginnings and its names.
#include "tests/plugin/PanelTest.hpp"

namespace {

using namespace test;

constexpr const char* className = "DREraseProgressPanelQRX";
constexpr const char* asPanel = "beginProgressPanelForErase(erase as DREraseQRX)";
constexpr const char* asSheet = "beginProgressSheetForErase(erase as DREraseQRX, docWindow as NSWindowQRX)";
constexpr const char* panelMessage = "beginProgressPanelForErase:";
constexpr const char* sheetMessage = "beginProgressSheetForErase:modalForWindow:";

class EraseProgress : public PanelTest {
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
                         {on("eraseProgressPanelDidFinish", [](REALobject, Arguments) { return Value(); })});
    }
    void beginPanel(const Ref& panel, REALobject erase) {
        call<void>(className, asPanel, panel.get(), erase);
    }
    void beginSheet(const Ref& panel, REALobject erase, REALobject of) {
        call<void>(className, asSheet, panel.get(), erase, of);
    }

    Ref window;
    Id platformWindow = nullptr;
};

TEST_F(EraseProgress, APanelBeginsWithTheErase) {
    const Ref panel = listening(), erase = anErase();
    beginPanel(panel, erase.get());
    ASSERT_EQ(fake::told.size(), 1u);
    EXPECT_EQ(fake::told[0].message, panelMessage);
    EXPECT_EQ(fake::told[0].first, frame::held(erase.get()));
    EXPECT_EQ(job(), erase.get());
}

TEST_F(EraseProgress, ASheetBeginsWithTheEraseAndTheWindowAndNilForNone) {
    const Ref panel = listening(), erase = anErase(), empty = make("NSWindowQRX");
    for (const REALobject of : {window.get(), empty.get(), REALobject{nullptr}}) {
        beginSheet(panel, erase.get(), of);
        EXPECT_EQ(fake::told.back().message, sheetMessage);
        EXPECT_EQ(fake::told.back().first, frame::held(erase.get()));
        EXPECT_EQ(fake::told.back().second, of == window.get() ? platformWindow : nullptr);
        EXPECT_EQ(job(), erase.get());
    }
    EXPECT_EQ(fake::told.size(), 3u);
}

TEST_F(EraseProgress, AnEraseWithoutAPlatformEraseIsThePlatformsToRefuse) {
    const Ref empty = make("DREraseQRX");
    for (const REALobject erase : {empty.get(), REALobject{nullptr}}) {
        const Ref panel = listening();
        beginPanel(panel, erase);
        beginSheet(panel, erase, window.get());
        ASSERT_EQ(fake::told.size(), 2u) << "not asked about, deliberately";
        EXPECT_EQ(fake::told[0].first, nullptr);
        EXPECT_EQ(fake::told[1].first, nullptr);
        EXPECT_EQ(fake::told[1].second, platformWindow);
        EXPECT_EQ(job(), erase) << "as it was passed";
    }
    EXPECT_FALSE(raised());
}

TEST_F(EraseProgress, ANilEraseTakesThePlaceOfTheOneBefore) {
    const Ref panel = listening(), erase = anErase();
    beginPanel(panel, erase.get());
    EXPECT_EQ(harness::references(erase.get()), 2u);
    beginSheet(panel, nullptr, window.get());
    EXPECT_EQ(job(), nullptr);
    EXPECT_EQ(harness::references(erase.get()), 1u);
}

TEST_F(EraseProgress, WithoutAPanelNothingBegins) {
    const Ref panel = objectWith(className, {}), erase = anErase();
    beginPanel(panel, erase.get());
    beginSheet(panel, erase.get(), window.get());
    EXPECT_TRUE(fake::told.empty());
    EXPECT_FALSE(raised());
}

TEST_F(EraseProgress, WhatThePlatformRaisesBecomesAHostException) {
    const Ref panel = listening(), erase = anErase();
    fake::raising = panelMessage;
    beginPanel(panel, erase.get());
    EXPECT_EQ(raised(), panelIsBroken);
    fake::raising = sheetMessage;
    beginSheet(panel, erase.get(), window.get());
    EXPECT_EQ(raised(), panelIsBroken);
    EXPECT_TRUE(fake::told.empty());
}

TEST_F(EraseProgress, TheNotificationsNamesAreReadWithoutAnyObject) {
    for (const std::string name :
         {"DREraseProgressPanelWillBeginNotification", "DREraseProgressPanelDidFinishNotification"})
        EXPECT_EQ(textOf(call<REALstring>(className, (name + " as string").c_str())), name);
}

} // namespace
