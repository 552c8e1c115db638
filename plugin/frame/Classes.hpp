// Classes.hpp: the fourteen classes, each defined at the end of its own file.
#pragma once

#include "plugin/frame/PluginInterface.h"

// In the order of registration: DRMSFQRX first, then by name. The order is deliberate and kept, although it
// registers some subclasses before their superclass; the host links them when all are there.
#define PLUGIN_CLASSES(X)                                                                                    \
    X(DRMSFQRX)                                                                                              \
    X(DRBurnQRX)                                                                                             \
    X(DRBurnProgressPanelQRX)                                                                                \
    X(DRBurnSetupPanelQRX)                                                                                   \
    X(DRCDTextBlockQRX)                                                                                      \
    X(DRDeviceQRX)                                                                                           \
    X(DREraseQRX)                                                                                            \
    X(DREraseProgressPanelQRX)                                                                               \
    X(DREraseSetupPanelQRX)                                                                                  \
    X(DRFSObjectQRX)                                                                                         \
    X(DRFileQRX)                                                                                             \
    X(DRFolderQRX)                                                                                           \
    X(DRSetupPanelQRX)                                                                                       \
    X(DRTrackQRX)

#define DECLARE_CLASS(name) extern REALclassDefinition name##Class;
PLUGIN_CLASSES(DECLARE_CLASS)
#undef DECLARE_CLASS
