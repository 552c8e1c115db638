// Filesystems: the names of file systems that a program uses, and what each stands for.
#ifndef DISCRECORDING_FILESYSTEMS_H
#define DISCRECORDING_FILESYSTEMS_H

#import "DRFSObjectConstants.h"

#include <stdint.h>

enum { DRNoNameRule = -1, DRBaseNameRule = -2, DREveryFilesystem = 15 };

typedef struct DRFilesystem {
    NSString* name;
    /** Its properties are kept under this name: the levels of ISO 9660 have one set. */
    NSString* propertiesName;
    uint32_t mask;
    /** A discrecording::NameRule; or that it has no names, or that its name is the base name. */
    int nameRule;
} DRFilesystem;

enum { DRFilesystemCount = 7 };

#ifdef __cplusplus
extern "C" {
#endif

/** All of them; the five that have name rules of their own first, in the rules' order. */
const DRFilesystem* DRFilesystems(void);

/** The file system of that name. Raises NSInvalidArgumentException for any other text, and for nil. */
const DRFilesystem* DRFilesystemNamed(NSString* name);

/** The same, for names of files: raises for DRISO9660 too, whose levels have different names. */
const DRFilesystem* DRFilesystemOfNames(NSString* name);

#ifdef __cplusplus
}
#endif

#endif
