// BurnImagesTest.cpp: image files under the burn's progress panel: whose layout they have, and when nothing begins.
#include "host/runtime/FolderItem.hpp"
#include "tests/plugin/PanelTest.hpp"

namespace {

using namespace test;

constexpr const char* className = "DRBurnProgressPanelQRX";
constexpr const char* panelMessage = "beginProgressPanelForBurn:layout:";
constexpr const char* sheetMessage = "beginProgressSheetForBurn:layout:modalForWindow:";

// The four forms: as a sheet or not, of a folder item or of a path.
struct Form {
    const char* declaration;
    bool sheet, item;
};
constexpr Form forms[] = {
    {"beginProgressSheetForImageFile(burn as DRBurnQRX, file as folderitem, docWindow as NSWindowQRX) as "
     "boolean",
     true, true},
    {"beginProgressSheetForImageFile(burn as DRBurnQRX, file as string, docWindow as NSWindowQRX) as boolean",
     true, false},
    {"beginProgressPanelForImageFile(burn as DRBurnQRX, file as folderitem) as boolean", false, true},
    {"beginProgressPanelForImageFile(burn as DRBurnQRX, file as string) as boolean", false, false}};

class BurnImages : public PanelTest {
  protected:
    void SetUp() override {
        PanelTest::SetUp();
        writeFile(drives.scratch / "image.iso", "what is in it is the platform's to judge");
        window = make("NSWindowQRX");
        frame::slot(window.get()) = platformWindow = objc::sendClass<"NSArray", "array">();
    }
    void TearDown() override { frame::slot(window.get()) = nullptr; }

    Ref panelOf(std::vector<host::MemberSpec> handlers = {}) {
        return panelWith(className, std::move(handlers));
    }
    Ref listening() {
        return panelOf({on("burnProgressPanelWillBegin", [](REALobject, Arguments) { return Value(); })});
    }

    bool begin(const Form& form, const Ref& panel, REALobject burn, REALobject file) {
        const auto pass = [&](auto argument) {
            if (form.sheet)
                return call<REALboolean>(className, form.declaration, panel.get(), burn, argument,
                                         window.get());
            return call<REALboolean>(className, form.declaration, panel.get(), burn, argument);
        };
        return (form.item ? pass(file) : pass(reinterpret_cast<REALstring>(file))) != 0;
    }
    // With a file by its path.
    bool begin(const Form& form, const Ref& panel, REALobject burn, const std::string& path) {
        const Ref item = host::newFolderItem(path);
        const String text(path);
        return begin(form, panel, burn, form.item ? item.get() : reinterpret_cast<REALobject>(text.get()));
    }
    std::string image() { return drives.scratch / "image.iso"; }

