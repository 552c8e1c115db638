// ProducerTest: tracks whose data an object produces, as the burn engine calls it; what arrives on the disc.
#import "Producers.h"

#include <pthread.h>
#include <unistd.h>

// Has the one method that is needed.
@interface Terse : NSObject
@end
@implementation Terse
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags {
    for (uint32_t i = 0; i < length; i++)
        buffer[i] = (char)ByteAt(address * blockSize + i);
    return length;
}
@end

// A track that produces its own data: it must not keep itself alive.
@interface OwnTrack : DRTrack
@end
static int ownTracks;
@implementation OwnTrack
- (id)init {
    ownTracks++;
    return [self initWithProducer:self];
}
- (void)dealloc {
    ownTracks--;
    [super dealloc];
}
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags {
    memset(buffer, 7, length);
    return length;
}
@end

// Asks for its speed, and to be burned, while it is asked for its first bytes.
@interface Impatient : Producer {
  @public
    DRDevice* device; // to burn on; nil: not to burn
    float speed;
    NSDictionary* burned;
}
@end
@implementation Impatient
- (void)dealloc {
    [burned release];
    [super dealloc];
}
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags {
    if (address == 0) {
        speed = [track testProductionSpeedForLength:1 << 20];
        if (device != nil)
            burned = [BurnOn(device, track, nil) retain];
    }
    return [super produceDataForTrack:track
                           intoBuffer:buffer
                               length:length
                            atAddress:address
                            blockSize:blockSize
                              ioFlags:flags];
}
@end

static void TestOrder(void) {
    DRDevice* device = Device("DVD+RW");
    Producer* producer = [[Producer new] autorelease];
    DRTrack* track = DataTrack(producer, 1500);
    PASS("estimated by the producer", [track estimateLength] == 4321);
    ExpectDone("unverified", BurnOn(device, track, nil));
    SAME("in order", producer->calls, Words(@"prepare produce cleanup"));
    PASS("in sequence, and on the thread that waits", !producer->outOfOrder && producer->onMainThread);
    PASS("more than a block at once", producer->largest > 2048);
    PASS("told for what", producer->burnSeen != nil);
    SAME("and onto what", [producer->mediaSeen objectForKey:DRDeviceMediaStateKey],
         DRDeviceMediaStateMediaPresent);
    PASS("all of it is on the disc", IsProduced(Image(device, @"medium.iso"), 0, 1500 * 2048, 0));

    Producer* elsewhere = [[Producer new] autorelease];
    DRBurn* burn = [DRBurn burnForDevice:Device("DVD+RW")];
    [burn setCompletionAction:DRBurnCompletionActionMount];
    [burn writeLayout:DataTrack(elsewhere, 1500)];
    NSString* state = nil;
    do {
        usleep(1000);
        state = [[burn status] objectForKey:DRStatusStateKey];
    } while (![state isEqual:DRStatusStateDone] && ![state isEqual:DRStatusStateFailed]);
    SAME("a burn that nobody waits for", state, DRStatusStateDone);
    PASS("has calls in sequence, and not on the main thread",
         !elsewhere->outOfOrder && !elsewhere->onMainThread);

    device = Device("DVD+RW");
    Terse* terse = [[Terse new] autorelease];
    ExpectDone("one method is enough", BurnOn(device, DataTrack(terse, 700), nil));
    PASS("its bytes, too", IsProduced(Image(device, @"medium.iso"), 0, 700 * 2048, 0));
}

