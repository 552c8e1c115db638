// DRSetupPanel: the drives, the disc in the one that is chosen, and how the panel is begun and ended.
#import "DRSetupPanel.h"
#import "DRDriveChoice.h"
#import "DRNotificationCenter.h"
#import "DRPanelTexts.h"
#import "DRSetupPanelPrivate.h"
#import "DRSheet.h"

struct DRSetupPanelInside {
    NSTextField *prompt, *driveLabel;
    NSPopUpButton* drives;
    NSButton *eject, *cancel, *confirm;
    NSView* picture;
    DRDriveChoice* choice;
    CGFloat trayWidth;
    NSArray* mediaSeen; // what the chosen drive's disc was like when it was last judged
    DRDevice* reserved; // the drive whose blank media this panel keeps for itself
    DRSheet* sheet;
    id sheetDelegate;
    SEL sheetDidEnd;
    void* sheetContext;
    BOOL displayed, modal, ended, handlesReservations;
    int code;
};

@interface DRSetupPanel ()
- (void)addParts;
- (void)announceDevice;
- (void)reserveMediaOf:(DRDevice*)device;
- (NSArray*)mediaNow;
- (void)showTray;
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
    [self addParts];
    return self;
}

- (void)dealloc {
    [self setDelegate:nil];
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

// ---- what is on the panel

- (void)addParts {
    NSView* contents = [[[DRPanelContent alloc] initWithFrame:[[self contentView] frame]] autorelease];
    [self setContentView:contents];
    [self setTitle:[self panelTitle]];
    _inside->picture = [[[DRDiscPicture alloc]
        initWithFrame:NSMakeRect(DRPanelMargin, DRPanelMargin, DRPanelIconSize, DRPanelIconSize)]
        autorelease];
    _inside->prompt = DRMakeLabel([NSFont systemFontOfSize:0]);
    _inside->driveLabel = DRMakeLabel([NSFont systemFontOfSize:0]);
    [_inside->driveLabel setStringValue:DRTextDriveLabel];
    [_inside->driveLabel setAlignment:NSRightTextAlignment];
    _inside->drives = DRMakeMenu(self, @selector(driveChosen:));
    NSString* trayTitles[] = {DRTextOpen, DRTextClose, DRTextEject};
    for (unsigned i = 0; i < 3; i++) {
        _inside->eject = DRMakeButton(trayTitles[i], self, @selector(eject:));
        _inside->trayWidth = MAX(_inside->trayWidth, DRWidthOfButton(_inside->eject));
    }
    _inside->cancel = DRMakeButton(DRTextCancel, self, @selector(cancel:));
    [_inside->cancel setKeyEquivalent:@"\033"];
    _inside->confirm = DRMakeButton([self defaultButtonText], self, @selector(ok:));
    [_inside->confirm setKeyEquivalent:@"\r"];
    [_inside->confirm setEnabled:NO];
    NSView* parts[] = {_inside->picture, _inside->prompt, _inside->driveLabel, _inside->drives,
                       _inside->eject,   _inside->cancel, _inside->confirm};
    for (unsigned i = 0; i < sizeof parts / sizeof *parts; i++)
        [contents addSubview:parts[i]];
    [self addOptionsTo:contents];
    if ([self extraButton] != nil)
        [contents addSubview:[self extraButton]];
}

// Beside it there is room for each of the titles that the tray's button has, so that nothing moves when that changes.
- (CGFloat)menuWidth {
    return DRPanelOptionWidth - DRPanelButtonGap - _inside->trayWidth;
}

- (void)layoutPanel {
    CGFloat y = DRPanelMargin;
    const CGFloat promptHeight = DRHeightOfText(_inside->prompt, DRPanelTextWidth);
    [_inside->prompt setFrame:NSMakeRect(DRPanelTextLeft, y, DRPanelTextWidth, promptHeight)];
    y += MAX(promptHeight, DRPanelIconSize - DRPanelButtonHeight) + DRPanelRowGap;
    const CGFloat menuWidth = [self menuWidth];
    const CGFloat ejectLeft = DRPanelOptionLeft + menuWidth + DRPanelButtonGap;
    [_inside->driveLabel setFrame:NSMakeRect(DRPanelTextLeft, y + 4, DRPanelLabelWidth, 18)];
    [_inside->drives setFrame:NSMakeRect(DRPanelOptionLeft, y, menuWidth, DRPanelButtonHeight)];
    [_inside->eject
        setFrame:NSMakeRect(ejectLeft, y, DRPanelWidth - DRPanelMargin - ejectLeft, DRPanelButtonHeight)];
    y = [self layoutOptionsFrom:y + DRPanelButtonHeight + DRPanelRowGap] + DRPanelGroupGap - DRPanelRowGap;
    DRPlaceButtons([NSArray arrayWithObjects:_inside->confirm, _inside->cancel, nil], y);
    NSButton* extra = [self extraButton];
    if (extra != nil)
        [extra setFrame:NSMakeRect(DRPanelMargin, y, DRWidthOfButton(extra), DRPanelButtonHeight)];
    DRResizePanel(self, y + DRPanelButtonHeight + DRPanelMargin);
    [[self contentView] setNeedsDisplay:YES];

    NSMutableArray* keys = [NSMutableArray arrayWithObjects:_inside->drives, _inside->eject, nil];
    [keys addObjectsFromArray:[self optionControls]];
    if (extra != nil)
        [keys addObject:extra];
    [keys addObject:_inside->cancel];
    [keys addObject:_inside->confirm];
    DRLinkKeyViews(self, keys);
}

- (DRDevice*)chosenDevice {
    return [_inside->choice chosen];
}

- (BOOL)wasConfirmed {
    return !_inside->displayed && _inside->code == NSOKButton;
}

- (NSButton*)defaultButton {
    return _inside->confirm;
}

// ---- drives

- (void)showDrives {
    NSMenu* menu = [_inside->drives menu];
    [_inside->drives removeAllItems];
    NSArray* devices = [_inside->choice devices];
    for (NSUInteger i = 0; i < [devices count]; i++) {
        NSMenuItem* item = [menu addItemWithTitle:[[devices objectAtIndex:i] displayName]
                                           action:NULL
                                    keyEquivalent:@""];
        [item setRepresentedObject:[devices objectAtIndex:i]];
    }
    if ([devices count] == 0)
        [menu addItemWithTitle:DRTextNoDrive action:NULL keyEquivalent:@""];
    [_inside->drives setEnabled:[devices count] > 0];
    const NSInteger chosen = [_inside->drives indexOfItemWithRepresentedObject:[self chosenDevice]];
    [_inside->drives selectItemAtIndex:MAX(chosen, 0)];
}

- (IBAction)driveChosen:(id)sender {
    DRDevice* device = [[_inside->drives selectedItem] representedObject];
    if (device == nil || device == [self chosenDevice])
        return;
    [_inside->choice choose:device];
    [self announceDevice];
}

- (void)announceDevice {
    [self reserveMediaOf:[self chosenDevice]];
    [self deviceSelectionChanged:[self chosenDevice]];
    [self reviewMedia];
}

- (void)reserveMediaOf:(DRDevice*)device {
    if (!_inside->handlesReservations)
        device = nil;
    if (device == _inside->reserved)
        return;
    [_inside->reserved releaseMediaReservation];
    [_inside->reserved release];
    _inside->reserved = [device retain];
    [device acquireMediaReservation];
}

- (void)deviceSelectionChanged:(DRDevice*)device {
    NSDictionary* info =
        device == nil ? nil : [NSDictionary dictionaryWithObject:device forKey:DRSetupPanelSelectedDeviceKey];
    [[NSNotificationCenter defaultCenter] postNotificationName:DRSetupPanelDeviceSelectionChangedNotification
                                                        object:self
                                                      userInfo:info];
}

// Looks for drives that came or went, and at the disc in the chosen one.
- (void)lookAround {
    if (_inside->ended) // what was confirmed stays
        return;
    DRDevice* before = [[[self chosenDevice] retain] autorelease];
    if ([_inside->choice update])
        [self showDrives];
    if ([self chosenDevice] != before) {
        [self announceDevice];
    } else if (![_inside->mediaSeen isEqual:[self mediaNow]]) {
        [self reviewMedia];
    }
}

// ---- the disc

// What tells one state of the disc from another.
- (NSArray*)mediaNow {
    NSDictionary* status = [[self chosenDevice] status];
    NSMutableArray* seen = [NSMutableArray array];
    NSString* keys[] = {DRDeviceMediaStateKey, DRDeviceIsTrayOpenKey, DRDeviceIsBusyKey,
                        DRDeviceMediaInfoKey};
    for (unsigned i = 0; i < sizeof keys / sizeof *keys; i++) {
        id value = [status objectForKey:keys[i]];
        [seen addObject:value == nil ? [NSNull null] : value];
    }
    return seen;
}

- (void)reviewMedia {
    DRDevice* device = [self chosenDevice];
    [_inside->mediaSeen release];
    _inside->mediaSeen = [[self mediaNow] retain];
    [self showOptionsForStatus:[device status]];
    [self showTray];
    [_inside->confirm setEnabled:[self mediaStateChanged:[device status]]];
    [self layoutPanel];
}

- (BOOL)mediaStateChanged:(NSDictionary*)status {
    NSString* prompt = nil;
    BOOL suitable = [self acceptsStatus:status prompt:&prompt];
    id delegate = [self delegate];
    if ([self chosenDevice] != nil &&
        [delegate respondsToSelector:@selector(setupPanel:deviceContainsSuitableMedia:promptString:)])
        suitable = [delegate setupPanel:self
            deviceContainsSuitableMedia:[self chosenDevice]
                           promptString:&prompt];
    [_inside->prompt setStringValue:prompt == nil ? @"" : prompt];
    return suitable;
}

// One button, which does what the drive can do next.
- (void)showTray {
    DRDevice* device = [self chosenDevice];
    const BOOL isOpen = [device trayIsOpen];
    const BOOL isLoaded = [device mediaIsPresent];
    [_inside->eject setTitle:isOpen ? DRTextClose : isLoaded ? DRTextEject : DRTextOpen];
    [_inside->eject setAction:isOpen ? @selector(close:) : isLoaded ? @selector(eject:) : @selector(open:)];
    [_inside->eject setEnabled:device != nil];
}

- (void)moveTray:(BOOL)moved {
    if (!moved)
        NSBeep();
    if (_inside->displayed)
        [self lookAround];
}

- (IBAction)eject:(id)sender {
    [self moveTray:[[self chosenDevice] ejectMedia]];
}

- (IBAction)open:(id)sender {
    [self moveTray:[[self chosenDevice] openTray]];
}

- (IBAction)close:(id)sender {
    [self moveTray:[[self chosenDevice] closeTray]];
}

// ---- from the beginning to the end

- (void)setupForDisplay {
    [self setTitle:[self panelTitle]];
}

// Heard of in every mode of the run loop in which a panel can be on the screen, also while a menu is open.
- (void)followDrives {
    DRNotificationCenter* centre = [DRNotificationCenter currentRunLoopCenter];
    NSString* names[] = {DRDeviceAppearedNotification, DRDeviceDisappearedNotification,
                         DRDeviceStatusChangedNotification};
    for (unsigned i = 0; i < sizeof names / sizeof *names; i++)
        [centre addObserver:self selector:@selector(drivesChanged:) name:names[i] object:nil];
}

- (void)drivesChanged:(NSNotification*)notification {
    [self lookAround];
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

// ---- for the panels to override

- (NSString*)panelTitle {
    return @"";
}
- (NSString*)defaultButtonText {
    return DRTextOK;
}
- (void)addOptionsTo:(NSView*)contents {
}
- (CGFloat)layoutOptionsFrom:(CGFloat)y {
    return y;
}
- (NSArray*)optionControls {
    return [NSArray array];
}
- (NSButton*)extraButton {
    return nil;
}
- (void)showOptionsForStatus:(NSDictionary*)status {
}
- (BOOL)acceptsStatus:(NSDictionary*)status prompt:(NSString**)prompt {
    return status != nil;
}
- (BOOL)mayConfirm {
    return YES;
}

@end
