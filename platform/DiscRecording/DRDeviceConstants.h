// DRDeviceConstants.h: what drives and media are called in dictionaries and notifications.
#ifndef DISCRECORDING_DRDEVICECONSTANTS_H
#define DISCRECORDING_DRDEVICECONSTANTS_H

#import "DRStringConstants.h"

/** Notifications; keys and values of the info, status and media info dictionaries of a DRDevice. */
#define DR_DEVICE_STRINGS(X)                                                                                 \
    X(DRDeviceAppearedNotification)                                                                          \
    X(DRDeviceDisappearedNotification)                                                                       \
    X(DRDeviceStatusChangedNotification)                                                                     \
    X(DRDeviceSupportLevelKey)                                                                               \
    X(DRDeviceIORegistryEntryPathKey)                                                                        \
    X(DRDeviceWriteCapabilitiesKey)                                                                          \
    X(DRDeviceVendorNameKey)                                                                                 \
    X(DRDeviceProductNameKey)                                                                                \
    X(DRDeviceFirmwareRevisionKey)                                                                           \
    X(DRDevicePhysicalInterconnectKey)                                                                       \
    X(DRDevicePhysicalInterconnectLocationKey)                                                               \
    X(DRDeviceLoadingMechanismCanEjectKey)                                                                   \
    X(DRDeviceLoadingMechanismCanInjectKey)                                                                  \
    X(DRDeviceLoadingMechanismCanOpenKey)                                                                    \
    X(DRDeviceWriteBufferSizeKey)                                                                            \
    X(DRDeviceSupportLevelNone)                                                                              \
    X(DRDeviceSupportLevelUnsupported)                                                                       \
    X(DRDeviceSupportLevelVendorSupported)                                                                   \
    X(DRDeviceSupportLevelAppleSupported)                                                                    \
    X(DRDeviceSupportLevelAppleShipping)                                                                     \
    X(DRDevicePhysicalInterconnectATAPI)                                                                     \
    X(DRDevicePhysicalInterconnectFibreChannel)                                                              \
    X(DRDevicePhysicalInterconnectFireWire)                                                                  \
    X(DRDevicePhysicalInterconnectSCSI)                                                                      \
    X(DRDevicePhysicalInterconnectUSB)                                                                       \
    X(DRDevicePhysicalInterconnectLocationInternal)                                                          \
    X(DRDevicePhysicalInterconnectLocationExternal)                                                          \
    X(DRDevicePhysicalInterconnectLocationUnknown)                                                           \
    X(DRDeviceCanWriteKey)                                                                                   \
    X(DRDeviceCanWriteCDKey)                                                                                 \
    X(DRDeviceCanWriteCDRKey)                                                                                \
    X(DRDeviceCanWriteCDRWKey)                                                                               \
    X(DRDeviceCanWriteDVDKey)                                                                                \
    X(DRDeviceCanWriteDVDRKey)                                                                               \
    X(DRDeviceCanWriteDVDRDualLayerKey)                                                                      \
    X(DRDeviceCanWriteDVDRWKey)                                                                              \
    X(DRDeviceCanWriteDVDRWDualLayerKey)                                                                     \
    X(DRDeviceCanWriteDVDRAMKey)                                                                             \
    X(DRDeviceCanWriteDVDPlusRKey)                                                                           \
    X(DRDeviceCanWriteDVDPlusRDoubleLayerKey)                                                                \
    X(DRDeviceCanWriteDVDPlusRWKey)                                                                          \
    X(DRDeviceCanWriteDVDPlusRWDoubleLayerKey)                                                               \
    X(DRDeviceCanWriteBDKey)                                                                                 \
    X(DRDeviceCanWriteBDRKey)                                                                                \
    X(DRDeviceCanWriteBDREKey)                                                                               \
    X(DRDeviceCanWriteHDDVDKey)                                                                              \
    X(DRDeviceCanWriteHDDVDRKey)                                                                             \
    X(DRDeviceCanWriteHDDVDRDualLayerKey)                                                                    \
    X(DRDeviceCanWriteHDDVDRAMKey)                                                                           \
    X(DRDeviceCanWriteHDDVDRWKey)                                                                            \
    X(DRDeviceCanWriteHDDVDRWDualLayerKey)                                                                   \
    X(DRDeviceCanWriteCDTextKey)                                                                             \
    X(DRDeviceCanWriteIndexPointsKey)                                                                        \
    X(DRDeviceCanWriteISRCKey)                                                                               \
    X(DRDeviceCanWriteCDTAOKey)                                                                              \
    X(DRDeviceCanWriteCDSAOKey)                                                                              \
    X(DRDeviceCanWriteCDRawKey)                                                                              \
    X(DRDeviceCanWriteDVDDAOKey)                                                                             \
    X(DRDeviceCanTestWriteCDKey)                                                                             \
    X(DRDeviceCanTestWriteDVDKey)                                                                            \
    X(DRDeviceCanUnderrunProtectCDKey)                                                                       \
    X(DRDeviceCanUnderrunProtectDVDKey)                                                                      \
    X(DRDeviceIsBusyKey)                                                                                     \
    X(DRDeviceIsTrayOpenKey)                                                                                 \
    X(DRDeviceMaximumWriteSpeedKey)                                                                          \
    X(DRDeviceCurrentWriteSpeedKey)                                                                          \
    X(DRDeviceMediaStateKey)                                                                                 \
    X(DRDeviceMediaInfoKey)                                                                                  \
    X(DRDeviceBurnSpeedsKey)                                                                                 \
    X(DRDeviceTrackRefsKey)                                                                                  \
    X(DRDeviceTrackInfoKey)                                                                                  \
    X(DRDeviceMediaStateMediaPresent)                                                                        \
    X(DRDeviceMediaStateInTransition)                                                                        \
    X(DRDeviceMediaStateNone)                                                                                \
    X(DRDeviceMediaBSDNameKey)                                                                               \
    X(DRDeviceMediaIsBlankKey)                                                                               \
    X(DRDeviceMediaIsAppendableKey)                                                                          \
    X(DRDeviceMediaIsOverwritableKey)                                                                        \
    X(DRDeviceMediaIsErasableKey)                                                                            \
    X(DRDeviceMediaIsReservedKey)                                                                            \
    X(DRDeviceMediaOverwritableSpaceKey)                                                                     \
    X(DRDeviceMediaFreeSpaceKey)                                                                             \
    X(DRDeviceMediaUsedSpaceKey)                                                                             \
    X(DRDeviceMediaBlocksOverwritableKey)                                                                    \
    X(DRDeviceMediaBlocksFreeKey)                                                                            \
    X(DRDeviceMediaBlocksUsedKey)                                                                            \
    X(DRDeviceMediaDoubleLayerL0DataZoneBlocksKey)                                                           \
    X(DRDeviceMediaTrackCountKey)                                                                            \
    X(DRDeviceMediaSessionCountKey)                                                                          \
    X(DRDeviceMediaClassKey)                                                                                 \
    X(DRDeviceMediaTypeKey)                                                                                  \
    X(DRDeviceMediaClassCD)                                                                                  \
    X(DRDeviceMediaClassDVD)                                                                                 \
    X(DRDeviceMediaClassBD)                                                                                  \
    X(DRDeviceMediaClassHDDVD)                                                                               \
    X(DRDeviceMediaClassUnknown)                                                                             \
    X(DRDeviceMediaTypeCDROM)                                                                                \
    X(DRDeviceMediaTypeCDR)                                                                                  \
    X(DRDeviceMediaTypeCDRW)                                                                                 \
    X(DRDeviceMediaTypeDVDROM)                                                                               \
    X(DRDeviceMediaTypeDVDRAM)                                                                               \
    X(DRDeviceMediaTypeDVDR)                                                                                 \
    X(DRDeviceMediaTypeDVDRDualLayer)                                                                        \
    X(DRDeviceMediaTypeDVDRW)                                                                                \
    X(DRDeviceMediaTypeDVDRWDualLayer)                                                                       \
    X(DRDeviceMediaTypeDVDPlusR)                                                                             \
    X(DRDeviceMediaTypeDVDPlusRDoubleLayer)                                                                  \
    X(DRDeviceMediaTypeDVDPlusRW)                                                                            \
    X(DRDeviceMediaTypeDVDPlusRWDoubleLayer)                                                                 \
    X(DRDeviceMediaTypeBDR)                                                                                  \
    X(DRDeviceMediaTypeBDRE)                                                                                 \
    X(DRDeviceMediaTypeBDROM)                                                                                \
    X(DRDeviceMediaTypeHDDVDROM)                                                                             \
    X(DRDeviceMediaTypeHDDVDR)                                                                               \
    X(DRDeviceMediaTypeHDDVDRDualLayer)                                                                      \
    X(DRDeviceMediaTypeHDDVDRAM)                                                                             \
    X(DRDeviceMediaTypeHDDVDRW)                                                                              \
    X(DRDeviceMediaTypeHDDVDRWDualLayer)                                                                     \
    X(DRDeviceMediaTypeUnknown)
DR_DECLARE_STRINGS(DR_DEVICE_STRINGS)

/** Speeds of data in kilobytes (1000 bytes) a second: of a compact disc, a DVD, a Blu-ray and an HD DVD at
 * 1x. */
extern const float DRDeviceBurnSpeedCD1x;
extern const float DRDeviceBurnSpeedDVD1x;
extern const float DRDeviceBurnSpeedBD1x;
extern const float DRDeviceBurnSpeedHDDVD1x;
/** As fast as drive and medium can. */
extern const float DRDeviceBurnSpeedMax;

#endif
