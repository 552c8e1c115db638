// DRBurnProgressPanelQRX.cpp: the platform's progress panel for a burn.
//
// The panel is the first word of the instance data that NSPanelQRX defines.
#include "plugin/bridge/Files.hpp"
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/panels/BurnProgress.hpp"
#include "plugin/panels/ProgressPanel.hpp"

#define BURN_PROGRESS_PANEL_STRINGS(X)                                                                       \
    X(DRBurnProgressPanelDidFinishNotification)                                                              \
    X(DRBurnProgressPanelWillBeginNotification)
BURN_PROGRESS_PANEL_STRINGS(STRING_CONSTANT_GETTER)

namespace panels {
constinit decltype(BurnProgress::events) BurnProgress::events;
}

namespace {

using namespace bridge;
using objc::Id;

// ---- the two ways to begin -----------------------------------------------------------------------------
// Both are called inside the guard and with a panel in the slot.

void beginSheet(REALobject self, REALobject burn, Id layout, REALobject docWindow) {
    panels::rememberJob<panels::BurnProgress>(self, burn);
    objc::send<"beginProgressSheetForBurn:layout:modalForWindow:", void>(frame::slot(self), frame::held(burn),
                                                                         layout, frame::held(docWindow));
}

void beginPanel(REALobject self, REALobject burn, Id layout) {
    panels::rememberJob<panels::BurnProgress>(self, burn);
    objc::send<"beginProgressPanelForBurn:layout:", void>(frame::slot(self), frame::held(burn), layout);
}

bool canBegin(REALobject self, REALobject burn) { return frame::held(burn) && frame::slot(self); }

// ---- image files ---------------------------------------------------------------------------------------
// The layout is asked for before panel and burn are looked at, deliberately: what the platform has to say against an
// image reaches the program also where nothing could begin.

Id layoutForImage(Id path) { return path ? objc::sendClass<"DRBurn", "layoutForImageFile:">(path) : nullptr; }

bool beginImageSheet(REALobject self, REALobject burn, Id path, REALobject docWindow) {
    const Id layout = layoutForImage(path);
    if (!layout || !canBegin(self, burn)) return false;
    beginSheet(self, burn, layout, docWindow);
    return true;
}

bool beginImagePanel(REALobject self, REALobject burn, Id path) {
    const Id layout = layoutForImage(path);
    if (!layout || !canBegin(self, burn)) return false;
    beginPanel(self, burn, layout);
    return true;
}

// Whether an image file's burn was begun; false when the platform raises, too.
template <class Body>
REALboolean begun(Body body) {
    return static_cast<REALboolean>(guarded(body));
}

// ---- members -------------------------------------------------------------------------------------------

void beginProgressSheetForBurn(REALobject self, REALobject burn, REALobject track, REALobject docWindow) {
    guarded([=] {
        if (canBegin(self, burn)) beginSheet(self, burn, frame::held(track), docWindow);
    });
}

// The array forms don't ask whether the burn has a platform object, unlike those with one track: nil is passed on
// then. That is deliberate and kept; programs may rely on the platform's own complaint.
void beginProgressSheetForBurnArray(REALobject self, REALobject burn, REALarray tracks,
                                    REALobject docWindow) {
    guarded([=] {
        const Id layout = CreateNSObjectArray(tracks, false);
        if (frame::slot(self)) beginSheet(self, burn, layout, docWindow);
    });
}

REALboolean beginProgressSheetForImageFile(REALobject self, REALobject burn, REALfolderItem file,
                                           REALobject docWindow) {
    return begun([=] { return beginImageSheet(self, burn, NewNSStringPath(file), docWindow); });
}

REALboolean beginProgressSheetForImagePath(REALobject self, REALobject burn, REALstring file,
                                           REALobject docWindow) {
    return begun([=] { return beginImageSheet(self, burn, NewNSString(file), docWindow); });
}

void beginProgressPanelForBurn(REALobject self, REALobject burn, REALobject track) {
    guarded([=] {
        if (canBegin(self, burn)) beginPanel(self, burn, frame::held(track));
    });
}

// As the sheet's: the burn's platform object is deliberately not asked for.
void beginProgressPanelForBurnArray(REALobject self, REALobject burn, REALarray tracks) {
    guarded([=] {
        const Id layout = CreateNSObjectArray(tracks, false);
        if (frame::slot(self)) beginPanel(self, burn, layout);
    });
}

REALboolean beginProgressPanelForImageFile(REALobject self, REALobject burn, REALfolderItem file) {
    return begun([=] { return beginImagePanel(self, burn, NewNSStringPath(file)); });
}

REALboolean beginProgressPanelForImagePath(REALobject self, REALobject burn, REALstring file) {
    return begun([=] { return beginImagePanel(self, burn, NewNSString(file)); });
}

// Deliberately not entered into the registry of wrappers, unlike the erase's panel.
void Constructor(REALobject self) { panels::constructProgressPanel<panels::BurnProgress>(self); }

REALstring Description(REALobject self) { return ask<String, "description">(self); }
void setDescription(REALobject self, REALstring value) { tell<"setDescription:", String>(self, value); }
REALboolean VerboseProgressStatus(REALobject self) { return ask<Boolean, "verboseProgressStatus">(self); }
void setVerboseProgressStatus(REALobject self, REALboolean value) {
    tell<"setVerboseProgressStatus:", Boolean>(self, value);
}
void stopBurn(REALobject self) {
    guarded([=] { objc::send<"stopBurn:", void>(frame::held(self), frame::held(self)); });
}

void DRBurnProgressPanelConstructor(REALobject) { CocoaInit(); }
void DRBurnProgressPanelDestructor(REALobject self) { panels::destroyProgressPanel(self); }

using frame::method, frame::property;

REALmethodDefinition methods[] = {
    method<"beginProgressSheetForBurn(burn as DRBurnQRX, track as DRTrackQRX, docWindow as NSWindowQRX)",
           beginProgressSheetForBurn>(),
    method<"beginProgressSheetForBurn(burn as DRBurnQRX, tracks() as DRTrackQRX, docWindow as NSWindowQRX)",
           beginProgressSheetForBurnArray>(),
    method<"beginProgressSheetForImageFile(burn as DRBurnQRX, file as folderitem, docWindow as NSWindowQRX) "
           "as boolean",
           beginProgressSheetForImageFile>(),
    method<"beginProgressSheetForImageFile(burn as DRBurnQRX, file as string, docWindow as NSWindowQRX) "
           "as boolean",
           beginProgressSheetForImagePath>(),
    method<"beginProgressPanelForBurn(burn as DRBurnQRX, track as DRTrackQRX)", beginProgressPanelForBurn>(),
    method<"beginProgressPanelForBurn(burn as DRBurnQRX, tracks() as DRTrackQRX)",
           beginProgressPanelForBurnArray>(),
    method<"beginProgressPanelForImageFile(burn as DRBurnQRX, file as folderitem) as boolean",
           beginProgressPanelForImageFile>(),
    method<"beginProgressPanelForImageFile(burn as DRBurnQRX, file as string) as boolean",
           beginProgressPanelForImagePath>(),
    method<"Constructor", Constructor>(),
    property<"Description as string", Description, setDescription>(),
    property<"VerboseProgressStatus as boolean", VerboseProgressStatus, setVerboseProgressStatus>(),
    method<"stopBurn", stopBurn>(),
};

REALmethodDefinition sharedMethods[] = {BURN_PROGRESS_PANEL_STRINGS(STRING_CONSTANT_ROW)};

} // namespace

REALclassDefinition DRBurnProgressPanelQRXClass =
    frame::makeClass({.name = "DRBurnProgressPanelQRX",
                      .superName = "NSPanelQRX",
                      .constructor = DRBurnProgressPanelConstructor,
                      .destructor = DRBurnProgressPanelDestructor,
                      .methods = methods,
                      .events = panels::BurnProgress::events.rows,
                      .sharedMethods = sharedMethods});
