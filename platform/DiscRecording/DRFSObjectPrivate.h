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
/** Whether any property was set in any file system. */
- (BOOL)hasProperties;
/** The specific name that was set; nil where none was. */
- (NSString*)ownNameForFilesystem:(NSString*)filesystem;
/** Takes all specific names away. */
- (void)forgetSpecificNames;
/** The names in the parent's listing are no longer what they were. */
- (void)nameChanged;
@end

@interface DRFSObject (PrivateLinks)
/**
 * A link does not keep what it points at, or one to a folder around it would never go. So it is told. Either may go on a
 * thread of a burn while the other is used, so all of this is done under DRLockLinks().
 */
- (void)addLink:(DRFSObject*)link;
- (void)removeLink:(DRFSObject*)link;
/** Told to a link. */
- (void)forgetTarget;
@end

/** For what links and their targets know of each other, in all trees. */
void DRLockLinks(void);
void DRUnlockLinks(void);

#endif
