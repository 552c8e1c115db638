// WindowTest.cpp: windows and panels, with a window that only remembers what it was told, and with none.
#include "plugin/objc/Encoding.hpp"
#include "tests/companion/CompanionTest.hpp"

namespace {

using namespace test;

using Number = std::conditional_t<sizeof(void*) == 8, double, float>;
struct Rect {
    Number x, y, width, height;
    bool operator==(const Rect&) const = default;
};

// What the one window of the test was told.
struct Told {
    Rect frame{};
    Id title = nullptr;
    bool visible = false;
    bool releasedWhenClosed = true;
    bool raises = false;
    Id window = nullptr;
    bool ownedWhenFramed = false; // by the host object, when the frame was set
};
Told told;
bool refusesTitles = false;

void raiseWindowException(const char* reason) {
    objc::send<"raise", void>(objc::sendClass<"NSException", "exceptionWithName:reason:userInfo:">(
        nsString("WindowException"), nsString(reason), Id(nullptr)));
}

Id initWith(Id self, objc::Sel, Rect rect, unsigned long, unsigned long, objc::Boolean) {
    told = {.frame = rect, .window = self};
    told.frame.height += 20; // a bar with the title
    return self;
}
void setReleasedWhenClosed(Id, objc::Sel, objc::Boolean value) { told.releasedWhenClosed = value != 0; }
void show(Id, objc::Sel, Id) { told.visible = true; }
void hide(Id, objc::Sel, Id) { told.visible = false; }
objc::Boolean isVisible(Id, objc::Sel) { return told.visible; }
Id title(Id, objc::Sel) { return told.title; }
void setTitle(Id self, objc::Sel, Id text) {
    if (refusesTitles) {
        objc::send<"retain">(self); // the test's own reference
        raiseWindowException("no title today");
    }
    told.title = text;
}
Id delegate(Id, objc::Sel) { return nullptr; }
Rect frame(Id, objc::Sel) {
    if (told.raises) raiseWindowException("no frame today");
    return told.frame;
}
void setFrame(Id, objc::Sel, Rect rect, objc::Boolean) {
    told.frame = rect;
    told.ownedWhenFramed = !told.releasedWhenClosed;
}

// A platform class that stands for the window library's. Numbers have the machine's letters.
void addWindowClass(const char* name) {
    const std::string rect = "{_NSRect={_NSPoint=" + std::string(2, objc::encodingOf<Number>()) +
                             "}{_NSSize=" + std::string(2, objc::encodingOf<Number>()) + "}}";
    const std::string word(1, objc::encodingOf<uintptr_t>());
    const objc::Class made = objc::objc_allocateClassPair(objc::objc_getClass("NSObject"), name, 0);
    const auto add = [&](const char* selector, auto* function, const std::string& types) {
        objc::class_addMethod(made, objc::sel_registerName(selector), reinterpret_cast<objc::Imp>(function),
                              types.c_str());
    };
    add("initWithContentRect:styleMask:backing:defer:", initWith, "@@:" + rect + word + word + "C");
    add("setReleasedWhenClosed:", setReleasedWhenClosed, "v@:C");
    add("makeKeyAndOrderFront:", show, "v@:@");
    add("orderOut:", hide, "v@:@");
    add("isVisible", isVisible, "C@:");
    add("title", title, "@@:");
    add("setTitle:", setTitle, "v@:@");
    add("delegate", delegate, "@@:");
    add("frame", frame, rect + "@:");
    add("setFrame:display:", setFrame, "v@:" + rect + "C");
    objc::objc_registerClassPair(made);
}

class Windows : public WithBoth {
  protected:
    Windows() {
        addWindowClass("NSWindow");
        addWindowClass("NSPanel");
    }
};

using NoWindows = WithBoth;

TEST_F(Windows, AreMadeWithTitleAndBoundsAndOwnedByTheHostObject) {
    const Value window = make("NSWindowQRX", {"Größe", make("NSRectQRX", {1, 2, 30, 40})});
    EXPECT_EQ(text(objc::send<"className">(slot(window.object()))), "NSWindow");
    EXPECT_EQ(told.frame, (Rect{1, 2, 30, 40}));
    EXPECT_EQ(ask(window, "title").toText(), "Größe");
    EXPECT_FALSE(told.releasedWhenClosed);
    EXPECT_TRUE(told.ownedWhenFramed) << "before anything else is asked of it";
    EXPECT_EQ(retains(slot(window.object())), 1u);
}

TEST_F(Windows, PanelsAreWindowsAndHaveAPlatformPanel) {
    const Value panel = make("NSPanelQRX", {"Panel", make("NSRectQRX", {1, 2, 3, 4})});
    EXPECT_TRUE(host::isA(panel.object(), "NSWindowQRX"));
    EXPECT_EQ(text(objc::send<"className">(slot(panel.object()))), "NSPanel");
    EXPECT_EQ(ask(panel, "title").toText(), "Panel");
}

TEST_F(Windows, AreShownHiddenMovedAndNamed) {
    const Value window = make("NSWindowQRX", {"", Value()});
    EXPECT_EQ(told.frame, (Rect{0, 0, 0, 20})) << "without bounds there is nothing inside";
    EXPECT_FALSE(ask(window, "visible").toBoolean());
    ask(window, "show");
    EXPECT_TRUE(ask(window, "visible").toBoolean());
    ask(window, "hide");
    EXPECT_FALSE(ask(window, "visible").toBoolean());
    set(window, "title", "Neu");
    EXPECT_EQ(ask(window, "title").toText(), "Neu");
    set(window, "bounds", make("NSRectQRX", {5, 6, 7, 8}));
    EXPECT_EQ(told.frame, (Rect{5, 6, 7, 8}));
    const Value bounds = ask(window, "bounds");
    EXPECT_EQ(bounds.typeName(), "NSRectQRX");
    EXPECT_EQ(ask(bounds, "width").toInt32(), 7);
    set(window, "bounds", Value());
    EXPECT_EQ(told.frame, (Rect{5, 6, 7, 8})) << "nil is no place";
}

TEST_F(Windows, AreConstructedOnce) {
    const Value window = make("NSWindowQRX", {"One", Value()});
    const Id platform = slot(window.object());
    EXPECT_EQ(raisedBy([&] {
                  ask(window, "Constructor", {"Two", Value()});
              }),
              "UnsupportedOperationException: Constructor called too often. Object is already initialized.");
    EXPECT_EQ(slot(window.object()), platform);
    EXPECT_EQ(ask(window, "title").toText(), "One");
}

TEST_F(Windows, WhatAWindowRaisesReachesTheProgram) {
    const Value window = make("NSWindowQRX", {"", Value()});
    told.raises = true;
    EXPECT_EQ(raisedBy([&] { ask(window, "bounds"); }), "NSExceptionQRX: no frame today");
}

TEST_F(Windows, AWindowThatRaisesWhileItIsMadeIsReleasedAndTheObjectStaysEmpty) {
    const Value window = make("NSWindowQRX");
    refusesTitles = true;
    EXPECT_EQ(raisedBy([&] {
                  ask(window, "Constructor", {"One", Value()});
              }),
              "NSExceptionQRX: no title today");
    EXPECT_EQ(slot(window.object()), nullptr);
    EXPECT_EQ(retains(told.window), 1u) << "the test's own";
    objc::send<"release", void>(told.window);
    refusesTitles = false;
    ask(window, "Constructor", {"Two", Value()});
    EXPECT_EQ(ask(window, "title").toText(), "Two");
}

// ---- what panels of other plug-ins rely on -----------------------------------------------------------

TEST_F(Windows, APanelClassOfAnotherPluginKeepsItsPanelInTheFirstWordAndNeedNotReleaseIt) {
    const Id panel = objc::send<"init">(objc::alloc<"NSPanel">());
    {
        const Value setup = holding("DRSetupPanelQRX", panel);
        EXPECT_TRUE(host::isA(setup.object(), "NSPanelQRX"));
        EXPECT_TRUE(host::isA(setup.object(), "NSWindowQRX"));
        EXPECT_EQ(host::instanceData(setup.object()), &slot(setup.object()));
        ask(setup, "show");
        EXPECT_TRUE(told.visible);
        EXPECT_EQ(retains(panel), 2u);
    }
    EXPECT_EQ(retains(panel), 1u);
    objc::send<"release", void>(panel);
}

TEST_F(Windows, OnlyTheWindowClassHasData) {
    EXPECT_EQ(harness::definition("NSWindowQRX")->dataSize, sizeof(void*));
    EXPECT_EQ(harness::definition("NSPanelQRX")->dataSize, 0u);
}

// ---- without a window --------------------------------------------------------------------------------

TEST_F(NoWindows, AnObjectWithoutAWindowAnswersEmptyAndDoesNothing) {
    for (const Value& window :
         {make("NSWindowQRX"), make("NSPanelQRX"), make("NSWindowQRX", {"Title", make("NSRectQRX")})}) {
        EXPECT_EQ(slot(window.object()), nullptr);
        ask(window, "show");
        ask(window, "hide");
        EXPECT_FALSE(ask(window, "visible").toBoolean());
        set(window, "title", "Title");
        EXPECT_EQ(ask(window, "title").toText(), "");
        set(window, "bounds", make("NSRectQRX", {1, 2, 3, 4}));
        EXPECT_TRUE(ask(window, "bounds").isNil());
    }
}

TEST_F(NoWindows, PanelsOfThePluginCanBeMadeOnceTheirSuperclassIsThere) {
    const Value panel = Value::adopt(host::newObject(host::requireClass("DRBurnSetupPanelQRX")));
    EXPECT_EQ(slot(panel.object()), nullptr);
}

} // namespace
