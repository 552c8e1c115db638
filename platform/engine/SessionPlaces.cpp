// Where sessions and tracks lie on a medium.
#include "SessionPlaces.hpp"
#include "Failure.hpp"

#include <algorithm>

namespace engine {
namespace {

// CD: the first session's lead-out (6750 blocks, later ones 2250), a lead-in (4500) and a pre-gap (150).
constexpr uint64_t gapAfterFirstCDSession = 11400, gapAfterLaterCDSessions = 6900;
// DVD-R and -RW: border-out and border-in, 32 MiB after the first session and 8 MiB after later ones.
constexpr uint64_t firstBorder = 16384, laterBorder = 4096;
// DVD+R: closure and intro of two sessions, 1024 blocks each.
constexpr uint64_t closureAndIntro = 2048;

constexpr uint64_t roundedUp(uint64_t value, uint64_t step) noexcept {
    return (value + step - 1) / step * step;
}

uint64_t behind(MediumKind kind, uint64_t end, size_t sessionsBefore) noexcept {
    const MediumFacts& facts = factsOf(kind);
    const bool first = sessionsBefore == 1;
    if (facts.mediumClass == MediumClass::CD)
        return end + (first ? gapAfterFirstCDSession : gapAfterLaterCDSessions);
    if (facts.overwritable) return roundedUp(end, 32);
    if (facts.mediumClass == MediumClass::BD) return roundedUp(end, 32); // clusters of 64 KiB, no gap
    if (kind == MediumKind::DVDPlusR || kind == MediumKind::DVDPlusRDoubleLayer)
        return roundedUp(end, 16) + closureAndIntro;
    return roundedUp(end, 16) + (first ? firstBorder : laterBorder);
}

} // namespace

uint64_t endOf(std::span<const SessionInfo> sessions) noexcept {
    uint64_t end = 0;
    for (const SessionInfo& session : sessions)
        for (const TrackInfo& track : session.tracks)
            end = std::max(end, track.startBlock + track.blocks);
    return end;
}

uint64_t nextSessionStart(MediumKind kind, std::span<const SessionInfo> before) noexcept {
    return before.empty() ? 0 : behind(kind, endOf(before), before.size());
}

void placeTrack(BurnPlan& plan, size_t session, size_t track, MediumKind kind,
                std::span<const SessionInfo> before, uint64_t firstStart) {
    PlannedTrack& placed = plan.sessions[session][track];
    const bool isCD = factsOf(kind).mediumClass == MediumClass::CD;
    if (!isCD) placed.info.preGapBlocks = 0;
    if (track > 0) {
        const TrackInfo& last = plan.sessions[session][track - 1].info;
        placed.info.startBlock = last.startBlock + last.blocks + placed.info.preGapBlocks;
        return;
    }
    if (isCD && placed.info.preGapBlocks < usualPreGap) {
        if (placed.preGapIsRequired)
            fail(ErrorCode::PreGapLengthNotAvailable,
                 "The first track of a session must have a pre-gap of at least " +
                     std::to_string(usualPreGap) + " blocks; give track " +
                     std::to_string(placed.info.number) + " a longer one.");
        placed.info.preGapBlocks = usualPreGap;
    }
    const uint64_t extra = isCD ? placed.info.preGapBlocks - usualPreGap : 0;
    if (session > 0) {
        const TrackInfo& last = plan.sessions[session - 1].back().info;
        placed.info.startBlock = behind(kind, last.startBlock + last.blocks, before.size() + session) + extra;
    } else {
        placed.info.startBlock = (before.empty() ? firstStart : nextSessionStart(kind, before)) + extra;
    }
}

} // namespace engine
