// DRFolderPrivate: what children ask of their folder.
#ifndef DISCRECORDING_DRFOLDERPRIVATE_H
#define DISCRECORDING_DRFOLDERPRIVATE_H

#import "DRFolder.h"

struct stat;

@interface DRFolder (Private)
/** What the folder on disk was that this one was made virtual from; null for all others. */
- (const struct stat*)source;
- (void)childNamesChanged;
/** The child's mangled name; the rule is a discrecording::NameRule. All names are found at once and kept. */
- (NSString*)mangledNameOfChild:(DRFSObject*)child byRule:(int)rule;
@end

#endif
