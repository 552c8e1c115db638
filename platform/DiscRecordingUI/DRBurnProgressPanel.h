// DRBurnProgressPanel: runs a burn and shows how it goes.
#ifndef DISCRECORDINGUI_DRBURNPROGRESSPANEL_H
#define DISCRECORDINGUI_DRBURNPROGRESSPANEL_H

#import "DRBurn.h"
#import "DRProgressPanel.h"

/**
 * In this order: the notification WillBegin; the panel; the burn; the delegate's burnProgressPanel:burnDidFinish:; the
 * panel goes; the notification DidFinish. The run loop must run, and a failure is shown until a person has read it.
 */
@interface DRBurnProgressPanel : DRProgressPanel

/** A new panel. */
+ (DRBurnProgressPanel*)progressPanel;

/** Both return when the burn is begun. The layout is what -[DRBurn writeLayout:] takes, and raises what it raises;
 * nil raises NSInvalidArgumentException, and nothing is shown. */
- (void)beginProgressPanelForBurn:(DRBurn*)burn layout:(id)layout;
/** Raises NSInvalidArgumentException without a window. */
- (void)beginProgressSheetForBurn:(DRBurn*)burn layout:(id)layout modalForWindow:(NSWindow*)owner;

/**
 * Aborts the burn, if one runs; that it then failed is not shown. The panel's own button, and closing its window, ask the
 * person before.
 */
- (IBAction)stopBurn:(id)sender;

@end

/** What a delegate, which is not retained, may implement. */
@interface NSObject (DRBurnProgressPanelDelegate)
- (void)burnProgressPanelWillBegin:(NSNotification*)notification;
- (void)burnProgressPanelDidFinish:(NSNotification*)notification;
/** YES: the person was told how it ended. NO: the panel does that. */
- (BOOL)burnProgressPanel:(DRBurnProgressPanel*)panel burnDidFinish:(DRBurn*)burn;
@end

#endif
