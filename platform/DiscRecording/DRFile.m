// DRFile: a file of a disc's content.
#import "DRFile.h"
#import "DRFSObjectPrivate.h"
#import "DRFilePrivate.h"
#import "Filesystems.h"

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
    if (self != nil)
        _data = data == nil ? [[NSData alloc] init] : [[NSData alloc] initWithData:data];
    return self;
}

+ (DRFile*)virtualFileWithName:(NSString*)name dataProducer:(id)producer {
    return [[[self alloc] initWithName:name dataProducer:producer] autorelease];
}

- (id)initWithName:(NSString*)name dataProducer:(id)producer {
    self = [self initWithBaseName:name];
    // Keeping itself alive would keep it for ever.
    if (self != nil)
        _producer = producer == self ? producer : [producer retain];
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
    _linkType = [linkType copy];
    _target = original;
    [original addLink:self];
    [self setExplicitFilesystemMask:mask];
    return self;
}

- (void)dealloc {
    [_target removeLink:self];
    if (_producer != self)
        [_producer release];
    [_data release];
    [_linkType release];
    [super dealloc];
}

@end

@implementation DRFile (Private)

- (NSData*)data {
    return _data;
}

- (id)producer {
    return _producer;
}

- (NSString*)linkType {
    return _linkType;
}

- (DRFSObject*)target {
    return _target;
}

- (void)forgetTarget {
    _target = nil;
}

@end
