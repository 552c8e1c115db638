// DRFSObject: what files and folders of a disc's content have in common.
#import "DRFSObject.h"
#import "DRFSObjectPrivate.h"
#import "DRFolderPrivate.h"

#include <pthread.h>

static pthread_mutex_t linksLock = PTHREAD_MUTEX_INITIALIZER;

void DRLockLinks(void) { pthread_mutex_lock(&linksLock); }

void DRUnlockLinks(void) { pthread_mutex_unlock(&linksLock); }

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
    if (_links != nil) {
        DRLockLinks();
        for (NSValue* link in _links)
            [[link nonretainedObjectValue] forgetTarget];
        DRUnlockLinks();
        [_links release];
    }
    [_baseName release];
    [_sourcePath release];
    [_properties release];
    [_specificNames release];
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
    [self forgetSpecificNames];
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

- (void)nameChanged {
    [_parent childNamesChanged];
}

- (void)forgetSource {
    [_sourcePath release];
    _sourcePath = nil;
}

- (BOOL)hasProperties {
    return [_properties count] != 0;
}

- (NSString*)ownNameForFilesystem:(NSString*)filesystem {
    return [_specificNames objectForKey:filesystem];
}

- (void)forgetSpecificNames {
    [_specificNames release];
    _specificNames = nil;
    [self nameChanged];
}

@end

@implementation DRFSObject (PrivateLinks)

- (void)addLink:(DRFSObject*)link {
    if (_links == nil)
        _links = [[NSMutableArray alloc] initWithCapacity:1];
    [_links addObject:[NSValue valueWithNonretainedObject:link]];
}

- (void)removeLink:(DRFSObject*)link {
    // The last one first: links go in the reverse of the order in which they came, when they go together.
    for (NSUInteger i = [_links count]; i-- > 0;) {
        if ([[_links objectAtIndex:i] nonretainedObjectValue] != link)
            continue;
        [_links removeObjectAtIndex:i];
        return;
    }
}

- (void)forgetTarget {
}

@end
