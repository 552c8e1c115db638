// DRMSF: a length or position on a disc, in blocks, shown as minutes, seconds and frames.
#ifndef DISCRECORDING_DRMSF_H
#define DISCRECORDING_DRMSF_H

#import <Foundation/Foundation.h>

/**
 * A count of blocks that reads as minutes, seconds and frames: 75 frames make a second (IEC 60908,
 * clause 17.5), and a frame, a sector and a block are the same thing.
 *
 * The value is a plain length: the 150 blocks between a disc's start and its first addressable block are
 * never added. It is a number too, so it may stand wherever an NSNumber of blocks may. The count has 32 bits,
 * unsigned; arithmetic wraps at 2^32. Objects never change.
 */
@interface DRMSF : NSNumber {
  @private
    uint32_t _frames;
}

/** A zero length. */
+ (DRMSF*)msf;
/** A length of that many frames. */
+ (DRMSF*)msfWithFrames:(uint32_t)frames;
/** The length that the text says; see initWithString:. */
+ (DRMSF*)msfWithString:(NSString*)string;

/** Initialises with a number of frames. */
- (id)initWithFrames:(uint32_t)frames;
/**
 * Initialises with a text: "m:s:f", "m:s" or "m:s.fraction" (the fraction of a second becomes frames, to the
 * nearest), or frames alone. Fields may have any number of digits and may exceed their usual range ("0:90:00"
 * is 90 seconds). Space around the text is ignored. Nil, any other text, and a text beyond 2^32-1 frames give
 * zero.
 */
- (id)initWithString:(NSString*)string;

/** The whole minutes; not limited to 99. */
- (uint32_t)minutes;
/** The seconds beyond the whole minutes, 0 to 59. */
- (uint32_t)seconds;
/** The frames beyond the whole seconds, 0 to 74. */
- (uint32_t)frames;
/** The whole length in blocks. */
- (uint32_t)sectors;

/** "mm:ss:ff", two digits each, more where minutes need them. */
- (NSString*)description;
/**
 * The length in words of a format: %m, %s and %f stand for minutes, seconds and frames in decimal, %% for a
 * percent sign. A number between % and the letter is the least width, padded with zeros when it starts with 0
 * and with spaces otherwise. When a part that is not shown is not zero, the next higher part that is shown
 * goes up by one, carrying as needed: 3:09:15 with "%02m:%02s" is "03:10". Anything else after % is copied.
 * Nil gives nil.
 */
- (NSString*)descriptionWithFormat:(NSString*)format;

/** The sum; nil counts as zero. The receiver does not change. */
- (DRMSF*)msfByAdding:(DRMSF*)msf;
/** The difference; nil counts as zero. The receiver does not change. */
- (DRMSF*)msfBySubtracting:(DRMSF*)msf;
/** YES when both have the same count; NO for nil. */
- (BOOL)isEqualToMSF:(DRMSF*)otherMSF;

@end

#endif
