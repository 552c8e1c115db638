// LayoutReader: turns tracks and folders into what the engine burns.
#include "LayoutReader.hpp"

#import "DRFilePrivate.h"
#import "DRTrackPrivate.h"
#include "Elements.hpp"
#include "PathStrings.hpp"

#include <algorithm>
#include <iterator>

#include <sys/stat.h>

namespace discrecording {
namespace {

using engine::Content;
using engine::Error;
using engine::ErrorCode;
using engine::Result;

// No file system of a disc holds paths this deep; a tree beyond it is a mistake, and would exhaust the stack.
constexpr int deepestTree = 1000;

// The engine asks for composed text.
std::string composedBytes(NSString* name) {
    NSString* composed = [name precomposedStringWithCanonicalMapping];
    // A name that is no proper text (a surrogate without its partner) can't be composed and goes as it is.
    return pathnames::bytesOf([composed length] == 0 ? name : composed);
}

Error conflict(DRFSObject* object, const char* problem) {
    const std::string path = pathnames::bytesOf([object sourcePath]);
    return {ErrorCode::FileLocationConflict, "\"" + path + "\" " + problem, path};
}

Result<Content> realContent(DRFSObject* object, std::string name) {
    std::string path = pathnames::bytesOf([object sourcePath]);
    if (path.find('\0') != std::string::npos)
        return conflict(object, "has a zero character in it; no path has that.");
    struct stat status {};
    const bool wantsFolder = [object isKindOfClass:[DRFolder class]];
    // What is not there at all is the engine's to report, with the system's reason.
    if (wantsFolder && ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode)) {
        return conflict(object, "is no folder; add it as a file.");
    }
    if (!wantsFolder && ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
        return conflict(object, "is a folder; add it as a folder.");
    }
    return Content::real(std::move(path), std::move(name));
}

Result<Content> contentOf(DRFSObject* object, int depth) {
    std::string name = composedBytes([object baseName]);
    if (depth > deepestTree) {
        return Error{ErrorCode::BadLayout,
                     "The folder \"" + name +
                         "\" lies too deep in the tree; use fewer folders inside each other.",
                     std::to_string(deepestTree) + " levels"};
    }
    if (![object isVirtual])
        return realContent(object, std::move(name));
    if ([object isKindOfClass:[DRFile class]]) {
        NSData* data = [static_cast<DRFile*>(object) data];
        return Content::file(std::move(name),
                             std::string(static_cast<const char*>([data bytes]), [data length]));
    }
    std::vector<Content> children;
    children.reserve([static_cast<DRFolder*>(object) count]);
    for (DRFSObject* child : Elements<DRFSObject*>([static_cast<DRFolder*>(object) children])) {
        auto content = contentOf(child, depth + 1);
        if (!content.ok())
            return content.error();
        children.push_back(std::move(*content));
    }
    return Content::folder(std::move(name), std::move(children));
}

Error notSupported(NSString* what) {
    return {
        ErrorCode::FunctionNotSupported,
        pathnames::bytesOf([NSString stringWithFormat:@"The track asks for %@, which can't be burned yet; "
                                                      @"leave it out.",
                                                      what]),
        {}};
}

// Properties that would change what is on the disc, and that the engine does not know: leaving them out in
// silence would burn something else than was asked for.
Result<void> checkProperties(NSDictionary* properties) {
    struct Unknown {
        NSString* key;
        ErrorCode code;
        NSString* harmless; // the one value that asks for nothing; nil when there is none
    };
    const Unknown unknown[] = {
        {DRISOLevel, ErrorCode::FunctionNotSupported, nil},
        {DRSystemIdentifier, ErrorCode::FunctionNotSupported, nil},
        {DRCopyrightFile, ErrorCode::FunctionNotSupported, nil},
        {DRAbstractFile, ErrorCode::FunctionNotSupported, nil},
        {DRBibliographicFile, ErrorCode::FunctionNotSupported, nil},
        {DRDefaultDate, ErrorCode::FunctionNotSupported, nil},
        {DRVolumeCreationDate, ErrorCode::FunctionNotSupported, nil},
        {DRVolumeModificationDate, ErrorCode::FunctionNotSupported, nil},
        {DRVolumeCheckedDate, ErrorCode::FunctionNotSupported, nil},
        {DRVolumeExpirationDate, ErrorCode::FunctionNotSupported, nil},
        {DRVolumeEffectiveDate, ErrorCode::FunctionNotSupported, nil},
        {DRISOMacExtensions, ErrorCode::FunctionNotSupported, @"0"},
        {DRISORockRidgeExtensions, ErrorCode::FunctionNotSupported, @"1"},
        {DRTrackISRCKey, ErrorCode::CantWriteISRC, nil},
        {DRIndexPointsKey, ErrorCode::CantWriteIndexPoints, nil},
        {DRAudioPreEmphasisKey, ErrorCode::FunctionNotSupported, @"0"},
        {DRAudioFourChannelKey, ErrorCode::FunctionNotSupported, @"0"},
        {DRSerialCopyManagementStateKey, ErrorCode::CantWriteSCMS, nil},
        {DRDVDTimestampKey, ErrorCode::FunctionNotSupported, nil},
        {DRDVDCopyrightInfoKey, ErrorCode::FunctionNotSupported, nil},
        {DRSubchannelDataFormKey, ErrorCode::FunctionNotSupported, DRSubchannelDataFormNone},
    };
    for (const Unknown& row : unknown) {
        id value = [properties objectForKey:row.key];
        if (value == nil || (row.harmless != nil && [[value description] isEqualToString:row.harmless]))
            continue;
        Error error = notSupported(row.key);
        error.code = row.code;
        return error;
    }
    // The first track starts at its disc's first block: the standard 150 blocks before it are the drive's
    // business.
    id gap = [properties objectForKey:DRPreGapLengthKey];
    if ([[properties objectForKey:DRPreGapIsRequiredKey] boolValue] && gap != nil &&
        [gap unsignedIntValue] != 150) {
        Error error = notSupported(@"a pre-gap of another length than 150 blocks");
        error.code = ErrorCode::PreGapLengthNotAvailable;
        return error;
    }
    return {};
}

std::string text(NSDictionary* properties, NSString* key) {
    id value = [properties objectForKey:key];
    return [value isKindOfClass:[NSString class]] ? composedBytes(value) : std::string();
}

bool isSession(id candidate) {
    if (![candidate isKindOfClass:[NSArray class]] || [static_cast<NSArray*>(candidate) count] == 0)
        return false;
    for (id track : Elements<id>(candidate)) {
        if (![track isKindOfClass:[DRTrack class]])
            return false;
    }
    return true;
}

[[noreturn]] void raiseIllegal(NSString* what) {
    [NSException
         raise:NSInvalidArgumentException
        format:@"A burn can't write %@; give it a track, an array of tracks, or an array of such arrays.",
               what];
    __builtin_unreachable();
}

} // namespace

