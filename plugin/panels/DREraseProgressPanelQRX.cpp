// DREraseProgressPanelQRX.cpp: the platform's progress panel for an erase.
#include "plugin/bridge/Startup.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

void DREraseProgressPanelConstructor(REALobject) { CocoaInit(); }

// No platform start-up, deliberately: there is nothing to let go of while no panel was shown.
void DREraseProgressPanelDestructor(REALobject) {}

} // namespace

REALclassDefinition DREraseProgressPanelQRXClass =
    frame::makeClass({.name = "DREraseProgressPanelQRX",
                      .superName = "NSPanelQRX",
                      .constructor = DREraseProgressPanelConstructor,
                      .destructor = DREraseProgressPanelDestructor});
