// DRFilePrivate: what the burn asks of files.
#ifndef DISCRECORDING_DRFILEPRIVATE_H
#define DISCRECORDING_DRFILEPRIVATE_H

#import "DRFile.h"

@interface DRFile (Private)
/** The data of a virtual file; nil for any other. */
- (NSData*)data;
/** Nil for a file without. */
- (id)producer;
/** Nil for a file that is no link. */
- (NSString*)linkType;
/** What a link points at; nil when that is gone. */
- (DRFSObject*)target;
@end

#endif
