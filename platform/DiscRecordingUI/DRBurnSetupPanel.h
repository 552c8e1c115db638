// DRBurnSetupPanel: lets a person choose a drive, and how its disc is to be burned.
#ifndef DISCRECORDINGUI_DRBURNSETUPPANEL_H
#define DISCRECORDINGUI_DRBURNSETUPPANEL_H

#import "DRBurn.h"
#import "DRSetupPanel.h"

struct DRBurnSetupPanelInside;

@interface DRBurnSetupPanel : DRSetupPanel {
  @private
    struct DRBurnSetupPanelInside* _burn;
}

/** A new panel. */
+ (DRBurnSetupPanel*)setupPanel;

/** "Burn" at first, and again for DRBurnSetupPanelDefaultButtonDefaultTitle or nil. */
- (void)setDefaultButtonTitle:(NSString*)title;
/** Whether a person can choose a burn that writes nothing; NO at first. To be sent before the panel is shown. */
- (void)setCanSelectTestBurn:(BOOL)flag;
/**
 * Whether discs that hold something will do when more can be added, and whether a person can choose to leave the disc
 * open; YES at first. To be sent before the panel is shown.
 */
- (void)setCanSelectAppendableMedia:(BOOL)flag;

/** A new burn with the drive and everything that was chosen; nil while the panel is shown and unless OK was chosen. */
- (DRBurn*)burnObject;

/** Shows the options, or hides them. */
- (IBAction)expand:(id)sender;

// The actions of the controls. What was chosen is read from the controls themselves, whoever sends.
- (IBAction)burnSpeed:(id)sender;
- (IBAction)appendable:(id)sender;
- (IBAction)completionAction:(id)sender;
- (IBAction)testBurn:(id)sender;
- (IBAction)verifyBurn:(id)sender;

@end

#endif
