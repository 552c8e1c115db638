// Filesystems: the names of file systems that a program uses, and what each stands for.
#import "Filesystems.h"

const DRFilesystem* DRFilesystems(void) {
    static DRFilesystem rows[DRFilesystemCount];
    static BOOL isFilled = NO;
    if (__atomic_load_n(&isFilled, __ATOMIC_ACQUIRE))
        return rows;
    const DRFilesystem filled[DRFilesystemCount] = {
        {DRISO9660LevelOne, DRISO9660, DRFilesystemInclusionMaskISO9660, 0},
        {DRISO9660LevelTwo, DRISO9660, DRFilesystemInclusionMaskISO9660, 1},
        {DRJoliet, DRJoliet, DRFilesystemInclusionMaskJoliet, 2},
        {DRHFSPlus, DRHFSPlus, DRFilesystemInclusionMaskHFSPlus, 3},
        {DRUDF, DRUDF, DRFilesystemInclusionMaskUDF, 4},
        {DRISO9660, DRISO9660, DRFilesystemInclusionMaskISO9660, DRNoNameRule},
        {DRAllFilesystems, DRAllFilesystems, DREveryFilesystem, DRBaseNameRule},
    };
    @synchronized([NSString class]) {
        if (!isFilled)
            memcpy(rows, filled, sizeof rows);
        __atomic_store_n(&isFilled, YES, __ATOMIC_RELEASE);
    }
    return rows;
}

const DRFilesystem* DRFilesystemNamed(NSString* name) {
    const DRFilesystem* rows = DRFilesystems();
    for (int i = 0; i < DRFilesystemCount; i++) {
        if ([name isKindOfClass:[NSString class]] && [name isEqualToString:rows[i].name])
            return &rows[i];
    }
    [NSException
         raise:NSInvalidArgumentException
        format:@"There is no file system \"%@\"; use one of the names that this framework has for them.",
               name];
    return NULL;
}

const DRFilesystem* DRFilesystemOfNames(NSString* name) {
    const DRFilesystem* found = DRFilesystemNamed(name);
    if (found->nameRule == DRNoNameRule) {
        [NSException raise:NSInvalidArgumentException
                    format:@"Names in ISO 9660 depend on its level: ask for DRISO9660LevelOne or "
                           @"DRISO9660LevelTwo."];
    }
    return found;
}
