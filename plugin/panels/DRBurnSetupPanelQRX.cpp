// DRBurnSetupPanelQRX.cpp: the platform's setup panel for a burn.
//
// Constructor and destructor are those of DRSetupPanelQRX.
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

REALclassDefinition DRBurnSetupPanelQRXClass =
    frame::makeClass({.name = "DRBurnSetupPanelQRX", .superName = "DRSetupPanelQRX"});
