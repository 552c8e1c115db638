// Exceptions.h: platform exceptions on their way to programs.
#import "companion/Host.h"

// A new host object for the platform exception, with one reference: an NSExceptionQRX, or on a host without
// that class a RuntimeException; either carries the reason as its message. Null only when the host can make
// neither.
REALobject newHostException(NSException* exception);
// Raises that object in the host once the function that the host called has returned.
void raiseInHost(NSException* exception);

// Offers the conversion, and the table of wrappers, to every plug-in of the process: as class methods of
// NSException, which each asks for by name and does without when they are not there.
void addExceptionMethods(void);

// The body of a function that the host calls. What the platform raises becomes the host's exception, and the
// result is empty.
#define GUARDED(Type, value)                                                                                 \
    @try {                                                                                                   \
        return value;                                                                                        \
    } @catch (NSException * exception) {                                                                     \
        raiseInHost(exception);                                                                              \
    }                                                                                                        \
    return (Type){0};
#define GUARDED_VOID(action)                                                                                 \
    @try {                                                                                                   \
        action;                                                                                              \
    } @catch (NSException * exception) {                                                                     \
        raiseInHost(exception);                                                                              \
    }
