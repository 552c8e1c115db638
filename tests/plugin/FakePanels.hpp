// FakePanels.hpp: panels of a platform that shows nothing, and window classes of a companion, for tests of the plug-in's
// side of the panels.
#pragma once

#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/Replaced.hpp"

#include <string>
#include <utility>
#include <vector>

namespace test::fake {

using objc::Id, objc::Sel;

// What the panels were told, in order, and with what.
struct Told {
    std::string message;
    Id first = nullptr, second = nullptr, third = nullptr;
};
inline std::vector<Told> told;
inline Id shared = nullptr;   // what "setupPanel" and "progressPanel" answer
inline Id answered = nullptr; // what burnObject and eraseObject answer
inline Id layout = nullptr;   // what layoutForImageFile: answers, once offerLayouts() was called
inline int endCode = 1;       // what runSetupPanel answers

// The message that raises, or all of them. What raises is not noted.
inline std::string raising;
inline const std::string everyMessage = "every message";

inline void raiseAt(const char* message) {
    if (raising != message && raising != everyMessage) return;
    objc::sendClass<"NSException", "raise:format:", void>(nsString("PanelException"),
                                                          nsString("The panel is broken."));
}

template <objc::FixedString name, class... Ids>
void note(Id, Sel, Ids... with) {
    raiseAt(name.c_str());
    told.push_back({name.c_str(), with...});
}
template <objc::FixedString name>
void noteFlag(Id, Sel, objc::Boolean flag) {
    raiseAt(name.c_str());
    told.push_back({std::string(name.c_str()) + (flag ? "YES" : "NO")});
}

// ---- what a panel keeps --------------------------------------------------------------------------------

inline Id delegate(Id self, Sel) {
    raiseAt("delegate");
    return *objc::ivar<Id>(self, "delegate");
}
inline void setDelegate(Id self, Sel, Id value) {
    *objc::ivar<Id>(self, "delegate") = value;
    raiseAt("setDelegate:"); // as a panel that fails at what it does with it
}
inline Id text(Id self, Sel) {
    raiseAt("description");
    return *objc::ivar<Id>(self, "text");
}
inline void setText(Id self, Sel, Id value) {
    raiseAt("setDescription:");
    objc::release(std::exchange(*objc::ivar<Id>(self, "text"), objc::retained(value)));
}
inline objc::Boolean verbose(Id self, Sel) {
    raiseAt("verboseProgressStatus");
    return *objc::ivar<objc::Boolean>(self, "verbose");
}
inline void setVerbose(Id self, Sel, objc::Boolean flag) {
    raiseAt("setVerboseProgressStatus:");
    *objc::ivar<objc::Boolean>(self, "verbose") = flag;
}

// ---- what is asked for ---------------------------------------------------------------------------------

template <objc::FixedString name>
Id answer(Id, Sel) {
    raiseAt(name.c_str());
    return answered;
}
inline int run(Id, Sel) {
    raiseAt("runSetupPanel");
    return endCode;
}
template <objc::FixedString name>
Id givePanel(Id, Sel) {
    raiseAt(name.c_str());
    return shared;
}
inline Id layoutFor(Id, Sel, Id path) {
    told.push_back({"layoutForImageFile:", path});
    raiseAt("layoutForImageFile:");
    return layout;
}

// From now on `layout` is what any image file's layout is, in the place of the platform's own answer.
inline void offerLayouts() { replaceClassMethod<"layoutForImageFile:", layoutFor>("DRBurn"); }

template <objc::FixedString selectorName>
void addPanelFactory(const char* className) {
    objc::class_addMethod(objc_getMetaClass(className), objc::selector<selectorName>(),
                          reinterpret_cast<objc::Imp>(givePanel<selectorName>), "@@:");
}

// The platform's four panel classes, and the two window classes of a companion.
inline void offerPanels() {
    registerHostClass("NSWindowQRX", 16);
    registerHostClass("NSPanelQRX", 16);
    for (const char* name :
         {"DRBurnSetupPanel", "DREraseSetupPanel", "DRBurnProgressPanel", "DREraseProgressPanel"}) {
        objc::ClassBuilder("NSObject", name)
            .ivar<Id>("delegate")
            .ivar<Id>("text")
            .ivar<objc::Boolean>("verbose")
            .method<"delegate", delegate>()
            .method<"setDelegate:", setDelegate>()
            .method<"description", text>()
            .method<"setDescription:", setText>()
            .method<"verboseProgressStatus", verbose>()
            .method<"setVerboseProgressStatus:", setVerbose>()
            .method<"ok:", note<"ok:", Id>>()
            .method<"cancel:", note<"cancel:", Id>>()
            .method<"eject:", note<"eject:", Id>>()
            .method<"open:", note<"open:", Id>>()
            .method<"close:", note<"close:", Id>>()
            .method<"expand:", note<"expand:", Id>>()
            .method<"burnSpeed:", note<"burnSpeed:", Id>>()
            .method<"appendable:", note<"appendable:", Id>>()
            .method<"completionAction:", note<"completionAction:", Id>>()
            .method<"testBurn:", note<"testBurn:", Id>>()
            .method<"verifyBurn:", note<"verifyBurn:", Id>>()
            .method<"stopBurn:", note<"stopBurn:", Id>>()
            .method<"setDefaultButtonTitle:", note<"setDefaultButtonTitle:", Id>>()
            .method<"setCanSelectTestBurn:", noteFlag<"setCanSelectTestBurn:">>()
            .method<"setCanSelectAppendableMedia:", noteFlag<"setCanSelectAppendableMedia:">>()
            .method<"runSetupPanel", run>()
            .method<"burnObject", answer<"burnObject">>()
            .method<"eraseObject", answer<"eraseObject">>()
            .method<"beginProgressPanelForBurn:layout:", note<"beginProgressPanelForBurn:layout:", Id, Id>>()
            .method<"beginProgressSheetForBurn:layout:modalForWindow:",
                    note<"beginProgressSheetForBurn:layout:modalForWindow:", Id, Id, Id>>()
            .method<"beginProgressPanelForErase:", note<"beginProgressPanelForErase:", Id>>()
            .method<"beginProgressSheetForErase:modalForWindow:",
                    note<"beginProgressSheetForErase:modalForWindow:", Id, Id>>()
            .finish();
        addPanelFactory<"setupPanel">(name);
        addPanelFactory<"progressPanel">(name);
    }
}

inline std::vector<Id> made; // every panel, so that what only a panel knows is not lost

// A new panel of the class, which is what the platform gives from now on.
inline Id newPanel(const char* className) {
    shared = objc::send<"init">(objc::send<"alloc">(reinterpret_cast<Id>(objc::objc_getClass(className))));
    return made.emplace_back(shared);
}

} // namespace test::fake
