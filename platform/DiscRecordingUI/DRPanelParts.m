// DRPanelParts.m: makes, measures and places what the panels consist of.
#import "DRPanelParts.h"

@implementation DRPanelContent
- (BOOL)isFlipped {
    return YES;
}
- (void)drawRect:(NSRect)rect {
    [[NSColor windowBackgroundColor] set];
    NSRectFill(rect);
}
@end

static void FillRing(NSPoint centre, CGFloat outer, CGFloat inner, NSColor* colour) {
    NSBezierPath* ring = [NSBezierPath bezierPath];
    [ring setWindingRule:NSEvenOddWindingRule];
    for (int side = 0; side < 2; side++) {
        const CGFloat radius = side == 0 ? outer : inner;
        [ring appendBezierPathWithOvalInRect:NSMakeRect(centre.x - radius, centre.y - radius, 2 * radius,
                                                        2 * radius)];
    }
    [colour set];
    [ring fill];
}

@implementation DRDiscPicture
- (void)drawRect:(NSRect)rect {
    const NSRect all = [self bounds];
    const NSPoint centre = NSMakePoint(NSMidX(all), NSMidY(all));
    const CGFloat edge = MIN(NSWidth(all), NSHeight(all)) / 2 - 1;
    FillRing(centre, edge, edge * 0.14, [NSColor colorWithCalibratedRed:0.45 green:0.50 blue:0.58 alpha:1]);
    FillRing(centre, edge - 1, edge * 0.17,
             [NSColor colorWithCalibratedRed:0.86 green:0.89 blue:0.94 alpha:1]);
    FillRing(centre, edge * 0.72, edge * 0.68,
             [NSColor colorWithCalibratedRed:0.76 green:0.80 blue:0.88 alpha:1]);
    FillRing(centre, edge * 0.40, edge * 0.17,
             [NSColor colorWithCalibratedRed:0.70 green:0.74 blue:0.82 alpha:1]);
    // The light that a disc throws back.
    NSBezierPath* light = [NSBezierPath bezierPath];
    [light appendBezierPathWithArcWithCenter:centre radius:edge * 0.94 startAngle:50 endAngle:72];
    [light appendBezierPathWithArcWithCenter:centre
                                      radius:edge * 0.42
                                  startAngle:72
                                    endAngle:50
                                   clockwise:YES];
    [light closePath];
    [[NSColor whiteColor] set];
    [light fill];
}
@end

NSTextField* DRMakeLabel(NSFont* font) {
    NSTextField* label = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setBordered:NO];
    [label setDrawsBackground:NO];
    [label setFont:font];
    [[label cell] setWraps:YES];
    return label;
}

static NSButton* MakeButton(NSString* title, id target, SEL action, NSButtonType type) {
    NSButton* button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [button setButtonType:type];
    [button setTitle:title];
    [button setTarget:target];
    [button setAction:action];
    return button;
}

NSButton* DRMakeButton(NSString* title, id target, SEL action) {
    NSButton* button = MakeButton(title, target, action, NSMomentaryPushInButton);
    [button setBezelStyle:NSRoundedBezelStyle];
    return button;
}

static NSButton* MakeChoice(NSString* title, id target, SEL action, NSButtonType type) {
    NSButton* choice = MakeButton(title, target, action, type);
    [choice setBordered:NO];
    [choice setImagePosition:NSImageLeft];
    [choice setAlignment:NSLeftTextAlignment];
    return choice;
}

NSButton* DRMakeBox(NSString* title, id target, SEL action) {
    return MakeChoice(title, target, action, NSSwitchButton);
}

NSButton* DRMakeRadio(NSString* title, id target, SEL action) {
    return MakeChoice(title, target, action, NSRadioButton);
}

NSPopUpButton* DRMakeMenu(id target, SEL action) {
    NSPopUpButton* menu = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] autorelease];
    [menu setAutoenablesItems:NO];
    [menu setTarget:target];
    [menu setAction:action];
    return menu;
}

// A cell keeps this much of its frame for itself, on both sides together.
static const CGFloat CellInset = 6;

static NSSize SizeOfText(NSString* text, NSFont* font, CGFloat width) {
    NSDictionary* attributes = [NSDictionary dictionaryWithObject:font forKey:NSFontAttributeName];
    return [text boundingRectWithSize:NSMakeSize(width, 10000)
                              options:NSStringDrawingUsesLineFragmentOrigin
                           attributes:attributes]
        .size;
}

CGFloat DRHeightOfText(NSTextField* label, CGFloat width) {
    const CGFloat line = ceil(SizeOfText(@"X", [label font], 10000).height);
    return MAX(line, ceil(SizeOfText([label stringValue], [label font], width - CellInset).height)) + 2;
}

