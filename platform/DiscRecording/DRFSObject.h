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
    DRFolder* _parent;                   // not retained: the parent owns this
    NSMutableDictionary* _properties;    // file system to dictionary; nil while nothing is set
    NSMutableDictionary* _specificNames; // file system to legal name; nil while nothing is set
    NSMutableArray* _links;              // of NSValue: the links to this object, not retained
    uint32_t _explicitMask;
  @protected
    uint32_t _sort; // of a file: where its bytes come from, in the room that is left here
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
/** Replaces the name, and forgets all specific names. Nil is the empty name. */
- (void)setBaseName:(NSString*)baseName;

@end

/**
 * Names in one file system: DRISO9660LevelOne, DRISO9660LevelTwo, DRJoliet, DRHFSPlus or DRUDF;
 * DRAllFilesystems stands for the base name. Any other text, also DRISO9660, raises
 * NSInvalidArgumentException.
 */
@interface DRFSObject (DRFSObjectNames)
/** The name that was set, or what the file system makes of the base name. */
- (NSString*)specificNameForFilesystem:(NSString*)filesystem;
/** The name is made legal for the file system, so read it back. Nil takes a name that was set away. */
- (void)setSpecificName:(NSString*)name forFilesystem:(NSString*)filesystem;
/** By file system, for those that the object is effectively in. */
- (NSDictionary*)specificNames;
/** Sets each name of the dictionary. */
- (void)setSpecificNames:(NSDictionary*)names;
/** The specific name, with a suffix such as _001 where a sibling has it too. */
- (NSString*)mangledNameForFilesystem:(NSString*)filesystem;
/** By file system, for those that the object is effectively in. */
- (NSDictionary*)mangledNames;
@end

/**
 * Properties in one file system. DRAllFilesystems is the set for all; a file system's own set overrides it.
 * The levels of ISO 9660 stand for DRISO9660. An unknown file system, and a value of a wrong type under one of
 * the keys of DRFSObjectConstants.h, raise NSInvalidArgumentException and change nothing.
 */
@interface DRFSObject (DRFSObjectProperties)
/** What was set for exactly that file system; merged, the set for all file systems overlaid by it. Never nil. */
- (NSDictionary*)propertiesForFilesystem:(NSString*)filesystem mergeWithOtherFilesystems:(BOOL)merge;
/** Replaces the file system's set; nil clears it. */
- (void)setProperties:(NSDictionary*)properties inFilesystem:(NSString*)filesystem;
- (id)propertyForKey:(NSString*)key inFilesystem:(NSString*)filesystem mergeWithOtherFilesystems:(BOOL)merge;
/** A nil value removes the key. A nil key raises NSInvalidArgumentException. */
- (void)setProperty:(id)value forKey:(NSString*)key inFilesystem:(NSString*)filesystem;
@end

/** In which file systems the object is: bits of DRFilesystemInclusionMask. */
@interface DRFSObject (DRFSObjectMasks)
/** What was set; 0, as it is at first, means that the parent decides. */
- (uint32_t)explicitFilesystemMask;
/** Raises NSInvalidArgumentException for bits that are no file system's, but takes 0xFFFFFFFF for all. */
- (void)setExplicitFilesystemMask:(uint32_t)mask;
/**
 * The explicit mask, or the parent's effective one, without the bits that the parent has not. 0 leaves the
 * object off the disc, but for a root whose explicit mask is 0 too: there the burn takes ISO 9660 and Joliet,
 * and what else the tree asks for.
 */
- (uint32_t)effectiveFilesystemMask;
@end

#endif
