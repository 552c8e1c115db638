// DRSheet.m: hangs a panel on a window.
#import "DRSheet.h"

// Lies over the contents of the window and takes every click.
@interface DRSheetShield : NSView {
  @public
    NSPanel* panel;
}
@end

@implementation DRSheetShield
- (NSView*)hitTest:(NSPoint)point {
    return NSPointInRect(point, [self frame]) ? self : nil;
}
- (void)mouseDown:(NSEvent*)event {
    [panel makeKeyAndOrderFront:nil];
}
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    return YES;
}
@end

@interface DRSheet ()
- (void)place;
- (void)leaveOwner;
@end

@implementation DRSheet

+ (void)requireWindow:(NSWindow*)window for:(NSString*)what {
    if (window == nil)
        [NSException raise:NSInvalidArgumentException format:@"%@ needs a window to be shown on.", what];
}

- (id)initWithPanel:(NSPanel*)panel window:(NSWindow*)owner {
    self = [super init];
    if (self == nil)
        return nil;
    _panel = panel;
    _owner = [owner retain];
    return self;
}

- (void)dealloc {
    [self leaveOwner];
    [_shield release];
    [_owner release];
    [super dealloc];
}

- (NSWindow*)window {
    return _owner;
}

// Under the title of the window, in its middle; wholly on the screen.
- (void)place {
    const NSRect owner = [NSWindow contentRectForFrameRect:[_owner frame] styleMask:[_owner styleMask]];
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    NSRect frame = [_panel frame];
    frame.origin.x = floor(NSMidX(owner) - NSWidth(frame) / 2);
    frame.origin.y = floor(NSMaxY(owner) - NSHeight(frame));
    frame.origin.x = MAX(NSMinX(screen), MIN(NSMinX(frame), NSMaxX(screen) - NSWidth(frame)));
    frame.origin.y = MAX(NSMinY(screen), MIN(NSMinY(frame), NSMaxY(screen) - NSHeight(frame)));
    [_panel setFrameOrigin:frame.origin];
}

- (void)show {
    NSView* contents = [_owner contentView];
    DRSheetShield* shield = [[DRSheetShield alloc] initWithFrame:[contents bounds]];
    shield->panel = _panel;
    [shield setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [contents addSubview:shield];
    _shield = shield;
    [self place];
    [_owner orderFront:nil];
    NSNotificationCenter* centre = [NSNotificationCenter defaultCenter];
    [centre addObserver:self
               selector:@selector(ownerBecameKey:)
                   name:NSWindowDidBecomeKeyNotification
                 object:_owner];
    [centre addObserver:self selector:@selector(ownerMoved:) name:NSWindowDidMoveNotification object:_owner];
    if ([_owner delegate] == nil) // another one decides for itself whether its window closes
        [_owner setDelegate:self];
    [_panel makeKeyAndOrderFront:nil];
}

- (void)leaveOwner {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    if ([_owner delegate] == self)
        [_owner setDelegate:nil];
}

- (void)end {
    [self leaveOwner];
    ((DRSheetShield*)_shield)->panel = nil;
    [_shield removeFromSuperview];
    [_shield release];
    _shield = nil;
    [_panel orderOut:nil];
    [_owner makeKeyAndOrderFront:nil];
}

- (void)ownerBecameKey:(NSNotification*)notification {
    [_panel makeKeyAndOrderFront:nil];
}

// The close button of the window does what the panel's own does, and the window stays under its sheet.
- (BOOL)windowShouldClose:(id)sender {
    [_panel performClose:sender];
    return NO;
}

- (void)ownerMoved:(NSNotification*)notification {
    [self place];
}

@end
