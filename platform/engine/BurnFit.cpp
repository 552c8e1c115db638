// Whether a drive and its medium can take a burn, and how.
#include "BurnChecks.hpp"
#include "Failure.hpp"

#include <algorithm>
#include <cmath>

namespace engine {
namespace {

constexpr uint64_t leastL0DataZone = 0x40000, stepOfL0DataZone = 16;

class Fitter {
  public:
    Fitter(BurnPlan& plan, const BurnOptions& options, const Drive& drive, const MediumInfo& medium)
        : plan_(plan), options_(options), drive_(drive), can_(drive.capabilities()), medium_(medium),
          facts_(factsOf(medium.kind)), isCD_(facts_.mediumClass == MediumClass::CD) {}

    void fit() {
        checkMedium();
        checkTracks();
        checkForms();
        // Deliberate: a drive that can't test does a real burn, because whoever asks for a test wants the disc, too.
        plan_.isTest = options_.testing && can_.canTestWrite(facts_.mediumClass) && medium_.takesTests;
        chooseStrategy();
        checkL0DataZone();
        numberTracks();
    }

  private:
    std::string where(const char* article = "The ") const {
        return article + std::string(facts_.name) + " in " + inQuotes(drive_.displayName());
    }

    void checkMedium() {
        if (!facts_.writable)
            fail(ErrorCode::MediaNotWritable,
                 where() + " can only be read; put in a disc that can be written.");
        if (!can_.canWrite(medium_.kind))
            fail(ErrorCode::MediaNotSupported,
                 where() + " is of a kind that the drive can't write; put in another disc.");
        if (medium_.blank) return;
        plan_.startsAgain = options_.overwrite;
        if (options_.overwrite ? medium_.overwritable : medium_.appendable) return;
        if (!medium_.overwritable)
            fail(ErrorCode::MediaNotBlank,
                 where() + " is not blank and can't be overwritten; put in a blank disc.");
        fail(ErrorCode::MediaNotBlank,
             where() + " is not blank; put in a blank disc, or ask for it to be overwritten.");
    }

    void checkTracks() const {
        size_t count = medium_.blank || plan_.startsAgain ? 0 : medium_.trackCount();
        for (const auto& session : plan_.sessions) {
            if (!isCD_ && session.size() > 1)
                fail(ErrorCode::TooManyTracksForDVD,
                     "A session has " + std::to_string(session.size()) + " tracks, but " + where("the ") +
                         " holds one in each; put in a CD, or burn fewer tracks.");
            count += session.size();
        }
        if (count > maximumTracks)
            fail(ErrorCode::BadLayout, "The disc would have " + std::to_string(count) +
                                           " tracks; it can't have more than " +
                                           std::to_string(maximumTracks) + ".");
    }

    void checkForms() const {
        bool hasAudio = false;
        for (const auto& session : plan_.sessions) {
            for (const PlannedTrack& track : session) {
                hasAudio = hasAudio || track.info.form == BlockForm::Audio;
                if (!isCD_) checkForDVD(track.info);
                if (track.info.isCDI && !can_.writesCDI)
                    fail(ErrorCode::FunctionNotSupported, name(track) +
                                                              " is of a CD-I session, which the drive can't "
                                                              "write; use another session format.");
                if (track.info.subchannel != SubchannelForm::None && (!isCD_ || !can_.writesSubchannel))
                    fail(ErrorCode::FunctionNotSupported, name(track) + " brings subchannel data, which " +
                                                              what() + " can't take; burn it without.");
                if (!track.info.indexPoints.empty() && (!isCD_ || !can_.writesIndexPoints))
                    fail(ErrorCode::CantWriteIndexPoints, name(track) + " has index points, which " + what() +
                                                              " can't take; burn it without.");
                if (!track.info.isrc.empty() && (!isCD_ || !can_.writesISRC))
                    fail(ErrorCode::CantWriteISRC, name(track) + " has a recording code (ISRC), which " +
                                                       what() + " can't take; burn it without.");
            }
        }
        if (!plan_.cdText.empty() && (!isCD_ || !hasAudio || !can_.writesCDText))
            fail(ErrorCode::CantWriteCDText,
                 isCD_ && !hasAudio ? "Only a disc with audio tracks can have CD-Text; burn it without."
                                    : "There is CD-Text, which " + what() + " can't take; burn it without.");
    }

