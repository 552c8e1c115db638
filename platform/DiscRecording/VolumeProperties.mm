// VolumeProperties: what a track's properties say of the volume on it.
#include "VolumeProperties.hpp"
#include "PathStrings.hpp"

namespace discrecording {
namespace {

using engine::Error;
using engine::ErrorCode;

Error wrongType(NSString* key, NSString* wanted) {
    return {ErrorCode::BadLayout,
            pathnames::bytesOf([NSString stringWithFormat:@"The track's %@ is to be %@.", key, wanted]),
            {}};
}

} // namespace

engine::Result<void> readVolumeProperties(NSDictionary* properties, engine::DataTrack& track) {
    const struct {
        NSString* key;
        std::string& place;
    } texts[] = {{DRPublisher, track.publisher},
                 {DRDataPreparer, track.dataPreparer},
                 {DRApplicationIdentifier, track.application},
                 {DRVolumeSet, track.volumeSet},
                 {DRSystemIdentifier, track.system},
                 {DRCopyrightFile, track.copyrightFile},
                 {DRAbstractFile, track.abstractFile},
                 {DRBibliographicFile, track.bibliographicFile}};
    for (const auto& row : texts) {
        id value = [properties objectForKey:row.key];
        if (value == nil)
            continue;
        if (![value isKindOfClass:[NSString class]])
            return wrongType(row.key, @"a text");
        NSString* composed = [value precomposedStringWithCanonicalMapping];
        row.place = pathnames::bytesOf([composed length] == 0 ? value : composed);
    }
    const struct {
        NSString* key;
        std::optional<std::time_t>& place;
    } dates[] = {{DRDefaultDate, track.defaultDate},         {DRVolumeCreationDate, track.created},
                 {DRVolumeModificationDate, track.modified}, {DRVolumeCheckedDate, track.checked},
                 {DRVolumeExpirationDate, track.expires},    {DRVolumeEffectiveDate, track.effective}};
    for (const auto& row : dates) {
        id value = [properties objectForKey:row.key];
        if (value == nil)
            continue;
        if (![value isKindOfClass:[NSDate class]])
            return wrongType(row.key, @"a date");
        row.place = static_cast<std::time_t>([value timeIntervalSince1970]);
    }
    if (id level = [properties objectForKey:DRISOLevel]; level != nil) {
        if (![level isKindOfClass:[NSNumber class]] || [level intValue] < 1 || [level intValue] > 3)
            return wrongType(DRISOLevel, @"a number from 1 to 3");
        track.isoLevel = static_cast<uint8_t>([level intValue]);
    }
    const struct {
        NSString* key;
        bool& place;
    } flags[] = {{DRISORockRidgeExtensions, track.rockRidge}, {DRISOMacExtensions, track.macExtensions}};
    for (const auto& row : flags) {
        id value = [properties objectForKey:row.key];
        if (value == nil)
            continue;
        if (![value isKindOfClass:[NSNumber class]])
            return wrongType(row.key, @"a boolean");
        row.place = [value boolValue];
    }
    return {};
}

} // namespace discrecording