    Ref window;
    Id platformWindow = nullptr;
};

TEST_F(BurnImages, ABurnBeginsWithThePlatformsLayoutOfTheFileAndTheAnswerIsTrue) {
    fake::offerLayouts();
    fake::layout = aDevice(); // whatever it is, it is handed over
    const Ref panel = listening(), burn = aBurn();
    for (const Form& form : forms) {
        fake::told.clear();
        EXPECT_TRUE(begin(form, panel, burn.get(), image())) << form.declaration;
        ASSERT_EQ(fake::told.size(), 2u) << form.declaration;
        EXPECT_EQ(fake::told[0].message, "layoutForImageFile:");
        EXPECT_EQ(text(fake::told[0].first), image()) << form.declaration;
        EXPECT_EQ(fake::told[1].message, form.sheet ? sheetMessage : panelMessage);
        EXPECT_EQ(fake::told[1].first, frame::held(burn.get())) << form.declaration;
        EXPECT_EQ(fake::told[1].second, fake::layout) << form.declaration;
        EXPECT_EQ(fake::told[1].third, form.sheet ? platformWindow : nullptr) << form.declaration;
        EXPECT_EQ(job(), burn.get()) << form.declaration;
    }
    EXPECT_FALSE(raised());
}

TEST_F(BurnImages, APathIsHandedOverAsItStands) {
    fake::offerLayouts();
    fake::layout = aDevice();
    const Ref panel = panelOf(), burn = aBurn();
    for (const Form& form : forms) {
        if (form.item) continue;
        for (const char* path : {"./not absolute.iso", "~/Ümlaut ♫.iso", "/a//b/../c.iso"}) {
            fake::told.clear();
            const String given(path);
            EXPECT_TRUE(begin(form, panel, burn.get(), reinterpret_cast<REALobject>(given.get()))) << path;
            EXPECT_EQ(text(fake::told.at(0).first), path) << form.declaration;
        }
    }
}

TEST_F(BurnImages, AFileThatThePlatformCanNotReadAsAnImageAnswersFalseAndShowsNothing) {
    const Ref panel = listening(), burn = aBurn();
    writeFile(drives.scratch / "no image.iso", "this is no image");
    for (const Form& form : forms)
        for (const char* name : {"no image.iso", "not there.iso", "drives"})
            EXPECT_FALSE(begin(form, panel, burn.get(), drives.scratch / name)) << form.declaration << name;
    EXPECT_TRUE(fake::told.empty());
    EXPECT_EQ(job(), nullptr) << "nothing was begun";
    EXPECT_FALSE(raised());
}

TEST_F(BurnImages, WithoutALayoutTheAnswerIsFalse) {
    fake::offerLayouts();
    const Ref panel = listening(), burn = aBurn();
    for (const Form& form : forms)
        EXPECT_FALSE(begin(form, panel, burn.get(), image())) << form.declaration;
    EXPECT_EQ(timesTold("layoutForImageFile:"), 4);
    EXPECT_EQ(timesTold("begin"), 0);
    EXPECT_EQ(job(), nullptr);
}

TEST_F(BurnImages, WithoutAPathThePlatformIsNotAsked) {
    fake::offerLayouts();
    fake::layout = aDevice();
    const Ref panel = listening(), burn = aBurn();
    for (const Form& form : forms)
        EXPECT_FALSE(begin(form, panel, burn.get(), REALobject{nullptr})) << form.declaration;
    EXPECT_TRUE(fake::told.empty());
    EXPECT_FALSE(raised());
}

TEST_F(BurnImages, ABurnWithoutAPlatformBurnAnswersFalseAlsoWithALayout) {
    fake::offerLayouts();
    fake::layout = aDevice();
    const Ref panel = listening(), empty = make("DRBurnQRX");
    for (const Form& form : forms)
        for (const REALobject burn : {empty.get(), REALobject{nullptr}})
            EXPECT_FALSE(begin(form, panel, burn, image())) << form.declaration;
    EXPECT_EQ(timesTold("begin"), 0);
    EXPECT_EQ(job(), nullptr);
    EXPECT_FALSE(raised());
}

TEST_F(BurnImages, WithoutAPanelTheAnswerIsFalseAlsoWithALayout) {
    fake::offerLayouts();
    fake::layout = aDevice();
    const Ref panel = objectWith(className, {}), burn = aBurn();
    for (const Form& form : forms)
        EXPECT_FALSE(begin(form, panel, burn.get(), image())) << form.declaration;
    EXPECT_EQ(timesTold("begin"), 0);
    EXPECT_FALSE(raised());
}

TEST_F(BurnImages, TheLayoutIsAskedForFirstAlsoWhereNothingCanBegin) {
    fake::offerLayouts();
    fake::raising = "layoutForImageFile:";
    const Ref panel = objectWith(className, {}), constructed = listening(), burn = aBurn();
    const Ref empty = make("DRBurnQRX");
    for (const Form& form : forms) {
        fake::told.clear();
        EXPECT_FALSE(begin(form, panel, burn.get(), image())) << form.declaration;
        EXPECT_EQ(raised(), panelIsBroken) << "without a panel: " << form.declaration;
        EXPECT_FALSE(begin(form, constructed, empty.get(), image())) << form.declaration;
        EXPECT_EQ(raised(), panelIsBroken) << "without a burn: " << form.declaration;
        EXPECT_EQ(timesTold("layoutForImageFile:"), 2) << form.declaration;
    }
}

TEST_F(BurnImages, WhatThePlatformRaisesAgainstTheFileMakesItFalse) {
    fake::offerLayouts();
    fake::raising = "layoutForImageFile:";
    const Ref panel = listening(), burn = aBurn();
    for (const Form& form : forms) {
        EXPECT_FALSE(begin(form, panel, burn.get(), image())) << form.declaration;
        EXPECT_EQ(raised(), panelIsBroken) << form.declaration;
    }
    EXPECT_EQ(timesTold("begin"), 0);
    EXPECT_EQ(job(), nullptr);
}

TEST_F(BurnImages, WhatThePanelRaisesMakesItFalseAndTheBurnIsRemembered) {
    fake::offerLayouts();
    fake::layout = aDevice();
    for (const Form& form : forms) {
        const Ref panel = listening(), burn = aBurn();
        fake::raising = form.sheet ? sheetMessage : panelMessage;
        EXPECT_FALSE(begin(form, panel, burn.get(), image())) << form.declaration;
        EXPECT_EQ(raised(), panelIsBroken) << form.declaration;
        EXPECT_EQ(job(), burn.get()) << "it was stored before the panel was told: " << form.declaration;
    }
}

} // namespace
