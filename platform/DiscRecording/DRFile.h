// DRFile: a file of a disc's content.
#ifndef DISCRECORDING_DRFILE_H
#define DISCRECORDING_DRFILE_H

#import "DRFSObject.h"

// Trees have very many files, so one costs little: it has only what is its sort's. See DRFile.m.
union DRFileContent {
    void* bytes;        // of data in memory
    id producer;        // retained, unless the file is its own
    NSString* linkType; // retained
};
union DRFileMore {
    NSUInteger length;  // of the bytes
    DRFSObject* target; // of a link, not retained: nil once it is gone
};

/**
 * A file on a disc: one that exists on disk, or one that exists only in the tree and has its data in memory,
 * has a producer that makes it, or is a link to something else in the tree.
 */
@interface DRFile : DRFSObject {
  @private
    union DRFileContent _content;
    union DRFileMore _more;
}

/** A file on disk. A path where no file is fails when it is burned, not here. */
+ (DRFile*)fileWithPath:(NSString*)path;
/** As fileWithPath:. */
- (id)initWithPath:(NSString*)path;

/** A virtual file with this data, which is copied; nil is no data. Meant for small files. */
+ (DRFile*)virtualFileWithName:(NSString*)name data:(NSData*)data;
/** As virtualFileWithName:data:. */
- (id)initWithName:(NSString*)name data:(NSData*)data;

/** A virtual file whose size and data the producer tells, see below, when the disc is burned. */
+ (DRFile*)virtualFileWithName:(NSString*)name dataProducer:(id)producer;
/** The producer is retained, but not when it is the file itself. */
- (id)initWithName:(NSString*)name dataProducer:(id)producer;

/**
 * Links to something that is burned in the same tree. Paths and possibilities differ from one file system to
 * another, so a link is made for one of them, and is left out of the others: its explicit mask says so. It has
 * the base name of what it points at until it is given its own, and does not keep it alive.
 *
 * Hard links point at files. ISO 9660 has symbolic links by Rock Ridge, Joliet has none; Finder aliases are for
 * HFS+ alone. What can't be, a nil original and an unknown link type raise NSInvalidArgumentException.
 */
+ (DRFile*)hardLinkPointingTo:(DRFile*)original inFilesystem:(NSString*)filesystem;
+ (DRFile*)symLinkPointingTo:(DRFSObject*)original inFilesystem:(NSString*)filesystem;
+ (DRFile*)finderAliasPointingTo:(DRFSObject*)original inFilesystem:(NSString*)filesystem;
/** The type is DRLinkTypeHardLink, DRLinkTypeSymbolicLink or DRLinkTypeFinderAlias. */
- (id)initWithLinkType:(NSString*)linkType
            pointingTo:(DRFSObject*)original
          inFilesystem:(NSString*)filesystem;

@end

/**
 * What a producer of files may implement. A burn calls from threads of its own, one call at a time, for any
 * file in any order. Without a size method a file is empty; what is not there to prepare is prepared.
 */
@interface NSObject (DRFileDataProduction)
/**
 * Bytes of the fork. The resource fork is asked for where HFS+ shows the file, and is in HFS+ only; 0 is for none. Estimating, an
 * upper bound does and it is to be quick; else it must be exact.
 */
- (uint64_t)calculateSizeOfFile:(DRFile*)file fork:(int32_t)fork estimating:(BOOL)estimating;
/** Before anything of the file is asked for in a burn. NO fails the burn. */
- (BOOL)prepareFileForBurn:(DRFile*)file;
/**
 * Fills the buffer with the bytes from `address` on and answers how many; 0 fails the burn. The same bytes may
 * be asked for again.
 */
- (uint32_t)produceFile:(DRFile*)file
                   fork:(int32_t)fork
             intoBuffer:(void*)buffer
                 length:(uint32_t)length
              atAddress:(uint64_t)address
              blockSize:(uint32_t)blockSize;
/**
 * Before bytes are asked for a second time, from the start, to be compared with the disc: once, where the burn verifies and its
 * track has DRVerificationTypeProduceAgain. Not for an empty file. NO fails the burn.
 */
- (BOOL)prepareFileForVerification:(DRFile*)file;
/**
 * After success and failure, once for each file that was prepared. Raising here fails the burn with 0x80020062, though the disc
 * is whole by then and stays so.
 */
- (void)cleanupFileAfterBurn:(DRFile*)file;
@end

#endif
