// PanelsTest.cpp: the plug-in's side of setup and progress panels, with panels that show nothing.
#include "host/runtime/Class.hpp"
#include "host/runtime/Exceptions.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/FakePanels.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace {

using namespace test;
using host::Arguments, host::Value;
using objc::Id;

constexpr const char* couldBe = "DeviceCouldBeTarget(device As DRDeviceQRX) As Boolean";
constexpr const char* changed = "DeviceSelectionChanged(device As DRDeviceQRX)";
constexpr const char* reservations = "SetupPanelShouldHandleMediaReservations As Boolean";
constexpr const char* suitable =
    "DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean";
constexpr const char* best =
    "determineBestDevice(deviceA As DRDeviceQRX, deviceB As DRDeviceQRX) As DRDeviceQRX";

host::MemberSpec on(const char* declaration, host::Body body) {
    host::MemberSpec spec;
    spec.kind = host::MemberKind::Event;
    spec.declaration = host::parseDeclaration(declaration);
    spec.body = std::move(body);
    return spec;
}

bool responds(Id object, const char* selector) {
    return objc::send<"respondsToSelector:", objc::Boolean>(object, objc::sel_registerName(selector)) != 0;
}

std::string utf8(Id text) { return text ? objc::send<"UTF8String", const char*>(text) : "nil"; }

class Panels : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        fake::offerPanels();
    }
    // An object of a program's class with these handlers, its panel made.
    Ref panelWith(const char* className, std::vector<host::MemberSpec> handlers) {
        static int number = 0;
        const std::string name = "ProgramsPanel" + std::to_string(++number);
        host::defineClass({name, className, std::move(handlers), {}, {}});
        Ref panel = make(name.c_str());
        fake::newPanel(std::string(className).substr(0, std::string(className).size() - 3).c_str());
        call<void>(className, "Constructor", panel.get());
        return panel;
    }
    Ref setup(std::vector<host::MemberSpec> handlers) {
        return panelWith("DRBurnSetupPanelQRX", std::move(handlers));
    }
    Id delegate() { return objc::send<"delegate">(fake::shared); }
    Id aDevice() { return objc::send<"objectAtIndex:">(objc::sendClass<"DRDevice", "devices">(), 0ul); }
    objc::Boolean askSuitable(Id* prompt) {
        return objc::send<"setupPanel:deviceContainsSuitableMedia:promptString:", objc::Boolean>(
            delegate(), fake::shared, aDevice(), prompt);
    }
    OwnDrives drives;
};

// ---- setup panels ----------------------------------------------------------------------------------------

TEST_F(Panels, WithoutAnEventThereIsNoDelegate) {
    const Ref panel = setup({});
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_EQ(delegate(), nullptr);
}

TEST_F(Panels, ADelegateAnswersOnlyForWhatTheProgramImplements) {
    const Ref panel = setup({on(couldBe, [](REALobject, Arguments) { return Value(false); })});
    ASSERT_NE(delegate(), nullptr);
    EXPECT_STREQ(objc::class_getName(objc::send<"class", objc::Class>(delegate())),
                 "MyDRSetupPanelDelegateMethods");
    EXPECT_TRUE(responds(delegate(), "setupPanel:deviceCouldBeTarget:"));
    for (const char* other :
         {"setupPanelDeviceSelectionChanged:", "setupPanelShouldHandleMediaReservations:",
          "setupPanel:deviceContainsSuitableMedia:promptString:", "setupPanel:determineBestDeviceOfA:orB:"})
        EXPECT_FALSE(responds(delegate(), other)) << other;
    EXPECT_TRUE(responds(delegate(), "copyWithZone:"));
    EXPECT_FALSE(responds(delegate(), "noSuchSelector:"));
    EXPECT_EQ(
        (objc::send<"setupPanel:deviceCouldBeTarget:", objc::Boolean>(delegate(), fake::shared, aDevice())),
        0);
}

