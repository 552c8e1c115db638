// DRProgressPanel: what the panels for a burn and for an erase have in common. Programs use those two.
#ifndef DISCRECORDINGUI_DRPROGRESSPANEL_H
#define DISCRECORDINGUI_DRPROGRESSPANEL_H

#import "DRPanelConstants.h"
#import <AppKit/AppKit.h>

struct DRProgressPanelInside;

/** One panel may be used for one job after the other. */
@interface DRProgressPanel : NSPanel {
  @private
    struct DRProgressPanelInside* _inside;
}

/** The sentence at the top; nil brings the panel's own back. */
- (void)setDescription:(NSString*)text;
- (NSString*)description;

/** NO, as at first: only what a person needs; YES: every step, and the speed. */
- (void)setVerboseProgressStatus:(BOOL)verbose;
- (BOOL)verboseProgressStatus;

@end

#endif
