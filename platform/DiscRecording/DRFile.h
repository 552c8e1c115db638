// DRFile: a file of a disc's content.
#ifndef DISCRECORDING_DRFILE_H
#define DISCRECORDING_DRFILE_H

#import "DRFSObject.h"

/** A file on a disc: one that exists on disk, or one that exists only in the tree and has its data in memory.
 */
@interface DRFile : DRFSObject {
  @private
    NSData* _data;
}

/** A file on disk. A path where no file is fails when it is burned, not here. */
+ (DRFile*)fileWithPath:(NSString*)path;
/** As fileWithPath:. */
- (id)initWithPath:(NSString*)path;

/** A virtual file with this data, which is copied; nil is no data. Meant for small files. */
+ (DRFile*)virtualFileWithName:(NSString*)name data:(NSData*)data;
/** As virtualFileWithName:data:. */
- (id)initWithName:(NSString*)name data:(NSData*)data;

@end

#endif