TEST_F(Panels, TheDefaultsHoldWhereTheHostObjectHasNoEvent) {
    const Ref panel = setup({on(changed, [](REALobject, Arguments) { return Value(); })});
    const Id device = aDevice();
    Id prompt = fake::shared;
    EXPECT_EQ(
        (objc::send<"setupPanel:deviceCouldBeTarget:", objc::Boolean>(delegate(), fake::shared, device)), 1);
    EXPECT_EQ(
        (objc::send<"setupPanelShouldHandleMediaReservations:", objc::Boolean>(delegate(), fake::shared)), 0);
    EXPECT_EQ(askSuitable(&prompt), 1);
    EXPECT_EQ(prompt, fake::shared); // not touched
    EXPECT_EQ((objc::send<"setupPanel:determineBestDeviceOfA:orB:">(delegate(), fake::shared, device, Id{})),
              device);
}

TEST_F(Panels, ADelegateWithoutAHostObjectDeniesNothingAndTakesTheDefaults) {
    const Ref panel = setup({on(couldBe, [](REALobject, Arguments) { return Value(false); })});
    REALobject& host = *objc::ivar<REALobject>(delegate(), "host");
    EXPECT_EQ(host, panel.get());
    const REALobject kept = std::exchange(host, nullptr);
    EXPECT_TRUE(responds(delegate(), "setupPanel:determineBestDeviceOfA:orB:"));
    EXPECT_EQ(
        (objc::send<"setupPanel:deviceCouldBeTarget:", objc::Boolean>(delegate(), fake::shared, aDevice())),
        1);
    host = kept;
}

TEST_F(Panels, SelectionChangesTellTheDeviceAndNilWhereThereIsNone) {
    std::vector<REALobject> seen;
    const Ref panel = setup({on(changed, [&](REALobject, Arguments arguments) {
        seen.push_back(arguments[0].isNil() ? nullptr : arguments[0].object());
        return Value();
    })});
    const Ref known = Ref::adopt(NewDRDeviceQRX(aDevice()));
    const Id key = objc::autoreleased(
        asObject(CFStringCreateWithCString(nullptr, "DRSetupPanelSelectedDeviceKey", kREALEncodingASCII)));
    const auto notify = [&](Id info) {
        const Id notification = objc::sendClass<"NSNotification", "notificationWithName:object:userInfo:">(
            key, fake::shared, info);
        objc::send<"setupPanelDeviceSelectionChanged:", void>(delegate(), notification);
    };
    notify(objc::sendClass<"NSDictionary", "dictionaryWithObject:forKey:">(aDevice(), key));
    notify(objc::sendClass<"NSDictionary", "dictionary">());
    notify(nullptr);
    objc::send<"setupPanelDeviceSelectionChanged:", void>(delegate(), Id{});
    EXPECT_EQ(seen, (std::vector<REALobject>{known.get(), nullptr, nullptr, nullptr}));
}

TEST_F(Panels, ThePromptIsWrittenBackChangedOrNotAndAnEmptyOneAsNil) {
    std::string next;
    std::string got;
    const Ref panel = setup({on(suitable, [&](REALobject, Arguments arguments) {
        got = arguments[1].toString().utf8();
        if (next != "as it is") arguments[1] = Value(String(next));
        return Value(next == "new");
    })});
    const Id before = NewNSString(String("old").get());
    Id prompt = before;
    next = "as it is";
    EXPECT_EQ(askSuitable(&prompt), 0);
    EXPECT_EQ(got, "old");
    EXPECT_EQ(utf8(prompt), "old");
    EXPECT_NE(prompt, before); // written all the same: a text of its own
    next = "new";
    EXPECT_EQ(askSuitable(&prompt), 1);
    EXPECT_EQ(utf8(prompt), "new");
    next = "";
    EXPECT_EQ(askSuitable(&prompt), 0);
    EXPECT_EQ(prompt, nullptr);
    EXPECT_EQ(askSuitable(&prompt), 0); // nil goes in as ""
    EXPECT_EQ(got, "");
    EXPECT_EQ(askSuitable(nullptr), 0);
}

