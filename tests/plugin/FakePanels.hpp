// FakePanels.hpp: panels of a platform that shows nothing, and window classes of a companion, for tests of the plug-in's
// side of the panels.
#pragma once

#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/HostClasses.hpp"

#include <string>
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
inline Id layout = nullptr;   // what layoutForImageFile: answers
inline int endCode = 1;       // what runSetupPanel answers
inline bool raises = false;   // every message to a panel raises

inline void raise() {
    if (!raises) return;
    const Id exception = objc::sendClass<"NSException", "exceptionWithName:reason:userInfo:">(
        Id{},
        objc::autoreleased(
            asObject(CFStringCreateWithCString(nullptr, "The panel is broken.", kREALEncodingASCII))),
        Id{});
    objc::send<"raise", void>(exception);
}

template <objc::FixedString name, class... Args>
void note(Id, Sel, Args... args) {
    raise();
    Told one{name.c_str()};
    Id* const places[] = {&one.first, &one.second, &one.third};
    std::size_t at = 0;
    ((*places[at++] = reinterpret_cast<Id>(
          static_cast<std::uintptr_t>(std::is_pointer_v<Args> ? reinterpret_cast<std::uintptr_t>(args) : 0))),
     ...);
    told.push_back(one);
}
template <objc::FixedString name>
void noteFlag(Id, Sel, objc::Boolean flag) {
    told.push_back({std::string(name.c_str()) + (flag ? "YES" : "NO")});
}
inline Id delegate(Id self, Sel) { return *objc::ivar<Id>(self, "delegate"); }
inline void setDelegate(Id self, Sel, Id value) { *objc::ivar<Id>(self, "delegate") = value; }
inline Id text(Id self, Sel) { return *objc::ivar<Id>(self, "text"); }
inline void setText(Id self, Sel, Id value) { *objc::ivar<Id>(self, "text") = objc::retained(value); }
inline Id answer(Id, Sel) {
    raise();
    return answered;
}
inline int run(Id, Sel) {
    raise();
    return endCode;
}
inline Id makePanel(Id, Sel) {
    raise();
    return shared;
}
inline Id layoutFor(Id, Sel, Id path) {
    told.push_back({"layoutForImageFile:", path});
    return layout;
}

template <objc::FixedString selectorName, auto function>
void addClassMethod(const char* className) {
    objc::class_addMethod(objc_getMetaClass(className), objc::selector<selectorName>(),
                          reinterpret_cast<objc::Imp>(function), "@@:");
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
            .method<"delegate", delegate>()
            .method<"setDelegate:", setDelegate>()
            .method<"description", text>()
            .method<"setDescription:", setText>()
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
            .method<"setVerboseProgressStatus:", noteFlag<"setVerboseProgressStatus:">>()
            .method<"runSetupPanel", run>()
            .method<"burnObject", answer>()
            .method<"eraseObject", answer>()
            .method<"beginProgressPanelForBurn:layout:", note<"beginProgressPanelForBurn:layout:", Id, Id>>()
            .method<"beginProgressSheetForBurn:layout:modalForWindow:",
                    note<"beginProgressSheetForBurn:layout:modalForWindow:", Id, Id, Id>>()
            .method<"beginProgressPanelForErase:", note<"beginProgressPanelForErase:", Id>>()
            .method<"beginProgressSheetForErase:modalForWindow:",
                    note<"beginProgressSheetForErase:modalForWindow:", Id, Id>>()
            .finish();
        addClassMethod<"setupPanel", makePanel>(name);
        addClassMethod<"progressPanel", makePanel>(name);
    }
}

inline Id newPanel(const char* className) {
    shared = objc::send<"init">(objc::send<"alloc">(reinterpret_cast<Id>(objc::objc_getClass(className))));
    return shared;
}

} // namespace test::fake
