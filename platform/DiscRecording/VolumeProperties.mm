// VolumeProperties: what a track's properties say of the volume on it.
#include "VolumeProperties.hpp"
#import "DRFile.h"
#import "DRFolderPrivate.h"
#include "PathStrings.hpp"

@interface NSObject (BoxedContent)
- (id)contentObject;
@end

namespace discrecording {
namespace {

using engine::Error;
using engine::ErrorCode;

Error wrongType(NSString* key, NSString* wanted) {
    return {ErrorCode::BadLayout,
            pathnames::bytesOf([NSString stringWithFormat:@"The track's %@ is to be %@.", key, wanted]),
            {}};
}

std::string textOf(NSString* value) {
    NSString* composed = [value precomposedStringWithCanonicalMapping];
    return pathnames::bytesOf([composed length] == 0 ? value : composed);
}

// As the folder's record has it: with a dot, and with the version.
std::string isoIdentifierOf(DRFile* file, uint8_t level) {
    std::string name = pathnames::bytesOf(
        [file mangledNameForFilesystem:level == 1 ? DRISO9660LevelOne : DRISO9660LevelTwo]);
    if (name.find('.') == name.npos)
        name += '.';
    id version = [file propertyForKey:DRISO9660VersionNumber
                         inFilesystem:DRISO9660
            mergeWithOtherFilesystems:YES];
    return name + ';' + std::to_string(version == nil ? 1u : [version unsignedIntValue]);
}

bool isInISO9660(DRFSObject* object) {
    const uint32_t mask = [object explicitFilesystemMask];
    return mask == 0 || (mask & DRFilesystemInclusionMaskISO9660) != 0;
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
                 {DRSystemIdentifier, track.system}};
    for (const auto& row : texts) {
        id value = [properties objectForKey:row.key];
        if (value == nil)
            continue;
        if (![value isKindOfClass:[NSString class]])
            return wrongType(row.key, @"a text");
        row.place = textOf(value);
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

engine::Result<void> readVolumeFiles(NSDictionary* properties, DRFolder* root, engine::DataTrack& track) {
    const struct {
        NSString* key;
        std::string& place;
    } files[] = {{DRCopyrightFile, track.copyrightFile},
                 {DRAbstractFile, track.abstractFile},
                 {DRBibliographicFile, track.bibliographicFile}};
    bool isNamed = false;
    for (const auto& row : files) {
        id value = [properties objectForKey:row.key];
        if (value == nil)
            continue;
        if ([value isKindOfClass:[NSString class]]) {
            row.place = textOf(value);
            continue;
        }
        // A program's own object comes in a box, which knows the file in it.
        if ([value respondsToSelector:@selector(contentObject)])
            value = [value contentObject];
        if (![value isKindOfClass:[DRFile class]] || [static_cast<DRFile*>(value) parent] != root ||
            !isInISO9660(value) || (track.filesystems & engine::filesystem::iso9660) == 0)
            return wrongType(row.key, @"a text, or a file in the root that is in ISO 9660");
        row.place = isoIdentifierOf(value, track.isoLevel);
        isNamed = true;
    }
    if (isNamed)
        [root childNamesChanged]; // what it keeps of them isn't in memory while the disc is written
    return {};
}

} // namespace discrecording
