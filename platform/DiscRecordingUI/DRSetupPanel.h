// DRSetupPanel: lets a person choose a drive with a suitable disc. The panels for burning and erasing derive from it.
#ifndef DISCRECORDINGUI_DRSETUPPANEL_H
#define DISCRECORDINGUI_DRSETUPPANEL_H

#import "DRDevice.h"
#import "DRPanelConstants.h"
#import <AppKit/AppKit.h>

struct DRSetupPanelInside;

@interface DRSetupPanel : NSPanel {
  @private
    struct DRSetupPanelInside* _inside;
}

/** For subclasses. The name is taken and not used: the panels are made by their classes. */
- (id)initWithNibName:(NSString*)nibName;

/** Shows the panel and returns when it was ended: NSOKButton or NSCancelButton. */
- (int)runSetupPanel;
/**
 * Shows the panel on a window and returns. When it was ended, didEndSelector is sent, which takes the panel, an int
 * (NSOKButton or NSCancelButton) and the context; then the panel goes, if it is still there. Raises
 * NSInvalidArgumentException without a window.
 */
- (void)beginSetupSheetForWindow:(NSWindow*)owner
                   modalDelegate:(id)modalDelegate
                  didEndSelector:(SEL)didEndSelector
                     contextInfo:(void*)contextInfo;

/**
 * Ends the panel. Does nothing but beep while there is no suitable disc in the drive that is chosen, and nothing at all
 * unless the panel is shown.
 */
- (IBAction)ok:(id)sender;
- (IBAction)cancel:(id)sender;

/** Sent before the panel is shown. Whoever overrides this, or one of the two below, sends it to super, too. */
- (void)setupForDisplay;

@end

@interface DRSetupPanel (Drive)

/** The disc of the chosen drive, or its tray. */
- (IBAction)eject:(id)sender;
- (IBAction)open:(id)sender;
- (IBAction)close:(id)sender;

/** Sent when another drive was chosen, by a person or since one came or went; nil when there is none. */
- (void)deviceSelectionChanged:(DRDevice*)device;
/** Sent with the status of the chosen drive when that changed. YES: its disc will do, and OK can be chosen. */
- (BOOL)mediaStateChanged:(NSDictionary*)status;

@end

/** What a delegate, which is not retained, may implement. What it doesn't, the panel decides itself. */
@interface NSObject (DRSetupPanelDelegate)
/** NO leaves the drive out of the menu. */
- (BOOL)setupPanel:(DRSetupPanel*)panel deviceCouldBeTarget:(DRDevice*)device;
/** Sent when the panel is to be shown, and for each drive that comes. Either may be nil. */
- (DRDevice*)setupPanel:(DRSetupPanel*)panel determineBestDeviceOfA:(DRDevice*)deviceA orB:(DRDevice*)deviceB;
/** NO disables OK. The prompt comes with the panel's own text; what is put there is shown. */
- (BOOL)setupPanel:(DRSetupPanel*)panel
    deviceContainsSuitableMedia:(DRDevice*)device
                   promptString:(NSString**)prompt;
/** YES: the panel reserves blank media for itself; NO: the delegate does what is to be done. */
- (BOOL)setupPanelShouldHandleMediaReservations:(DRSetupPanel*)panel;
- (void)setupPanelDeviceSelectionChanged:(NSNotification*)notification;
@end

#endif
