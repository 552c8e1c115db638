// DRSetupPanelQRX.cpp: what the platform's two setup panels have in common.
//
// The panel is the first word of the instance data that NSPanelQRX defines; that class's destructor releases it.
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/panels/PanelDelegate.hpp"
#include "plugin/panels/SetupPanel.hpp"
#include "plugin/panels/SetupPanelEvents.hpp"

namespace {

using panels::tellFromItself;

void ok(REALobject self) { tellFromItself<"ok:">(self); }
void cancel(REALobject self) { tellFromItself<"cancel:">(self); }
void eject(REALobject self) { tellFromItself<"eject:">(self); }
void open(REALobject self) { tellFromItself<"open:">(self); }
void close(REALobject self) { tellFromItself<"close:">(self); }
int32_t runSetupPanel(REALobject self) { return bridge::ask<bridge::Number<int32_t>, "runSetupPanel">(self); }

void DRSetupPanelConstructor(REALobject) { CocoaInit(); }

// No platform start-up, deliberately: there is nothing to let go of while no panel was made. The panel itself is
// left to the destructor of NSPanelQRX, which runs after this one.
void DRSetupPanelDestructor(REALobject self) {
    bridge::guarded([=] { panels::removeDelegate(frame::held(self)); });
}

using frame::method;

REALmethodDefinition methods[] = {
    frame::placeholderConstructor(),
    method<"ok", ok>(),
    method<"cancel", cancel>(),
    method<"eject", eject>(),
    method<"open", open>(),
    method<"close", close>(),
    method<"runSetupPanel as integer", runSetupPanel>(),
};

REALconstant constants[] = {
    {"NSCancelButton = 0", {}},
    {"NSOKButton = 1", {}},
};

} // namespace

REALclassDefinition DRSetupPanelQRXClass = frame::makeClass({.name = "DRSetupPanelQRX",
                                                             .superName = "NSPanelQRX",
                                                             .constructor = DRSetupPanelConstructor,
                                                             .destructor = DRSetupPanelDestructor,
                                                             .methods = methods,
                                                             .events = panels::setupEvents.rows,
                                                             .constants = constants});
