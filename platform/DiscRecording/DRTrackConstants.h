// DRTrackConstants.h: the properties of a track.
#ifndef DISCRECORDING_DRTRACKCONSTANTS_H
#define DISCRECORDING_DRTRACKCONSTANTS_H

#import "DRStringConstants.h"

/** Keys and values of the properties of a DRTrack, and of the volume that a root folder makes. */
#define DR_TRACK_STRINGS(X)                                                                                  \
    X(DRTrackLengthKey)                                                                                      \
    X(DRBlockSizeKey)                                                                                        \
    X(DRBlockTypeKey)                                                                                        \
    X(DRDataFormKey)                                                                                         \
    X(DRSessionFormatKey)                                                                                    \
    X(DRTrackModeKey)                                                                                        \
    X(DRVerificationTypeKey)                                                                                 \
    X(DRMaxBurnSpeedKey)                                                                                     \
    X(DRPreGapLengthKey)                                                                                     \
    X(DRPreGapIsRequiredKey)                                                                                 \
    X(DRDVDTimestampKey)                                                                                     \
    X(DRDVDCopyrightInfoKey)                                                                                 \
    X(DRTrackISRCKey)                                                                                        \
    X(DRIndexPointsKey)                                                                                      \
    X(DRAudioPreEmphasisKey)                                                                                 \
    X(DRAudioFourChannelKey)                                                                                 \
    X(DRSerialCopyManagementStateKey)                                                                        \
    X(DRVerificationTypeProduceAgain)                                                                        \
    X(DRVerificationTypeReceiveData)                                                                         \
    X(DRVerificationTypeChecksum)                                                                            \
    X(DRVerificationTypeNone)                                                                                \
    X(DRSCMSCopyrightFree)                                                                                   \
    X(DRSCMSCopyrightProtectedOriginal)                                                                      \
    X(DRSCMSCopyrightProtectedCopy)                                                                          \
    X(DRNextWritableAddressKey)                                                                              \
    X(DRTrackStartAddressKey)                                                                                \
    X(DRFreeBlocksKey)                                                                                       \
    X(DRTrackNumberKey)                                                                                      \
    X(DRSessionNumberKey)                                                                                    \
    X(DRTrackTypeKey)                                                                                        \
    X(DRTrackIsEmptyKey)                                                                                     \
    X(DRTrackPacketTypeKey)                                                                                  \
    X(DRTrackPacketSizeKey)                                                                                  \
    X(DRTrackTypeInvisible)                                                                                  \
    X(DRTrackTypeIncomplete)                                                                                 \
    X(DRTrackTypeReserved)                                                                                   \
    X(DRTrackTypeClosed)                                                                                     \
    X(DRTrackPacketTypeFixed)                                                                                \
    X(DRTrackPacketTypeVariable)                                                                             \
    X(DRISOLevel)                                                                                            \
    X(DRVolumeSet)                                                                                           \
    X(DRPublisher)                                                                                           \
    X(DRDataPreparer)                                                                                        \
    X(DRApplicationIdentifier)                                                                               \
    X(DRSystemIdentifier)                                                                                    \
    X(DRCopyrightFile)                                                                                       \
    X(DRAbstractFile)                                                                                        \
    X(DRBibliographicFile)                                                                                   \
    X(DRBlockSize)                                                                                           \
    X(DRDefaultDate)                                                                                         \
    X(DRVolumeCreationDate)                                                                                  \
    X(DRVolumeModificationDate)                                                                              \
    X(DRVolumeCheckedDate)                                                                                   \
    X(DRVolumeExpirationDate)                                                                                \
    X(DRVolumeEffectiveDate)                                                                                 \
    X(DRISOMacExtensions)                                                                                    \
    X(DRISORockRidgeExtensions)                                                                              \
    X(DRSuppressMacSpecificFiles)                                                                            \
    X(DRSubchannelDataFormKey)                                                                               \
    X(DRSubchannelDataFormNone)                                                                              \
    X(DRSubchannelDataFormPack)                                                                              \
    X(DRSubchannelDataFormRaw)
DR_DECLARE_STRINGS(DR_TRACK_STRINGS)

/** The same key under its older name; the text is "DRPreGapIsRequiredKey". */
extern NSString* const kDRPreGapIsRequiredKey;

/** Bytes of user data in a block (DRBlockSizeKey). */
enum {
    kDRBlockSizeAudio = 2352,
    kDRBlockSizeMode1Data = 2048,
    kDRBlockSizeMode2Data = 2332,
    kDRBlockSizeMode2Form1Data = 2048,
    kDRBlockSizeMode2Form2Data = 2324,
    kDRBlockSizeDVDData = 2048
};

/** Kinds of block (DRBlockTypeKey). */
enum {
    kDRBlockTypeAudio = 0,
    kDRBlockTypeMode1Data = 8,
    kDRBlockTypeMode2Data = 13,
    kDRBlockTypeMode2Form1Data = 10,
    kDRBlockTypeMode2Form2Data = 12,
    kDRBlockTypeDVDData = 8
};

/** Forms of data (DRDataFormKey). */
enum {
    kDRDataFormAudio = 0,
    kDRDataFormMode1Data = 16,
    kDRDataFormMode2Data = 32,
    kDRDataFormMode2Form1Data = 32,
    kDRDataFormMode2Form2Data = 32,
    kDRDataFormDVDData = 16
};

/** Modes of a track (DRTrackModeKey). */
enum {
    kDRTrackModeAudio = 0,
    kDRTrackMode1Data = 4,
    kDRTrackMode2Data = 4,
    kDRTrackMode2Form1Data = 4,
    kDRTrackMode2Form2Data = 4,
    kDRTrackModeDVDData = 5
};

/** Formats of a session (DRSessionFormatKey). */
enum {
    kDRSessionFormatAudio = 0,
    kDRSessionFormatMode1Data = 0,
    kDRSessionFormatCDI = 0x10,
    kDRSessionFormatCDXA = 0x20,
    kDRSessionFormatDVDData = 0
};

/** Bits of the flags that an engine and a producer of track data exchange. */
enum { DRFlagNoMoreData = 1, DRFlagSubchannelDataRequested = 2 };

#endif
