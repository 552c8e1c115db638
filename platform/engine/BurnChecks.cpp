// What is checked before anything is written, whatever it is written on.
#include "BurnChecks.hpp"
#include "CDText.hpp"
#include "Failure.hpp"
#include "RecordingCode.hpp"
#include "VolumeSettings.hpp"

#include <algorithm>

namespace engine {
namespace {

bool isDigit(char each) noexcept { return each >= '0' && each <= '9'; }

std::string nameOfTrack(const TrackInfo& track) { return "Track " + std::to_string(track.number); }

void checkISRC(const TrackInfo& track) {
    if (track.isrc.empty()) return;
    if (const auto wrong = wrongInRecordingCode(track.isrc))
        fail(ErrorCode::CantWriteISRC,
             nameOfTrack(track) + " has " + inQuotes(track.isrc) + " as its recording code, but " + *wrong +
                 '.',
             track.isrc);
}

void checkContent(const Track& track, const TrackInfo& info) {
    if (const auto* data = std::get_if<DataTrack>(&track.content)) {
        const auto name = checkVolumeName(data->root.name);
        if (!name) throw Failure(name.error());
        return;
    }
    if (!std::get<ProducedTrack>(track.content).producer)
        fail(ErrorCode::DataProduction, nameOfTrack(info) + " has no producer of its data; give it one.");
}

PlannedTrack planned(const Track& track, uint32_t number) {
    PlannedTrack plan;
    TrackInfo& info = plan.info;
    info.number = number;
    checkContent(track, info);
    info.preGapBlocks = track.preGapBlocks.value_or(usualPreGap);
    if (const auto* produced = std::get_if<ProducedTrack>(&track.content)) {
        info.form = produced->form;
        info.blocks = produced->blocks;
        info.volumeName = produced->volumeName;
        info.subchannel = produced->subchannel;
        plan.preGapIsProduced =
            track.preGapBlocks && *track.preGapBlocks > 0 && produced->producer->producesPreGap();
    } else {
        info.volumeName = nameOfVolume(std::get<DataTrack>(track.content), filesystem::iso9660);
    }
    plan.preGapIsRequired = track.preGapIsRequired;
    info.isrc = track.isrc;
    checkISRC(info);
    info.indexPoints = track.indexPoints;
    if (info.form == BlockForm::Audio) {
        info.preEmphasis = track.preEmphasis;
        info.fourChannel = track.fourChannel;
        info.copyPermitted = track.copyState.value_or(CopyState::Free) == CopyState::Free;
        info.isCopy = track.copyState == CopyState::ProtectedCopy;
    }
    return plan;
}

// A table of contents says once for a session what its blocks are, and CD-I knows mode 2 and audio only.
void planFormat(const Session& session, std::vector<PlannedTrack>& plans) {
    const Track* first = nullptr; // that says what it wants
    for (size_t index = 0; index < plans.size(); ++index) {
        const Track& track = session.tracks[index];
        if (track.sessionFormat == SessionFormat::Plain) continue;
        if (first != nullptr && track.sessionFormat != first->sessionFormat)
            fail(ErrorCode::BadLayout, nameOfTrack(plans[index].info) +
                                           " is of another session format than a track before it; a session "
                                           "is CD-I or CD-XA, so give each a session of its own.");
        if (first == nullptr) first = &track;
    }
    if (first == nullptr || first->sessionFormat != SessionFormat::CDI) return;
    for (PlannedTrack& plan : plans) {
        TrackInfo& info = plan.info;
        if (info.form == BlockForm::Data || info.form == BlockForm::RawMode1)
            fail(ErrorCode::BadLayout, nameOfTrack(info) + " is of the form " +
                                           inQuotes(std::string(nameOf(info.form))) +
                                           ", which is not for CD-I; use blocks of mode 2 or another "
                                           "session format.");
        info.isCDI = true;
    }
}

void checkOptions(const BurnOptions& options) {
    const std::string& number = options.mediaCatalogNumber;
    if (!number.empty() && (number.size() != mediaCatalogNumberCharacters ||
                            !std::all_of(number.begin(), number.end(), isDigit)))
        fail(ErrorCode::BadLayout,
             "The media catalog number " + inQuotes(number) + " must have 13 digits and nothing else.",
             number);
    if (options.cdText.empty()) return;
    const auto blocks = cdTextFromPacks(options.cdText);
    if (!blocks)
        fail(ErrorCode::CantWriteCDText, "The CD-Text can't be written: " + blocks.error().message,
             blocks.error().info);
}

} // namespace

BurnPlan planOf(const Layout& layout, const BurnOptions& options) {
    BurnPlan plan;
    uint32_t number = 0;
    double speed = options.requestedSpeed > 0 ? options.requestedSpeed : maximumSpeed;
    if (layout.sessions.empty() || layout.sessions.front().tracks.empty())
        fail(ErrorCode::BadLayout, "There is nothing to burn: the layout has no track.");
    for (const Session& session : layout.sessions) {
        if (session.tracks.empty())
            fail(ErrorCode::BadLayout, "Session " + std::to_string(plan.sessions.size() + 1) +
                                           " of the layout has no track; leave it out, or give it one.");
        plan.sessions.emplace_back();
        for (const Track& track : session.tracks) {
            plan.sessions.back().push_back(planned(track, ++number));
            if (track.maximumSpeed > 0) speed = std::min(speed, track.maximumSpeed);
        }
        planFormat(session, plan.sessions.back());
    }
    checkOptions(options);
    plan.appendable = options.appendable;
    plan.speed = speed;
    plan.underrunProtection = options.underrunProtection;
    plan.mediaCatalogNumber = options.mediaCatalogNumber;
    plan.cdText = options.cdText;
    plan.doubleLayerL0DataZone = options.doubleLayerL0DataZone;
    return plan;
}

void checkPlace(const Track& track, const TrackInfo& placed, const Drive& drive, const MediumInfo& medium) {
    if (!track.startBlock) return;
    const MediumFacts& facts = factsOf(medium.kind);
    const std::string where = "the " + std::string(facts.name) + " in " + inQuotes(drive.displayName());
    const std::string instead = "; put in a disc of the kind that the image was made from.";
    // What takes blocks in any order shows one file system: the one that its first blocks lead to.
    if (facts.overwritable)
        fail(ErrorCode::BadLayout,
             nameOfTrack(placed) + " is of a later session, which nobody would find on " + where + instead);
    if (placed.startBlock != *track.startBlock)
        fail(ErrorCode::BadLayout, nameOfTrack(placed) + " is data that counts from block " +
                                       std::to_string(*track.startBlock) + " on, but on " + where +
                                       " it would begin at block " + std::to_string(placed.startBlock) +
                                       instead);
}

void checkIndexPoints(const TrackInfo& track) {
    const std::vector<uint64_t>& points = track.indexPoints;
    if (points.size() > maximumIndexPoints)
        fail(ErrorCode::InvalidIndexPoints, nameOfTrack(track) + " has " + std::to_string(points.size()) +
                                                " index points; a track has at most " +
                                                std::to_string(maximumIndexPoints) + ".");
    uint64_t before = 0;
    for (const uint64_t point : points) {
        if (point <= before || point >= track.blocks)
            fail(ErrorCode::InvalidIndexPoints,
                 nameOfTrack(track) + " has an index point at block " + std::to_string(point) +
                     "; index points must ascend and lie inside the track's " + std::to_string(track.blocks) +
                     " blocks.",
                 "block " + std::to_string(point));
        before = point;
    }
}

} // namespace engine
