// DRFSObject: what files and folders of a disc's content have in common.
#ifndef DISCRECORDING_DRFSOBJECT_H
#define DISCRECORDING_DRFSOBJECT_H

#import "DRFSObjectConstants.h"
#import <Foundation/Foundation.h>

@class DRFolder;

/**
 * A file or folder that is to appear on a disc. A real one stands for an item on disk, with all that is in
 * it; a virtual one exists only in the tree it is part of. Only a virtual folder can be given children. This
 * class is abstract: make DRFile and DRFolder objects.
 *
 * A tree must not be changed while it is burned; it may otherwise be used from one thread at a time.
 */
@interface DRFSObject : NSObject {
  @private
    NSString* _baseName;
    NSString* _sourcePath;
    DRFolder* _parent; // not retained: the parent owns this
}

/** YES when the object stands for nothing on disk. */
- (BOOL)isVirtual;
/** The path of a real object; nil for a virtual one. */
- (NSString*)sourcePath;
/** The folder that has this object as a child; nil at the root of a tree. */
- (DRFolder*)parent;

/** The name from which all names on the disc derive: at first the name on disk, or the name given. Never nil.
 */
- (NSString*)baseName;
/** Replaces the name. Nil is the empty name. */
- (void)setBaseName:(NSString*)baseName;

@end

#endif
