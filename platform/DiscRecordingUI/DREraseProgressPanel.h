// DREraseProgressPanel: runs an erase and shows how it goes.
#ifndef DISCRECORDINGUI_DRERASEPROGRESSPANEL_H
#define DISCRECORDINGUI_DRERASEPROGRESSPANEL_H

#import "DRErase.h"
#import "DRProgressPanel.h"

/** The order of things is that of DRBurnProgressPanel. An erase can't be stopped, so this panel can't be closed. */
@interface DREraseProgressPanel : DRProgressPanel

/** A new panel. */
+ (DREraseProgressPanel*)progressPanel;

/** Both return when the erase is begun. */
- (void)beginProgressPanelForErase:(DRErase*)erase;
/** Raises NSInvalidArgumentException without a window. */
- (void)beginProgressSheetForErase:(DRErase*)erase modalForWindow:(NSWindow*)owner;

@end

/** What a delegate, which is not retained, may implement. */
@interface NSObject (DREraseProgressPanelDelegate)
- (void)eraseProgressPanelWillBegin:(NSNotification*)notification;
- (void)eraseProgressPanelDidFinish:(NSNotification*)notification;
/** YES: the person was told how it ended. NO: the panel does that. */
- (BOOL)eraseProgressPanel:(DREraseProgressPanel*)panel eraseDidFinish:(DRErase*)erase;
@end

#endif
