// DRFolder: a folder of a disc's content.
#ifndef DISCRECORDING_DRFOLDER_H
#define DISCRECORDING_DRFOLDER_H

#import "DRFSObject.h"

/**
 * A folder on a disc. A real one stands for a folder on disk with everything that is in it when it is burned;
 * a virtual one has the children it is given, which it retains.
 *
 * Children can be given to, and taken from, virtual folders only: a real folder raises
 * NSInternalInconsistencyException. Use makeVirtual first.
 */
@interface DRFolder : DRFSObject {
  @private
    NSMutableArray* _children;    // nil while the folder is real
    struct stat* _source;         // of the folder that this one was before makeVirtual
    struct DRFolderNames* _names; // of the children, as far as they were asked for
}

/** A folder on disk. A path where no folder is fails when it is burned, not here. */
+ (DRFolder*)folderWithPath:(NSString*)path;
/** As folderWithPath:. */
- (id)initWithPath:(NSString*)path;

/** An empty virtual folder; a nil name is the empty name. */
+ (DRFolder*)virtualFolderWithName:(NSString*)name;
/** As virtualFolderWithName:. */
- (id)initWithName:(NSString*)name;

/**
 * Turns a real folder into a virtual one of the same name, with one real child for each item that is in it on
 * disk now. Its mode, owner and dates stay those of the folder on disk, where its properties don't say otherwise. No effect on a virtual folder. Raises NSInternalInconsistencyException when the folder can't be
 * read; it stays real then.
 */
- (void)makeVirtual;

/**
 * Adds a file or folder; one that has another parent moves from there, one that is already here stays. Nil
 * does nothing. Raises NSInvalidArgumentException for anything else, and for a folder that this one lies in.
 */
- (void)addChild:(DRFSObject*)child;
/** Takes a child out. Nil, and what is no child of this folder, do nothing. */
- (void)removeChild:(DRFSObject*)child;

/** The children of a virtual folder, as they are now; nil for a real folder. */
- (NSArray*)children;
/** The number of children; 0 for a real folder. */
- (uint32_t)count;

@end

#endif
