// LayoutReader: turns tracks and folders into what the engine burns.
#include "LayoutReader.hpp"

#include "ContentReader.hpp"
#import "DRTrackPrivate.h"
#include "Elements.hpp"
#include "PathStrings.hpp"
#include "TrackReader.hpp"
#include "UdfProperties.hpp"
#include "VolumeProperties.hpp"

#include <algorithm>
#include <iterator>

namespace discrecording {
namespace {

using engine::Error;
using engine::ErrorCode;
using engine::Result;

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

Result<engine::DataTrack> dataTrackOf(DRTrack* track, bool estimating) {
    DRFolder* root = [track rootFolder];
    if (root == nil) {
        return Error{ErrorCode::BadLayout, "The track has no root folder; make it for one.", {}};
    }
    NSDictionary* properties = [track properties];
    engine::DataTrack data;
    if (const auto read = readVolumeProperties(properties, data); !read.ok())
        return read.error();
    auto content = contentOfRoot(root, data, estimating);
    if (!content.ok())
        return content.error();
    data.root = std::move(content->root);
    data.filesystems = content->filesystems;
    if (const auto read = readVolumeFiles(properties, root, data); !read.ok())
        return read.error();
    if ((data.filesystems & engine::filesystem::udf) != 0)
        if (const auto read = readUdfProperties(root, data); !read.ok())
            return read.error();
    return data;
}

Result<engine::Layout> layoutOfSessions(NSArray* sessions, const ProducedFor& producedFor) {
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
            auto made = trackOf(track, producedFor);
            if (!made.ok())
                return made.error();
            session.tracks.push_back(std::move(*made));
        }
        layout.sessions.push_back(std::move(session));
    }
    return layout;
}

} // namespace discrecording
