// CFURLPaths: file references as paths in text; the C++ half of CFURL.
#import "CFURLPaths.h"
#include "PathStrings.hpp"

#include <climits>

NSString* PathOfReference(const FSRef* ref, Boolean* isDirectory) {
    UInt8 path[PATH_MAX];
    FSRef again;
    if (ref == nullptr || FSRefMakePath(ref, path, sizeof path) != noErr)
        return nil;
    if (FSPathMakeRef(path, &again, isDirectory) != noErr)
        return nil;
    return pathnames::textOf(reinterpret_cast<const char*>(path));
}

Boolean ReferenceOfPath(NSString* path, FSRef* ref) {
    const std::string bytes = pathnames::bytesOf(path);
    if (bytes.find('\0') != std::string::npos)
        return false;
    return FSPathMakeRef(reinterpret_cast<const UInt8*>(bytes.c_str()), ref, nullptr) == noErr;
}
