// CFURL: CoreFoundation's URLs, which are Foundation's.
#import "CFURLPaths.h"

// A file URL with or without the "/" that marks a folder. Null for a path that is no proper text: Foundation
// raises an exception for it, and loses an object on the way.
static CFURLRef NewFileURL(NSString* path, BOOL isDirectory) {
    if (![path canBeConvertedToEncoding:NSUTF8StringEncoding])
        return NULL;
    return (CFURLRef)[[NSURL alloc] initFileURLWithPath:path isDirectory:isDirectory];
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref) {
    (void)allocator;
    Boolean isDirectory = false;
    NSString* path = PathOfReference(ref, &isDirectory);
    if (path == nil)
        return NULL;
    return NewFileURL(path, isDirectory);
}

Boolean CFURLGetFSRef(CFURLRef url, FSRef* ref) {
    NSURL* location = (NSURL*)url;
    if (location == nil || ref == NULL || ![location isFileURL])
        return false;
    NSString* path = [location path];
    return path != nil && ReferenceOfPath(path, ref);
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef name,
                                               Boolean isDirectory) {
    (void)allocator;
    NSURL* location = (NSURL*)url;
    if (location == nil || name == NULL || ![location isFileURL])
        return NULL;
    NSString* folder = [location path];
    NSString* slash = [folder hasSuffix:@"/"] ? @"" : @"/";
    return NewFileURL([NSString stringWithFormat:@"%@%@%@", folder, slash, (NSString*)name], isDirectory);
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url) {
    (void)allocator;
    NSURL* location = (NSURL*)url;
    if (location == nil || ![location isFileURL])
        return NULL;
    NSString* path = [location path];
    NSRange slash = [path rangeOfString:@"/" options:NSBackwardsSearch];
    if (slash.location == NSNotFound)
        return NULL;
    return NewFileURL(slash.location == 0 ? @"/" : [path substringToIndex:slash.location], YES);
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    NSString* path = [(NSURL*)url path];
    if (path == nil)
        return NULL;
    if ([path isEqualToString:@"/"])
        return (CFStringRef)[path copy];
    NSRange slash = [path rangeOfString:@"/" options:NSBackwardsSearch];
    if (slash.location == NSNotFound)
        return (CFStringRef)[path copy];
    return (CFStringRef)[[path substringFromIndex:NSMaxRange(slash)] copy];
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
    if (style != kCFURLPOSIXPathStyle)
        return NULL;
    return (CFStringRef)[[(NSURL*)url path] copy];
}
