// DRSetupPanelPrivate.h: what the two setup panels add to what they have in common.
#ifndef DISCRECORDINGUI_DRSETUPPANELPRIVATE_H
#define DISCRECORDINGUI_DRSETUPPANELPRIVATE_H

#import "DRPanelParts.h"
#import "DRSetupPanel.h"

@interface DRSetupPanel (ForSubclasses)
- (DRDevice*)chosenDevice;
/** OK was chosen and the panel has not been shown since. */
- (BOOL)wasConfirmed;
- (NSButton*)defaultButton;
/** As wide as a menu is, so that menus one below the other end together. */
- (CGFloat)menuWidth;
/** Asks about the disc again, as when it changed. */
- (void)reviewMedia;
/** Places everything again, after a text or the number of parts changed. */
- (void)layoutPanel;
@end

/** Overridden by the two panels; here they do nothing. */
@interface DRSetupPanel (Overridden)
- (NSString*)panelTitle;
- (NSString*)defaultButtonText;
- (void)addOptionsTo:(NSView*)contents;
/** Places the options below y and answers where they end. */
- (CGFloat)layoutOptionsFrom:(CGFloat)y;
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
