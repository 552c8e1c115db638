// ProducerCalls: what the engine's threads need to send messages.
#import "ProducerCalls.h"
#import <Foundation/Foundation.h>

#include <string.h>

char* DRCallProducer(void (*body)(void* context), void* context) {
    static __thread BOOL isRegistered; // until the thread's end
    static Class pools;                // looking it up takes as long as making one
    if (!isRegistered) {
        GSRegisterCurrentThread();
        isRegistered = YES;
    }
    char* reason = NULL;
    if (__atomic_load_n(&pools, __ATOMIC_RELAXED) == Nil)
        __atomic_store_n(&pools, [NSAutoreleasePool class], __ATOMIC_RELAXED);
    NSAutoreleasePool* pool = [__atomic_load_n(&pools, __ATOMIC_RELAXED) new];
    @try {
        body(context);
    } @catch (NSException* raised) {
        const char* text = [[raised reason] UTF8String];
        reason = strdup(text == NULL ? "an exception without a reason" : text);
    } @catch (id raised) {
        reason = strdup("an exception of an unknown kind");
    }
    [pool release];
    return reason;
}