CGFloat DRWidthOfLabel(NSTextField* label) {
    return ceil(SizeOfText([label stringValue], [label font], 10000).width) + CellInset;
}

CGFloat DRWidthOfButton(NSButton* button) {
    return MIN(480, MAX(84, ceil(SizeOfText([button title], [button font], 10000).width) + 44));
}

CGFloat DRWidthOfOption(NSButton* option) {
    NSArray* titles = [option isKindOfClass:[NSPopUpButton class]] ? [(NSPopUpButton*)option itemTitles]
                                                                   : [NSArray arrayWithObject:[option title]];
    CGFloat widest = 0;
    for (NSUInteger i = 0; i < [titles count]; i++)
        widest = MAX(widest, ceil(SizeOfText([titles objectAtIndex:i], [option font], 10000).width));
    return MIN(480, widest + 30); // with the mark beside it
}

CGFloat DRWidthOfRow(NSArray* buttons) {
    CGFloat width = 2 * DRPanelMargin - DRPanelButtonGap;
    for (NSUInteger i = 0; i < [buttons count]; i++) {
        if (![[buttons objectAtIndex:i] isHidden])
            width += DRWidthOfButton([buttons objectAtIndex:i]) + DRPanelButtonGap;
    }
    return width;
}

void DRPlaceButtons(NSArray* buttons, CGFloat panelWidth, CGFloat y) {
    CGFloat right = panelWidth - DRPanelMargin;
    for (NSUInteger i = 0; i < [buttons count]; i++) {
        NSButton* button = [buttons objectAtIndex:i];
        if ([button isHidden])
            continue;
        const CGFloat width = DRWidthOfButton(button);
        [button setFrame:NSMakeRect(right - width, y, width, DRPanelButtonHeight)];
        right -= width + DRPanelButtonGap;
    }
}

void DRLinkKeyViews(NSWindow* window, NSArray* controls) {
    const NSUInteger count = [controls count];
    for (NSUInteger i = 0; i < count; i++)
        [[controls objectAtIndex:i] setNextKeyView:[controls objectAtIndex:(i + 1) % count]];
    if (count > 0)
        [window setInitialFirstResponder:[controls objectAtIndex:0]];
}

@interface DRRedrawing : NSObject
@end

@implementation DRRedrawing

+ (void)draw:(NSValue*)which {
    NSWindow* window = [which nonretainedObjectValue];
    if ([window isVisible])
        [window display];
}

+ (void)redraw:(NSNotification*)notification {
    NSValue* window = [NSValue valueWithNonretainedObject:[notification object]];
    NSArray* modes = [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, nil];
    [self draw:window];
    // And again: the display tells of what it has done before it has done it all.
    [self performSelector:@selector(draw:) withObject:window afterDelay:0.5 inModes:modes];
    [self performSelector:@selector(draw:) withObject:window afterDelay:2 inModes:modes];
}

@end

void DRKeepDrawn(NSWindow* window) {
    NSString* names[] = {NSWindowDidExposeNotification, NSWindowDidBecomeKeyNotification,
                         NSWindowDidMoveNotification, NSWindowDidResizeNotification};
    for (size_t i = 0; i < sizeof names / sizeof *names; i++)
        [[NSNotificationCenter defaultCenter] addObserver:[DRRedrawing class]
                                                 selector:@selector(redraw:)
                                                     name:names[i]
                                                   object:window];
}

void DRForgetDrawing(NSWindow* window) {
    [[NSNotificationCenter defaultCenter] removeObserver:[DRRedrawing class] name:nil object:window];
    [NSObject cancelPreviousPerformRequestsWithTarget:[DRRedrawing class]
                                             selector:@selector(draw:)
                                               object:[NSValue valueWithNonretainedObject:window]];
}

void DRResizePanel(NSWindow* window, NSSize contents) {
    const NSRect before = [window frame];
    NSRect frame = [window frameRectForContentRect:NSMakeRect(0, 0, contents.width, contents.height)];
    if (NSEqualSizes(frame.size, before.size))
        return;
    frame.origin = NSMakePoint(NSMinX(before), NSMaxY(before) - NSHeight(frame));
    const NSRect screen = [[window screen] visibleFrame];
    if (NSMinY(frame) < NSMinY(screen))
        frame.origin.y = NSMinY(screen);
    if (NSMaxX(frame) > NSMaxX(screen))
        frame.origin.x = MAX(NSMinX(screen), NSMaxX(screen) - NSWidth(frame));
    [window setFrame:frame display:[window isVisible]];
}
