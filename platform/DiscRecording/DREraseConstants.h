// DREraseConstants.h: the properties of an erase.
#ifndef DISCRECORDING_DRERASECONSTANTS_H
#define DISCRECORDING_DRERASECONSTANTS_H

#import "DRStringConstants.h"

/** Keys and values of the properties of a DRErase, and its notification. */
#define DR_ERASE_STRINGS(X)                                                                                  \
    X(DREraseTypeKey)                                                                                        \
    X(DREraseTypeQuick)                                                                                      \
    X(DREraseTypeComplete)                                                                                   \
    X(DREraseStatusChangedNotification)
DR_DECLARE_STRINGS(DR_ERASE_STRINGS)

#endif