static void TestVerification(void) {
    NSString* types[] = {DRVerificationTypeChecksum, DRVerificationTypeProduceAgain,
                         DRVerificationTypeReceiveData, DRVerificationTypeNone};
    NSString* orders[] = {@"prepare produce cleanup",
                          @"prepare produce prepareVerification produce cleanupVerification cleanup",
                          @"prepare produce prepareVerification verify cleanupVerification cleanup",
                          @"prepare produce cleanup"};
    for (int i = 0; i < 4; i++) {
        Producer* producer = [[Producer new] autorelease];
        DRTrack* track = DataTrack(producer, 1500);
        Set(track, DRVerificationTypeKey, types[i]);
        ExpectDone([types[i] UTF8String], BurnOn(Device("DVD+RW"), track, nil));
        SAME("in order", producer->calls, Words(orders[i]));
        PASS("in sequence", !producer->outOfOrder);
        Producer* unverified = [[Producer new] autorelease];
        track = DataTrack(unverified, 600);
        Set(track, DRVerificationTypeKey, types[i]);
        ExpectDone("the burn does not verify",
                   BurnOn(Device("DVD+RW"), track,
                          [NSDictionary dictionaryWithObject:[NSNumber numberWithBool:NO]
                                                      forKey:DRBurnVerifyDiscKey]));
        SAME("then nothing is verified", unverified->calls, Words(@"prepare produce cleanup"));
    }
    for (int i = 0; i < 3; i++) {
        Producer* producer = [[Producer new] autorelease];
        producer->differs = i == 0;
        producer->refusesToVerify = i == 1;
        producer->refusesCleanup = i == 2;
        DRTrack* track = DataTrack(producer, 600);
        Set(track, DRVerificationTypeKey, DRVerificationTypeReceiveData);
        ExpectError("not content", BurnOn(Device("DVD+RW"), track, nil), 0x80020063, @"");
        NSUInteger count = [producer->calls count];
        SAME("cleaned up all the same", [producer->calls objectAtIndex:count - 2], @"cleanupVerification");
        SAME("and at the end", [producer->calls lastObject], @"cleanup");
    }
    DRTrack* odd = DataTrack([[Producer new] autorelease], 600);
    Set(odd, DRVerificationTypeKey, @"by eye");
    ExpectError("an unknown type", BurnOn(Device("DVD+RW"), odd, nil), 0x80020067, @"\"by eye\"");
}

static void TestAnswers(void) {
    DRDevice* device = Device("DVD+RW");
    Producer* piecemeal = [[Producer new] autorelease];
    piecemeal->atMost = 5 * 2048;
    ExpectDone("short answers", BurnOn(device, DataTrack(piecemeal, 1500), nil));
    PASS("are asked on from", IsProduced(Image(device, @"medium.iso"), 0, 1500 * 2048, 0));

    device = Device("DVD+RW");
    Producer* ending = [[Producer new] autorelease];
    ending->endsAt = 1000 * 2048 + 100;
    ExpectDone("it ends earlier", BurnOn(device, DataTrack(ending, 1500), nil));
    PASS("with what there was", IsProduced(Image(device, @"medium.iso"), 0, 1000 * 2048 + 100, 0));
    PASS("the last block filled up", [[device mediaSpaceUsed] sectors] == 1001);

    device = Device("DVD+RW");
    Producer* longer = [[Producer new] autorelease];
    longer->lengthFromPrepare = 2222;
    ExpectDone("preparing changes the length", BurnOn(device, DataTrack(longer, 10), nil));
    PASS("and that counts", [[device mediaSpaceUsed] sectors] == 2222);

    Producer* refusing = [[Producer new] autorelease];
    refusing->refusesToPrepare = YES;
    device = Device("DVD+RW");
    ExpectError("no", BurnOn(device, DataTrack(refusing, 600), nil), 0x80020062, @"prepare");
    PASS("the disc is untouched", [device mediaIsBlank]);

    Producer* failing = [[Producer new] autorelease];
    failing->failsAt = 1 << 20;
    device = Device("DVD+RW");
    ExpectError("nothing more", BurnOn(device, DataTrack(failing, 1500), nil), 0x80020062, @"no data");
    SAME("cleaned up", [failing->calls lastObject], @"cleanup");
    PASS("and blank still", [device mediaIsBlank]);

    Producer* raising = [[Producer new] autorelease];
    raising->raisesAt = 1 << 20;
    device = Device("DVD+RW");
    ExpectError("raises", BurnOn(device, DataTrack(raising, 1500), nil), 0x80020062,
                @"OutOfPaper: at byte 1048576");
    SAME("cleaned up", [raising->calls lastObject], @"cleanup");
    PASS("and blank still", [device mediaIsBlank]);
    raising->expected = 0;
    device = Device("DVD+R");
    ExpectError("raises on what is written once", BurnOn(device, DataTrack(raising, 1500), nil), 0x80020062,
                @"OutOfPaper: at byte 1048576");
    NSArray* onDisc = [[device status] objectForKey:DRDeviceTrackRefsKey];
    PASS("a track was begun", [onDisc count] == 1);
    SAME("which says so", [[[onDisc lastObject] properties] objectForKey:DRTrackTypeKey],
         DRTrackTypeIncomplete);
}