TEST_F(Panels, TheBestDeviceIsWhatTheEventAnswersAndNilWhenItAnswersNil) {
    bool none = false;
    const Ref panel = setup({on(best, [&](REALobject, Arguments arguments) {
        EXPECT_TRUE(arguments[0].isNil());
        return none ? Value() : arguments[1];
    })});
    const Id device = aDevice();
    const auto ask = [&] {
        return objc::send<"setupPanel:determineBestDeviceOfA:orB:">(delegate(), fake::shared, Id{}, device);
    };
    EXPECT_EQ(ask(), device);
    none = true;
    EXPECT_EQ(ask(), nullptr);
    EXPECT_EQ(FindInstance(device), nullptr); // the wrappers of the calls are gone
}

TEST_F(Panels, ASecondConstructorCallStoresTheSharedPanelAgain) {
    const Ref panel = setup({});
    const auto before = objc::send<"retainCount", unsigned long>(fake::shared);
    call<void>("DRBurnSetupPanelQRX", "Constructor", panel.get());
    EXPECT_FALSE(raised());
    EXPECT_EQ(frame::held(panel.get()), fake::shared);
    EXPECT_EQ((objc::send<"retainCount", unsigned long>(fake::shared)), before + 1); // deliberately kept
}

TEST_F(Panels, ThePlaceholderConstructorMakesNoPanel) {
    const Ref panel = make("DRSetupPanelQRX");
    call<void>("DRSetupPanelQRX", "Constructor", panel.get());
    EXPECT_EQ(frame::held(panel.get()), nullptr);
}

TEST_F(Panels, ActionsAreSentByThePanelItself) {
    const Ref panel = setup({});
    fake::told.clear();
    for (const char* action : {"ok", "cancel", "eject", "open", "close"})
        call<void>("DRSetupPanelQRX", action, panel.get());
    for (const char* action :
         {"expand", "burnSpeed", "appendable", "completionAction", "testBurn", "verifyBurn"})
        call<void>("DRBurnSetupPanelQRX", action, panel.get());
    ASSERT_EQ(fake::told.size(), 11u);
    EXPECT_EQ(fake::told[0].message, "ok:");
    EXPECT_EQ(fake::told[4].message, "close:");
    EXPECT_EQ(fake::told[5].message, "expand:");
    EXPECT_EQ(fake::told[10].message, "verifyBurn:");
    for (const auto& one : fake::told)
        EXPECT_EQ(one.first, fake::shared) << one.message;
}

TEST_F(Panels, SettingsAndResultsCross) {
    const Ref panel = setup({});
    fake::told.clear();
    call<void>("DRBurnSetupPanelQRX", "setDefaultButtonTitle(title as string)", panel.get(),
               String("Go").get());
    EXPECT_EQ(utf8(fake::told.at(0).first), "Go");
    call<void>("DRBurnSetupPanelQRX", "setCanSelectTestBurn(flag as boolean)", panel.get(), REALboolean{1});
    call<void>("DRBurnSetupPanelQRX", "setCanSelectAppendableMedia(flag as boolean)", panel.get(),
               REALboolean{0});
    EXPECT_EQ(fake::told.at(1).message, "setCanSelectTestBurn:YES");
    EXPECT_EQ(fake::told.at(2).message, "setCanSelectAppendableMedia:NO");
    EXPECT_EQ(call<int32_t>("DRSetupPanelQRX", "runSetupPanel as integer", panel.get()), 1);
    EXPECT_EQ(call<REALobject>("DRBurnSetupPanelQRX", "burnObject as DRBurnQRX", panel.get()), nullptr);
    fake::answered = objc::sendClass<"DRBurn", "burnForDevice:">(aDevice());
    const Ref burn =
        Ref::adopt(call<REALobject>("DRBurnSetupPanelQRX", "burnObject as DRBurnQRX", panel.get()));
    EXPECT_EQ(frame::held(burn.get()), fake::answered);
    EXPECT_EQ(textOf(call<REALstring>("DRBurnSetupPanelQRX",
                                      "DRBurnSetupPanelDefaultButtonDefaultTitle as string")),
              "DRBurnSetupPanelDefaultButtonDefaultTitle");
}