    void checkForDVD(const TrackInfo& track) const {
        if (track.form == BlockForm::Data) return;
        fail(ErrorCode::BadLayout, "Track " + std::to_string(track.number) + " is of the form \"" +
                                       std::string(nameOf(track.form)) + "\", but " + where("the ") +
                                       " takes only data; put in a CD.");
    }

    static std::string name(const PlannedTrack& track) {
        return "Track " + std::to_string(track.info.number);
    }
    std::string what() const {
        return isCD_ ? "the drive " + inQuotes(drive_.displayName()) : "a " + std::string(facts_.name);
    }

    std::vector<Strategy> available() const {
        std::vector<Strategy> ways;
        switch (facts_.mediumClass) {
        case MediumClass::CD:
            if (can_.writesSessionAtOnce) ways.push_back(Strategy::CDSessionAtOnce);
            if (can_.writesTrackAtOnce) ways.push_back(Strategy::CDTrackAtOnce);
            if (can_.writesRaw) ways.push_back(Strategy::CDRaw);
            break;
        case MediumClass::DVD:
            if (can_.writesDVDAtOnce) ways.push_back(Strategy::DVDAtOnce);
            break;
        case MediumClass::BD:
            if (can_.writesBDAtOnce) ways.push_back(Strategy::BDAtOnce);
            break;
        }
        return ways;
    }

    void chooseStrategy() {
        const std::vector<Strategy> ways = available();
        const auto isThere = [&](Strategy way) {
            return std::find(ways.begin(), ways.end(), way) != ways.end();
        };
        const auto chosen = std::find_if(options_.strategies.begin(), options_.strategies.end(), isThere);
        if (chosen != options_.strategies.end()) {
            plan_.strategy = *chosen;
            if (options_.strategyIsRequired) plan_.requiredStrategies = options_.strategies;
        } else if (options_.strategyIsRequired && !options_.strategies.empty()) {
            fail(ErrorCode::StrategyNotAvailable,
                 where() + " can't be written in the way that was asked for; choose another one, or let the "
                           "drive choose.");
        } else if (!ways.empty()) {
            plan_.strategy = ways.front();
        }
        if (plan_.strategy == Strategy::CDTrackAtOnce && isCD_)
            fitTrackAtOnce(isThere(Strategy::CDSessionAtOnce));
    }

    // Track at once knows neither texts nor index points nor other pre-gaps than the usual ones.
    void fitTrackAtOnce(bool hasOtherWay) {
        bool needsMore = !plan_.cdText.empty();
        for (const auto& session : plan_.sessions)
            for (const PlannedTrack& track : session)
                needsMore = needsMore || !track.info.indexPoints.empty() || track.preGapIsProduced ||
                            (track.preGapIsRequired && track.info.preGapBlocks != usualPreGap);
        if (needsMore && hasOtherWay && !options_.strategyIsRequired) {
            plan_.strategy = Strategy::CDSessionAtOnce;
            return;
        }
        if (!plan_.cdText.empty())
            fail(ErrorCode::CantWriteCDText,
                 "CD-Text can't be written track at once; choose another way of writing.");
        for (auto& session : plan_.sessions) {
            for (PlannedTrack& track : session) {
                if (!track.info.indexPoints.empty())
                    fail(ErrorCode::CantWriteIndexPoints,
                         name(track) +
                             " has index points, which can't be written track at once; choose another "
                             "way of writing.");
                if (track.info.preGapBlocks == usualPreGap && !track.preGapIsProduced) continue;
                if (track.preGapIsRequired)
                    fail(ErrorCode::PreGapLengthNotAvailable,
                         name(track) +
                             " needs a pre-gap that can't be written track at once; choose another way "
                             "of writing.");
                track.info.preGapBlocks = usualPreGap;
                track.preGapIsProduced = false;
            }
        }
    }

