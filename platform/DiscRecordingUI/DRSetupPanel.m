// DRSetupPanel: from the making of a setup panel to its end, modal or as a sheet.
#import "DRSetupPanel.h"
#import "DRNotificationCenter.h"
#import "DRSetupPanelPrivate.h"

@interface DRSetupPanel ()
- (void)stopDisplay;
- (void)endSheet;
@end

@implementation DRSetupPanel

- (id)initWithNibName:(NSString*)nibName {
    self = [super initWithContentRect:NSMakeRect(0, 0, DRPanelWidth, 200)
                            styleMask:NSTitledWindowMask | NSClosableWindowMask
                              backing:NSBackingStoreBuffered
                                defer:YES];
    if (self == nil)
        return nil;
    _inside = calloc(1, sizeof *_inside);
    _inside->choice = [[DRDriveChoice alloc] initWithPanel:self];
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
    [self stopDisplay];
    [_inside->choice release];
    [_inside->mediaSeen release];
    [_inside->sheet release];
    free(_inside);
    [super dealloc];
}

// The delegate hears of the notification without asking for it.
- (void)setDelegate:(id)delegate {
    NSNotificationCenter* centre = [NSNotificationCenter defaultCenter];
    NSString* name = DRSetupPanelDeviceSelectionChangedNotification;
    if ([self delegate] != nil)
        [centre removeObserver:[self delegate] name:name object:self];
    [super setDelegate:delegate];
    if ([delegate respondsToSelector:@selector(setupPanelDeviceSelectionChanged:)])
        [centre addObserver:delegate
                   selector:@selector(setupPanelDeviceSelectionChanged:)
                       name:name
                     object:self];
}

- (BOOL)wasConfirmed {
    return !_inside->displayed && _inside->code == NSOKButton;
}

// ---- from the beginning to the end

- (void)setupForDisplay {
    [self setTitle:[self panelTitle]];
}

- (void)startDisplay {
    id delegate = [self delegate];
    _inside->displayed = YES;
    [self followDrives]; // before they are looked at, so that no change is missed
    _inside->ended = NO;
    _inside->code = NSCancelButton;
    [_inside->confirm setEnabled:NO]; // until its disc was judged; an event may send ok: before that
    [self setupForDisplay];
    _inside->handlesReservations =
        ![delegate respondsToSelector:@selector(setupPanelShouldHandleMediaReservations:)] ||
        [delegate setupPanelShouldHandleMediaReservations:self];
    [_inside->choice startWithNothing];
    [_inside->choice update];
    [self showDrives];
    [self announceDevice];
    [self center];
}

- (void)stopDisplay {
    if (_inside->displayed)
        [[DRNotificationCenter currentRunLoopCenter] removeObserver:self name:nil object:nil];
    [self reserveMediaOf:nil];
    _inside->displayed = NO;
}

- (int)runSetupPanel {
    if (_inside->displayed) // asked by an event of the panel itself
        return NSCancelButton;
    [[self retain] autorelease];
    @try { // a delegate may raise
        [self startDisplay];
        if (!_inside->ended) {
            [NSApp activateIgnoringOtherApps:YES];
            _inside->modal = YES;
            [NSApp runModalForWindow:self];
        }
    } @finally {
        _inside->modal = NO;
        [self orderOut:nil];
        [self stopDisplay];
    }
    return _inside->code;
}

- (void)beginSetupSheetForWindow:(NSWindow*)owner
                   modalDelegate:(id)modalDelegate
                  didEndSelector:(SEL)didEndSelector
                     contextInfo:(void*)contextInfo {
    [DRSheet requireWindow:owner for:[self title]];
    if (_inside->displayed)
        return;
    [self retain]; // until it ends
    _inside->sheetDelegate = modalDelegate;
    _inside->sheetDidEnd = didEndSelector;
    _inside->sheetContext = contextInfo;
    _inside->sheet = [[DRSheet alloc] initWithPanel:self window:owner];
    @try {
        [self startDisplay];
    } @catch (NSException* refused) {
        [_inside->sheet release];
        _inside->sheet = nil;
        [self stopDisplay];
        [self autorelease];
        @throw;
    }
    if (_inside->ended) {
        [self endSheet];
    } else {
        [NSApp activateIgnoringOtherApps:YES];
        [_inside->sheet show];
    }
}

- (void)endSheet {
    DRSheet* sheet = [_inside->sheet autorelease];
    _inside->sheet = nil;
    [self stopDisplay];
    if (_inside->sheetDidEnd != NULL && [_inside->sheetDelegate respondsToSelector:_inside->sheetDidEnd]) {
        typedef void (*DidEnd)(id, SEL, DRSetupPanel*, int, void*);
        DidEnd didEnd =
            (DidEnd)(void (*)(void))[_inside->sheetDelegate methodForSelector:_inside->sheetDidEnd];
        didEnd(_inside->sheetDelegate, _inside->sheetDidEnd, self, _inside->code, _inside->sheetContext);
    }
    [sheet end];
    [self autorelease];
}

- (void)endWithCode:(int)code {
    if (!_inside->displayed || _inside->ended)
        return;
    _inside->code = code;
    _inside->ended = YES;
    if (_inside->modal) {
        [NSApp stopModalWithCode:code];
        // A modal loop looks up when an event comes, and this may be called by a timer.
        [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[self windowNumber]
                                             context:nil
                                             subtype:0
                                               data1:0
                                               data2:0]
                 atStart:NO];
    } else if (_inside->sheet != nil && [self isVisible]) {
        [self endSheet];
    }
}

// Before it is shown and once it has ended there is nothing to confirm: no drive may be taken then.
- (IBAction)ok:(id)sender {
    if (!_inside->displayed || _inside->ended)
        return;
    if (![_inside->confirm isEnabled] || ![self mayConfirm])
        return NSBeep();
    [self endWithCode:NSOKButton];
}

- (IBAction)cancel:(id)sender {
    [self endWithCode:NSCancelButton];
}

// The window's own close button.
- (void)performClose:(id)sender {
    [self cancel:sender];
}

@end
