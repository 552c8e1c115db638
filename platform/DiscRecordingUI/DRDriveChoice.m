// DRDriveChoice.m: keeps up with the drives.
#import "DRDriveChoice.h"
#import "DRSetupPanelPrivate.h"

@implementation DRDriveChoice

- (id)initWithPanel:(DRSetupPanel*)panel {
    self = [super init];
    if (self == nil)
        return nil;
    _panel = panel;
    _seen = [NSMutableArray new];
    _devices = [NSMutableArray new];
    return self;
}

- (void)dealloc {
    [_chosen release];
    [_devices release];
    [_seen release];
    [super dealloc];
}

- (NSArray*)devices {
    return _devices;
}

- (DRDevice*)chosen {
    return _chosen;
}

- (void)choose:(DRDevice*)device {
    [device retain];
    [_chosen release];
    _chosen = device;
}

- (void)startWithNothing {
    [_seen removeAllObjects];
    [_devices removeAllObjects];
    [self choose:nil];
}

- (BOOL)couldBeTarget:(DRDevice*)device {
    id delegate = [_panel delegate];
    return ![delegate respondsToSelector:@selector(setupPanel:deviceCouldBeTarget:)] ||
           [delegate setupPanel:_panel deviceCouldBeTarget:device];
}

// The better one of the drive that is chosen and another. A delegate that answers neither leaves it as it is. The
// panel itself changes only to a drive whose disc will do from one whose disc won't.
- (DRDevice*)bestOf:(DRDevice*)a or:(DRDevice*)b {
    id delegate = [_panel delegate];
    if ([delegate respondsToSelector:@selector(setupPanel:determineBestDeviceOfA:orB:)]) {
        DRDevice* best = [delegate setupPanel:_panel determineBestDeviceOfA:a orB:b];
        return best != nil && [_devices containsObject:best] ? best : a;
    }
    NSString* prompt = nil;
    if (a == nil)
        return b;
    return ![_panel acceptsStatus:[a status] prompt:&prompt] && [_panel acceptsStatus:[b status]
                                                                               prompt:&prompt]
               ? b
               : a;
}

- (void)compare:(NSArray*)devices {
    for (NSUInteger i = 0; i < [devices count]; i++)
        [self choose:[self bestOf:_chosen or:[devices objectAtIndex:i]]];
    if (_chosen == nil && [_devices count] > 0)
        [self choose:[_devices objectAtIndex:0]];
}

- (BOOL)update {
    NSArray* attached = [DRDevice devices];
    NSMutableArray* offered = [NSMutableArray array];
    NSMutableArray* fresh = [NSMutableArray array];
    for (NSUInteger i = 0; i < [attached count]; i++) {
        DRDevice* device = [attached objectAtIndex:i];
        const BOOL isNew = ![_seen containsObject:device];
        if (isNew ? [self couldBeTarget:device] : [_devices containsObject:device]) {
            [offered addObject:device];
            if (isNew)
                [fresh addObject:device];
        }
    }
    [_seen setArray:attached];
    if ([offered isEqual:_devices])
        return NO;
    [_devices setArray:offered];
    if (_chosen != nil && ![_devices containsObject:_chosen]) {
        // Unplugged: every drive that is left may take its place.
        [self choose:nil];
        [self compare:_devices];
    } else {
        [self compare:fresh];
    }
    return YES;
}

@end
