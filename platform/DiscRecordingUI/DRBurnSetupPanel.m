// DRBurnSetupPanel: the options of a burn, and the burn that is made of them.
#import "DRBurnSetupPanel.h"
#import "DRPanelTexts.h"
#import "DRSetupPanelPrivate.h"

struct DRBurnSetupPanelInside {
    NSButton* expander;
    NSTextField *speedLabel, *discLabel, *thenLabel;
    NSPopUpButton* speeds;
    NSButton *replace, *appendable, *verify, *test, *thenEject, *thenMount;
    BOOL expanded, canTest, canAppend;
    float speed; // in KB/s
    BOOL leavesOpen, ejects, tests, verifies, replaces;
};

@interface DRBurnSetupPanel ()
- (NSArray*)optionParts;
- (BOOL)canTestInDrive:(NSDictionary*)media;
- (void)takeChoices;
@end

@implementation DRBurnSetupPanel

+ (DRBurnSetupPanel*)setupPanel {
    return [[[self alloc] initWithNibName:nil] autorelease];
}

- (id)initWithNibName:(NSString*)nibName {
    _burn = calloc(1, sizeof *_burn);
    _burn->canAppend = YES;
    _burn->ejects = YES;
    _burn->verifies = YES;
    _burn->speed = DRDeviceBurnSpeedMax;
    return [super initWithNibName:nibName];
}

- (void)dealloc {
    struct DRBurnSetupPanelInside* inside = _burn;
    [super dealloc];
    free(inside);
}

- (NSString*)panelTitle {
    return DRTextBurnTitle;
}
- (NSString*)defaultButtonText {
    return DRTextBurn;
}
- (NSButton*)extraButton {
    return _burn->expander;
}

// ---- what a program sets

- (void)setDefaultButtonTitle:(NSString*)title {
    const BOOL isDefault = title == nil || [title isEqual:DRBurnSetupPanelDefaultButtonDefaultTitle];
    [[self defaultButton] setTitle:isDefault ? [self defaultButtonText] : title];
    [self layoutPanel];
}

- (void)setCanSelectTestBurn:(BOOL)flag {
    _burn->canTest = flag;
}

- (void)setCanSelectAppendableMedia:(BOOL)flag {
    _burn->canAppend = flag;
}

- (void)setupForDisplay {
    [super setupForDisplay];
    [_burn->test setHidden:!_burn->expanded || !_burn->canTest];
    [_burn->appendable setEnabled:_burn->canAppend];
    if (!_burn->canAppend)
        [_burn->appendable setState:NSOffState];
    // To lose what is on a disc is decided anew each time.
    [_burn->replace setState:NSOffState];
    [self takeChoices];
}

// ---- the options

static NSTextField* OptionLabel(NSString* text) {
    NSTextField* label = DRMakeLabel([NSFont systemFontOfSize:0]);
    [label setStringValue:text];
    [label setAlignment:NSRightTextAlignment];
    return label;
}

- (void)addOptionsTo:(NSView*)contents {
    _burn->expander = DRMakeButton(DRTextShowOptions, self, @selector(expand:));
    _burn->speedLabel = OptionLabel(DRTextSpeedLabel);
    _burn->discLabel = OptionLabel(DRTextDiscLabel);
    _burn->thenLabel = OptionLabel(DRTextThenLabel);
    _burn->speeds = DRMakeMenu(self, @selector(burnSpeed:));
    _burn->replace = DRMakeBox(DRTextReplace, self, @selector(replace:));
    _burn->appendable = DRMakeBox(DRTextAppendable, self, @selector(appendable:));
    _burn->verify = DRMakeBox(DRTextVerify, self, @selector(verifyBurn:));
    _burn->test = DRMakeBox(DRTextTestBurn, self, @selector(testBurn:));
    _burn->thenEject = DRMakeRadio(DRTextThenEject, self, @selector(completionAction:));
    _burn->thenMount = DRMakeRadio(DRTextThenMount, self, @selector(completionAction:));
    [_burn->verify setState:NSOnState];
    [_burn->thenEject setState:NSOnState];
    [[_burn->speeds menu] addItemWithTitle:DRTextMaximumSpeed action:NULL keyEquivalent:@""];
    NSArray* parts = [self optionParts];
    for (NSUInteger i = 0; i < [parts count]; i++) {
        [contents addSubview:[parts objectAtIndex:i]];
        [[parts objectAtIndex:i] setHidden:YES];
    }
}

