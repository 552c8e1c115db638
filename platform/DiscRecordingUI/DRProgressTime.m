// DRProgressTime.m: estimates, and puts them into words.
#import "DRProgressTime.h"
#import "DRPanelTexts.h"
#import "DRStatusConstants.h"
#import <time.h>

@implementation DRProgressTime

- (void)dealloc {
    [_state release];
    [super dealloc];
}

- (void)restart {
    [_state release];
    _state = nil;
    _percent = -1;
}

- (NSTimeInterval)now {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (NSTimeInterval)time.tv_sec + (NSTimeInterval)time.tv_nsec / 1e9;
}

- (void)note:(float)percent ofState:(NSString*)state {
    if (![_state isEqual:state] || percent < _percent || _percent < 0) {
        [_state autorelease];
        _state = [state copy];
        _began = [self now];
        _from = percent;
    }
    _percent = percent;
}

- (NSString*)text {
    const NSTimeInterval elapsed = [self now] - _began;
    // The first moments say little.
    if (_percent < 0 || elapsed < 1.5 || _percent - _from < 0.005f || _percent >= 1)
        return @"";
    const double left = elapsed * (double)(1 - _percent) / (double)(_percent - _from);
    const unsigned minutes = (unsigned)MIN(left / 60 + 0.5, 6000);
    if (left < 50)
        return DRTextSecondsLeft;
    if (minutes < 2)
        return DRTextMinuteLeft;
    if (minutes < 60)
        return [NSString stringWithFormat:DRTextMinutesLeft, minutes];
    return [NSString stringWithFormat:DRTextHoursLeft, minutes / 60, minutes % 60];
}

// Asking nil for a number would answer anything.
static double NumberIn(NSDictionary* info, NSString* key) {
    NSNumber* number = [info objectForKey:key];
    return number == nil ? 0 : [number doubleValue];
}

- (NSString*)textOfSpeedIn:(NSDictionary*)status {
    NSDictionary* info = [status objectForKey:DRStatusProgressInfoKey];
    const double speed = NumberIn(info, DRStatusProgressCurrentKPS);
    if (speed < 1)
        return @"";
    NSString* factor = [NSString stringWithFormat:@"%.1f", NumberIn(info, DRStatusProgressCurrentXFactor)];
    return [NSString stringWithFormat:DRTextSpeedFormat, factor, [NSString stringWithFormat:@"%.0f", speed]];
}

@end
