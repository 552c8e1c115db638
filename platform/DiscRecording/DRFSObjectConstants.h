// DRFSObjectConstants.h: file systems, and the properties of files and folders in them.
#ifndef DISCRECORDING_DRFSOBJECTCONSTANTS_H
#define DISCRECORDING_DRFSOBJECTCONSTANTS_H

#import "DRStringConstants.h"

/** Names of file systems; keys and values of the properties of files and folders. */
#define DR_FSOBJECT_STRINGS(X)                                                                               \
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
DR_DECLARE_STRINGS(DR_FSOBJECT_STRINGS)

/** Kinds of link. */
#define DR_FILE_STRINGS(X)                                                                                   \
    X(DRLinkTypeHardLink)                                                                                    \
    X(DRLinkTypeSymbolicLink)                                                                                \
    X(DRLinkTypeFinderAlias)
DR_DECLARE_STRINGS(DR_FILE_STRINGS)

/** Forks of a file. */
enum { DRFileForkData = 0, DRFileForkResource = 1 };

/** Bits of the masks that say in which file systems an object appears. */
enum {
    DRFilesystemInclusionMaskISO9660 = 1,
    DRFilesystemInclusionMaskJoliet = 2,
    DRFilesystemInclusionMaskUDF = 4,
    DRFilesystemInclusionMaskHFSPlus = 8
};

#endif
