// DRStatusConstants.h: how burns and erases tell of their progress.
#ifndef DISCRECORDING_DRSTATUSCONSTANTS_H
#define DISCRECORDING_DRSTATUSCONSTANTS_H

#import "DRStringConstants.h"

/** Keys and values of the status dictionaries of DRBurn and DRErase, and of the error in them. */
#define DR_STATUS_STRINGS(X)                                                                                 \
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
DR_DECLARE_STRINGS(DR_STATUS_STRINGS)

#endif
