// Which errors say that a drive can't be had now, because it is in use.
#pragma once

#include "Error.hpp"

namespace engine {

/// Somebody else has the drive, or the disc in it.
constexpr bool meansInUse(ErrorCode code) noexcept {
    return code == ErrorCode::DeviceBusy || code == ErrorCode::MediaBusy;
}

} // namespace engine
