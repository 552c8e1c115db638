// DRSetupPanelQRX.cpp: what the platform's two setup panels have in common.
#include "plugin/bridge/Startup.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

void DRSetupPanelConstructor(REALobject) { CocoaInit(); }

// No platform start-up, deliberately: there is nothing to let go of while no panel was made.
void DRSetupPanelDestructor(REALobject) {}

REALmethodDefinition methods[] = {
    frame::placeholderConstructor(),
};

} // namespace

REALclassDefinition DRSetupPanelQRXClass = frame::makeClass({.name = "DRSetupPanelQRX",
                                                             .superName = "NSPanelQRX",
                                                             .constructor = DRSetupPanelConstructor,
                                                             .destructor = DRSetupPanelDestructor,
                                                             .methods = methods});
