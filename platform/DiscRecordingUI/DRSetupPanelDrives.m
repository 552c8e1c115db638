// DRSetupPanelDrives.m: the drives on a setup panel, and the disc in the one that is chosen.
#import "DRNotificationCenter.h"
#import "DRPanelTexts.h"
#import "DRSetupPanelPrivate.h"

// What tells one state of the disc from another.
static NSArray* MediaIn(DRDevice* device) {
    NSDictionary* status = [device status];
    NSMutableArray* seen = [NSMutableArray array];
    NSString* keys[] = {DRDeviceMediaStateKey, DRDeviceIsTrayOpenKey, DRDeviceIsBusyKey,
                        DRDeviceMediaInfoKey};
    for (unsigned i = 0; i < sizeof keys / sizeof *keys; i++) {
        id value = [status objectForKey:keys[i]];
        [seen addObject:value == nil ? [NSNull null] : value];
    }
    return seen;
}

@implementation DRSetupPanel (Drives)

- (DRDevice*)chosenDevice {
    return [_inside->choice chosen];
}

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
    [self layoutPanel];
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
    } else if (![_inside->mediaSeen isEqual:MediaIn(before)]) {
        [self reviewMedia];
    }
}

// ---- the disc

// One button, which does what the drive can do next.
- (void)showTray {
    DRDevice* device = [self chosenDevice];
    const BOOL isOpen = [device trayIsOpen];
    const BOOL isLoaded = [device mediaIsPresent];
    [_inside->eject setTitle:isOpen ? DRTextClose : isLoaded ? DRTextEject : DRTextOpen];
    [_inside->eject setAction:isOpen ? @selector(close:) : isLoaded ? @selector(eject:) : @selector(open:)];
    [_inside->eject setEnabled:device != nil];
}

- (void)reviewMedia {
    DRDevice* device = [self chosenDevice];
    [_inside->mediaSeen release];
    _inside->mediaSeen = [MediaIn(device) retain];
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

// Such notifications come while a menu is open, too.
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

@end