NSArray* sessionsOfLayout(id layout) {
    if (layout == nil)
        raiseIllegal(@"nil");
    if ([layout isKindOfClass:[DRTrack class]])
        return [NSArray arrayWithObject:[NSArray arrayWithObject:layout]];
    if (![layout isKindOfClass:[NSArray class]]) {
        raiseIllegal([NSString stringWithFormat:@"an object of class %@", [layout class]]);
    }
    if ([static_cast<NSArray*>(layout) count] == 0)
        raiseIllegal(@"an empty array");
    if (isSession(layout))
        return [NSArray arrayWithObject:[NSArray arrayWithArray:layout]];
    NSMutableArray* sessions = [NSMutableArray arrayWithCapacity:[static_cast<NSArray*>(layout) count]];
    for (id session : Elements<id>(layout)) {
        if (!isSession(session))
            raiseIllegal(@"an array with anything but tracks, or full arrays of tracks, in it");
        [sessions addObject:[NSArray arrayWithArray:session]];
    }
    return sessions;
}

Result<engine::DataTrack> dataTrackOf(DRTrack* track) {
    DRFolder* root = [track rootFolder];
    if (root == nil) {
        return Error{
            ErrorCode::FunctionNotSupported,
            "The track has no root folder, and tracks whose data comes from a producer can't be burned yet; "
            "make the track for a root folder.",
            {}};
    }
    NSDictionary* properties = [track properties];
    if (const auto allowed = checkProperties(properties); !allowed.ok())
        return allowed.error();
    auto content = contentOf(root, 0);
    if (!content.ok())
        return content.error();

    engine::DataTrack data;
    data.root = std::move(*content);
    data.publisher = text(properties, DRPublisher);
    data.dataPreparer = text(properties, DRDataPreparer);
    data.application = text(properties, DRApplicationIdentifier);
    data.volumeSet = text(properties, DRVolumeSet);
    return data;
}

Result<engine::Layout> layoutOfSessions(NSArray* sessions) {
    engine::Layout layout;
    NSMutableSet* seen = [NSMutableSet set];
    for (NSArray* tracks : Elements<NSArray*>(sessions)) {
        engine::Session session;
        for (DRTrack* track : Elements<DRTrack*>(tracks)) {
            if ([seen containsObject:track]) {
                return Error{
                    ErrorCode::TrackReused,
                    "The same track stands in the layout twice; make a track of its own for each place.",
                    {}};
            }
            [seen addObject:track];
            auto data = dataTrackOf(track);
            if (!data.ok())
                return data.error();
            engine::Track made;
            made.content = std::move(*data);
            NSString* verification = [[track properties] objectForKey:DRVerificationTypeKey];
            if (verification == nil || [verification isEqual:DRVerificationTypeNone])
                made.verification = engine::Verification::None;
            session.tracks.push_back(std::move(made));
        }
        layout.sessions.push_back(std::move(session));
    }
    return layout;
}

double speedLimitOfSessions(NSArray* sessions) {
    double limit = engine::maximumSpeed;
    for (NSArray* tracks : Elements<NSArray*>(sessions)) {
        for (DRTrack* track : Elements<DRTrack*>(tracks)) {
            id value = [[track properties] objectForKey:DRMaxBurnSpeedKey];
            if ([value isKindOfClass:[NSNumber class]] && [value doubleValue] > 0) {
                limit = std::min(limit, [value doubleValue]);
            }
        }
    }
    return limit;
}

} // namespace discrecording
