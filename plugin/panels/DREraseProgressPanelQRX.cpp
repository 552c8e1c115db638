// DREraseProgressPanelQRX.cpp: the platform's progress panel for an erase.
//
// The panel is the first word of the instance data that NSPanelQRX defines.
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/panels/EraseProgress.hpp"
#include "plugin/panels/ProgressPanel.hpp"

#define ERASE_PROGRESS_PANEL_STRINGS(X)                                                                      \
    X(DREraseProgressPanelWillBeginNotification)                                                             \
    X(DREraseProgressPanelDidFinishNotification)
ERASE_PROGRESS_PANEL_STRINGS(STRING_CONSTANT_GETTER)

namespace panels {
constinit decltype(EraseProgress::events) EraseProgress::events;
}

namespace {

using namespace bridge;

// Entered into the registry of wrappers, and deliberately never taken out again by the destructor. The burn's panel is
// not entered at all; both are kept.
void Constructor(REALobject self) {
    const bool isNew = !frame::slot(self);
    panels::constructProgressPanel<panels::EraseProgress>(self);
    if (isNew) guarded([=] { RegisterInstance(self, frame::slot(self)); });
}

REALstring Description(REALobject self) { return ask<String, "description">(self); }
void setDescription(REALobject self, REALstring value) { tell<"setDescription:", String>(self, value); }

// Whether the erase has a platform object is not asked: nil is passed on then.
void beginProgressPanelForErase(REALobject self, REALobject erase) {
    guarded([=] {
        if (!frame::slot(self)) return;
        panels::rememberJob<panels::EraseProgress>(self, erase);
        objc::send<"beginProgressPanelForErase:", void>(frame::slot(self), frame::held(erase));
    });
}

void beginProgressSheetForErase(REALobject self, REALobject erase, REALobject docWindow) {
    guarded([=] {
        if (!frame::slot(self)) return;
        panels::rememberJob<panels::EraseProgress>(self, erase);
        objc::send<"beginProgressSheetForErase:modalForWindow:", void>(frame::slot(self), frame::held(erase),
                                                                       frame::held(docWindow));
    });
}

void DREraseProgressPanelConstructor(REALobject) { CocoaInit(); }
void DREraseProgressPanelDestructor(REALobject self) { panels::destroyProgressPanel(self); }

using frame::method, frame::property;

REALmethodDefinition methods[] = {
    method<"Constructor", Constructor>(),
    property<"Description as string", Description, setDescription>(),
    method<"beginProgressPanelForErase(erase as DREraseQRX)", beginProgressPanelForErase>(),
    method<"beginProgressSheetForErase(erase as DREraseQRX, docWindow as NSWindowQRX)",
           beginProgressSheetForErase>(),
};

REALmethodDefinition sharedMethods[] = {ERASE_PROGRESS_PANEL_STRINGS(STRING_CONSTANT_ROW)};

} // namespace

REALclassDefinition DREraseProgressPanelQRXClass =
    frame::makeClass({.name = "DREraseProgressPanelQRX",
                      .superName = "NSPanelQRX",
                      .constructor = DREraseProgressPanelConstructor,
                      .destructor = DREraseProgressPanelDestructor,
                      .methods = methods,
                      .events = panels::EraseProgress::events.rows,
                      .sharedMethods = sharedMethods});
