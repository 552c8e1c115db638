// DRBurnSetupPanelQRX.cpp: the platform's setup panel for a burn.
//
// Class constructor and destructor are those of DRSetupPanelQRX.
#include "plugin/bridge/StringConstants.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/panels/SetupPanel.hpp"

#define BURN_SETUP_PANEL_STRINGS(X) X(DRBurnSetupPanelDefaultButtonDefaultTitle)
BURN_SETUP_PANEL_STRINGS(STRING_CONSTANT_GETTER)

namespace {

using namespace bridge;
using panels::tellFromItself;

void setDefaultButtonTitle(REALobject self, REALstring title) {
    tell<"setDefaultButtonTitle:", String>(self, title);
}
void setCanSelectTestBurn(REALobject self, REALboolean flag) {
    tell<"setCanSelectTestBurn:", Boolean>(self, flag);
}
void setCanSelectAppendableMedia(REALobject self, REALboolean flag) {
    tell<"setCanSelectAppendableMedia:", Boolean>(self, flag);
}
REALobject burnObject(REALobject self) { return ask<Burn, "burnObject">(self); }
void Constructor(REALobject self) { panels::constructSetupPanel<"DRBurnSetupPanel">(self); }
void expand(REALobject self) { tellFromItself<"expand:">(self); }

// The actions of the panel's own controls, deliberately not getters: they answer nothing, and what a person chose
// reaches a program through the burn that burnObject gives.
void burnSpeed(REALobject self) { tellFromItself<"burnSpeed:">(self); }
void appendable(REALobject self) { tellFromItself<"appendable:">(self); }
void completionAction(REALobject self) { tellFromItself<"completionAction:">(self); }
void testBurn(REALobject self) { tellFromItself<"testBurn:">(self); }
void verifyBurn(REALobject self) { tellFromItself<"verifyBurn:">(self); }

using frame::method;

REALmethodDefinition methods[] = {
    method<"setDefaultButtonTitle(title as string)", setDefaultButtonTitle>(),
    method<"setCanSelectTestBurn(flag as boolean)", setCanSelectTestBurn>(),
    method<"setCanSelectAppendableMedia(flag as boolean)", setCanSelectAppendableMedia>(),
    method<"burnObject as DRBurnQRX", burnObject>(),
    method<"Constructor", Constructor>(),
    method<"expand", expand>(),
    method<"burnSpeed", burnSpeed>(),
    method<"appendable", appendable>(),
    method<"completionAction", completionAction>(),
    method<"testBurn", testBurn>(),
    method<"verifyBurn", verifyBurn>(),
};

REALmethodDefinition sharedMethods[] = {BURN_SETUP_PANEL_STRINGS(STRING_CONSTANT_ROW)};

} // namespace

REALclassDefinition DRBurnSetupPanelQRXClass = frame::makeClass({.name = "DRBurnSetupPanelQRX",
                                                                 .superName = "DRSetupPanelQRX",
                                                                 .methods = methods,
                                                                 .sharedMethods = sharedMethods});
