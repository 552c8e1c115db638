// TrackDescriptions: a track that is on a disc, as the properties of a DRTrack.
#include "TrackDescriptions.hpp"

#import "DRDevicePrivate.h"
#import "DRTrackConstants.h"

namespace discrecording {
namespace {

using engine::MediumClass;

NSNumber* boolean(bool value) { return [NSNumber numberWithBool:value]; }
NSNumber* number(uint64_t value) { return [NSNumber numberWithUnsignedLongLong:value]; }

// How a block of a form is described by the constants of a track. What is on no CD is DVD data.
struct BlockDescription {
    int size, type, form, sessionFormat, mode;
};

BlockDescription describe(engine::BlockForm form, bool isCD) {
    switch (form) {
    case engine::BlockForm::Data:
        if (!isCD)
            return {kDRBlockSizeDVDData, kDRBlockTypeDVDData, kDRDataFormDVDData, kDRSessionFormatDVDData,
                    kDRTrackModeDVDData};
        break;
    case engine::BlockForm::Audio:
        return {kDRBlockSizeAudio, kDRBlockTypeAudio, kDRDataFormAudio, kDRSessionFormatAudio,
                kDRTrackModeAudio};
    case engine::BlockForm::Mode2:
        return {2336, 9, 48, kDRSessionFormatMode1Data, kDRTrackMode2Data};
    case engine::BlockForm::XA:
        return {2336, 9, 48, kDRSessionFormatCDXA, kDRTrackMode2Data};
    case engine::BlockForm::Mixed:
        return {kDRBlockSizeMode2Data, kDRBlockTypeMode2Data, kDRDataFormMode2Data, kDRSessionFormatCDXA,
                kDRTrackMode2Data};
    case engine::BlockForm::Mode2Form1:
        return {kDRBlockSizeMode2Form1Data, kDRBlockTypeMode2Form1Data, kDRDataFormMode2Form1Data,
                kDRSessionFormatCDXA, kDRTrackMode2Form1Data};
    case engine::BlockForm::Mode2Form2:
        return {kDRBlockSizeMode2Form2Data, kDRBlockTypeMode2Form2Data, kDRDataFormMode2Form2Data,
                kDRSessionFormatCDXA, kDRTrackMode2Form2Data};
    case engine::BlockForm::RawMode1:
        return {2352, 8, 17, kDRSessionFormatMode1Data, kDRTrackMode1Data};
    case engine::BlockForm::RawMode2:
        return {2352, 12, 33, kDRSessionFormatCDXA, kDRTrackMode2Data};
    }
    return {kDRBlockSizeMode1Data, kDRBlockTypeMode1Data, kDRDataFormMode1Data, kDRSessionFormatMode1Data,
            kDRTrackMode1Data};
}

// A track's number bits, as in the disc's table of contents: pre-emphasis 1, data 4, four channels 8.
int modeOf(const engine::TrackInfo& track, const BlockDescription& block) {
    return block.mode | (track.preEmphasis ? 1 : 0) | (track.fourChannel ? 8 : 0);
}

} // namespace

NSDictionary* propertiesOfTrack(const engine::MediumInfo& medium, const engine::SessionInfo& session,
                                const engine::TrackInfo& track) {
    const bool isCD = engine::factsOf(medium.kind).mediumClass == MediumClass::CD;
    const BlockDescription block = describe(track.form, isCD);
    const bool isClosed = medium.state != engine::MediumState::Incomplete && track.isComplete;
    NSMutableDictionary* told = [NSMutableDictionary dictionary];
    [told setObject:DRMSFOfBlocks(track.blocks) forKey:DRTrackLengthKey];
    [told setObject:number(block.size) forKey:DRBlockSizeKey];
    [told setObject:number(block.type) forKey:DRBlockTypeKey];
    [told setObject:number(block.form) forKey:DRDataFormKey];
    [told setObject:number(track.isCDI && block.mode != kDRTrackModeAudio ? kDRSessionFormatCDI
                                                                          : block.sessionFormat)
             forKey:DRSessionFormatKey];
    [told setObject:number(modeOf(track, block)) forKey:DRTrackModeKey];
    [told setObject:number(track.startBlock) forKey:DRTrackStartAddressKey];
    [told setObject:number(track.number) forKey:DRTrackNumberKey];
    [told setObject:number(session.number) forKey:DRSessionNumberKey];
    [told setObject:isClosed ? DRTrackTypeClosed : DRTrackTypeIncomplete forKey:DRTrackTypeKey];
    [told setObject:boolean(track.blocks == 0) forKey:DRTrackIsEmptyKey];
    // A closed track has no room of its own: what can be appended goes behind the last one.
    const bool isGoneOnWith = track.number == medium.trackCount() && medium.nextWritableBlock;
    [told setObject:number(isGoneOnWith ? medium.blocksFree : 0) forKey:DRFreeBlocksKey];
    if (isGoneOnWith) {
        [told setObject:number(*medium.nextWritableBlock) forKey:DRNextWritableAddressKey];
    }
    if (!isCD)
        return told;
    [told setObject:DRMSFOfBlocks(track.preGapBlocks) forKey:DRPreGapLengthKey];
    if (track.subchannel != engine::SubchannelForm::None) {
        [told setObject:track.subchannel == engine::SubchannelForm::Raw ? DRSubchannelDataFormRaw
                                                                        : DRSubchannelDataFormPack
                 forKey:DRSubchannelDataFormKey];
    }
    if (!track.isrc.empty()) {
        [told setObject:[NSData dataWithBytes:track.isrc.data() length:track.isrc.size()]
                 forKey:DRTrackISRCKey];
    }
    if (!track.indexPoints.empty()) {
        NSMutableArray* points = [NSMutableArray array];
        for (const uint64_t point : track.indexPoints)
            [points addObject:number(point)];
        [told setObject:points forKey:DRIndexPointsKey];
    }
    if (track.form == engine::BlockForm::Audio) {
        [told setObject:boolean(track.preEmphasis) forKey:DRAudioPreEmphasisKey];
        [told setObject:boolean(track.fourChannel) forKey:DRAudioFourChannelKey];
        [told setObject:track.copyPermitted ? DRSCMSCopyrightFree
                        : track.isCopy      ? DRSCMSCopyrightProtectedCopy
                                            : DRSCMSCopyrightProtectedOriginal
                 forKey:DRSerialCopyManagementStateKey];
    }
    return told;
}

} // namespace discrecording
