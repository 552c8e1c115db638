// DRSetupPanelParts.m: what is on a setup panel, and where.
#import "DRPanelTexts.h"
#import "DRSetupPanelPrivate.h"

@implementation DRSetupPanel (Parts)

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

static BOOL IsMenu(NSButton* option) { return [option isKindOfClass:[NSPopUpButton class]]; }

// The columns and the width that all texts fit into, hidden ones too, so that nothing moves when they are shown.
- (void)measure {
    NSArray* labels = [[self optionLabels] arrayByAddingObject:_inside->driveLabel];
    CGFloat labelWidth = DRPanelLabelWidth;
    for (NSUInteger i = 0; i < [labels count]; i++)
        labelWidth = MAX(labelWidth, DRWidthOfLabel([labels objectAtIndex:i]));
    NSArray* options = [[self optionControls] arrayByAddingObject:_inside->drives];
    CGFloat optionWidth = 0;
    for (NSUInteger i = 0; i < [options count]; i++) {
        NSButton* option = [options objectAtIndex:i];
        const CGFloat beside = IsMenu(option) ? DRPanelButtonGap + _inside->trayWidth : 0;
        optionWidth = MAX(optionWidth, DRWidthOfOption(option) + beside);
    }
    NSArray* row = [NSArray arrayWithObjects:_inside->confirm, _inside->cancel, [self extraButton], nil];
    _inside->optionLeft = DRPanelTextLeft + labelWidth + DRPanelLabelGap;
    _inside->width = MAX(DRPanelWidth, MAX(_inside->optionLeft + optionWidth + DRPanelMargin,
                                           DRWidthOfRow(row) + DRPanelGroupGap));
}

// Menus end together, where beside one of them the tray's button begins.
- (void)placeOption:(NSButton*)option label:(NSTextField*)label at:(CGFloat)y {
    const BOOL isMenu = IsMenu(option);
    const CGFloat left = _inside->optionLeft;
    const CGFloat room = _inside->width - DRPanelMargin - left;
    [label setFrame:NSMakeRect(DRPanelTextLeft, y + (isMenu ? 4 : 1),
                               left - DRPanelLabelGap - DRPanelTextLeft, 18)];
    [option setFrame:NSMakeRect(left, y, isMenu ? room - DRPanelButtonGap - _inside->trayWidth : room,
                                isMenu ? DRPanelButtonHeight : 18)];
}

- (void)layoutPanel {
    [self measure];
    CGFloat y = DRPanelMargin;
    const CGFloat textWidth = _inside->width - DRPanelMargin - DRPanelTextLeft;
    const CGFloat promptHeight = DRHeightOfText(_inside->prompt, textWidth);
    [_inside->prompt setFrame:NSMakeRect(DRPanelTextLeft, y, textWidth, promptHeight)];
    y += MAX(promptHeight, DRPanelIconSize - DRPanelButtonHeight) + DRPanelRowGap;
    [self placeOption:_inside->drives label:_inside->driveLabel at:y];
    [_inside->eject setFrame:NSMakeRect(_inside->width - DRPanelMargin - _inside->trayWidth, y,
                                        _inside->trayWidth, DRPanelButtonHeight)];
    y = [self layoutOptionsFrom:y + DRPanelButtonHeight + DRPanelRowGap] + DRPanelGroupGap - DRPanelRowGap;
    DRPlaceButtons([NSArray arrayWithObjects:_inside->confirm, _inside->cancel, nil], _inside -> width, y);
    NSButton* extra = [self extraButton];
    if (extra != nil)
        [extra setFrame:NSMakeRect(DRPanelMargin, y, DRWidthOfButton(extra), DRPanelButtonHeight)];
    DRResizePanel(self, NSMakeSize(_inside->width, y + DRPanelButtonHeight + DRPanelMargin));
    [[self contentView] setNeedsDisplay:YES];

    NSMutableArray* keys = [NSMutableArray arrayWithObjects:_inside->drives, _inside->eject, nil];
    [keys addObjectsFromArray:[self optionControls]];
    if (extra != nil)
        [keys addObject:extra];
    [keys addObject:_inside->cancel];
    [keys addObject:_inside->confirm];
    DRLinkKeyViews(self, keys);
}

- (NSButton*)defaultButton {
    return _inside->confirm;
}

@end

@implementation DRSetupPanel (Overridden)

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
- (NSArray*)optionLabels {
    return [NSArray array];
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
