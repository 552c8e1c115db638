// PropertyLimits: which values of items' properties a disc has room for.
#include "PropertyLimits.hpp"

#import "DRFSObjectPrivate.h"
#include "Elements.hpp"
#import "Filesystems.h"
#include "PathStrings.hpp"

#include <cmath>
#include <vector>

namespace discrecording {
namespace {

struct Limit {
    NSString* key;
    long long from, to; ///< of a number
    NSUInteger bytes;   ///< of data; 0 for numbers
};

const Limit* limitOf(NSString* key) {
    // Of a mode the permissions count; programs may give it with the bits of the file's type, too.
    static const Limit limits[] = {{DRPosixFileMode, 0, UINT16_MAX, 0},
                                   {DRPosixUID, 0, UINT32_MAX, 0},
                                   {DRPosixGID, 0, UINT32_MAX, 0},
                                   {DRISO9660VersionNumber, 1, 32767, 0},
                                   {DRHFSPlusTextEncodingHint, 0, UINT16_MAX, 0},
                                   {DRMacFinderFlags, 0, UINT16_MAX, 0},
                                   {DRMacExtendedFinderFlags, 0, UINT16_MAX, 0},
                                   {DRMacWindowView, 0, UINT16_MAX, 0},
                                   {DRUDFExtendedFilePermissions, 0, 63, 0},
                                   {DRMacFileType, 0, 0, 4},
                                   {DRMacFileCreator, 0, 0, 4},
                                   {DRMacWindowBounds, 0, 0, 8},
                                   {DRMacIconLocation, 0, 0, 4},
                                   {DRMacScrollPosition, 0, 0, 4}};
    static NSDictionary* const byKey = [] {
        NSMutableDictionary* made = [NSMutableDictionary new];
        for (const Limit& limit : limits)
            [made setObject:[NSValue valueWithPointer:&limit] forKey:limit.key];
        return made;
    }();
    return static_cast<const Limit*>([[byKey objectForKey:key] pointerValue]);
}

bool isHeld(const Limit& limit, id value) {
    if (limit.bytes != 0)
        return [static_cast<NSData*>(value) length] == limit.bytes;
    // As a floating number, which has room for all that a program may say.
    const double given = [static_cast<NSNumber*>(value) doubleValue];
    return given >= static_cast<double>(limit.from) && given <= static_cast<double>(limit.to) &&
           given == std::floor(given);
}

NSString* wantedBy(const Limit& limit) {
    return limit.bytes != 0
               ? [NSString stringWithFormat:@"%lu bytes", static_cast<unsigned long>(limit.bytes)]
               : [NSString stringWithFormat:@"a whole number from %lld to %lld", limit.from, limit.to];
}

// Seconds since 1970, UTC.
struct DatesHeld {
    NSTimeInterval from, end;
    const char* text;
    const char* name;
};
constexpr DatesHeld datesHeld[] = {
    {-2'208'988'800, 5'869'584'000, "1900-01-01 to 2155-12-31", "ISO 9660"},
    {-2'208'988'800, 5'869'584'000, "1900-01-01 to 2155-12-31", "Joliet"},
    {-62'135'596'800, 253'402'300'800, "0001-01-01 to 9999-12-31", "UDF"},
    {-2'082'844'800, -2'082'844'800.0 + 4'294'967'296.0, "1904-01-01 to 2040-02-06", "HFS+"}};
NSString* const filesystems[] = {DRISO9660, DRJoliet, DRUDF, DRHFSPlus, DRAllFilesystems}; // bit by bit

// Those that a file system of the disc shows.
std::vector<NSString*> datesOnDisc(size_t bit, NSDictionary* properties, bool hasRockRidge) {
    constexpr size_t iso = 0, joliet = 1, udf = 2;
    std::vector<NSString*> keys;
    if (bit == iso || bit == joliet)
        keys = {[properties objectForKey:DRRecordingDate] == nil ? DRContentModificationDate
                                                                 : DRRecordingDate};
    if (bit == joliet || (bit == iso && !hasRockRidge))
        return keys;
    keys.insert(keys.end(), {DRContentModificationDate, DRAccessDate, DRAttributeModificationDate,
                             DRCreationDate, DRBackupDate});
    if (bit == iso || bit == udf)
        keys.push_back(DREffectiveDate);
    if (bit == iso)
        keys.push_back(DRExpirationDate);
    return keys;
}

} // namespace

engine::Result<void> checkProperties(DRFSObject* object, uint8_t mask, bool hasRockRidge) {
    if (![object hasProperties])
        return {};
    NSString* wrong = nil;
    NSString* wanted = nil;
    const auto refuse = [&](NSString* key, NSString* what) {
        if (wrong != nil && [key compare:wrong] != NSOrderedAscending) // the same one each time
            return;
        wrong = key;
        wanted = what;
    };
    for (size_t i = 0; i < std::size(filesystems); ++i) {
        if (i < std::size(datesHeld) && (mask >> i & 1) == 0)
            continue;
        NSDictionary* properties = [object propertiesForFilesystem:filesystems[i]
                                         mergeWithOtherFilesystems:NO];
        for (NSString* key : Elements<NSString*>([properties allKeys])) {
            const Limit* limit = limitOf(key);
            if (limit != nullptr && !isHeld(*limit, [properties objectForKey:key]))
                refuse(key, wantedBy(*limit));
        }
        if (i == std::size(datesHeld))
            continue;
        const DatesHeld& held = datesHeld[i];
        NSDictionary* merged = [object propertiesForFilesystem:filesystems[i] mergeWithOtherFilesystems:YES];
        for (NSString* key : datesOnDisc(i, merged, hasRockRidge)) {
            NSDate* date = [merged objectForKey:key];
            if (date == nil)
                continue;
            const NSTimeInterval seconds = [date timeIntervalSince1970];
            if (!(seconds >= held.from && seconds < held.end))
                refuse(key, [NSString stringWithFormat:@"a date from %s in %s", held.text, held.name]);
        }
    }
    if (wrong == nil)
        return {};
    NSString* sentence =
        [NSString stringWithFormat:@"The %@ of \"%@\" is to be %@.", wrong, [object baseName], wanted];
    return engine::Error{engine::ErrorCode::BadLayout, pathnames::bytesOf(sentence), {}};
}

} // namespace discrecording
