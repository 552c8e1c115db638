// DRDeviceDictionaries: a drive's info and status as dictionaries.
#import "DRDevice.h"
#import "DRDevicePrivate.h"
#import "DRTrackPrivate.h"
#include "PathStrings.hpp"
#include "TrackDescriptions.hpp"

#include <algorithm>

namespace {

using engine::MediumClass;
using engine::MediumKind;

NSNumber* boolean(bool value) { return [NSNumber numberWithBool:value]; }
NSNumber* number(uint64_t value) { return [NSNumber numberWithUnsignedLongLong:value]; }
NSNumber* speed(double value) { return [NSNumber numberWithFloat:static_cast<float>(value)]; }

NSString* interconnectText(engine::Interconnect interconnect) {
    switch (interconnect) {
    case engine::Interconnect::ATAPI:
        return DRDevicePhysicalInterconnectATAPI;
    case engine::Interconnect::FibreChannel:
        return DRDevicePhysicalInterconnectFibreChannel;
    case engine::Interconnect::FireWire:
        return DRDevicePhysicalInterconnectFireWire;
    case engine::Interconnect::SCSI:
        return DRDevicePhysicalInterconnectSCSI;
    case engine::Interconnect::USB:
        return DRDevicePhysicalInterconnectUSB;
    }
    return nil;
}

NSString* locationText(engine::InterconnectLocation location) {
    switch (location) {
    case engine::InterconnectLocation::Internal:
        return DRDevicePhysicalInterconnectLocationInternal;
    case engine::InterconnectLocation::External:
        return DRDevicePhysicalInterconnectLocationExternal;
    case engine::InterconnectLocation::Unknown:
        break;
    }
    return DRDevicePhysicalInterconnectLocationUnknown;
}

NSString* classText(MediumClass mediumClass) {
    switch (mediumClass) {
    case MediumClass::CD:
        return DRDeviceMediaClassCD;
    case MediumClass::DVD:
        return DRDeviceMediaClassDVD;
    case MediumClass::BD:
        return DRDeviceMediaClassBD;
    }
    return DRDeviceMediaClassUnknown;
}

NSDictionary* writeCapabilities(const engine::DriveCapabilities& can) {
    const auto writes = [&can](MediumKind kind) { return boolean(can.canWrite(kind)); };
    const auto writesAny = [&can](MediumClass mediumClass) { return boolean(can.canWriteAny(mediumClass)); };
    const NSNumber* const no = boolean(false);
    return [NSDictionary
        dictionaryWithObjectsAndKeys:boolean(!can.writes.empty()), DRDeviceCanWriteKey,
                                     writesAny(MediumClass::CD), DRDeviceCanWriteCDKey,
                                     writes(MediumKind::CDR), DRDeviceCanWriteCDRKey,
                                     writes(MediumKind::CDRW), DRDeviceCanWriteCDRWKey,
                                     writesAny(MediumClass::DVD), DRDeviceCanWriteDVDKey,
                                     writes(MediumKind::DVDR), DRDeviceCanWriteDVDRKey,
                                     writes(MediumKind::DVDRDualLayer), DRDeviceCanWriteDVDRDualLayerKey,
                                     writes(MediumKind::DVDRW), DRDeviceCanWriteDVDRWKey, no,
                                     DRDeviceCanWriteDVDRWDualLayerKey, writes(MediumKind::DVDRAM),
                                     DRDeviceCanWriteDVDRAMKey, writes(MediumKind::DVDPlusR),
                                     DRDeviceCanWriteDVDPlusRKey, writes(MediumKind::DVDPlusRDoubleLayer),
                                     DRDeviceCanWriteDVDPlusRDoubleLayerKey, writes(MediumKind::DVDPlusRW),
                                     DRDeviceCanWriteDVDPlusRWKey, no,
                                     DRDeviceCanWriteDVDPlusRWDoubleLayerKey, writesAny(MediumClass::BD),
                                     DRDeviceCanWriteBDKey, writes(MediumKind::BDR), DRDeviceCanWriteBDRKey,
                                     writes(MediumKind::BDRE), DRDeviceCanWriteBDREKey, no,
                                     DRDeviceCanWriteHDDVDKey, no, DRDeviceCanWriteHDDVDRKey, no,
                                     DRDeviceCanWriteHDDVDRDualLayerKey, no, DRDeviceCanWriteHDDVDRAMKey, no,
                                     DRDeviceCanWriteHDDVDRWKey, no, DRDeviceCanWriteHDDVDRWDualLayerKey,
                                     boolean(can.writesCDText), DRDeviceCanWriteCDTextKey,
                                     boolean(can.writesIndexPoints), DRDeviceCanWriteIndexPointsKey,
                                     boolean(can.writesISRC), DRDeviceCanWriteISRCKey,
                                     boolean(can.writesTrackAtOnce), DRDeviceCanWriteCDTAOKey,
                                     boolean(can.writesSessionAtOnce), DRDeviceCanWriteCDSAOKey,
                                     boolean(can.writesRaw), DRDeviceCanWriteCDRawKey,
                                     boolean(can.writesDVDAtOnce), DRDeviceCanWriteDVDDAOKey,
                                     boolean(can.canTestWriteCD), DRDeviceCanTestWriteCDKey,
                                     boolean(can.canTestWriteDVD), DRDeviceCanTestWriteDVDKey,
                                     boolean(can.canUnderrunProtectCD), DRDeviceCanUnderrunProtectCDKey,
                                     boolean(can.canUnderrunProtectDVD), DRDeviceCanUnderrunProtectDVDKey,
                                     nil];
}

NSArray* burnSpeeds(const engine::MediumInfo& medium) {
    NSMutableArray* speeds = [NSMutableArray arrayWithCapacity:medium.speeds.size()];
    for (const double kilobytes : medium.speeds) {
        [speeds addObject:speed(kilobytes)];
    }
    return speeds;
}

NSDictionary* mediaInfo(DRDevice* device, const engine::MediumInfo& medium) {
    NSMutableDictionary* told = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:DRBSDNameOfDrive(*DRDriveOfDevice(device)), DRDeviceMediaBSDNameKey,
                                     boolean(medium.blank), DRDeviceMediaIsBlankKey,
                                     boolean(medium.appendable), DRDeviceMediaIsAppendableKey,
                                     boolean(medium.overwritable), DRDeviceMediaIsOverwritableKey,
                                     boolean(medium.erasable), DRDeviceMediaIsErasableKey,
                                     boolean([device mediaIsReserved]), DRDeviceMediaIsReservedKey,
                                     DRMSFOfBlocks(medium.blocksOverwritable),
                                     DRDeviceMediaOverwritableSpaceKey, DRMSFOfBlocks(medium.blocksFree),
                                     DRDeviceMediaFreeSpaceKey, DRMSFOfBlocks(medium.blocksUsed),
                                     DRDeviceMediaUsedSpaceKey, number(medium.blocksOverwritable),
                                     DRDeviceMediaBlocksOverwritableKey, number(medium.blocksFree),
                                     DRDeviceMediaBlocksFreeKey, number(medium.blocksUsed),
                                     DRDeviceMediaBlocksUsedKey, number(medium.trackCount()),
                                     DRDeviceMediaTrackCountKey, number(medium.sessionCount()),
                                     DRDeviceMediaSessionCountKey,
                                     classText(engine::factsOf(medium.kind).mediumClass),
                                     DRDeviceMediaClassKey, DRMediaTypeOfKind(medium.kind),
                                     DRDeviceMediaTypeKey,
                                     // Deliberate: one level up as well, for programs that look there.
                                     burnSpeeds(medium), DRDeviceBurnSpeedsKey, nil];
    if (medium.doubleLayerL0DataZoneBlocks) {
        [told setObject:number(*medium.doubleLayerL0DataZoneBlocks)
                 forKey:DRDeviceMediaDoubleLayerL0DataZoneBlocksKey];
    }
    return told;
}

