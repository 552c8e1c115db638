// DRFilePrivate: what the burn asks of files.
#ifndef DISCRECORDING_DRFILEPRIVATE_H
#define DISCRECORDING_DRFILEPRIVATE_H

#import "DRFile.h"

@interface DRFile (Private)
/** Whether it is a virtual file with data in memory, which stay where they are as long as the file. */
- (BOOL)hasData;
- (const void*)bytes;
- (NSUInteger)length;
/** Nil for a file without. */
- (id)producer;
/** Nil for a file that is no link. */
- (NSString*)linkType;
/**
 * What a link points at; nil when that is gone. Nothing keeps it: who doesn't know otherwise that it lives, such as by the tree
 * that it is in, may compare it only.
 */
- (DRFSObject*)target;
@end

#endif
