// Producers.h: objects that produce a track's data for tests, note how they are called, and do wrong when told to.
#ifndef TESTS_PLATFORM_PRODUCERS_H
#define TESTS_PLATFORM_PRODUCERS_H

#import "Burning.h"

// Byte i of a track; no two blocks are alike.
static inline unsigned char ByteAt(uint64_t i) { return (unsigned char)(i * 2654435761u >> 13 ^ i >> 20); }

// Produces, and writes down in which order it was called. What it does wrong is told by its flags.
@interface Producer : NSObject {
  @public
    NSMutableArray* calls;
    uint64_t expected; // the byte that must be asked for next
    uint32_t atMost;   // bytes answered at once; 0: all that fit
    uint64_t endsAt;   // says then that there is no more
    uint64_t failsAt;  // answers 0 then
    uint64_t raisesAt;
    BOOL refusesToPrepare, refusesToVerify, differs, refusesCleanup;
    uint32_t lengthFromPrepare;
    uint32_t largest;
    BOOL onMainThread, outOfOrder;
    id burnSeen;
    NSDictionary* mediaSeen;
}
@end

@implementation Producer
- (id)init {
    self = [super init];
    calls = [NSMutableArray new];
    endsAt = failsAt = raisesAt = UINT64_MAX;
    return self;
}
- (void)dealloc {
    [calls release];
    [mediaSeen release];
    [super dealloc];
}
- (void)note:(NSString*)call {
    if (![[calls lastObject] isEqual:call])
        [calls addObject:call];
    if ([NSThread isMainThread])
        onMainThread = YES;
}
- (uint64_t)estimateLengthOfTrack:(DRTrack*)track {
    return 4321;
}
- (BOOL)prepareTrack:(DRTrack*)track forBurn:(DRBurn*)burn toMedia:(NSDictionary*)mediaInfo {
    [self note:@"prepare"];
    burnSeen = burn;
    [mediaSeen release];
    mediaSeen = [mediaInfo retain];
    if (lengthFromPrepare != 0) {
        NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[track properties]];
        [properties setObject:[DRMSF msfWithFrames:lengthFromPrepare] forKey:DRTrackLengthKey];
        [track setProperties:properties];
    }
    return !refusesToPrepare;
}
- (void)cleanupTrackAfterBurn:(DRTrack*)track {
    [self note:@"cleanup"];
}
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags {
    [self note:@"produce"];
    if (address != expected / blockSize)
        outOfOrder = YES;
    if (length > largest)
        largest = length;
    uint64_t at = expected;
    if (at >= failsAt)
        return 0;
    if (at >= raisesAt)
        [NSException raise:@"OutOfPaper" format:@"at byte %llu", (unsigned long long)at];
    uint32_t count = atMost != 0 && atMost < length ? atMost : length;
    if (at + count >= endsAt) {
        count = (uint32_t)(endsAt - at);
        *flags |= DRFlagNoMoreData;
    }
    for (uint32_t i = 0; i < count; i++)
        buffer[i] = (char)ByteAt(at + i);
    expected += count;
    return count;
}
- (BOOL)prepareTrackForVerification:(DRTrack*)track {
    [self note:@"prepareVerification"];
    expected = 0;
    return !refusesToVerify;
}
- (BOOL)verifyDataForTrack:(DRTrack*)track
                  inBuffer:(const char*)buffer
                    length:(uint32_t)length
                 atAddress:(uint64_t)address
                 blockSize:(uint32_t)blockSize
                   ioFlags:(uint32_t*)flags {
    [self note:@"verify"];
    if (address != expected / blockSize)
        outOfOrder = YES;
    for (uint32_t i = 0; i < length; i++)
        if ((unsigned char)buffer[i] != ByteAt(expected + i))
            return NO;
    expected += length;
    return !differs;
}
- (BOOL)cleanupTrackAfterVerification:(DRTrack*)track {
    [self note:@"cleanupVerification"];
    return !refusesCleanup;
}
@end

// The same that makes its pre-gap itself, and knows it again.
@interface GapProducer : Producer {
  @public
    BOOL gapDiffers;
    uint32_t gapVerified; // bytes
}
@end
@implementation GapProducer
- (uint32_t)producePreGapForTrack:(DRTrack*)track
                       intoBuffer:(char*)buffer
                           length:(uint32_t)length
                        atAddress:(uint64_t)address
                        blockSize:(uint32_t)blockSize
                          ioFlags:(uint32_t*)flags {
    [self note:@"preGap"];
    memset(buffer, 0x5A, length);
    return length;
}
- (BOOL)verifyPreGapForTrack:(DRTrack*)track
                    inBuffer:(const char*)buffer
                      length:(uint32_t)length
                   atAddress:(uint64_t)address
                   blockSize:(uint32_t)blockSize
                     ioFlags:(uint32_t*)flags {
    [self note:@"verifyPreGap"];
    for (uint32_t i = 0; i < length; i++)
        if (buffer[i] != 0x5A)
            return NO;
    gapVerified += length;
    return !gapDiffers;
}
@end

// Fills its buffer with a value, and notes how it is asked.
@interface Filler : NSObject {
  @public
    int value;
    uint32_t blockSize, flags;
}
@end

@implementation Filler
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)length
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)size
                        ioFlags:(uint32_t*)ioFlags {
    blockSize = size;
    flags = *ioFlags;
    memset(buffer, value, length);
    return length;
}
@end

static inline BOOL IsProduced(NSData* data, uint64_t from, uint64_t bytes, NSUInteger at) {
    const unsigned char* read = [data bytes];
    if ([data length] < at + bytes)
        return NO;
    for (uint64_t i = 0; i < bytes; i++)
        if (read[at + i] != ByteAt(from + i))
            return NO;
    return YES;
}

static inline NSArray* Words(NSString* text) { return [text componentsSeparatedByString:@" "]; }

#endif
