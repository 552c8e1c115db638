// DRProgressPanel: a job from its beginning to its end, and what a person sees of it.
#import "DRProgressPanel.h"
#import "DRDeviceConstants.h"
#import "DRDriveWatch.h"
#import "DRPanelTexts.h"
#import "DRProgressPanelPrivate.h"
#import "DRProgressTime.h"
#import "DRSheet.h"
#import "DRStatusConstants.h"

typedef enum { Idle, Running, Asking, Stopping, Failed } Stage;

struct DRProgressPanelInside {
    NSTextField *headline, *state, *timeLeft, *speed;
    NSProgressIndicator* bar;
    NSButton *stop, *keep, *done; // done ends what is shown of a failure
    NSView* picture;
    NSString* text;
    BOOL verbose;
    Stage stage;
    id job;
    DRSheet* sheet;
    DRDriveWatch* watch;
    DRProgressTime* time;
    BOOL stoppedByPerson;
};

@interface DRProgressPanel ()
- (void)addParts;
- (void)layoutPanel;
- (void)showStage:(Stage)stage text:(NSString*)text;
- (void)showStatus:(NSDictionary*)status;
- (void)showFailure:(NSDictionary*)error;
- (void)end;
@end

@implementation DRProgressPanel

- (id)init {
    const NSUInteger style = NSTitledWindowMask | NSMiniaturizableWindowMask | NSClosableWindowMask;
    self = [super initWithContentRect:NSMakeRect(0, 0, DRPanelWidth, 150)
                            styleMask:style
                              backing:NSBackingStoreBuffered
                                defer:YES];
    if (self == nil)
        return nil;
    _inside = calloc(1, sizeof *_inside);
    _inside->watch = [[DRDriveWatch alloc] initWithTarget:self action:@selector(look)];
    _inside->time = [DRProgressTime new];
    [self setReleasedWhenClosed:NO];
    [self setHidesOnDeactivate:NO];
    // A window of the display that is shown again counts its frame twice, and has black edges.
    [self setOneShot:YES];
    [self addParts];
    return self;
}

- (void)dealloc {
    [self setDelegate:nil];
    [_inside->watch stop];
    [_inside->watch release];
    [_inside->time release];
    [_inside->text release];
    [_inside->job release];
    [_inside->sheet release];
    free(_inside);
    [super dealloc];
}

// The delegate hears of both notifications without asking for them.
- (void)setDelegate:(id)delegate {
    NSNotificationCenter* centre = [NSNotificationCenter defaultCenter];
    if ([self delegate] != nil) {
        [centre removeObserver:[self delegate] name:[self willBeginName] object:self];
        [centre removeObserver:[self delegate] name:[self didFinishName] object:self];
    }
    [super setDelegate:delegate];
    if ([delegate respondsToSelector:[self willBeginAction]])
        [centre addObserver:delegate selector:[self willBeginAction] name:[self willBeginName] object:self];
    if ([delegate respondsToSelector:[self didFinishAction]])
        [centre addObserver:delegate selector:[self didFinishAction] name:[self didFinishName] object:self];
}

// ---- what a program sets

- (void)setDescription:(NSString*)text {
    NSString* copy = [text copy];
    [_inside->text release];
    _inside->text = copy;
    [_inside->headline setStringValue:[self description]];
    [self layoutPanel];
}

// Not what the object is, but what it says: that is the platform's.
- (NSString*)description {
    return _inside != NULL && _inside->text != nil ? [[_inside->text retain] autorelease]
                                                   : [self standardDescription];
}

- (void)setVerboseProgressStatus:(BOOL)verbose {
    _inside->verbose = verbose;
    [self layoutPanel];
}

- (BOOL)verboseProgressStatus {
    return _inside->verbose;
}

- (id)job {
    return _inside->job;
}

// ---- what is on the panel

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

static CGFloat PlaceText(NSTextField* label, CGFloat y) {
    const CGFloat height = DRHeightOfText(label, DRPanelTextWidth);
    [label setFrame:NSMakeRect(DRPanelTextLeft, y, DRPanelTextWidth, height)];
    return y + height + DRPanelRowGap;
}

- (void)layoutPanel {
    CGFloat y = PlaceText(_inside->headline, DRPanelMargin);
    if (![_inside->state isHidden])
        y = PlaceText(_inside->state, y);
    if (![_inside->bar isHidden]) {
        [_inside->bar setFrame:NSMakeRect(DRPanelTextLeft, y, DRPanelTextWidth, 16)];
        y += 16 + 6;
        [_inside->timeLeft setFrame:NSMakeRect(DRPanelTextLeft, y, DRPanelTextWidth * 0.6, 16)];
        [_inside->speed
            setFrame:NSMakeRect(DRPanelTextLeft + DRPanelTextWidth * 0.6, y, DRPanelTextWidth * 0.4, 16)];
        [_inside->speed setHidden:!_inside->verbose];
        y += 16;
    }
    y = MAX(y, DRPanelMargin + DRPanelIconSize) + DRPanelRowGap;
    NSArray* buttons = [NSArray arrayWithObjects:_inside->done, _inside->keep, _inside->stop, nil];
    NSMutableArray* keys = [NSMutableArray array];
    for (NSUInteger i = 0; i < 3; i++) {
        if (![[buttons objectAtIndex:i] isHidden])
            [keys addObject:[buttons objectAtIndex:i]];
    }
    if ([keys count] > 0) {
        DRPlaceButtons(buttons, y);
        y += DRPanelButtonHeight;
    }
    DRLinkKeyViews(self, keys);
    DRResizePanel(self, y + DRPanelMargin);
    [[self contentView] setNeedsDisplay:YES];
}

