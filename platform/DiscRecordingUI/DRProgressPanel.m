// DRProgressPanel: a job from its beginning to its end.
#import "DRProgressPanel.h"
#import "DRPanelTexts.h"
#import "DRProgressPanelPrivate.h"
#import "DRStatusConstants.h"

@interface DRProgressPanel ()
- (void)end;
- (void)showFailure:(NSDictionary*)error;
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
    DRKeepDrawn(self);
    [self addParts];
    return self;
}

- (void)dealloc {
    [self setDelegate:nil];
    DRForgetDrawing(self);
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
    _inside->stopped = NO;
    [_inside->time restart];
    [_inside->headline setStringValue:[self description]];
    [_inside->bar setDoubleValue:0];
    [self showStage:Running text:[self stateTextFor:nil]];
    [[NSNotificationCenter defaultCenter] postNotificationName:[self willBeginName] object:self];
    if (_inside->stopped) { // while that was told: nothing is begun, and it ends as what is stopped later
        [self delegateShowsTheEnd];
        return [self end];
    }
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
    if ([self delegateShowsTheEnd] || (failed && _inside->stopped)) {
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
    _inside->stopped = YES;
    [self showStage:Stopping text:DRTextStateStopping];
    [self abortJob];
}

- (void)stopChosen:(id)sender {
    if (_inside->stage == Asking)
        [self stopJob];
    else
        [self askToStop];
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
