// CFURLPaths: file references as paths in text.
#ifndef CORESERVICES_CFURLPATHS_H
#define CORESERVICES_CFURLPATHS_H

#import "CoreServices.h"
#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The path of the item that is there now, autoreleased; nil when none is. */
NSString* PathOfReference(const FSRef* ref, Boolean* isDirectory) __attribute__((visibility("hidden")));
/* False when no item is at the path. */
Boolean ReferenceOfPath(NSString* path, FSRef* ref) __attribute__((visibility("hidden")));

#ifdef __cplusplus
}
#endif

#endif