// What is on the panel follows from the stage.
- (void)showStage:(Stage)stage text:(NSString*)text {
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

static void SetText(NSTextField* label, NSString* text) {
    if (![[label stringValue] isEqual:text])
        [label setStringValue:text];
}

- (void)showStatus:(NSDictionary*)status {
    const float percent = [[status objectForKey:DRStatusPercentCompleteKey] floatValue];
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
    SetText(_inside->timeLeft, [_inside->time text]);
    SetText(_inside->speed, [_inside->time textOfSpeedIn:status]);
    NSString* state = _inside->stage == Running ? [self stateTextFor:status] : nil;
    if (state != nil && ![state isEqual:[_inside->state stringValue]]) {
        [_inside->state setStringValue:state];
        [self layoutPanel];
    }
}

// ---- from the beginning to the end

- (void)beginJob:(id)job layout:(id)layout window:(NSWindow*)owner {
    if (job == nil)
        [NSException raise:NSInvalidArgumentException format:@"A progress panel needs something to do."];
    if (_inside->stage == Failed)
        [self end]; // nobody has looked at the failure before, and something new begins
    if (_inside->stage != Idle)
        [NSException raise:NSInternalInconsistencyException
                    format:@"The panel \"%@\" is in use; use another one for what runs at the same time.",
                           [self title]];
    [self retain]; // until the end
    _inside->job = [job retain];
    _inside->stoppedByPerson = NO;
    [_inside->time restart];
    [_inside->headline setStringValue:[self description]];
    [_inside->bar setDoubleValue:0];
    [self showStage:Running text:[self stateTextFor:nil]];
    [[NSNotificationCenter defaultCenter] postNotificationName:[self willBeginName] object:self];
    [NSApp activateIgnoringOtherApps:YES];
    if (owner != nil) {
        _inside->sheet = [[DRSheet alloc] initWithPanel:self window:owner];
        [_inside->sheet show];
    } else {
        [self center];
        [self makeKeyAndOrderFront:nil];
    }
    @try {
        [self startWithLayout:layout];
    } @catch (NSException* refused) {
        [self end];
        @throw;
    }
    [_inside->watch startEvery:0.1];
}

- (void)look {
    NSDictionary* status = [self jobStatus];
    NSString* state = [status objectForKey:DRStatusStateKey];
    const BOOL failed = [state isEqual:DRStatusStateFailed];
    if (!failed && ![state isEqual:DRStatusStateDone])
        return [self showStatus:status];
    [[self retain] autorelease];
    [_inside->watch stop];
    if ([self delegateShowsTheEnd] || (failed && _inside->stoppedByPerson)) {
        [self end];
    } else if (!failed) {
        NSBeep();
        [self end];
    } else {
        [self showFailure:[status objectForKey:DRErrorStatusKey]];
    }
}

- (void)showFailure:(NSDictionary*)error {
    NSString* text = [self failureText];
    NSString* reason = [error objectForKey:DRErrorStatusErrorStringKey];
    if ([reason length] > 0)
        text = [NSString stringWithFormat:@"%@ %@", text, reason];
    [self showStage:Failed text:text];
    NSBeep();
    [self makeKeyAndOrderFront:nil];
}

- (void)end {
    DRSheet* sheet = [_inside->sheet autorelease];
    _inside->sheet = nil;
    [_inside->watch stop];
    [_inside->bar stopAnimation:self];
    _inside->stage = Idle;
    [_inside->job autorelease];
    _inside->job = nil;
    if (sheet != nil)
        [sheet end];
    else
        [self orderOut:nil];
    [[NSNotificationCenter defaultCenter] postNotificationName:[self didFinishName] object:self];
    [self autorelease];
}

// ---- stopping

- (void)askToStop {
    if (_inside->stage == Running)
        [self showStage:Asking text:DRTextStopQuestion];
}

- (void)stopJob {
    if (_inside->stage != Running && _inside->stage != Asking)
        return;
    [self showStage:Stopping text:DRTextStateStopping];
    [self abortJob];
}

- (void)stopChosen:(id)sender {
    if (_inside->stage != Asking)
        return [self askToStop];
    _inside->stoppedByPerson = YES;
    [self stopJob];
}

- (void)keepChosen:(id)sender {
    [self showStage:Running text:[self stateTextFor:[self jobStatus]]];
}

- (void)doneChosen:(id)sender {
    [self end];
}

// The window's own close button.
- (void)performClose:(id)sender {
    if (_inside->stage == Failed)
        [self end];
    else if (_inside->stage == Running && [self canStop])
        [self askToStop];
    else
        NSBeep();
}

// Escape is a way back from wherever the panel is.
- (void)keyDown:(NSEvent*)event {
    if (![[event characters] isEqual:@"\033"])
        return [super keyDown:event];
    if (_inside->stage == Asking)
        [self keepChosen:self];
    else
        [self performClose:self];
}

@end
