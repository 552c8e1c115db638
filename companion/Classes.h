// Classes.h: every host class of the companion, in the order of their registration.
#import "companion/Host.h"

#define COMPANION_CLASSES(X)                                                                                 \
    X(NSExceptionQRX)                                                                                        \
    X(NSWindowQRX)                                                                                           \
    X(NSPanelQRX)                                                                                            \
    X(NSRangeQRX)                                                                                            \
    X(NSRectQRX)                                                                                             \
    X(NSSizeQRX)                                                                                             \
    X(NSPointQRX)                                                                                            \
    X(NSAttributedStringQRX)                                                                                 \
    X(NSCharacterSetQRX)                                                                                     \
    X(NSErrorQRX)                                                                                            \
    X(NSIndexSetQRX)

#define COMPANION_DECLARE(name) extern REALclassDefinition name##Class;
COMPANION_CLASSES(COMPANION_DECLARE)
#undef COMPANION_DECLARE
