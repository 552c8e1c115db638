// ExceptionFrame.m: the plug-in's one Objective-C file, a @try around a C function.
#include "plugin/objc/ExceptionFrame.h"

// The class is all that @catch needs to know; the platform's headers stay outside.
__attribute__((objc_root_class))
@interface NSObject {
    Class isa;
}
@end
@interface NSException : NSObject
@end

void* objcRunInExceptionFrame(void (*body)(void* context), void* context) {
    @try {
        body(context);
        return 0;
    } @catch (NSException* exception) {
        return exception;
    }
}
