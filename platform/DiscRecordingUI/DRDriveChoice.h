// DRDriveChoice.h: which drives a setup panel offers, and which one is chosen.
#ifndef DISCRECORDINGUI_DRDRIVECHOICE_H
#define DISCRECORDINGUI_DRDRIVECHOICE_H

#import "DRSetupPanel.h"

/** Asks the panel's delegate where that wants to be asked. */
@interface DRDriveChoice : NSObject {
    DRSetupPanel* _panel;     // not retained: it owns the choice
    NSMutableArray* _seen;    // all drives that are attached
    NSMutableArray* _devices; // those that are offered
    DRDevice* _chosen;
}
- (id)initWithPanel:(DRSetupPanel*)panel;
/** Forgets everything, so that every drive is new. */
- (void)startWithNothing;
/** Looks for drives that came or went; YES when those that are offered, or the chosen one, changed. */
- (BOOL)update;
- (NSArray*)devices;
- (DRDevice*)chosen;
- (void)choose:(DRDevice*)device;
@end

#endif
