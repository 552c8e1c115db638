// DRFile: a file of a disc's content.
#import "DRFile.h"
#import "DRFSObjectPrivate.h"
#import "DRFilePrivate.h"

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

- (void)dealloc {
    [_data release];
    [super dealloc];
}

@end

@implementation DRFile (Private)

- (NSData*)data {
    return _data;
}

@end