double fastest(const std::vector<MediumKind>& kinds) {
    double most = 0;
    for (const MediumKind kind : kinds) {
        const auto speeds = engine::factsOf(kind).speeds;
        if (!speeds.empty())
            most = std::max(most, speeds.back());
    }
    return most;
}

} // namespace

NSString* DRMediaTypeOfKind(MediumKind kind) {
    switch (kind) {
    case MediumKind::CDROM:
        return DRDeviceMediaTypeCDROM;
    case MediumKind::CDR:
        return DRDeviceMediaTypeCDR;
    case MediumKind::CDRW:
        return DRDeviceMediaTypeCDRW;
    case MediumKind::DVDROM:
        return DRDeviceMediaTypeDVDROM;
    case MediumKind::DVDR:
        return DRDeviceMediaTypeDVDR;
    case MediumKind::DVDRDualLayer:
        return DRDeviceMediaTypeDVDRDualLayer;
    case MediumKind::DVDRW:
        return DRDeviceMediaTypeDVDRW;
    case MediumKind::DVDRAM:
        return DRDeviceMediaTypeDVDRAM;
    case MediumKind::DVDPlusR:
        return DRDeviceMediaTypeDVDPlusR;
    case MediumKind::DVDPlusRDoubleLayer:
        return DRDeviceMediaTypeDVDPlusRDoubleLayer;
    case MediumKind::DVDPlusRW:
        return DRDeviceMediaTypeDVDPlusRW;
    case MediumKind::BDROM:
        return DRDeviceMediaTypeBDROM;
    case MediumKind::BDR:
        return DRDeviceMediaTypeBDR;
    case MediumKind::BDRE:
        return DRDeviceMediaTypeBDRE;
    }
    return DRDeviceMediaTypeUnknown;
}

