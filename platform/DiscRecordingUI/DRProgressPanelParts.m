// DRProgressPanelParts.m: what is on a progress panel, at each stage of its job.
#import "DRPanelTexts.h"
#import "DRProgressPanelPrivate.h"
#import "DRStatusConstants.h"

@implementation DRProgressPanel (Parts)

- (void)addParts {
    NSView* contents = [[[DRPanelContent alloc] initWithFrame:[[self contentView] frame]] autorelease];
    [self setContentView:contents];
    [self setTitle:[self panelTitle]];
    NSFont* small = [NSFont systemFontOfSize:[NSFont smallSystemFontSize]];
    _inside->picture = [[[DRDiscPicture alloc]
        initWithFrame:NSMakeRect(DRPanelMargin, DRPanelMargin, DRPanelIconSize, DRPanelIconSize)]
        autorelease];
    _inside->headline = DRMakeLabel([NSFont boldSystemFontOfSize:0]);
    _inside->state = DRMakeLabel([NSFont systemFontOfSize:0]);
    _inside->timeLeft = DRMakeLabel(small);
    _inside->speed = DRMakeLabel(small);
    [_inside->speed setAlignment:NSRightTextAlignment];
    _inside->bar = [[[NSProgressIndicator alloc] initWithFrame:NSZeroRect] autorelease];
    [_inside->bar setMinValue:0];
    [_inside->bar setMaxValue:1];
    _inside->stop = DRMakeButton(DRTextStop, self, @selector(stopChosen:));
    _inside->keep = DRMakeButton(DRTextKeepBurning, self, @selector(keepChosen:));
    _inside->done = DRMakeButton(DRTextOK, self, @selector(doneChosen:));
    NSView* parts[] = {_inside->picture, _inside->headline, _inside->state, _inside->timeLeft, _inside->speed,
                       _inside->bar,     _inside->stop,     _inside->keep,  _inside->done};
    for (unsigned i = 0; i < sizeof parts / sizeof *parts; i++)
        [contents addSubview:parts[i]];
}

static CGFloat PlaceText(NSTextField* label, CGFloat width, CGFloat y) {
    const CGFloat height = DRHeightOfText(label, width);
    [label setFrame:NSMakeRect(DRPanelTextLeft, y, width, height)];
    return y + height + DRPanelRowGap;
}

// The time that is left and the speed, in one line under the bar.
- (CGFloat)widthOfFigures {
    const CGFloat speed = [_inside->speed isHidden] ? 0 : DRWidthOfLabel(_inside->speed);
    return [_inside->timeLeft isHidden] ? 0 : DRWidthOfLabel(_inside->timeLeft) + speed;
}

- (void)placeFigures {
    const NSRect bar = [_inside->bar frame];
    const CGFloat y = NSMaxY(bar) + 6, speed = DRWidthOfLabel(_inside->speed);
    const CGFloat end = [_inside->speed isHidden] ? NSMaxX(bar) : NSMaxX(bar) - speed;
    [_inside->timeLeft setFrame:NSMakeRect(NSMinX(bar), y, end - NSMinX(bar), 16)];
    [_inside->speed setFrame:NSMakeRect(end, y, speed, 16)];
}

- (void)layoutPanel {
    NSArray* buttons = [NSArray arrayWithObjects:_inside->done, _inside->keep, _inside->stop, nil];
    [_inside->speed setHidden:!_inside->verbose || [_inside->timeLeft isHidden]];
    const CGFloat panelWidth = MAX(MAX(DRPanelWidth, DRWidthOfRow(buttons)),
                                   DRPanelTextLeft + [self widthOfFigures] + DRPanelMargin);
    const CGFloat width = panelWidth - DRPanelMargin - DRPanelTextLeft;
    CGFloat y = PlaceText(_inside->headline, width, DRPanelMargin);
    if (![_inside->state isHidden])
        y = PlaceText(_inside->state, width, y);
    if (![_inside->bar isHidden]) {
        [_inside->bar setFrame:NSMakeRect(DRPanelTextLeft, y, width, 16)];
        y += 16 + 6;
        [self placeFigures];
        y += 16;
    }
    y = MAX(y, DRPanelMargin + DRPanelIconSize) + DRPanelRowGap;
    NSMutableArray* keys = [NSMutableArray array];
    for (NSUInteger i = 0; i < 3; i++) {
        if (![[buttons objectAtIndex:i] isHidden])
            [keys addObject:[buttons objectAtIndex:i]];
    }
    if ([keys count] > 0) {
        DRPlaceButtons(buttons, panelWidth, y);
        y += DRPanelButtonHeight;
    }
    DRLinkKeyViews(self, keys);
    DRResizePanel(self, NSMakeSize(panelWidth, y + DRPanelMargin));
    [[self contentView] setNeedsDisplay:YES];
}

- (void)showStage:(DRJobStage)stage text:(NSString*)text {
    const BOOL running = stage == Running || stage == Stopping;
    _inside->stage = stage;
    [_inside->state setStringValue:text];
    [_inside->state setHidden:[text length] == 0];
    [_inside->bar setHidden:stage == Failed];
    [_inside->timeLeft setHidden:!running];
    [_inside->stop setHidden:![self canStop] || stage == Failed];
    [_inside->stop setEnabled:stage != Stopping];
    [_inside->stop setTitle:stage == Asking ? DRTextStopBurning : DRTextStop];
    [_inside->keep setHidden:stage != Asking];
    [_inside->done setHidden:stage != Failed];
    // What loses nothing is what Return does. A hidden button would take the key as well.
    [_inside->keep setKeyEquivalent:stage == Asking ? @"\r" : @""];
    [_inside->done setKeyEquivalent:stage == Failed ? @"\r" : @""];
    [self layoutPanel];
    NSButton* first = stage == Failed ? _inside->done : stage == Asking ? _inside->keep : _inside->stop;
    [self makeFirstResponder:[first isHidden] ? nil : first];
}

static BOOL SetText(NSTextField* label, NSString* text) {
    if ([[label stringValue] isEqual:text])
        return NO;
    [label setStringValue:text];
    return YES;
}

- (void)showStatus:(NSDictionary*)status {
    NSNumber* done = [status objectForKey:DRStatusPercentCompleteKey];
    const float percent = done == nil ? -1 : [done floatValue]; // nil answers no number, but anything
    const BOOL measured = percent >= 0;
    if ([_inside->bar isIndeterminate] == measured) {
        [_inside->bar setIndeterminate:!measured];
        if (measured)
            [_inside->bar stopAnimation:self];
        else
            [_inside->bar startAnimation:self];
    }
    if (measured)
        [_inside->bar setDoubleValue:(double)percent];
    [_inside->time note:percent ofState:[status objectForKey:DRStatusStateKey]];
    const BOOL changed = SetText(_inside->timeLeft, [_inside->time text]) |
                         SetText(_inside->speed, [_inside->time textOfSpeedIn:status]);
    if ([self widthOfFigures] > NSWidth([_inside->bar frame]))
        [self layoutPanel];
    else if (changed)
        [self placeFigures];
    NSString* state = _inside->stage == Running ? [self stateTextFor:status] : nil;
    if (state != nil && ![state isEqual:[_inside->state stringValue]]) {
        [_inside->state setStringValue:state];
        [self layoutPanel];
    }
}

@end
