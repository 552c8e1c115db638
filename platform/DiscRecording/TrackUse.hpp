// TrackUse: what a track's producer is at work for, so that a test of its speed gets nobody in the way.
#pragma once

namespace discrecording {

enum class TrackWork { Burn, SpeedTest };

/// A track's producer begins to work, until it ends. The track is told apart by its address. Throws engine::Failure where
/// a test of the speed would call the producer while somebody else does: SpeedTestAlreadyRunning while it is tested,
/// for a burn, too; TrackReused for a test while it is burned.
void beginTrackWork(const void* track, TrackWork work);
void endTrackWork(const void* track, TrackWork work) noexcept;

} // namespace discrecording
