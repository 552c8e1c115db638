// TrackUse: what a track's producer is at work for, so that a test of its speed gets nobody in the way.
#include "TrackUse.hpp"

#include "Failure.hpp"

#include <map>
#include <mutex>

namespace discrecording {
namespace {

struct Use {
    unsigned burns = 0; // an aborted one may still wait for a call that sleeps
    bool isTested = false;
};

struct Uses {
    std::mutex mutex;
    std::map<const void*, Use> tracks;
};

// Never destroyed: a producer may sleep longer than the process wants to live.
Uses& uses() {
    static auto* instance = new Uses;
    return *instance;
}

} // namespace

void beginTrackWork(const void* track, TrackWork work) {
    using engine::ErrorCode;
    Uses& all = uses();
    const std::lock_guard lock(all.mutex);
    const auto found = all.tracks.find(track);
    const Use use = found == all.tracks.end() ? Use{} : found->second;
    if (use.isTested)
        engine::fail(ErrorCode::SpeedTestAlreadyRunning,
                     "The speed of the track's producer is being tested; wait until the test has ended.");
    if (work == TrackWork::SpeedTest && use.burns > 0)
        engine::fail(ErrorCode::TrackReused,
                     "The track is being burned; test its speed before the burn, or after it.");
    Use& now = all.tracks[track];
    if (work == TrackWork::Burn)
        ++now.burns;
    else
        now.isTested = true;
}

void endTrackWork(const void* track, TrackWork work) noexcept {
    Uses& all = uses();
    const std::lock_guard lock(all.mutex);
    const auto found = all.tracks.find(track);
    if (found == all.tracks.end()) return;
    Use& use = found->second;
    if (work == TrackWork::Burn)
        --use.burns;
    else
        use.isTested = false;
    if (use.burns == 0 && !use.isTested) all.tracks.erase(found);
}

} // namespace discrecording
