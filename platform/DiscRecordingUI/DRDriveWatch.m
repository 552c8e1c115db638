// DRDriveWatch.m: a timer in all modes that does not keep its panel alive.
#import "DRDriveWatch.h"

@implementation DRDriveWatch

- (id)initWithTarget:(id)target action:(SEL)action {
    self = [super init];
    if (self == nil)
        return nil;
    _target = target;
    _action = action;
    return self;
}

- (void)dealloc {
    [self stop];
    [super dealloc];
}

// The timer retains the watch until it is stopped, so whoever starts a watch stops it before letting it go.
- (void)startEvery:(NSTimeInterval)seconds {
    if (_timer != nil)
        return;
    _timer = [[NSTimer timerWithTimeInterval:seconds
                                      target:self
                                    selector:@selector(tick:)
                                    userInfo:nil
                                     repeats:YES] retain];
    NSString* modes[] = {NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode};
    for (unsigned i = 0; i < 3; i++)
        [[NSRunLoop currentRunLoop] addTimer:_timer forMode:modes[i]];
}

- (void)stop {
    [_timer invalidate];
    [_timer release];
    _timer = nil;
}

- (void)tick:(NSTimer*)timer {
    if (timer == _timer)
        [_target performSelector:_action];
}

@end
