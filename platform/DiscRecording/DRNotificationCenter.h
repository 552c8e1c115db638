// DRNotificationCenter: hears of drives that come and go, and of burns and erases.
#ifndef DISCRECORDING_DRNOTIFICATIONCENTER_H
#define DISCRECORDING_DRNOTIFICATIONCENTER_H

#import <Foundation/Foundation.h>

struct DRNotificationCenterInside;

/**
 * Delivers the notifications of this framework, each an NSNotification, on the thread of its run loop while the
 * loop runs; only the framework posts. The loop is watched in the default mode, and while a modal panel or the
 * mouse is followed.
 *
 * | name | object | userInfo |
 * |---|---|---|
 * | DRDeviceAppearedNotification, DRDeviceDisappearedNotification | the DRDevice | its info |
 * | DRDeviceStatusChangedNotification | the DRDevice | its status |
 * | DRBurnStatusChangedNotification | the DRBurn | the status that was reached |
 * | DREraseStatusChangedNotification | the DRErase | the status that was reached |
 */
@interface DRNotificationCenter : NSObject {
  @private
    NSRunLoop* _loop;
    struct DRNotificationCenterInside* _inside;
}

/** The one center of the run loop of the thread that asks; use it on that thread. */
+ (DRNotificationCenter*)currentRunLoopCenter;

/**
 * Lets the observer be sent the selector, which takes the notification. A nil name stands for every name, a nil
 * object for every object. Neither observer nor object is retained: remove the observer before it goes. Who
 * observes DRDeviceAppearedNotification is told once of every drive that is there already.
 */
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object;

/** Ends what the observer was added for; nil stands for every name, or every object. */
- (void)removeObserver:(id)observer name:(NSString*)name object:(id)object;

@end

#endif
