// DRDriveWatch.h: calls a panel regularly while its job runs.
#ifndef DISCRECORDINGUI_DRDRIVEWATCH_H
#define DISCRECORDINGUI_DRDRIVEWATCH_H

#import <AppKit/AppKit.h>

/** Calls in every mode of the run loop in which a panel can be on the screen, also while a menu is open. */
@interface DRDriveWatch : NSObject {
    NSTimer* _timer;
    id _target; // not retained: it owns the watch
    SEL _action;
}
- (id)initWithTarget:(id)target action:(SEL)action;
/** The first call comes after one interval; starting again changes nothing. */
- (void)startEvery:(NSTimeInterval)seconds;
/** No call comes after this, also when it is sent from within one. */
- (void)stop;
@end

#endif
