// DREraseSetupPanelQRX.cpp: the platform's setup panel for an erase.
//
// Class constructor and destructor are those of DRSetupPanelQRX.
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"
#include "plugin/panels/SetupPanel.hpp"

namespace {

void Constructor(REALobject self) { panels::constructSetupPanel<"DREraseSetupPanel">(self); }
REALobject eraseObject(REALobject self) { return bridge::ask<bridge::Erase, "eraseObject">(self); }

REALmethodDefinition methods[] = {
    frame::method<"Constructor", Constructor>(),
    frame::method<"eraseObject as DREraseQRX", eraseObject>(),
};

} // namespace

REALclassDefinition DREraseSetupPanelQRXClass =
    frame::makeClass({.name = "DREraseSetupPanelQRX", .superName = "DRSetupPanelQRX", .methods = methods});
