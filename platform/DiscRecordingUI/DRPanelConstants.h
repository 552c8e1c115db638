// DRPanelConstants.h: the names of the panels' notifications, and of what is in them.
#ifndef DISCRECORDINGUI_DRPANELCONSTANTS_H
#define DISCRECORDINGUI_DRPANELCONSTANTS_H

#import "DRStringConstants.h"

/**
 * Notifications, a key, and the title that brings a setup panel's own default button title back. They are part of the
 * DiscRecording library: programs ask for the names where there is no display too.
 */
#define DR_PANEL_STRINGS(X)                                                                                  \
    X(DRSetupPanelDeviceSelectionChangedNotification)                                                        \
    X(DRSetupPanelSelectedDeviceKey)                                                                         \
    X(DRBurnSetupPanelDefaultButtonDefaultTitle)                                                             \
    X(DRBurnProgressPanelWillBeginNotification)                                                              \
    X(DRBurnProgressPanelDidFinishNotification)                                                              \
    X(DREraseProgressPanelWillBeginNotification)                                                             \
    X(DREraseProgressPanelDidFinishNotification)
DR_DECLARE_STRINGS(DR_PANEL_STRINGS)

#endif
