// DRBurnProgressPanelQRX.cpp: the platform's progress panel for a burn.
#include "plugin/bridge/Startup.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

void DRBurnProgressPanelConstructor(REALobject) { CocoaInit(); }

// No platform start-up, deliberately: there is nothing to let go of while no panel was shown.
void DRBurnProgressPanelDestructor(REALobject) {}

} // namespace

REALclassDefinition DRBurnProgressPanelQRXClass =
    frame::makeClass({.name = "DRBurnProgressPanelQRX",
                      .superName = "NSPanelQRX",
                      .constructor = DRBurnProgressPanelConstructor,
                      .destructor = DRBurnProgressPanelDestructor});