TEST_F(Panels, WhatThePlatformRaisesBecomesAHostExceptionAndTheResultIsEmpty) {
    const Ref panel = setup({});
    fake::raises = true;
    EXPECT_EQ(call<int32_t>("DRSetupPanelQRX", "runSetupPanel as integer", panel.get()), 0);
    EXPECT_EQ(raised(), (Raised{"RuntimeException", "The panel is broken."}));
    call<void>("DRSetupPanelQRX", "ok", panel.get());
    EXPECT_TRUE(raised());
    call<void>("DRBurnSetupPanelQRX", "Constructor", panel.get());
    EXPECT_TRUE(raised());
    EXPECT_EQ(frame::held(panel.get()), nullptr); // none could be made
}

TEST_F(Panels, WithoutAPanelEveryMemberIsEmpty) {
    const Ref panel = make("DRBurnSetupPanelQRX");
    fake::shared = nullptr;
    call<void>("DRBurnSetupPanelQRX", "Constructor", panel.get());
    EXPECT_EQ(frame::held(panel.get()), nullptr);
    call<void>("DRSetupPanelQRX", "ok", panel.get());
    EXPECT_EQ(call<int32_t>("DRSetupPanelQRX", "runSetupPanel as integer", panel.get()), 0);
    EXPECT_EQ(call<REALobject>("DRBurnSetupPanelQRX", "burnObject as DRBurnQRX", panel.get()), nullptr);
    EXPECT_FALSE(raised());
}

TEST_F(Panels, TheDelegateKeepsItsHostObjectUntilTheDestructorRemovesIt) {
    const Ref panel = setup({on(couldBe, [](REALobject, Arguments) { return Value(true); })});
    EXPECT_EQ(harness::references(panel.get()), 2);
    const Id ours = delegate();
    EXPECT_EQ((objc::send<"copyWithZone:">(ours, static_cast<void*>(nullptr))), ours); // itself, retained
    objc::release(ours);
    const auto* record = harness::definition("DRSetupPanelQRX");
    record->destructor(panel.get());
    EXPECT_EQ(delegate(), nullptr);
    EXPECT_EQ(harness::references(panel.get()), 1);
    EXPECT_EQ(frame::held(panel.get()), fake::shared); // left to NSPanelQRX
    record->destructor(panel.get());                   // without a delegate nothing happens
}

TEST_F(Panels, EraseSetupPanelsGiveTheErase) {
    const Ref panel = panelWith("DREraseSetupPanelQRX", {});
    fake::answered = objc::autoreleased(objc::send<"initWithDevice:">(objc::alloc<"DRErase">(), aDevice()));
    const Ref erase =
        Ref::adopt(call<REALobject>("DREraseSetupPanelQRX", "eraseObject as DREraseQRX", panel.get()));
    EXPECT_EQ(frame::held(erase.get()), fake::answered);
}

// ---- progress panels -------------------------------------------------------------------------------------

constexpr const char* willBegin = "burnProgressPanelWillBegin";
constexpr const char* didFinish = "burnProgressPanelDidFinish";
constexpr const char* burnDidFinish = "burnProgressPanelBurnDidFinish(burn As DRBurnQRX) As Boolean";
constexpr const char* beginOne = "beginProgressPanelForBurn(burn as DRBurnQRX, track as DRTrackQRX)";
constexpr const char* beginMany = "beginProgressPanelForBurn(burn as DRBurnQRX, tracks() as DRTrackQRX)";
constexpr const char* beginImage =
    "beginProgressPanelForImageFile(burn as DRBurnQRX, file as string) as boolean";

