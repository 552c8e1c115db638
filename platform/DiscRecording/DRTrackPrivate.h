// DRTrackPrivate: what the burn asks of tracks.
#ifndef DISCRECORDING_DRTRACKPRIVATE_H
#define DISCRECORDING_DRTRACKPRIVATE_H

#import "DRTrack.h"

@interface DRTrack (Private)
/// Nil for a track whose data a producer makes, and for one that is on a disc.
- (DRFolder*)rootFolder;
/// Nil for a track that is not made from a sound file.
- (NSString*)audioPath;
/// How long the sound file was when the track was made.
- (uint64_t)audioBlocks;
/// Nil for those two.
- (id)producer;
@end

#endif
