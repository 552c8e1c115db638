// ProducerCalls: what the engine's threads need to send messages.
#import "ProducerCalls.h"
#import <Foundation/Foundation.h>

#include <string.h>

char* DRCallProducer(void (*body)(void* context), void* context) {
    GSRegisterCurrentThread(); // once is enough, more is harmless
    char* reason = NULL;
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
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
