// DRTrackPrivate: what the burn asks of tracks.
#ifndef DISCRECORDING_DRTRACKPRIVATE_H
#define DISCRECORDING_DRTRACKPRIVATE_H

#import "DRTrack.h"

@interface DRTrack (Private)
/// Nil for a track whose data a producer makes, and for one that is on a disc.
- (DRFolder*)rootFolder;
@end

#endif
