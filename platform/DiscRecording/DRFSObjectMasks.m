// DRFSObjectMasks: in which file systems files and folders are.
#import "DRFSObject.h"
#import "DRFSObjectPrivate.h"
#import "DRFolder.h"
#import "Filesystems.h"

@implementation DRFSObject (DRFSObjectMasks)

- (uint32_t)explicitFilesystemMask {
    return _explicitMask;
}

- (void)setExplicitFilesystemMask:(uint32_t)mask {
    if ((mask & ~(uint32_t)DREveryFilesystem) != 0 && mask != UINT32_MAX) {
        [NSException raise:NSInvalidArgumentException
                    format:@"The mask 0x%x has bits that stand for no file system; combine those of "
                           @"DRFilesystemInclusionMask.",
                           mask];
    }
    _explicitMask = mask;
    [self nameChanged]; // whether it stands in its siblings' way
}

// What a folder lacks, nothing in it has. So the masks that are set, up to the root, restrict each other.
- (uint32_t)effectiveFilesystemMask {
    uint32_t mask = DREveryFilesystem;
    for (DRFSObject* object = self; object != nil; object = [object parent]) {
        const uint32_t set = [object explicitFilesystemMask];
        if (set != 0)
            mask &= set;
        else if ([object parent] == nil)
            return 0;
    }
    return mask;
}

@end
