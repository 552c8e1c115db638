// How fast a track's data comes, without burning it.
#pragma once

#include "Layout.hpp"

#include <optional>

namespace engine {

/// Where a test of the speed ends; the end of the track ends it, too.
struct SpeedTestEnd {
    std::optional<double> seconds;
    std::optional<uint64_t> bytes;
};

/// KB/s that the data of a track came at best, on this thread. A producer is prepared and cleaned up as for a burn,
/// for no medium. Errors are those of a burn.
Result<double> productionSpeed(Track track, const SpeedTestEnd& end);

} // namespace engine
