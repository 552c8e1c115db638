// DRBurnConstants.h: the properties of a burn.
#ifndef DISCRECORDING_DRBURNCONSTANTS_H
#define DISCRECORDING_DRBURNCONSTANTS_H

#import "DRStringConstants.h"

/** Keys and values of the properties of a DRBurn, and its notification. */
#define DR_BURN_STRINGS(X)                                                                                   \
    X(DRBurnRequestedSpeedKey)                                                                               \
    X(DRBurnAppendableKey)                                                                                   \
    X(DRBurnOverwriteDiscKey)                                                                                \
    X(DRBurnVerifyDiscKey)                                                                                   \
    X(DRBurnCompletionActionKey)                                                                             \
    X(DRBurnUnderrunProtectionKey)                                                                           \
    X(DRBurnTestingKey)                                                                                      \
    X(DRSynchronousBehaviorKey)                                                                              \
    X(DRBurnFailureActionKey)                                                                                \
    X(DRMediaCatalogNumberKey)                                                                               \
    X(DRBurnDoubleLayerL0DataZoneBlocksKey)                                                                  \
    X(DRBurnStrategyKey)                                                                                     \
    X(DRBurnStrategyIsRequiredKey)                                                                           \
    X(DRCDTextKey)                                                                                           \
    X(DRBurnCompletionActionEject)                                                                           \
    X(DRBurnCompletionActionMount)                                                                           \
    X(DRBurnFailureActionEject)                                                                              \
    X(DRBurnFailureActionNone)                                                                               \
    X(DRBurnStrategyCDTAO)                                                                                   \
    X(DRBurnStrategyCDSAO)                                                                                   \
    X(DRBurnStrategyCDRaw)                                                                                   \
    X(DRBurnStrategyDVDDAO)                                                                                  \
    X(DRBurnStrategyBDDAO)                                                                                   \
    X(DRBurnStatusChangedNotification)
DR_DECLARE_STRINGS(DR_BURN_STRINGS)

#endif