    void checkL0DataZone() const {
        const bool hasTwoLayers =
            medium_.kind == MediumKind::DVDRDualLayer || medium_.kind == MediumKind::DVDPlusRDoubleLayer;
        if (!plan_.doubleLayerL0DataZone || !hasTwoLayers) return;
        if (medium_.doubleLayerL0DataZoneBlocks)
            fail(ErrorCode::DoubleLayerL0AlreadySpecified,
                 where() + " has a first layer of " + std::to_string(*medium_.doubleLayerL0DataZoneBlocks) +
                     " blocks already; burn without another one.");
        const double wanted = *plan_.doubleLayerL0DataZone;
        const auto blocks = static_cast<uint64_t>(std::max(wanted, 0.0));
        const bool isPart = wanted > 0 && wanted < 1;
        const bool isLength = wanted > 1 && blocks % stepOfL0DataZone == 0 && blocks >= leastL0DataZone &&
                              blocks <= medium_.capacityBlocks;
        if (!isPart && !isLength)
            fail(ErrorCode::DoubleLayerL0DataZoneParameter,
                 "The first layer can't have that size: give a part below 1, or a multiple of 16 blocks "
                 "from " +
                     std::to_string(leastL0DataZone) + " on.",
                 std::to_string(wanted));
    }

    // Tracks are counted through all sessions of a disc.
    void numberTracks() {
        const uint32_t before = medium_.blank || plan_.startsAgain ? 0 : medium_.trackCount();
        for (auto& session : plan_.sessions)
            for (PlannedTrack& track : session)
                track.info.number += before;
    }

    BurnPlan& plan_;
    const BurnOptions& options_;
    const Drive& drive_;
    const DriveCapabilities& can_;
    const MediumInfo& medium_;
    const MediumFacts& facts_;
    bool isCD_;
};

} // namespace

void fitPlan(BurnPlan& plan, const BurnOptions& options, const Drive& drive, const MediumInfo& medium) {
    Fitter(plan, options, drive, medium).fit();
}

uint64_t l0DataZoneBlocks(double wanted, uint64_t burned, uint64_t capacity) noexcept {
    if (wanted > 1) return static_cast<uint64_t>(wanted);
    const auto part = static_cast<uint64_t>(std::ceil(wanted * static_cast<double>(burned)));
    const uint64_t steps = (part + stepOfL0DataZone - 1) / stepOfL0DataZone;
    return std::min(std::max(steps * stepOfL0DataZone, leastL0DataZone),
                    capacity / stepOfL0DataZone * stepOfL0DataZone);
}

void checkSpace(const BurnPlan& plan, const Drive& drive, const MediumInfo& medium) {
    const bool appends = !medium.blank && !plan.startsAgain;
    const uint64_t from = appends ? medium.nextWritableBlock.value_or(0) : 0;
    const uint64_t room = appends || medium.blank ? medium.blocksFree : medium.blocksOverwritable;
    const TrackInfo& last = plan.sessions.back().back().info;
    const uint64_t end = last.startBlock + last.blocks;
    const uint64_t needed = end > from ? end - from : 0;
    if (needed <= room) return;
    fail(ErrorCode::BurnNotAllowed,
         "The data needs " + megabytes(needed * blockSize) + ", but the " +
             std::string(factsOf(medium.kind).name) + " in " + inQuotes(drive.displayName()) + " has only " +
             megabytes(room * blockSize) + " free; take fewer files or a larger disc.",
         std::to_string(needed) + " blocks needed, " + std::to_string(room) + " free");
}

} // namespace engine