class ProgressPanels : public Panels {
  protected:
    Ref progress(std::vector<host::MemberSpec> handlers) {
        Ref panel = panelWith("DRBurnProgressPanelQRX", std::move(handlers));
        fake::told.clear();
        return panel;
    }
    Ref aBurn() { return Ref::adopt(NewDRBurnQRX(objc::sendClass<"DRBurn", "burnForDevice:">(aDevice()))); }
    Ref aTrack() {
        return Ref::adopt(NewDRTrackQRX(objc::autoreleased(objc::send<"init">(objc::alloc<"DRTrack">()))));
    }
    objc::Boolean end(Id burn) {
        return objc::send<"burnProgressPanel:burnDidFinish:", objc::Boolean>(delegate(), fake::shared, burn);
    }
    REALobject job() { return *objc::ivar<REALobject>(delegate(), "job"); }
};

TEST_F(ProgressPanels, ADelegateIsInstalledWithOrWithoutEventsAndASecondConstructorCallRaises) {
    const Ref panel = progress({});
    EXPECT_STREQ(objc::class_getName(objc::send<"class", objc::Class>(delegate())),
                 "MyDRBurnProgressPanelDelegateMethods");
    EXPECT_EQ(FindInstance(fake::shared), nullptr); // deliberately not registered
    const Id first = frame::held(panel.get());
    call<void>("DRBurnProgressPanelQRX", "Constructor", panel.get());
    EXPECT_EQ(raised(), (Raised{"UnsupportedOperationException",
                                "Constructor called too often. Object is already initialized."}));
    EXPECT_EQ(frame::held(panel.get()), first);
}

TEST_F(ProgressPanels, OnlyImplementedEventsAreAnsweredFor) {
    int finished = 0;
    const Ref panel = progress({on(didFinish, [&](REALobject, Arguments) { return ++finished, Value(); })});
    EXPECT_TRUE(responds(delegate(), "burnProgressPanelDidFinish:"));
    EXPECT_FALSE(responds(delegate(), "burnProgressPanelWillBegin:"));
    EXPECT_FALSE(responds(delegate(), "burnProgressPanel:burnDidFinish:"));
    objc::send<"burnProgressPanelDidFinish:", void>(delegate(), Id{});
    objc::send<"burnProgressPanelWillBegin:", void>(delegate(), Id{});
    EXPECT_EQ(finished, 1);
}

TEST_F(ProgressPanels, WithoutEventsBeginningLeavesTheDelegateAloneAndTheEndIsAnsweredNo) {
    const Ref panel = progress({});
    const Ref burn = aBurn();
    const Ref track = aTrack();
    call<void>("DRBurnProgressPanelQRX", beginOne, panel.get(), burn.get(), track.get());
    ASSERT_EQ(fake::told.size(), 1u);
    EXPECT_EQ(fake::told[0].first, frame::held(burn.get()));
    EXPECT_EQ(fake::told[0].second, frame::held(track.get()));
    EXPECT_EQ(job(), nullptr);
    EXPECT_EQ(end(frame::held(burn.get())), 0);
}

TEST_F(ProgressPanels, TheEndGetsTheVeryBurnThatWasBegun) {
    REALobject seen = nullptr;
    const Ref panel = progress({on(burnDidFinish, [&](REALobject, Arguments arguments) {
        seen = arguments[0].object();
        return Value(true);
    })});
    const Ref burn = aBurn(), next = aBurn(), track = aTrack();
    call<void>("DRBurnProgressPanelQRX", beginOne, panel.get(), burn.get(), track.get());
    EXPECT_EQ(harness::references(burn.get()), 2);
    EXPECT_EQ(end(frame::held(next.get())), 1); // whatever the platform passes
    EXPECT_EQ(seen, burn.get());
    call<void>("DRBurnProgressPanelQRX", beginOne, panel.get(), next.get(), track.get());
    EXPECT_EQ(harness::references(burn.get()), 1);
    EXPECT_EQ(job(), next.get());
}

