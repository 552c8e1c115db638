// DRTrack: a track to be burned, or one that is on a disc.
#ifndef DISCRECORDING_DRTRACK_H
#define DISCRECORDING_DRTRACK_H

#import "DRFolder.h"
#import "DRMSF.h"
#import "DRTrackConstants.h"
#import <Foundation/Foundation.h>

@class DRBurn;

/**
 * A track. What is to be known about it stands in its properties, under the keys of DRTrackConstants.h; its
 * data comes from a folder or from a producer.
 */
@interface DRTrack : NSObject <NSCopying> {
  @private
    NSDictionary* _properties;
    id _producer; // retained, unless the track is its own
    DRFolder* _rootFolder;
    NSString* _audioPath;
    uint64_t _audioBlocks; // that its sound file had
}

/**
 * A track whose data the producer makes block by block. The producer is retained, but not when it is the
 * track itself. Its properties are empty: set them before the burn.
 */
- (id)initWithProducer:(id)producer;

/**
 * A track with the file system of a folder: ISO 9660 with Joliet and Rock Ridge, named as the folder is. Nil
 * for nil. All required properties are set but the length, which the burn finds out. A burn verifies the
 * track only when its DRVerificationTypeKey says so.
 */
+ (DRTrack*)trackForRootFolder:(DRFolder*)rootFolder;

/**
 * An audio track from a sound file: WAV, AIFF, FLAC, Ogg, MP3 and what else is known. What is not in a CD's form is
 * mixed to two channels and resampled. Nil for a file that can't be read as sound; the reason goes to the log. All
 * required properties are set, the length to the exact one. A shorter DRTrackLengthKey leaves the file's end out; a longer
 * one fails the burn with 0x80020065. A file that has another length when it is burned fails it with 0x80020100, and one
 * that is no sound then with 0x8002006C; the disc is untouched.
 */
+ (DRTrack*)trackForAudioFile:(NSString*)path;

/** An audio track whose samples the producer gives: 16 bits, two channels, 44.1 kHz, little endian, 588 samples to a
 * block. All required properties are set. */
+ (DRTrack*)trackForAudioOfLength:(DRMSF*)length producer:(id)producer;

/** A copy of the properties; never nil. */
- (NSDictionary*)properties;
/** Replaces all properties; nil clears them. */
- (void)setProperties:(NSDictionary*)properties;

/** DRTrackLengthKey, without the pre-gap; a zero length when unset. */
- (DRMSF*)length;
/** DRPreGapLengthKey; a zero length when unset. */
- (DRMSF*)preGap;
/** Sets DRPreGapLengthKey; nil removes it. */
- (void)setPreGap:(DRMSF*)preGap;

/**
 * The blocks that the track will need. For a folder it is exact as long as nothing changes, and may take
 * long; for a producer it is what the producer says, 0 when it says nothing. A folder that can't be burned
 * answers 0 and the reason goes to the log.
 */
- (uint64_t)estimateLength;

/**
 * How fast the track's data comes at best, in KB/s, without burning it: for so many seconds, or bytes. A producer is
 * prepared and cleaned up as for a burn, with neither burn nor medium. 0 when the data can't be made, and while the
 * producer works for a burn or for another test of the track's speed, because it is asked for one thing at a time; the
 * reason goes to the log. A burn that begins while its track is tested fails with 0x80020068.
 */
- (float)testProductionSpeedForInterval:(NSTimeInterval)interval;
- (float)testProductionSpeedForLength:(uint32_t)length;

@end

/**
 * What a producer of track data may implement; of all this only produceDataForTrack:... must be. It is looked for at
 * each use. During a burn the methods are called on threads of the engine, one at a time, in this order:
 *
 * 1. prepareTrack:forBurn:toMedia:, then, when DRPreGapLengthKey is set, producePreGapForTrack:... until the pre-gap is
 *    full; without it the pre-gap is silence,
 * 2. produceDataForTrack:... until the track is full, in order and without gaps,
 * 3. when burn and track verify by the producer: prepareTrackForVerification:, then for
 *    DRVerificationTypeProduceAgain once more 2, for DRVerificationTypeReceiveData verifyPreGapForTrack:... and
 *    verifyDataForTrack:..., at last, also when a difference was found, cleanupTrackAfterVerification:; an abort leaves
 *    it out,
 * 4. cleanupTrackAfterBurn:, after success and failure.
 *
 * Lengths are in bytes. Addresses are in BLOCKS from the start of the track, or of the pre-gap: the byte is the address
 * times the block's size. A block is as large as DRBlockSizeKey says, and 96 bytes larger when
 * DRSubchannelDataFormKey asks for subchannel data: then DRFlagSubchannelDataRequested is set, and each block is the
 * data with the subchannel behind it: a symbol a byte, R to W in bits 5 to 0. Bits 7 and 6 are P and Q, which the drive
 * makes: what stands there counts nowhere. DRBlockSizeKey may count those 96 bytes or leave them out. What a burn begins with
 * holds to its end, but for the length that preparing sets.
 *
 * A method that raises fails the burn with 0x80020062, also while it verifies; the detail says what was raised. The disc is
 * whole all the same when cleanupTrackAfterBurn: raises.
 */
@interface NSObject (DRTrackDataProduction)

/** The blocks that the track will need at most. Asked outside of burns only. */
- (uint64_t)estimateLengthOfTrack:(DRTrack*)track;

/** The disc is still as it was. May set the track's DRTrackLengthKey. `mediaInfo` is the drive's status. NO fails the
 * burn. */
- (BOOL)prepareTrack:(DRTrack*)track forBurn:(DRBurn*)burn toMedia:(NSDictionary*)mediaInfo;

- (void)cleanupTrackAfterBurn:(DRTrack*)track;

/** Fills the front of the buffer, which has room for whole blocks; answers the bytes. 0 fails the burn, a short answer is
 * asked on from. DRFlagNoMoreData, set here, ends the track. */
- (uint32_t)producePreGapForTrack:(DRTrack*)track
                       intoBuffer:(char*)buffer
                           length:(uint32_t)bufferLength
                        atAddress:(uint64_t)address
                        blockSize:(uint32_t)blockSize
                          ioFlags:(uint32_t*)flags;
- (uint32_t)produceDataForTrack:(DRTrack*)track
                     intoBuffer:(char*)buffer
                         length:(uint32_t)bufferLength
                      atAddress:(uint64_t)address
                      blockSize:(uint32_t)blockSize
                        ioFlags:(uint32_t*)flags;

/** NO fails the verification. */
- (BOOL)prepareTrackForVerification:(DRTrack*)track;

/** Whether that is what was produced. Who has no verifyDataForTrack:... and wants DRVerificationTypeReceiveData can't
 * find it right. */
- (BOOL)verifyPreGapForTrack:(DRTrack*)track
                    inBuffer:(const char*)buffer
                      length:(uint32_t)bufferLength
                   atAddress:(uint64_t)address
                   blockSize:(uint32_t)blockSize
                     ioFlags:(uint32_t*)flags;
- (BOOL)verifyDataForTrack:(DRTrack*)track
                  inBuffer:(const char*)buffer
                    length:(uint32_t)bufferLength
                 atAddress:(uint64_t)address
                 blockSize:(uint32_t)blockSize
                   ioFlags:(uint32_t*)flags;

/** NO fails the verification. */
- (BOOL)cleanupTrackAfterVerification:(DRTrack*)track;

@end

#endif
