// Raised: stops what the platform raises before it passes through the engine.
#import "Raised.h"

NSString* DRRaisedBy(void (*body)(void* context), void* context) {
    @try {
        body(context);
    } @catch (NSException* exception) {
        return [NSString stringWithFormat:@"%@: %@", [exception name], [exception reason]];
    }
    return nil;
}
