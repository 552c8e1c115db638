// DRProgressTime.m: estimates, and puts them into words.
#import "DRProgressTime.h"
#import "DRPanelTexts.h"
#import "DRStatusConstants.h"

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

- (void)note:(float)percent ofState:(NSString*)state {
    if (![_state isEqual:state] || percent < _percent || _percent < 0) {
        [_state autorelease];
        _state = [state copy];
        _began = [NSDate timeIntervalSinceReferenceDate];
        _from = percent;
    }
    _percent = percent;
}

- (NSString*)text {
    const NSTimeInterval elapsed = [NSDate timeIntervalSinceReferenceDate] - _began;
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

- (NSString*)textOfSpeedIn:(NSDictionary*)status {
    NSDictionary* info = [status objectForKey:DRStatusProgressInfoKey];
    const double speed = [[info objectForKey:DRStatusProgressCurrentKPS] doubleValue];
    if (speed < 1)
        return @"";
    NSString* factor =
        [NSString stringWithFormat:@"%.1f", [[info objectForKey:DRStatusProgressCurrentXFactor] doubleValue]];
    return [NSString stringWithFormat:DRTextSpeedFormat, factor, [NSString stringWithFormat:@"%.0f", speed]];
}

@end