- (NSArray*)optionParts {
    return [[self optionLabels] arrayByAddingObjectsFromArray:[self optionControls]];
}

- (NSArray*)optionLabels {
    return [NSArray arrayWithObjects:_burn->speedLabel, _burn->discLabel, _burn->thenLabel, nil];
}

- (NSArray*)optionControls {
    return [NSArray arrayWithObjects:_burn->speeds, _burn->replace, _burn->appendable, _burn->verify,
                                     _burn->test, _burn->thenEject, _burn->thenMount, nil];
}

- (CGFloat)layoutOptionsFrom:(CGFloat)y {
    if (!_burn->expanded)
        return y;
    [self placeOption:_burn->speeds label:_burn->speedLabel at:y];
    y += DRPanelButtonHeight + DRPanelRowGap;
    NSButton* boxes[] = {_burn->replace, _burn->appendable, _burn->verify, _burn->test};
    for (unsigned i = 0; i < 4; i++) {
        if ([boxes[i] isHidden])
            continue;
        [self placeOption:boxes[i] label:i == 0 ? _burn->discLabel : nil at:y];
        y += 18 + 4;
    }
    y += DRPanelRowGap - 4;
    [self placeOption:_burn->thenEject label:_burn->thenLabel at:y];
    [self placeOption:_burn->thenMount label:nil at:y + 22];
    return y + 22 + 18 + DRPanelRowGap;
}

- (void)showOptionsForStatus:(NSDictionary*)status {
    NSArray* speeds = [status objectForKey:DRDeviceBurnSpeedsKey];
    NSMenu* menu = [_burn->speeds menu];
    [_burn->speeds removeAllItems];
    [menu addItemWithTitle:DRTextMaximumSpeed action:NULL keyEquivalent:@""];
    NSString* mediaClass = [[status objectForKey:DRDeviceMediaInfoKey] objectForKey:DRDeviceMediaClassKey];
    for (NSUInteger i = [speeds count]; i-- > 0;) {
        NSNumber* speed = [speeds objectAtIndex:i];
        [menu addItemWithTitle:DRTextOfSpeed([speed floatValue], mediaClass) action:NULL keyEquivalent:@""];
        [[[menu itemArray] lastObject] setRepresentedObject:speed];
        if ([speed floatValue] == _burn->speed)
            [_burn->speeds selectItem:[[menu itemArray] lastObject]];
    }
    if ([_burn->speeds indexOfSelectedItem] < 0)
        [_burn->speeds selectItemAtIndex:0];
    // There must be something to replace, and the drive able to.
    NSDictionary* media = [status objectForKey:DRDeviceMediaInfoKey];
    const BOOL canReplace = ![[media objectForKey:DRDeviceMediaIsBlankKey] boolValue] &&
                            [[media objectForKey:DRDeviceMediaIsOverwritableKey] boolValue];
    [_burn->replace setEnabled:canReplace];
    if (!canReplace)
        [_burn->replace setState:NSOffState];
    [_burn->test setEnabled:[self canTestInDrive:media]];
    [self takeChoices];
}

- (BOOL)canTestInDrive:(NSDictionary*)media {
    NSDictionary* can = [[[self chosenDevice] info] objectForKey:DRDeviceWriteCapabilitiesKey];
    const BOOL isCD = [[media objectForKey:DRDeviceMediaClassKey] isEqual:DRDeviceMediaClassCD];
    return [[can objectForKey:isCD ? DRDeviceCanTestWriteCDKey : DRDeviceCanTestWriteDVDKey] boolValue];
}

- (IBAction)expand:(id)sender {
    _burn->expanded = !_burn->expanded;
    [_burn->expander setTitle:_burn->expanded ? DRTextHideOptions : DRTextShowOptions];
    NSArray* parts = [self optionParts];
    for (NSUInteger i = 0; i < [parts count]; i++)
        [[parts objectAtIndex:i] setHidden:!_burn->expanded];
    [_burn->test setHidden:!_burn->expanded || !_burn->canTest];
    [self layoutPanel];
}

