// TrackReader: a track's properties as the engine takes them.
#include "TrackReader.hpp"

#import "DRTrackPrivate.h"
#include "Elements.hpp"
#include "LayoutReader.hpp"
#include "PathStrings.hpp"
#include "audio/AudioTrack.hpp"

#include <array>

namespace discrecording {
namespace {

using engine::BlockForm;
using engine::Error;
using engine::ErrorCode;
using engine::Result;

Error error(ErrorCode code, NSString* sentence) { return {code, pathnames::bytesOf(sentence), {}}; }

bool isNumber(id value) { return [value isKindOfClass:[NSNumber class]]; }

bool flag(NSDictionary* properties, NSString* key) {
    id value = [properties objectForKey:key];
    return isNumber(value) && [value boolValue];
}

constexpr int any = -1;
constexpr int dataMode = 4; // bit of DRTrackModeKey: data, not sound
constexpr int preEmphasisMode = 1, fourChannelMode = 8;

// The combinations that the constants of DRTrackConstants.h make, and those that readers of raw images use.
struct FormRow {
    int blockSize, blockType, dataForm, sessionFormat;
    bool isData;
    BlockForm form;
};
constexpr FormRow forms[] = {
    {kDRBlockSizeAudio, kDRBlockTypeAudio, kDRDataFormAudio, any, false, BlockForm::Audio},
    {kDRBlockSizeMode1Data, kDRBlockTypeMode1Data, kDRDataFormMode1Data, any, true, BlockForm::Data},
    {kDRBlockSizeMode2Form1Data, kDRBlockTypeMode2Form1Data, kDRDataFormMode2Form1Data, any, true,
     BlockForm::Mode2Form1},
    {kDRBlockSizeMode2Form2Data, kDRBlockTypeMode2Form2Data, kDRDataFormMode2Form2Data, any, true,
     BlockForm::Mode2Form2},
    {kDRBlockSizeMode2Data, kDRBlockTypeMode2Data, kDRDataFormMode2Data, any, true, BlockForm::Mixed},
    {2352, 8, 17, any, true, BlockForm::RawMode1},
    {2352, 12, 33, any, true, BlockForm::RawMode2},
    {2336, 9, 48, kDRSessionFormatCDXA, true, BlockForm::XA},
    {2336, 9, 48, kDRSessionFormatCDI, true, BlockForm::XA},
    {2336, 9, 48, any, true, BlockForm::Mode2},
};

Result<engine::Verification> verificationOf(NSDictionary* properties) {
    id type = [properties objectForKey:DRVerificationTypeKey];
    if (type == nil || [type isEqual:DRVerificationTypeNone])
        return engine::Verification::None;
    if ([type isEqual:DRVerificationTypeChecksum])
        return engine::Verification::Checksum;
    if ([type isEqual:DRVerificationTypeProduceAgain])
        return engine::Verification::ProduceAgain;
    if ([type isEqual:DRVerificationTypeReceiveData])
        return engine::Verification::ReceiveData;
    return error(ErrorCode::FunctionNotSupported,
                 [NSString stringWithFormat:@"The track is to be verified by \"%@\"; use one of the "
                                            @"DRVerificationType constants.",
                                            type]);
}

Result<void> readRecordingCode(engine::Track& made, NSDictionary* properties) {
    id code = [properties objectForKey:DRTrackISRCKey];
    if (code == nil)
        return {};
    if (![code isKindOfClass:[NSData class]] || [code length] != engine::isrcCharacters) {
        return error(ErrorCode::CantWriteISRC,
                     @"The track's recording code (ISRC) must be data of 12 bytes.");
    }
    made.isrc.assign(static_cast<const char*>([code bytes]), [code length]);
    return {};
}

Result<void> readIndexPoints(engine::Track& made, NSDictionary* properties) {
    id points = [properties objectForKey:DRIndexPointsKey];
    if (points == nil)
        return {};
    const Error wrong =
        error(ErrorCode::InvalidIndexPoints,
              @"The track's index points must be an array of at most 98 numbers of blocks, ascending.");
    if (![points isKindOfClass:[NSArray class]])
        return wrong;
    for (id point : Elements<id>(points)) {
        if (!isNumber(point) || [point longLongValue] < 0)
            return wrong;
        made.indexPoints.push_back([point unsignedLongLongValue]);
    }
    return {};
}

Result<void> readCopyState(engine::Track& made, NSDictionary* properties) {
    id state = [properties objectForKey:DRSerialCopyManagementStateKey];
    if (state == nil)
        return {};
    if ([state isEqual:DRSCMSCopyrightFree])
        made.copyState = engine::CopyState::Free;
    else if ([state isEqual:DRSCMSCopyrightProtectedOriginal])
        made.copyState = engine::CopyState::ProtectedOriginal;
    else if ([state isEqual:DRSCMSCopyrightProtectedCopy])
        made.copyState = engine::CopyState::ProtectedCopy;
    else
        return error(ErrorCode::CantWriteSCMS,
                     [NSString stringWithFormat:@"The track's copy state is \"%@\"; use one of the DRSCMS "
                                                @"constants.",
                                                state]);
    return {};
}

// What holds for tracks of every kind.
Result<void> readProperties(engine::Track& made, NSDictionary* properties) {
    for (NSString* key : {DRDVDTimestampKey, DRDVDCopyrightInfoKey}) {
        if ([properties objectForKey:key] != nil) {
            return error(
                ErrorCode::FunctionNotSupported,
                [NSString
                    stringWithFormat:@"The track asks for %@, which can't be burned; leave it out.", key]);
        }
    }
    const auto verification = verificationOf(properties);
    if (!verification.ok())
        return verification.error();
    made.verification = *verification;
    for (const auto read : {readRecordingCode, readIndexPoints, readCopyState}) {
        if (const auto done = read(made, properties); !done.ok())
            return done;
    }
    id speed = [properties objectForKey:DRMaxBurnSpeedKey];
    if (isNumber(speed) && [speed doubleValue] > 0)
        made.maximumSpeed = [speed doubleValue];
    id gap = [properties objectForKey:DRPreGapLengthKey];
    if (isNumber(gap)) // a DRMSF is one, too
        made.preGapBlocks = [gap unsignedIntValue];
    made.preGapIsRequired = flag(properties, DRPreGapIsRequiredKey);
    const int mode = [[properties objectForKey:DRTrackModeKey] intValue];
    const bool isAudio = (mode & dataMode) == 0;
    made.preEmphasis = flag(properties, DRAudioPreEmphasisKey) || (isAudio && (mode & preEmphasisMode) != 0);
    made.fourChannel = flag(properties, DRAudioFourChannelKey) || (isAudio && (mode & fourChannelMode) != 0);
    const int format = [[properties objectForKey:DRSessionFormatKey] intValue];
    made.sessionFormat = format == kDRSessionFormatCDI    ? engine::SessionFormat::CDI
                         : format == kDRSessionFormatCDXA ? engine::SessionFormat::XA
                                                          : engine::SessionFormat::Plain;
    return {};
}

Result<engine::SubchannelForm> subchannelOf(NSDictionary* properties) {
    id form = [properties objectForKey:DRSubchannelDataFormKey];
    if (form == nil || [form isEqual:DRSubchannelDataFormNone])
        return engine::SubchannelForm::None;
    if ([form isEqual:DRSubchannelDataFormPack])
        return engine::SubchannelForm::Pack;
    if ([form isEqual:DRSubchannelDataFormRaw])
        return engine::SubchannelForm::Raw;
    return error(
        ErrorCode::FunctionNotSupported,
        [NSString stringWithFormat:@"The track's subchannel data are of the form \"%@\"; use one of the "
                                   @"DRSubchannelDataForm constants.",
                                   form]);
}

Error noLength() {
    return error(ErrorCode::BadLayout, @"The track has no DRTrackLengthKey; set its length in blocks.");
}

Result<engine::ProducedTrack> producedTrackOf(DRTrack* track, const ProducedFor& producedFor) {
    id producer = [track producer];
    if (producer == nil) {
        return error(ErrorCode::DataProduction,
                     @"The track has neither a folder nor a producer of its data; make it for one of them.");
    }
    if (![producer respondsToSelector:@selector(produceDataForTrack:
                                                         intoBuffer:length:atAddress:blockSize:ioFlags:)]) {
        return error(ErrorCode::DataProduction,
                     @"The track's producer has no method that produces data; give it one.");
    }
    NSDictionary* properties = [track properties];
    const auto form = blockFormOf(properties);
    if (!form.ok())
        return form.error();
    const auto subchannel = subchannelOf(properties);
    if (!subchannel.ok())
        return subchannel.error();
    id length = [properties objectForKey:DRTrackLengthKey];
    if (!isNumber(length))
        return noLength();
    engine::ProducedTrack produced;
    produced.form = *form;
    produced.blocks = [length unsignedIntValue];
    produced.subchannel = *subchannel;
    produced.producer = makeProducer(track, producer, produced, producedFor);
    return produced;
}

// A track that brings its own data has properties, too, and what they say is not left out in silence. The six that a track
// needs must be there.
Result<void> checkBlocks(NSDictionary* properties, BlockForm burned, NSString* what) {
    const auto form = blockFormOf(properties);
    if (!form.ok())
        return form.error();
    if (*form != burned) {
        return error(
            ErrorCode::BadLayout,
            [NSString stringWithFormat:@"The track is to have blocks of the form \"%@\", but %@ is burned "
                                       @"in blocks of the form \"%@\" only; use their constants.",
                                       pathnames::textOf(nameOf(*form)), what,
                                       pathnames::textOf(nameOf(burned))]);
    }
    const auto subchannel = subchannelOf(properties);
    if (!subchannel.ok())
        return subchannel.error();
    if (*subchannel != engine::SubchannelForm::None) {
        return error(
            ErrorCode::FunctionNotSupported,
            [NSString stringWithFormat:@"The track asks for subchannel data, which %@ doesn't bring; leave "
                                       @"DRSubchannelDataFormKey out.",
                                       what]);
    }
    return {};
}

// The sound file as it is now must be the one that the track was made for: programs lay their discs out by its length.
Result<engine::ProducedTrack> soundTrackOf(DRTrack* track) {
    if (const auto checked = checkBlocks([track properties], BlockForm::Audio, @"a sound file");
        !checked.ok())
        return checked.error();
    auto sound = engine::trackForAudioFile(pathnames::bytesOf([track audioPath]));
    if (!sound.ok())
        return sound.error();
    if (sound->blocks != [track audioBlocks]) {
        return error(
            ErrorCode::FileModifiedDuringBurn,
            [NSString
                stringWithFormat:@"The sound file \"%@\" has another length than when its track was made; "
                                 @"make the track again.",
                                 [track audioPath]]);
    }
    id length = [[track properties] objectForKey:DRTrackLengthKey];
    if (!isNumber(length))
        return noLength();
    if ([length unsignedIntValue] > sound -> blocks) {
        return error(
            ErrorCode::BadLayout,
            [NSString
                stringWithFormat:@"The track is to have %u blocks, but its sound file \"%@\" has only %llu; "
                                 @"set a length that it has.",
                                 [length unsignedIntValue], [track audioPath],
                                 static_cast<unsigned long long>(sound->blocks)]);
    }
    sound->blocks = [length unsignedIntValue];
    return sound;
}

} // namespace

Result<BlockForm> blockFormOf(NSDictionary* properties) {
    NSString* const keys[] = {DRBlockSizeKey, DRBlockTypeKey, DRDataFormKey, DRSessionFormatKey,
                              DRTrackModeKey};
    std::array<int, std::size(keys)> values{};
    for (size_t i = 0; i < std::size(keys); i++) {
        id value = [properties objectForKey:keys[i]];
        if (!isNumber(value)) {
            return error(ErrorCode::BadLayout,
                         [NSString stringWithFormat:@"The track has no %@; set it to a number.", keys[i]]);
        }
        values[i] = [value intValue];
    }
    // The size may or may not count the subchannel data that the track asks for: programs do both.
    constexpr int subchannelBytes = static_cast<int>(engine::subchannelBytes);
    const auto subchannel = subchannelOf(properties);
    const bool brings = subchannel.ok() && *subchannel != engine::SubchannelForm::None;
    const auto [blockSize, blockType, dataForm, sessionFormat, mode] = values;
    const bool isData = (mode & dataMode) != 0;
    for (const FormRow& row : forms) {
        const bool isSize =
            row.blockSize == blockSize || (brings && row.blockSize + subchannelBytes == blockSize);
        if (isSize && row.blockType == blockType && row.dataForm == dataForm &&
            (row.sessionFormat == any || row.sessionFormat == sessionFormat) && row.isData == isData)
            return row.form;
    }
    return error(
        ErrorCode::BadLayout,
        [NSString stringWithFormat:@"Blocks of %d bytes, type %d, form %d, session format %d and track mode "
                                   @"%d don't go together; use the constants of one kind of track.",
                                   blockSize, blockType, dataForm, sessionFormat, mode]);
}

Result<engine::Track> trackOf(DRTrack* track, const ProducedFor& producedFor) {
    engine::Track made;
    if (const auto read = readProperties(made, [track properties]); !read.ok())
        return read.error();
    if ([track rootFolder] != nil) {
        // It finds its length itself.
        if (const auto checked = checkBlocks([track properties], BlockForm::Data, @"a folder"); !checked.ok())
            return checked.error();
        auto data = dataTrackOf(track);
        if (!data.ok())
            return data.error();
        made.content = std::move(*data);
        return made;
    }
    auto produced = [track audioPath] != nil ? soundTrackOf(track) : producedTrackOf(track, producedFor);
    if (!produced.ok())
        return produced.error();
    made.content = std::move(*produced);
    return made;
}

} // namespace discrecording
