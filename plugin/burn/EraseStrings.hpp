// EraseStrings.hpp: the string constants that DREraseQRX hands to programs.
#pragma once

// In the order of declaration.
#define ERASE_STRINGS(X)                                                                                     \
    X(DREraseTypeKey)                                                                                        \
    X(DREraseTypeQuick)                                                                                      \
    X(DREraseTypeComplete)                                                                                   \
    X(DREraseStatusChangedNotification)
