// DRFolderPrivate: what children ask of their folder.
#ifndef DISCRECORDING_DRFOLDERPRIVATE_H
#define DISCRECORDING_DRFOLDERPRIVATE_H

#import "DRFolder.h"

@interface DRFolder (Private)
- (void)childNamesChanged;
/** The child's mangled name; the rule is a discrecording::NameRule. All names are found at once and kept. */
- (NSString*)mangledNameOfChild:(DRFSObject*)child byRule:(int)rule;
@end

#endif