TEST_F(ProgressPanels, OneTrackNeedsABurnAndAnArrayDoesNot) {
    const Ref panel = progress({on(willBegin, [](REALobject, Arguments) { return Value(); })});
    const Ref empty = make("DRBurnQRX"), track = aTrack();
    call<void>("DRBurnProgressPanelQRX", beginOne, panel.get(), empty.get(), track.get());
    call<void>("DRBurnProgressPanelQRX", beginOne, panel.get(), static_cast<REALobject>(nullptr),
               track.get());
    EXPECT_TRUE(fake::told.empty());
    const REALarray tracks = REALCreateArrayObject(-1);
    REALInsertArrayValueObject(tracks, 0, track.get());
    call<void>("DRBurnProgressPanelQRX", beginMany, panel.get(), empty.get(), tracks);
    ASSERT_EQ(fake::told.size(), 1u);
    EXPECT_EQ(fake::told[0].first, nullptr);
    EXPECT_EQ((objc::send<"count", unsigned long>(fake::told[0].second)), 1u);
    EXPECT_EQ(job(), empty.get()); // as it was passed
    REALUnlockObject(reinterpret_cast<REALobject>(tracks));
}

TEST_F(ProgressPanels, SheetsGetTheWindowAndNilForNone) {
    const Ref panel = progress({});
    const Ref burn = aBurn(), track = aTrack(), window = make("NSWindowQRX");
    frame::slot(window.get()) = fake::shared;
    constexpr const char* sheet =
        "beginProgressSheetForBurn(burn as DRBurnQRX, track as DRTrackQRX, docWindow as NSWindowQRX)";
    call<void>("DRBurnProgressPanelQRX", sheet, panel.get(), burn.get(), track.get(), window.get());
    call<void>("DRBurnProgressPanelQRX", sheet, panel.get(), burn.get(), track.get(),
               static_cast<REALobject>(nullptr));
    ASSERT_EQ(fake::told.size(), 2u);
    EXPECT_EQ(fake::told[0].message, "beginProgressSheetForBurn:layout:modalForWindow:");
    EXPECT_EQ(fake::told[0].third, fake::shared);
    EXPECT_EQ(fake::told[1].third, nullptr);
    frame::slot(window.get()) = nullptr;
}

TEST_F(ProgressPanels, ImageFilesThatAreNoneBeginNothing) {
    fake::addClassMethod<"layoutForImageFile:", fake::layoutFor>("DRBurn");
    const Ref panel = progress({});
    const Ref burn = aBurn(), empty = make("DRBurnQRX");
    const auto begin = [&](const Ref& of, REALstring path) {
        return call<REALboolean>("DRBurnProgressPanelQRX", beginImage, panel.get(), of.get(), path) != 0;
    };
    // Replaced only where the platform's own is not there yet; it says no to what is no image.
    EXPECT_FALSE(begin(burn, String("/no/such/image").get()));
    EXPECT_FALSE(begin(burn, nullptr));
    EXPECT_FALSE(begin(empty, String("/no/such/image").get()));
    for (const auto& one : fake::told)
        EXPECT_EQ(one.message.find("begin"), std::string::npos) << one.message;
    EXPECT_EQ(
        call<REALboolean>("DRBurnProgressPanelQRX",
                          "beginProgressPanelForImageFile(burn as DRBurnQRX, file as folderitem) as boolean",
                          panel.get(), burn.get(), static_cast<REALfolderItem>(nullptr)),
        0);
}

