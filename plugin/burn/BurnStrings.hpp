// BurnStrings.hpp: the string constants that DRBurnQRX hands to programs.
#pragma once

// In the order of declaration.
#define BURN_STRINGS(X)                                                                                      \
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
    X(DRBurnStrategyDVDDAO)                                                                                  \
    X(DRBurnStrategyBDDAO)                                                                                   \
    X(DRBurnStatusChangedNotification)                                                                       \
    X(DRStatusStateKey)                                                                                      \
    X(DRStatusPercentCompleteKey)                                                                            \
    X(DRStatusCurrentSessionKey)                                                                             \
    X(DRStatusCurrentTrackKey)                                                                               \
    X(DRStatusTotalSessionsKey)                                                                              \
    X(DRStatusTotalTracksKey)                                                                                \
    X(DRStatusCurrentSpeedKey)                                                                               \
    X(DRStatusEraseTypeKey)                                                                                  \
    X(DRStatusStateNone)                                                                                     \
    X(DRStatusStatePreparing)                                                                                \
    X(DRStatusStateVerifying)                                                                                \
    X(DRStatusStateDone)                                                                                     \
    X(DRStatusStateFailed)                                                                                   \
    X(DRStatusStateSessionOpen)                                                                              \
    X(DRStatusStateTrackOpen)                                                                                \
    X(DRStatusStateTrackWrite)                                                                               \
    X(DRStatusStateTrackClose)                                                                               \
    X(DRStatusStateSessionClose)                                                                             \
    X(DRStatusStateFinishing)                                                                                \
    X(DRStatusStateErasing)                                                                                  \
    X(DRStatusProgressInfoKey)                                                                               \
    X(DRStatusProgressCurrentKPS)                                                                            \
    X(DRStatusProgressCurrentXFactor)                                                                        \
    X(DRErrorStatusKey)                                                                                      \
    X(DRErrorStatusErrorKey)                                                                                 \
    X(DRErrorStatusErrorStringKey)                                                                           \
    X(DRErrorStatusErrorInfoStringKey)                                                                       \
    X(DRErrorStatusSenseKey)                                                                                 \
    X(DRErrorStatusSenseCodeStringKey)                                                                       \
    X(DRErrorStatusAdditionalSenseStringKey)