static void TestOwnProducer(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    OwnTrack* own = [[OwnTrack alloc] init];
    [own setProperties:[DataTrack(nil, 600) properties]];
    ExpectDone("a track that is its own producer", BurnOn(Device("DVD+RW"), own, nil));
    [own release];
    [pool release];
    PASS("goes when it is released", ownTracks == 0);
}

static void TestSpeed(void) {
    Producer* producer = [[Producer new] autorelease];
    DRTrack* track = DataTrack(producer, 2000);
    PASS("a speed for so many bytes", [track testProductionSpeedForLength:1 << 20] > 0);
    SAME("as in a burn", producer->calls, Words(@"prepare produce cleanup"));
    PASS("no more than that", producer->expected == 1 << 20);
    PASS("with no burn", producer->burnSeen == nil);
    Terse* terse = [[Terse new] autorelease];
    NSDate* start = [NSDate date];
    PASS("a speed for so long", [DataTrack(terse, 3000000) testProductionSpeedForInterval:0.2] > 0);
    PASS("not longer", -[start timeIntervalSinceNow] < 10);
    Producer* refusing = [[Producer new] autorelease];
    refusing->refusesToPrepare = YES;
    PASS("0 when there is no data", [DataTrack(refusing, 600) testProductionSpeedForLength:2048] == 0);
    DRTrack* folder = [DRTrack trackForRootFolder:[DRFolder virtualFolderWithName:@"x"]];
    PASS("of a folder, too", [folder testProductionSpeedForLength:1 << 20] > 0);
}

// A producer is asked for one thing at a time.
static void TestSpeedOfABusyTrack(void) {
    Impatient* producer = [[Impatient new] autorelease];
    producer->speed = -1;
    DRTrack* track = DataTrack(producer, 1500);
    DRDevice* device = Device("DVD+RW");
    ExpectDone("its speed is asked for in a burn", BurnOn(device, track, nil));
    PASS("there is none", producer->speed == 0);
    SAME("and nothing more was asked", producer->calls, Words(@"prepare produce cleanup"));
    PASS("nor was the burn disturbed", IsProduced(Image(device, @"medium.iso"), 0, 1500 * 2048, 0));

    [producer->calls removeAllObjects];
    producer->expected = 0;
    producer->speed = -1;
    producer->device = Device("DVD+RW");
    PASS("after the burn there is one", [track testProductionSpeedForLength:1 << 20] > 0);
    PASS("but one at a time", producer->speed == 0);
    ExpectError("a burn meanwhile", producer->burned, 0x80020068, @"is being tested");
    PASS("writes nothing", [producer->device mediaIsBlank]);
    SAME("and asks nothing", producer->calls, Words(@"prepare produce cleanup"));
    device = producer->device;
    producer->device = nil;
    producer->expected = 0;
    ExpectDone("after the test it can be burned", BurnOn(device, track, nil));
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = BeginBurning();
    TestOrder();
    TestVerification();
    TestAnswers();
    TestOwnProducer();
    TestSpeed();
    TestSpeedOfABusyTrack();
    return EndBurning(place, pool);
}
