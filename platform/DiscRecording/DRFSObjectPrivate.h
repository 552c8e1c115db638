// DRFSObjectPrivate: what the file and folder classes, and the burn, do with each other's insides.
#ifndef DISCRECORDING_DRFSOBJECTPRIVATE_H
#define DISCRECORDING_DRFSOBJECTPRIVATE_H

#import "DRFSObject.h"

@interface DRFSObject (Private)
/** For a real object: its base name is the last part of the path. */
- (id)initWithSourcePath:(NSString*)path;
/** For a virtual object. */
- (id)initWithBaseName:(NSString*)name;
- (void)setParent:(DRFolder*)parent;
/** Turns a real object into a virtual one of the same name. */
- (void)forgetSource;
@end

#endif
