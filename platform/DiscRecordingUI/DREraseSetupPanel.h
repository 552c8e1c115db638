// DREraseSetupPanel: lets a person choose a drive whose disc is to be erased, and how thoroughly.
#ifndef DISCRECORDINGUI_DRERASESETUPPANEL_H
#define DISCRECORDINGUI_DRERASESETUPPANEL_H

#import "DRSetupPanel.h"

@class DRErase;
struct DREraseSetupPanelInside;

@interface DREraseSetupPanel : DRSetupPanel {
  @private
    struct DREraseSetupPanelInside* _erase;
}

/** A new panel. */
+ (DREraseSetupPanel*)setupPanel;

/**
 * A new erase with the drive and what was chosen; nil while the panel is shown and unless OK was chosen. From OK on the
 * drive is kept for this process: by the panel until this is sent, it is shown again or released, and by the erase until
 * that has ended or, when it is never started, is released.
 */
- (DRErase*)eraseObject;

@end

#endif
