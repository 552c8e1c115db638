// DRProgressTime.h: how long a job will still take, and how fast it is.
#ifndef DISCRECORDINGUI_DRPROGRESSTIME_H
#define DISCRECORDINGUI_DRPROGRESSTIME_H

#import <Foundation/Foundation.h>

/** Estimated from what the present step has done so far: steps differ too much in speed to tell for all of them. */
@interface DRProgressTime : NSObject {
    NSString* _state;
    NSTimeInterval _began;
    float _from, _percent;
}
- (void)restart;
/** In seconds, on a clock that nobody sets. */
- (NSTimeInterval)now;
/** 0 to 1 of the state, or below 0 when that is not known. */
- (void)note:(float)percent ofState:(NSString*)state;
/** Empty while too little is known. */
- (NSString*)text;
/** Empty while nothing moves. */
- (NSString*)textOfSpeedIn:(NSDictionary*)status;
@end

#endif
