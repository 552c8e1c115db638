// ProgressTimeTest: how long a job will still take, on a clock that the test sets.
#import "Check.h"
#import "DRProgressTime.h"
#import "DRStatusConstants.h"

@interface SetTime : DRProgressTime {
  @public
    NSTimeInterval seconds;
}
@end

@implementation SetTime
- (NSTimeInterval)now {
    return seconds;
}
@end

static SetTime* time_;

// What is said of a step that is so far after that many seconds; it began at 0 at the time 100.
static NSString* TextAfter(double seconds, float percent) {
    [time_ restart];
    time_->seconds = 100;
    [time_ note:0 ofState:DRStatusStateTrackWrite];
    time_->seconds = 100 + seconds;
    [time_ note:percent ofState:DRStatusStateTrackWrite];
    return [time_ text];
}

static void TestWords(void) {
    SAME("seconds", TextAfter(10, 0.5f), @"Less than a minute left");
    SAME("just below a minute", TextAfter(49, 0.5f), @"Less than a minute left");
    SAME("a minute", TextAfter(60, 0.5f), @"About a minute left");
    SAME("a minute and a quarter", TextAfter(75, 0.5f), @"About a minute left");
    SAME("two", TextAfter(115, 0.5f), @"About 2 minutes left");
    SAME("nearly an hour", TextAfter(3560, 0.5f), @"About 59 minutes left");
    SAME("an hour", TextAfter(3600, 0.5f), @"About 1 h 00 min left");
    SAME("more", TextAfter(3600 + 5 * 60, 0.5f), @"About 1 h 05 min left");
    SAME("not more than fits", TextAfter(1e9, 0.5f), @"About 100 h 00 min left");
    SAME("of what is left, not of the whole", TextAfter(90, 0.9f), @"Less than a minute left");
}

static void TestTooLittleKnown(void) {
    SAME("nothing yet", [[[SetTime new] autorelease] text], @"");
    [time_ restart];
    SAME("nor when it begins anew", [time_ text], @"");
    SAME("the first moments say little", TextAfter(1.4, 0.5f), @"");
    SAME("then there is an estimate", TextAfter(1.6, 0.5f), @"Less than a minute left");
    SAME("nothing was done", TextAfter(60, 0), @"");
    SAME("hardly anything", TextAfter(60, 0.004f), @"");
    SAME("all was done", TextAfter(60, 1), @"");
    SAME("nobody knows how much", TextAfter(60, -1), @"");
}

// Each step is estimated by itself.
static void TestSteps(void) {
    TextAfter(100, 0.5f);
    [time_ note:0 ofState:DRStatusStateVerifying];
    SAME("another step says little at first", [time_ text], @"");
    time_->seconds += 12;
    [time_ note:0.1f ofState:DRStatusStateVerifying];
    SAME("and has its own pace", [time_ text], @"About 2 minutes left");

    TextAfter(100, 0.5f);
    [time_ note:0.2f ofState:DRStatusStateTrackWrite];
    SAME("so has one that goes back", [time_ text], @"");
    time_->seconds += 60;
    [time_ note:0.6f ofState:DRStatusStateTrackWrite];
    SAME("from where it went back to", [time_ text], @"About a minute left");

    [time_ restart];
    time_->seconds = 100;
    [time_ note:-1 ofState:DRStatusStateTrackWrite];
    time_->seconds += 600; // these don't count
    [time_ note:0.5f ofState:DRStatusStateTrackWrite];
    time_->seconds += 60;
    [time_ note:0.75f ofState:DRStatusStateTrackWrite];
    SAME("one whose extent is known late", [time_ text], @"About a minute left");
    [time_ note:-1 ofState:DRStatusStateTrackWrite];
    SAME("and no more", [time_ text], @"");
    [time_ note:0.5f ofState:nil];
    time_->seconds += 60;
    [time_ note:0.75f ofState:nil];
    SAME("one without a name", [time_ text], @"");
}

static NSDictionary* At(double speed, double factor) {
    NSDictionary* info = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSNumber numberWithDouble:speed], DRStatusProgressCurrentKPS,
                                     [NSNumber numberWithDouble:factor], DRStatusProgressCurrentXFactor, nil];
    return [NSDictionary dictionaryWithObject:info forKey:DRStatusProgressInfoKey];
}

static void TestSpeed(void) {
    SAME("no speed", [time_ textOfSpeedIn:nil], @"");
    SAME("not in the status", [time_ textOfSpeedIn:[NSDictionary dictionary]], @"");
    SAME("nothing moves", [time_ textOfSpeedIn:At(0.5, 0)], @"");
    SAME("a DVD's", [time_ textOfSpeedIn:At(5540.4, 4)], @"4.0x (5540 KB/s)");
    SAME("a slow CD's", [time_ textOfSpeedIn:At(88.2, 0.5)], @"0.5x (88 KB/s)");
}

static void TestClock(void) {
    DRProgressTime* real = [[DRProgressTime new] autorelease];
    const NSTimeInterval before = [real now];
    PASS("the clock goes on", before > 0 && [real now] >= before);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    time_ = [SetTime new];
    TestWords();
    TestTooLittleKnown();
    TestSteps();
    TestSpeed();
    TestClock();
    [time_ release];
    [pool release];
    return Finish();
}
