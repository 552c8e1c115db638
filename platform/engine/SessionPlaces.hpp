// Where sessions and tracks lie on a medium: the gaps between them.
#pragma once

#include "BurnTarget.hpp"

#include <span>

namespace engine {

/// The first block that a new session's data can have behind those sessions, with the usual pre-gap on a CD.
uint64_t nextSessionStart(MediumKind kind, std::span<const SessionInfo> before) noexcept;

/// The first block behind all that is written.
uint64_t endOf(std::span<const SessionInfo> sessions) noexcept;

/// Sets start and pre-gap of a track of a plan. `before` are the sessions that are kept. PreGapLengthNotAvailable.
/// `firstStart` is where a first session begins.
void placeTrack(BurnPlan& plan, size_t session, size_t track, MediumKind kind,
                std::span<const SessionInfo> before, uint64_t firstStart);

/// Blocks in front of a session's first track that no medium file keeps.
inline constexpr uint64_t unkeptPreGap = usualPreGap;

} // namespace engine
