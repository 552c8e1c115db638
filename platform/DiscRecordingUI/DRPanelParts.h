// DRPanelParts.h: labels, boxes and buttons, measured and placed the same way on every panel.
#ifndef DISCRECORDINGUI_DRPANELPARTS_H
#define DISCRECORDINGUI_DRPANELPARTS_H

#import <AppKit/AppKit.h>

// Distances in points. A panel's contents begin at the icon, and its texts beside it.
enum {
    DRPanelWidth = 500,
    DRPanelMargin = 20,
    DRPanelIconSize = 48,
    DRPanelTextLeft = DRPanelMargin + DRPanelIconSize + 16,
    DRPanelTextWidth = DRPanelWidth - DRPanelTextLeft - DRPanelMargin,
    DRPanelLabelWidth = 84, // the labels, right-aligned, and what they belong to beside them
    DRPanelOptionLeft = DRPanelTextLeft + DRPanelLabelWidth + 8,
    DRPanelOptionWidth = DRPanelWidth - DRPanelOptionLeft - DRPanelMargin,
    DRPanelButtonHeight = 26,
    DRPanelButtonGap = 10,
    DRPanelRowGap = 8,
    DRPanelGroupGap = 16
};

/** What a panel's parts stand on: y counts down from the top, as a person reads. */
@interface DRPanelContent : NSView
@end

/** The picture of a disc. */
@interface DRDiscPicture : NSView
@end

NSTextField* DRMakeLabel(NSFont* font);
NSButton* DRMakeButton(NSString* title, id target, SEL action);
NSButton* DRMakeBox(NSString* title, id target, SEL action);
NSButton* DRMakeRadio(NSString* title, id target, SEL action);
NSPopUpButton* DRMakeMenu(id target, SEL action);

/** The height of the label's text when it is wrapped to that width; never below one line. */
CGFloat DRHeightOfText(NSTextField* label, CGFloat width);
/** As wide as its title needs, and never narrower than buttons usually are. */
CGFloat DRWidthOfButton(NSButton* button);
/** The width of the label's text in one line. */
CGFloat DRWidthOfLabel(NSTextField* label);

/** Places the buttons at the right end of a row, the first one outermost. Hidden ones are left out. */
void DRPlaceButtons(NSArray* buttons, CGFloat y);
/** Makes the Tab key walk through the controls in their order, and around. */
void DRLinkKeyViews(NSWindow* window, NSArray* controls);
/** Gives the window that height of contents and keeps its upper edge where it is, and on the screen. */
void DRResizePanel(NSWindow* window, CGFloat height);

#endif
