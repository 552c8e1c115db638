// PanelBenchmark.m: how long a setup panel takes to open, and how long a burn keeps the run loop from turning.
//
//   panel-benchmark open            milliseconds from asking for a panel to its picture, the first, then the middle and the longest of 21
//   panel-benchmark pause FOLDER    longest pause of the loop in milliseconds without a burn and while the folder is burned
//
// Needs a display and drives (DISC_DRIVES); benchmarks/panels.py makes both.
#import "DRBurnProgressPanel.h"
#import "DRBurnSetupPanel.h"
#import "DRFolder.h"
#import "DRStatusConstants.h"
#import "DRTrack.h"
#import <stdio.h>
#import <stdlib.h>
#import <time.h>

extern unsigned char NSApplicationLoad(void);

static double now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e3 + (double)time.tv_nsec / 1e6;
}

@interface Clock : NSObject {
  @public
    DRSetupPanel* panel;
    double last, longest;
    BOOL ended;
}
@end

@implementation Clock
- (void)shown:(NSTimer*)timer { // the first turn of the loop: it is on the screen
    if (![panel isVisible])
        abort();
    [panel displayIfNeeded];
    last = now();
    [panel cancel:nil];
}
- (void)tick:(NSTimer*)timer {
    const double time = now();
    if (last > 0 && time - last > longest)
        longest = time - last;
    last = time;
}
- (void)burnProgressPanelDidFinish:(NSNotification*)notification {
    ended = YES;
}
@end

static double timeToOpen(Clock* clock) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    const double before = now();
    clock->panel = [NSClassFromString(@"DRBurnSetupPanel") setupPanel];
    NSTimer* timer = [NSTimer timerWithTimeInterval:0
                                             target:clock
                                           selector:@selector(shown:)
                                           userInfo:nil
                                            repeats:NO];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:@"NSModalPanelRunLoopMode"];
    [clock->panel runSetupPanel];
    [pool release];
    return clock->last - before;
}

// Turns as a program's loop does, for that long, or until the panel has finished if that is 0.
static double longestPause(Clock* clock, double milliseconds) {
    NSApplication* application = [NSClassFromString(@"NSApplication") sharedApplication];
    const double end = now() + milliseconds;
    clock->last = clock->longest = 0;
    NSTimer* timer = [NSTimer scheduledTimerWithTimeInterval:0.002
                                                      target:clock
                                                    selector:@selector(tick:)
                                                    userInfo:nil
                                                     repeats:YES];
    while (milliseconds > 0 ? now() < end : !clock->ended) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        NSEvent* event = [application nextEventMatchingMask:NSAnyEventMask
                                                  untilDate:[NSDate dateWithTimeIntervalSinceNow:0.01]
                                                     inMode:NSDefaultRunLoopMode
                                                    dequeue:YES];
        [application sendEvent:event];
        [pool release];
    }
    [timer invalidate];
    return clock->longest;
}

static int compare(const void* a, const void* b) {
    const double difference = *(const double*)a - *(const double*)b;
    return difference < 0 ? -1 : difference > 0;
}

int main(int argc, char** argv) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    if (argc < 2 || !NSApplicationLoad())
        return 1;
    Clock* clock = [Clock new];
    if (argc == 2) {
        const double first = timeToOpen(clock);
        double took[21];
        for (int i = 0; i < 21; i++)
            took[i] = timeToOpen(clock);
        qsort(took, 21, sizeof *took, compare);
        printf("%.1f %.1f %.1f\n", first, took[10], took[20]);
    } else {
        const double idle = longestPause(clock, 3000);
        DRBurn* burn = [DRBurn burnForDevice:[[DRDevice devices] objectAtIndex:0]];
        [burn setVerifyDisc:YES];
        DRBurnProgressPanel* panel = [NSClassFromString(@"DRBurnProgressPanel") progressPanel];
        [panel setDelegate:clock];
        DRFolder* folder = [DRFolder folderWithPath:[NSString stringWithUTF8String:argv[2]]];
        const double before = now();
        [panel beginProgressPanelForBurn:burn layout:[DRTrack trackForRootFolder:folder]];
        const double burning = longestPause(clock, 0);
        printf("%.1f %.1f %.0f %d\n", idle, burning, now() - before,
               [[[burn status] objectForKey:DRStatusStateKey] isEqual:DRStatusStateDone]);
        [panel setDelegate:nil];
    }
    [clock release];
    [pool release];
    return 0;
}
