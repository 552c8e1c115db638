// DRFSObject: what files and folders of a disc's content have in common.
#import "DRFSObject.h"
#import "DRFSObjectPrivate.h"

// The last part of a path. Foundation's lastPathComponent is not asked: it reads more than "/" into names.
static NSString* LastPart(NSString* path) {
    NSUInteger end = [path length];
    while (end > 1 && [path characterAtIndex:end - 1] == '/') {
        end--;
    }
    NSUInteger start = end;
    while (start > 0 && [path characterAtIndex:start - 1] != '/') {
        start--;
    }
    return start == end ? [path substringToIndex:end]
                        : [path substringWithRange:NSMakeRange(start, end - start)];
}

@implementation DRFSObject

- (void)dealloc {
    [_baseName release];
    [_sourcePath release];
    [super dealloc];
}

- (BOOL)isVirtual {
    return _sourcePath == nil;
}

- (NSString*)sourcePath {
    return _sourcePath;
}

- (DRFolder*)parent {
    return _parent;
}

- (NSString*)baseName {
    return _baseName;
}

- (void)setBaseName:(NSString*)baseName {
    NSString* copy = baseName == nil ? @"" : [baseName copy];
    [_baseName release];
    _baseName = copy;
}

- (NSString*)description {
    return [NSString stringWithFormat:@"<%@ %p: %@ \"%@\">", [self class], self,
                                      [self isVirtual] ? @"virtual" : @"real", _baseName];
}

@end

@implementation DRFSObject (Private)

- (id)initWithSourcePath:(NSString*)path {
    self = [super init];
    if (self == nil)
        return nil;
    // An object for no path stays real, so that it fails when it is burned instead of vanishing from the
    // disc.
    _sourcePath = path == nil ? @"" : [path copy];
    _baseName = [LastPart(_sourcePath) copy];
    return self;
}

- (id)initWithBaseName:(NSString*)name {
    self = [super init];
    if (self != nil)
        [self setBaseName:name];
    return self;
}

- (void)setParent:(DRFolder*)parent {
    _parent = parent;
}

- (void)forgetSource {
    [_sourcePath release];
    _sourcePath = nil;
}

@end