@implementation DRDevice (Dictionaries)

- (NSDictionary*)info {
    const engine::DriveRef drive = DRDriveOfDevice(self);
    if (drive == nullptr)
        return nil;
    const engine::DriveIdentity& identity = drive->identity();
    const engine::LoadingMechanism& loading = drive->loadingMechanism();
    return [NSDictionary
        dictionaryWithObjectsAndKeys:DRDeviceSupportLevelVendorSupported, DRDeviceSupportLevelKey,
                                     pathnames::textOf(identity.id), DRDeviceIORegistryEntryPathKey,
                                     pathnames::textOf(identity.vendor), DRDeviceVendorNameKey,
                                     pathnames::textOf(identity.product), DRDeviceProductNameKey,
                                     pathnames::textOf(identity.firmwareRevision),
                                     DRDeviceFirmwareRevisionKey, interconnectText(identity.interconnect),
                                     DRDevicePhysicalInterconnectKey, locationText(identity.location),
                                     DRDevicePhysicalInterconnectLocationKey, boolean(loading.canEject),
                                     DRDeviceLoadingMechanismCanEjectKey, boolean(loading.canInject),
                                     DRDeviceLoadingMechanismCanInjectKey, boolean(loading.canOpen),
                                     DRDeviceLoadingMechanismCanOpenKey,
                                     number(drive->capabilities().writeBufferBytes),
                                     DRDeviceWriteBufferSizeKey, writeCapabilities(drive->capabilities()),
                                     DRDeviceWriteCapabilitiesKey, nil];
}

- (NSDictionary*)status {
    const engine::DriveRef drive = DRDriveOfDevice(self);
    if (drive == nullptr)
        return nil;
    // Read once, so that the dictionary is of one moment.
    const auto medium = drive->mediumInfo();
    NSMutableDictionary* status = [NSMutableDictionary dictionary];
    [status setObject:boolean(drive->isBusy()) forKey:DRDeviceIsBusyKey];
    [status setObject:boolean(drive->isTrayOpen()) forKey:DRDeviceIsTrayOpenKey];
    const bool isPresent = medium || drive->hasMedium();
    [status setObject:isPresent ? DRDeviceMediaStateMediaPresent : DRDeviceMediaStateNone
               forKey:DRDeviceMediaStateKey];
    const double most =
        medium && !medium->speeds.empty() ? medium->speeds.back() : fastest(drive->capabilities().writes);
    [status setObject:speed(most) forKey:DRDeviceMaximumWriteSpeedKey];
    // A drive that doesn't say how fast it is set to write takes the fastest.
    [status setObject:speed(medium && medium->currentSpeed > 0 ? medium->currentSpeed : most)
               forKey:DRDeviceCurrentWriteSpeedKey];
    if (!medium)
        return [NSDictionary dictionaryWithDictionary:status];

    [status setObject:mediaInfo(self, *medium) forKey:DRDeviceMediaInfoKey];
    [status setObject:burnSpeeds(*medium) forKey:DRDeviceBurnSpeedsKey];
    NSMutableArray* tracks = [NSMutableArray array];
    NSMutableDictionary* trackInfos = [NSMutableDictionary dictionary];
    for (const engine::SessionInfo& session : medium->sessions) {
        for (const engine::TrackInfo& onDisc : session.tracks) {
            NSDictionary* facts = discrecording::propertiesOfTrack(*medium, session, onDisc);
            DRTrack* track = [[[DRTrack alloc] initWithProducer:nil] autorelease];
            [track setProperties:facts];
            [tracks addObject:track];
            [trackInfos setObject:facts forKey:track];
        }
    }
    [status setObject:[NSArray arrayWithArray:tracks] forKey:DRDeviceTrackRefsKey];
    [status setObject:[NSDictionary dictionaryWithDictionary:trackInfos] forKey:DRDeviceTrackInfoKey];
    return [NSDictionary dictionaryWithDictionary:status];
}

@end
