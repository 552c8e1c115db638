// DRSheet.h: a panel that hangs on a window and keeps a person out of that window, and of no other.
#ifndef DISCRECORDINGUI_DRSHEET_H
#define DISCRECORDINGUI_DRSHEET_H

#import <AppKit/AppKit.h>

/**
 * The user interface library's own sheets return only when they end. This one returns at once, as it must when a burn is
 * to run under it; several windows may have one each.
 * A person can't close the window meanwhile, unless it has a delegate, which then decides.
 */
@interface DRSheet : NSObject <NSWindowDelegate> {
    NSPanel* _panel; // not retained: it owns the sheet
    NSWindow* _owner;
    NSView* _shield;
}
/** Raises NSInvalidArgumentException when there is no window to hang on. */
+ (void)requireWindow:(NSWindow*)window for:(NSString*)what;
- (id)initWithPanel:(NSPanel*)panel window:(NSWindow*)owner;
- (NSWindow*)window;
- (void)show;
/** Gives the window back to the person; the panel is ordered out. */
- (void)end;
@end

#endif
