// PropertyLimits: which values of items' properties a disc has room for.
#include "PropertyLimits.hpp"

#import "DRFSObjectPrivate.h"
#include "Elements.hpp"
#import "Filesystems.h"
#include "PathStrings.hpp"

#include <cmath>

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

} // namespace

engine::Result<void> checkProperties(DRFSObject* object, uint8_t mask) {
    if (![object hasProperties])
        return {};
    NSString* const filesystems[] = {DRISO9660, DRJoliet, DRUDF, DRHFSPlus, DRAllFilesystems}; // bit by bit
    NSString* wrong = nil;
    for (size_t i = 0; i < std::size(filesystems); ++i) {
        if (i < 4 && (mask >> i & 1) == 0)
            continue;
        NSDictionary* properties = [object propertiesForFilesystem:filesystems[i]
                                         mergeWithOtherFilesystems:NO];
        for (NSString* key : Elements<NSString*>([properties allKeys])) {
            const Limit* limit = limitOf(key);
            if (limit == nullptr || isHeld(*limit, [properties objectForKey:key]))
                continue;
            if (wrong == nil || [key compare:wrong] == NSOrderedAscending) // the same one each time
                wrong = key;
        }
    }
    if (wrong == nil)
        return {};
    NSString* sentence = [NSString stringWithFormat:@"The %@ of \"%@\" is to be %@.", wrong,
                                                    [object baseName], wantedBy(*limitOf(wrong))];
    return engine::Error{engine::ErrorCode::BadLayout, pathnames::bytesOf(sentence), {}};
}

} // namespace discrecording
