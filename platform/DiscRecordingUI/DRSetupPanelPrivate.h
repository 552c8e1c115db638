// DRSetupPanelPrivate.h: what is inside a setup panel, and what the two panels add to it.
#ifndef DISCRECORDINGUI_DRSETUPPANELPRIVATE_H
#define DISCRECORDINGUI_DRSETUPPANELPRIVATE_H

#import "DRDriveChoice.h"
#import "DRPanelParts.h"
#import "DRSetupPanel.h"
#import "DRSheet.h"

struct DRSetupPanelInside {
    NSTextField *prompt, *driveLabel;
    NSPopUpButton* drives;
    NSButton *eject, *cancel, *confirm;
    NSView* picture;
    CGFloat trayWidth; // of the button with the longest of its titles
    CGFloat width, optionLeft;
    DRDriveChoice* choice;
    NSArray* mediaSeen; // what the chosen drive's disc was like when it was last judged
    DRDevice* reserved; // the drive whose blank media this panel keeps for itself
    DRSheet* sheet;
    id sheetDelegate;
    SEL sheetDidEnd;
    void* sheetContext;
    BOOL displayed, modal, ended, handlesReservations;
    int code;
};

@interface DRSetupPanel (Life)
/** OK was chosen and the panel has not been shown since. */
- (BOOL)wasConfirmed;
@end

@interface DRSetupPanel (Parts)
- (void)addParts;
/** Places everything again, after a text or the number of parts changed. */
- (void)layoutPanel;
/** Places a label, if there is one, and what it belongs to in the columns of the panel. */
- (void)placeOption:(NSButton*)option label:(NSTextField*)label at:(CGFloat)y;
- (NSButton*)defaultButton;
@end

@interface DRSetupPanel (Drives)
- (DRDevice*)chosenDevice;
/** Hears of drives and discs in every mode of the run loop in which a panel can be on the screen. */
- (void)followDrives;
/** Puts the drives that there are into the menu. */
- (void)showDrives;
/** Tells of the chosen drive, and judges its disc. */
- (void)announceDevice;
/** Nil for none: what was reserved before is given back. */
- (void)reserveMediaOf:(DRDevice*)device;
/** Asks about the disc again, as when it changed. */
- (void)reviewMedia;
@end

/** Overridden by the two panels; here they do nothing. */
@interface DRSetupPanel (Overridden)
- (NSString*)panelTitle;
- (NSString*)defaultButtonText;
- (void)addOptionsTo:(NSView*)contents;
/** Places the options below y and answers where they end. */
- (CGFloat)layoutOptionsFrom:(CGFloat)y;
/** What stands before the options. */
- (NSArray*)optionLabels;
/** In the order of the Tab key. */
- (NSArray*)optionControls;
/** To the left of Cancel; nil for none. */
- (NSButton*)extraButton;
- (void)showOptionsForStatus:(NSDictionary*)status;
/** The panel's own opinion: whether the disc will do, and the sentence to show. */
- (BOOL)acceptsStatus:(NSDictionary*)status prompt:(NSString**)prompt;
/** NO keeps the panel open. */
- (BOOL)mayConfirm;
@end

#endif
