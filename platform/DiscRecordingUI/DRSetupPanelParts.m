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