TEST_F(ProgressPanels, DescriptionsCrossAndStopIsSentByThePanel) {
    const Ref panel = progress({});
    harness::setterOf<void(REALobject, REALstring)>("DRBurnProgressPanelQRX", "Description as string")(
        panel.get(), String("My photos").get());
    EXPECT_EQ(textOf(call<REALstring>("DRBurnProgressPanelQRX", "Description as string", panel.get())),
              "My photos");
    call<void>("DRBurnProgressPanelQRX", "stopBurn", panel.get());
    EXPECT_EQ(fake::told.back().message, "stopBurn:");
    EXPECT_EQ(fake::told.back().first, fake::shared);
    for (const char* name :
         {"DRBurnProgressPanelDidFinishNotification", "DRBurnProgressPanelWillBeginNotification"})
        EXPECT_EQ(
            textOf(call<REALstring>("DRBurnProgressPanelQRX", (std::string(name) + " as string").c_str())),
            name);
}

TEST_F(ProgressPanels, TheDestructorRemovesTheDelegateAndReleasesThePanel) {
    const Ref panel = progress({on(willBegin, [](REALobject, Arguments) { return Value(); })});
    const Ref burn = aBurn(), track = aTrack();
    call<void>("DRBurnProgressPanelQRX", beginOne, panel.get(), burn.get(), track.get());
    const auto before = objc::send<"retainCount", unsigned long>(fake::shared);
    EXPECT_EQ(harness::references(panel.get()), 2);
    harness::definition("DRBurnProgressPanelQRX")->destructor(panel.get());
    EXPECT_EQ(harness::references(panel.get()), 1);
    EXPECT_EQ(harness::references(burn.get()), 1);
    EXPECT_EQ(delegate(), nullptr);
    EXPECT_EQ((objc::send<"retainCount", unsigned long>(fake::shared)), before - 1);
    EXPECT_EQ(frame::held(panel.get()), nullptr);
}

TEST_F(ProgressPanels, TheErasePanelIsRegisteredAndStaysSo) {
    REALobject seen = nullptr;
    const Ref panel = panelWith(
        "DREraseProgressPanelQRX",
        {on("eraseProgressPanelEraseDidFinish(erase As DREraseQRX) As Boolean",
            [&](REALobject, Arguments arguments) { return seen = arguments[0].object(), Value(true); })});
    fake::told.clear();
    EXPECT_EQ(FindInstance(fake::shared), panel.get());
    const Ref empty = make("DREraseQRX");
    call<void>("DREraseProgressPanelQRX", "beginProgressPanelForErase(erase as DREraseQRX)", panel.get(),
               empty.get());
    ASSERT_EQ(fake::told.size(), 1u);
    EXPECT_EQ(fake::told[0].first, nullptr); // not checked, deliberately
    EXPECT_EQ(
        (objc::send<"eraseProgressPanel:eraseDidFinish:", objc::Boolean>(delegate(), fake::shared, Id{})), 1);
    EXPECT_EQ(seen, empty.get());
    const Id platformPanel = fake::shared;
    harness::definition("DREraseProgressPanelQRX")->destructor(panel.get());
    EXPECT_EQ(FindInstance(platformPanel), panel.get()); // kept deliberately
}

TEST_F(ProgressPanels, WithoutAPanelNothingBegins) {
    const Ref panel = make("DRBurnProgressPanelQRX");
    const Ref burn = aBurn(), track = aTrack();
    fake::told.clear();
    call<void>("DRBurnProgressPanelQRX", beginOne, panel.get(), burn.get(), track.get());
    call<void>("DRBurnProgressPanelQRX", "stopBurn", panel.get());
    EXPECT_EQ(call<REALboolean>("DRBurnProgressPanelQRX", beginImage, panel.get(), burn.get(), nullptr), 0);
    EXPECT_TRUE(fake::told.empty());
    EXPECT_FALSE(raised());
}

} // namespace
