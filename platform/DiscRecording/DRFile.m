// DRFile: a file of a disc's content.
#import "DRFile.h"
#import "DRFSObjectPrivate.h"
#import "DRFilePrivate.h"
#import "Filesystems.h"

// What _sort says: nothing of that for a file on disk.
enum { WithData = 1, WithProducer, Link };

// The one file system that the link is for, if it can be.
static uint32_t MaskOfLink(NSString* linkType, DRFSObject* original, NSString* filesystem) {
    const DRFilesystem* wanted = DRFilesystemNamed(filesystem);
    if (![original isKindOfClass:[DRFSObject class]]) {
        [NSException raise:NSInvalidArgumentException
                    format:@"A link points at a file or folder of the disc's content, not at %@.", original];
    }
    NSString* problem = nil;
    if (wanted->mask == DREveryFilesystem) {
        problem = @"A link is for one file system: make one for each.";
    } else if ([linkType isEqualToString:DRLinkTypeHardLink]) {
        if (![original isKindOfClass:[DRFile class]])
            problem = @"A hard link can point at a file only.";
    } else if ([linkType isEqualToString:DRLinkTypeSymbolicLink]) {
        if (wanted->mask == DRFilesystemInclusionMaskJoliet)
            problem = @"There are no symbolic links in Joliet.";
    } else if ([linkType isEqualToString:DRLinkTypeFinderAlias]) {
        if (wanted->mask != DRFilesystemInclusionMaskHFSPlus)
            problem = @"There are Finder aliases in HFS+ only.";
    } else {
        problem = [NSString stringWithFormat:@"There is no link type \"%@\".", linkType];
    }
    if (problem != nil)
        [NSException raise:NSInvalidArgumentException format:@"%@", problem];
    return wanted->mask;
}

@implementation DRFile

+ (DRFile*)fileWithPath:(NSString*)path {
    return [[[self alloc] initWithPath:path] autorelease];
}

- (id)initWithPath:(NSString*)path {
    return [self initWithSourcePath:path];
}

+ (DRFile*)virtualFileWithName:(NSString*)name data:(NSData*)data {
    return [[[self alloc] initWithName:name data:data] autorelease];
}

- (id)initWithName:(NSString*)name data:(NSData*)data {
    self = [self initWithBaseName:name];
    if (self == nil)
        return nil;
    const NSUInteger length = [data length];
    _content.bytes = length == 0 ? NULL : malloc(length);
    if (length > 0 && _content.bytes == NULL) {
        [self release];
        [NSException raise:NSMallocException
                    format:@"There is no memory for the %lu bytes of a file.", (unsigned long)length];
    }
    if (length > 0)
        memcpy(_content.bytes, [data bytes], length);
    _more.length = length;
    _sort = WithData;
    return self;
}

+ (DRFile*)virtualFileWithName:(NSString*)name dataProducer:(id)producer {
    return [[[self alloc] initWithName:name dataProducer:producer] autorelease];
}

- (id)initWithName:(NSString*)name dataProducer:(id)producer {
    self = [self initWithBaseName:name];
    // Keeping itself alive would keep it for ever.
    if (self != nil && producer != nil) {
        _content.producer = producer == self ? producer : [producer retain];
        _sort = WithProducer;
    }
    return self;
}

+ (DRFile*)hardLinkPointingTo:(DRFile*)original inFilesystem:(NSString*)filesystem {
    return [[[self alloc] initWithLinkType:DRLinkTypeHardLink pointingTo:original
                              inFilesystem:filesystem] autorelease];
}

+ (DRFile*)symLinkPointingTo:(DRFSObject*)original inFilesystem:(NSString*)filesystem {
    return [[[self alloc] initWithLinkType:DRLinkTypeSymbolicLink pointingTo:original
                              inFilesystem:filesystem] autorelease];
}

+ (DRFile*)finderAliasPointingTo:(DRFSObject*)original inFilesystem:(NSString*)filesystem {
    return [[[self alloc] initWithLinkType:DRLinkTypeFinderAlias pointingTo:original
                              inFilesystem:filesystem] autorelease];
}

- (id)initWithLinkType:(NSString*)linkType
            pointingTo:(DRFSObject*)original
          inFilesystem:(NSString*)filesystem {
    uint32_t mask = 0;
    @try {
        mask = MaskOfLink(linkType, original, filesystem);
    } @catch (id refused) {
        [self release];
        @throw;
    }
    self = [self initWithBaseName:[original baseName]];
    if (self == nil)
        return nil;
    _sort = Link;
    _content.linkType = [linkType copy];
    DRLockLinks();
    _more.target = original;
    [original addLink:self];
    DRUnlockLinks();
    [self setExplicitFilesystemMask:mask];
    return self;
}

- (void)dealloc {
    if (_sort == WithData)
        free(_content.bytes);
    if (_sort == WithProducer && _content.producer != self)
        [_content.producer release];
    if (_sort == Link) {
        DRLockLinks();
        [_more.target removeLink:self];
        DRUnlockLinks();
        [_content.linkType release];
    }
    [super dealloc];
}

@end

@implementation DRFile (Private)

- (BOOL)hasData {
    return _sort == WithData;
}

- (const void*)bytes {
    return _sort == WithData ? _content.bytes : NULL;
}

- (NSUInteger)length {
    return _sort == WithData ? _more.length : 0;
}

- (id)producer {
    return _sort == WithProducer ? _content.producer : nil;
}

- (NSString*)linkType {
    return _sort == Link ? _content.linkType : nil;
}

- (DRFSObject*)target {
    if (_sort != Link)
        return nil;
    DRLockLinks();
    DRFSObject* target = _more.target;
    DRUnlockLinks();
    return target;
}

- (void)forgetTarget {
    if (_sort == Link)
        _more.target = nil;
}

@end
