// FSObjectStrings.hpp: the string constants that DRFSObjectQRX hands to programs.
#pragma once

// In the order of declaration.
#define FSOBJECT_STRINGS(X)                                                                                  \
    X(DRAllFilesystems)                                                                                      \
    X(DRISO9660)                                                                                             \
    X(DRISO9660LevelOne)                                                                                     \
    X(DRISO9660LevelTwo)                                                                                     \
    X(DRJoliet)                                                                                              \
    X(DRHFSPlus)                                                                                             \
    X(DRUDF)                                                                                                 \
    X(DRISO9660VersionNumber)                                                                                \
    X(DRInvisible)                                                                                           \
    X(DRCreationDate)                                                                                        \
    X(DRContentModificationDate)                                                                             \
    X(DRAttributeModificationDate)                                                                           \
    X(DRAccessDate)                                                                                          \
    X(DRBackupDate)                                                                                          \
    X(DREffectiveDate)                                                                                       \
    X(DRExpirationDate)                                                                                      \
    X(DRRecordingDate)                                                                                       \
    X(DRPosixFileMode)                                                                                       \
    X(DRPosixUID)                                                                                            \
    X(DRPosixGID)                                                                                            \
    X(DRHFSPlusTextEncodingHint)                                                                             \
    X(DRHFSPlusCatalogNodeID)                                                                                \
    X(DRMacFileType)                                                                                         \
    X(DRMacFileCreator)                                                                                      \
    X(DRMacWindowBounds)                                                                                     \
    X(DRMacIconLocation)                                                                                     \
    X(DRMacScrollPosition)                                                                                   \
    X(DRMacWindowView)                                                                                       \
    X(DRMacFinderFlags)                                                                                      \
    X(DRMacExtendedFinderFlags)                                                                              \
    X(DRMacFinderHideExtension)                                                                              \
    X(DRUDFWriteVersion)                                                                                     \
    X(DRUDFVersion102)                                                                                       \
    X(DRUDFVersion150)                                                                                       \
    X(DRUDFPrimaryVolumeDescriptorNumber)                                                                    \
    X(DRUDFVolumeSequenceNumber)                                                                             \
    X(DRUDFMaxVolumeSequenceNumber)                                                                          \
    X(DRUDFInterchangeLevel)                                                                                 \
    X(DRUDFMaxInterchangeLevel)                                                                              \
    X(DRUDFApplicationIdentifierSuffix)                                                                      \
    X(DRUDFVolumeSetIdentifier)                                                                              \
    X(DRUDFVolumeSetTimestamp)                                                                               \
    X(DRUDFVolumeSetImplementationUse)                                                                       \
    X(DRUDFRealTimeFile)                                                                                     \
    X(DRUDFExtendedFilePermissions)