// ---- what is chosen

- (void)takeChoices {
    NSNumber* speed = [[_burn->speeds selectedItem] representedObject];
    _burn->speed = speed == nil ? DRDeviceBurnSpeedMax : [speed floatValue];
    _burn->leavesOpen = [_burn->appendable isEnabled] && [_burn->appendable state] == NSOnState;
    _burn->ejects = [_burn->thenEject state] == NSOnState;
    _burn->tests = _burn->canTest && [_burn->test isEnabled] && [_burn->test state] == NSOnState;
    _burn->verifies = [_burn->verify state] == NSOnState;
    _burn->replaces = [_burn->replace isEnabled] && [_burn->replace state] == NSOnState;
}

- (IBAction)burnSpeed:(id)sender {
    [self takeChoices];
}
- (IBAction)appendable:(id)sender {
    [self takeChoices];
}
- (IBAction)testBurn:(id)sender {
    [self takeChoices];
}
- (IBAction)verifyBurn:(id)sender {
    [self takeChoices];
}

// Of the two, the one that was clicked.
- (IBAction)completionAction:(id)sender {
    if (sender == _burn->thenEject || sender == _burn->thenMount) {
        [_burn->thenEject setState:sender == _burn->thenEject ? NSOnState : NSOffState];
        [_burn->thenMount setState:sender == _burn->thenMount ? NSOnState : NSOffState];
    }
    [self takeChoices];
}

- (IBAction)replace:(id)sender {
    [self takeChoices];
    [self reviewMedia];
}

// ---- the disc

- (BOOL)acceptsStatus:(NSDictionary*)status prompt:(NSString**)prompt {
    NSDictionary* media = [status objectForKey:DRDeviceMediaInfoKey];
    NSString* text = nil;
    BOOL suitable = NO;
    if (status == nil) {
        text = DRTextPromptNoDrive;
    } else if ([[status objectForKey:DRDeviceIsTrayOpenKey] boolValue]) {
        text = DRTextPromptTrayOpen;
    } else if ([[status objectForKey:DRDeviceIsBusyKey] boolValue]) {
        text = DRTextPromptBusy;
    } else if (media == nil) {
        text = DRTextPromptNoMedia;
    } else if ([[media objectForKey:DRDeviceMediaIsBlankKey] boolValue]) {
        text = DRTextPromptBlank;
        suitable = YES;
    } else if (_burn->replaces) {
        text = DRTextPromptWillReplace;
        suitable = YES;
    } else if ([[media objectForKey:DRDeviceMediaIsAppendableKey] boolValue]) {
        text = _burn->canAppend ? DRTextPromptAppend : DRTextPromptNoAppend;
        suitable = _burn->canAppend;
    } else if ([[media objectForKey:DRDeviceMediaIsOverwritableKey] boolValue]) {
        text = DRTextPromptMayReplace;
    } else {
        text = DRTextPromptUnsuitable;
    }
    *prompt = [NSString stringWithFormat:text, [[self chosenDevice] displayName]];
    return suitable;
}

- (DRBurn*)burnObject {
    DRDevice* device = [self chosenDevice];
    if (![self wasConfirmed] || device == nil)
        return nil;
    DRBurn* burn = [DRBurn burnForDevice:device];
    [burn setRequestedBurnSpeed:_burn->speed];
    [burn setAppendable:_burn->leavesOpen];
    [burn setVerifyDisc:_burn->verifies];
    [burn setCompletionAction:_burn->ejects ? DRBurnCompletionActionEject : DRBurnCompletionActionMount];
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[burn properties]];
    if (_burn->tests)
        [properties setObject:[NSNumber numberWithBool:YES] forKey:DRBurnTestingKey];
    if (_burn->replaces)
        [properties setObject:[NSNumber numberWithBool:YES] forKey:DRBurnOverwriteDiscKey];
    [burn setProperties:properties];
    return burn;
}

@end
