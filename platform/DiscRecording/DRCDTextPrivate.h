// DRCDTextPrivate: the packs of CD-Text blocks, for what writes them.
#ifndef DISCRECORDING_DRCDTEXTPRIVATE_H
#define DISCRECORDING_DRCDTEXTPRIVATE_H

#import "DRCDTextBlock.h"

@interface DRCDTextBlock (DRCDTextPrivate)

/**
 * The packs of up to eight blocks, in this order and without the four bytes of a drive. Autoreleased;
 * nil when the blocks are too many, and then the reason goes to the log.
 */
+ (NSData*)packsOfCDTextBlocks:(NSArray*)blocks;

@end

#endif
