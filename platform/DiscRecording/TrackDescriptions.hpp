// TrackDescriptions: a track that is on a disc, as the properties of a DRTrack.
#pragma once

#import <Foundation/Foundation.h>

#include "Drive.hpp"

namespace discrecording {

/// Autoreleased, under the keys of DRTrackConstants.h.
NSDictionary* propertiesOfTrack(const engine::MediumInfo& medium, const engine::SessionInfo& session,
                                const engine::TrackInfo& track);

} // namespace discrecording
