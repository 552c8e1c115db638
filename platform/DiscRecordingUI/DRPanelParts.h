// DRPanelParts.h: labels, boxes and buttons, measured and placed the same way on every panel.
#ifndef DISCRECORDINGUI_DRPANELPARTS_H
#define DISCRECORDINGUI_DRPANELPARTS_H

#import <AppKit/AppKit.h>

// Distances in points. A panel's contents begin at the icon, and its texts beside it. Widths are the least ones: a panel
// whose texts need more, as a translation's may, is as wide as they need.
enum {
    DRPanelWidth = 500,
    DRPanelMargin = 20,
    DRPanelIconSize = 48,
    DRPanelTextLeft = DRPanelMargin + DRPanelIconSize + 16,
    DRPanelLabelWidth = 84, // the labels, right-aligned, and what they belong to beside them
    DRPanelLabelGap = 8,
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
/** As wide as its title needs, and never narrower than buttons usually are; a title beyond all measure is cut off. */
CGFloat DRWidthOfButton(NSButton* button);
/** The width of a box or a radio button, or of a menu with its longest item. */
CGFloat DRWidthOfOption(NSButton* option);
/** The width of the label's text in one line. */
CGFloat DRWidthOfLabel(NSTextField* label);

/** The width of a panel whose row of buttons these are, hidden ones left out. */
CGFloat DRWidthOfRow(NSArray* buttons);
/** Places the buttons at the right end of a panel's row, the first one outermost. Hidden ones are left out. */
void DRPlaceButtons(NSArray* buttons, CGFloat panelWidth, CGFloat y);
/** Makes the Tab key walk through the controls in their order, and around. */
void DRLinkKeyViews(NSWindow* window, NSArray* controls);
/** From now on the window is drawn again whenever the display shows it, until DRForgetDrawing: a window that a busy display
    shows late may have lost what was drawn before. */
void DRKeepDrawn(NSWindow* window);
void DRForgetDrawing(NSWindow* window);
/** Gives the window that size of contents and keeps its upper left corner where it is, and on the screen. */
void DRResizePanel(NSWindow* window, NSSize contents);

#endif
