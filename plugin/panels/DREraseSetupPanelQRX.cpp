// DREraseSetupPanelQRX.cpp: the platform's setup panel for an erase.
//
// Constructor and destructor are those of DRSetupPanelQRX.
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

REALclassDefinition DREraseSetupPanelQRXClass =
    frame::makeClass({.name = "DREraseSetupPanelQRX", .superName = "DRSetupPanelQRX"});
