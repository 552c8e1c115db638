// DREraseSetupPanel: how thoroughly a disc is erased, and the erase that is made of it.
#import "DREraseSetupPanel.h"
#import "DRErasePrivate.h"
#import "DRPanelTexts.h"
#import "DRSetupPanelPrivate.h"

struct DREraseSetupPanelInside {
    NSTextField* label;
    NSButton *quick, *complete;
    DRErase* keeper; // keeps the drive from OK on, until an erase is asked for that does
};

@interface DREraseSetupPanel ()
- (void)letGo;
@end

@implementation DREraseSetupPanel

+ (DREraseSetupPanel*)setupPanel {
    return [[[self alloc] initWithNibName:nil] autorelease];
}

- (id)initWithNibName:(NSString*)nibName {
    _erase = calloc(1, sizeof *_erase);
    return [super initWithNibName:nibName];
}

- (void)dealloc {
    struct DREraseSetupPanelInside* inside = _erase;
    [inside->keeper release];
    inside->keeper = nil;
    [super dealloc];
    free(inside);
}

- (NSString*)panelTitle {
    return DRTextEraseTitle;
}
- (NSString*)defaultButtonText {
    return DRTextErase;
}

- (void)setupForDisplay {
    [super setupForDisplay];
    [self letGo];
}

- (void)letGo {
    [_erase->keeper release];
    _erase->keeper = nil;
}

// ---- the options

- (void)addOptionsTo:(NSView*)contents {
    _erase->label = DRMakeLabel([NSFont systemFontOfSize:0]);
    [_erase->label setStringValue:DRTextEraseLabel];
    [_erase->label setAlignment:NSRightTextAlignment];
    _erase->quick = DRMakeRadio(DRTextQuickErase, self, @selector(chooseType:));
    _erase->complete = DRMakeRadio(DRTextCompleteErase, self, @selector(chooseType:));
    [_erase->quick setState:NSOnState];
    [contents addSubview:_erase->label];
    [contents addSubview:_erase->quick];
    [contents addSubview:_erase->complete];
}

- (NSArray*)optionLabels {
    return [NSArray arrayWithObject:_erase->label];
}

- (NSArray*)optionControls {
    return [NSArray arrayWithObjects:_erase->quick, _erase->complete, nil];
}

- (CGFloat)layoutOptionsFrom:(CGFloat)y {
    [self placeOption:_erase->quick label:_erase->label at:y];
    [self placeOption:_erase->complete label:nil at:y + 22];
    return y + 22 + 18 + DRPanelRowGap;
}

// Of the two, the one that was clicked.
- (IBAction)chooseType:(id)sender {
    [_erase->quick setState:sender == _erase->quick ? NSOnState : NSOffState];
    [_erase->complete setState:sender == _erase->complete ? NSOnState : NSOffState];
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
    } else if ([[media objectForKey:DRDeviceMediaIsErasableKey] boolValue]) {
        text = [[media objectForKey:DRDeviceMediaIsBlankKey] boolValue] ? DRTextPromptBlankErasable
                                                                        : DRTextPromptErasable;
        suitable = YES;
    } else {
        text = DRTextPromptNotErasable;
    }
    *prompt = [NSString stringWithFormat:text, [[self chosenDevice] displayName]];
    return suitable;
}

// Nobody may come between the choice and the erase.
- (BOOL)mayConfirm {
    [self letGo];
    _erase->keeper = [[DRErase alloc] initWithDevice:[self chosenDevice]];
    if (![_erase->keeper keepDevice])
        [self letGo];
    return _erase->keeper != nil;
}

- (DRErase*)eraseObject {
    if (![self wasConfirmed])
        return nil;
    DRErase* erase = [DRErase eraseForDevice:[self chosenDevice]];
    [erase setEraseType:[_erase->complete state] == NSOnState ? DREraseTypeComplete : DREraseTypeQuick];
    [erase keepDevice]; // before the panel lets go, so that the drive is free at no time
    [self letGo];
    return erase;
}

@end
