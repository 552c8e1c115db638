// DRFilePrivate: what the burn asks of files.
#ifndef DISCRECORDING_DRFILEPRIVATE_H
#define DISCRECORDING_DRFILEPRIVATE_H

#import "DRFile.h"

@interface DRFile (Private)
/** The data of a virtual file; nil for a real one. */
- (NSData*)data;
@end

#endif
