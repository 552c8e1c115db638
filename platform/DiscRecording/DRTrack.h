// DRTrack: a track to be burned, or one that is on a disc.
#ifndef DISCRECORDING_DRTRACK_H
#define DISCRECORDING_DRTRACK_H

#import "DRFolder.h"
#import "DRMSF.h"
#import "DRTrackConstants.h"
#import <Foundation/Foundation.h>

/**
 * A track. What is to be known about it stands in its properties, under the keys of DRTrackConstants.h; its
 * data comes from a folder or from a producer.
 */
@interface DRTrack : NSObject <NSCopying> {
  @private
    NSDictionary* _properties;
    id _producer; // retained, unless the track is its own
    DRFolder* _rootFolder;
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

@end

/** What a producer of track data may implement; this class's own methods have none of them. */
@interface NSObject (DRTrackDataProduction)
/** The blocks that the track will need at most. Asked outside of burns only. */
- (uint64_t)estimateLengthOfTrack:(DRTrack*)track;
@end

#endif
