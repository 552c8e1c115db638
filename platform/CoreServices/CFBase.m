// CFBase: references of any kind of object.
#import "CoreServices.h"
#import <Foundation/Foundation.h>

CFTypeRef CFRetain(CFTypeRef object) { return (CFTypeRef)[(id)object retain]; }

void CFRelease(CFTypeRef object) { [(id)object release]; }
