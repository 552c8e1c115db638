// Writing to a physical drive: what is where, and what the drive must do before and after.
#include "PhysicalTarget.hpp"
#include "../Background.hpp"
#include "../Failure.hpp"
#include "../SessionPlaces.hpp"
#include "BurnLibrary.hpp"
#include "MediumStart.hpp"
#include "PhysicalReader.hpp"
#include "WriteJob.hpp"

#include <algorithm>
#include <libburn/libburn.h>

namespace engine {
namespace {

constexpr uint64_t runOutBlocks = 2; // behind a track that is written at once
constexpr uint64_t leastTrack = 300; // blocks of a CD's track

// Of a track that is written at once.
uint64_t endOnDisc(const TrackInfo& track) noexcept {
    return track.startBlock + std::max(track.blocks, leastTrack) + runOutBlocks;
}

class PhysicalTarget final : public BurnTarget {
  public:
    PhysicalTarget(std::shared_ptr<PhysicalDrive::Hold> hold, const MediumInfo& medium)
        : hold_(std::move(hold)), medium_(medium), isCD_(factsOf(medium.kind).mediumClass == MediumClass::CD),
          anyOrder_(takesBlocksInAnyOrder(hold_->get())), start_(hold_) {}

    // The library may need long to let go of a drive. Nobody waits for it, but the drive is busy until then.
    ~PhysicalTarget() override {
        hold_->drive().willEndBurn();
        auto end = [job = std::move(job_), hold = std::move(hold_), isSpoiled = isPreparing_]() mutable {
            if (isSpoiled) waitUntilIdle(hold->get(), [] {}); // it may still be blanking, which nothing stops
            if (job || isSpoiled) {
                if (job) job->cancel();
                job = nullptr;
                const std::lock_guard commands(hold->drive().commands());
                hold->drive().reopen();
            }
            waitUntilIdle(hold->get(), [] {});
            hold->drive().endBurn();
            hold = nullptr;
        };
        const auto kept = std::make_shared<decltype(end)>(std::move(end));
        try {
            runInBackground("disc-release", [kept] { (*kept)(); });
        } catch (...) {
            (*kept)();
        }
    }

    const MediumInfo& medium() const noexcept override { return medium_; }
    bool needsPacing() const noexcept override { return false; }
    void watch(const SignalRef& signal) override { signal_ = signal; }

    void begin(const BurnPlan& plan) override {
        const bool isFirst = medium_.blank || plan.startsAgain;
        renewsStart_ = anyOrder_ && (plan.appendable || !isFirst);
        clearsStart_ = anyOrder_ && plan.startsAgain && !medium_.blank;
        erases_ = plan.startsAgain && !medium_.blank && !anyOrder_;
        if (!isFirst) before_ = medium_.sessions;
        // Deliberate: between the sessions of a DVD or BD lies what the drive chooses, and is known only when the first
        // is closed; a file system is laid out for its place before anything is written.
        if (!isCD_ && plan.sessions.size() > 1)
            fail(ErrorCode::FunctionNotSupported,
                 "A DVD or BD in " + name() +
                     " takes one session in a burn; burn the others one after another.",
                 std::to_string(plan.sessions.size()) + " sessions");
        const bool hasTwoLayers =
            medium_.kind == MediumKind::DVDRDualLayer || medium_.kind == MediumKind::DVDPlusRDoubleLayer;
        if (hasTwoLayers && plan.doubleLayerL0DataZone)
            fail(ErrorCode::FunctionNotSupported,
                 "How much of the disc in " + name() +
                     " the first layer takes is the drive's choice; burn without a size for it.");
        chooseWay(plan, isFirst);
        for (const auto& session : plan.sessions)
            checkForms(session);
        checkStrategy(plan);
        if (!isCD_ || !atOnce_) checkTrackAtOnce(plan);
        if (plan.isTest && erases_)
            fail(ErrorCode::MediaNotBlank, "A test burn erases nothing, and the " +
                                               std::string(factsOf(medium_.kind).name) + " in " + name() +
                                               " is not blank; erase it first, or burn it without a test.");
    }

    void place(BurnPlan& plan, size_t session, size_t track) override {
        PlannedTrack& planned = plan.sessions[session][track];
        if (isCD_ && !atOnce_) {
            // The drive's own; one that must be another was refused.
            planned.info.preGapBlocks = usualPreGap;
            planned.preGapIsProduced = false;
        }
        placeTrack(plan, session, track, medium_.kind, before_, renewsStart_ ? MediumStart::blocks : 0);
        TrackInfo& info = planned.info;
        // The drive knows best where it goes on.
        if (session == 0 && track == 0 && !before_.empty() && medium_.nextWritableBlock)
            info.startBlock = *medium_.nextWritableBlock + (isCD_ ? info.preGapBlocks - usualPreGap : 0);
        if (!isCD_ || atOnce_) return;
        if (track > 0) {
            info.startBlock = endOnDisc(plan.sessions[session][track - 1].info) + usualPreGap;
        } else if (session > 0) {
            const TrackInfo& last = plan.sessions[session - 1].back().info;
            info.startBlock += endOnDisc(last) - (last.startBlock + last.blocks);
        }
    }

    bool wantsStart() const noexcept override { return renewsStart_; }

    void openSession(const BurnPlan& plan, size_t session) override {
        const std::lock_guard commands(hold_->drive().commands());
        isTest_ = plan.isTest;
        if (session == 0)
            prepareMedium();
        else
            hold_->drive().reassess();
        std::vector<TrackInfo> tracks;
        for (const PlannedTrack& each : plan.sessions[session])
            tracks.push_back(each.info);
        written_.push_back(std::move(tracks));
        position_ = written_.back().front().startBlock;
        job_ = std::make_shared<WriteJob>(hold_, plan, session, anyOrder_, atOnce_);
        track_ = 0;
    }

    void openTrack(const PlannedTrack& track) override {
        // What the library writes before block 0 of a session is its own.
        takesPreGap_ = atOnce_ && track_ > 0 && track.preGapIsProduced;
    }

    void writePreGap(std::span<std::byte> buffer) override {
        if (takesPreGap_) write(buffer);
    }

    void write(std::span<std::byte> buffer) override {
        if (anyOrder_ && !isTest_) start_.holdBack(buffer, position_);
        position_ += buffer.size() / blockSize;
        if (job_->give(track_, buffer, signal_.get())) return;
        job_->finish(signal_.get());
        throw Failure(job_->problem());
    }

    void closeTrack(uint64_t blocks, uint64_t) override {
        TrackInfo& track = written_.back()[track_];
        const uint64_t missing = track.blocks > blocks ? track.blocks - blocks : 0;
        track.blocks = blocks;
        job_->endTrack(track_++, missing * bytesPerBlock(track.form));
    }

    void closeSession() override {
        job_->finish(signal_.get());
        job_ = nullptr;
    }

    void writeStart(std::vector<std::byte> bytes) override { start_.set(std::move(bytes)); }

    // The drive has closed what it wrote. What it shows now is where the tracks really are.
    void flush(const SignalRef& signal) override {
        signal->check();
        const std::lock_guard commands(hold_->drive().commands());
        hold_->drive().reassess();
        if (isTest_ || anyOrder_) return;
        const auto medium = describeMedium(hold_->get(), hold_->drive().path());
        for (auto& session : written_)
            for (TrackInfo& track : session)
                findTrack(medium, track);
    }

    std::shared_ptr<MediumReader> reader() override {
        return start_.readerThrough(std::make_shared<PhysicalReader>(hold_));
    }
    std::vector<std::vector<TrackInfo>> written() const override { return written_; }
    uint64_t keptPreGap(const TrackInfo& track, bool isFirst) const override {
        return isFirst || !atOnce_ ? 0 : track.preGapBlocks;
    }

    // A drive has no mark for a disc that is wrong. Where the start is written last it was the old one, or none, until now:
    // aborted, failed or killed before, the medium leads to earlier sessions that are good, or to nothing.
    void commit(bool intact) override {
        if (intact && !isTest_) start_.write();
        // Whoever waited for the burn may look before the library has let go of the drive.
        if (intact) hold_->drive().seeMedium();
    }

  private:
    std::string name() const { return inQuotes(hold_->drive().displayName()); }

    void checkForms(const std::vector<PlannedTrack>& tracks) {
        bool hasData = false, hasAudio = false;
        for (const PlannedTrack& track : tracks) {
            const BlockForm form = track.info.form;
            if (form != BlockForm::Data && form != BlockForm::Audio)
                fail(ErrorCode::FunctionNotSupported, "Track " + std::to_string(track.info.number) +
                                                          " is of the form \"" + std::string(nameOf(form)) +
                                                          "\", which can't be written with " + name() +
                                                          "; only data and audio can.");
            (form == BlockForm::Data ? hasData : hasAudio) = true;
        }
        if (hasData && hasAudio) atOnce_ = false;
    }

    // The library writes at once only what is alone on a blank CD, and of one kind. A DVD-R or -RW that is not to stay open
    // is written at once: every such disc takes that, a DVD-RW that was blanked quickly nothing else.
    void chooseWay(const BurnPlan& plan, bool isFirst) {
        if (isCD_) {
            atOnce_ = plan.strategy == Strategy::CDSessionAtOnce && isFirst && plan.sessions.size() == 1;
            return;
        }
        if (!isSequentialDVDMinus(hold_->get()) || !isFirst) return;
        const bool takesMore = medium_.blank && takesIncrements(hold_->get());
        atOnce_ = !plan.appendable || (plan.isTest && !takesMore);
        // Deliberate: it takes as long as writing the whole disc, but a disc that stays open was asked for.
        erasesAll_ = !atOnce_ && !takesMore && medium_.kind == MediumKind::DVDRW;
    }

    // The drive may know a way that the library can't go with what is to be written, or with what is on the disc.
    void checkStrategy(const BurnPlan& plan) const {
        const auto& required = plan.requiredStrategies;
        const auto isRequired = [&](Strategy way) {
            return std::find(required.begin(), required.end(), way) != required.end();
        };
        const bool isTaken = isCD_ ? isRequired(atOnce_ ? Strategy::CDSessionAtOnce : Strategy::CDTrackAtOnce)
                             : factsOf(medium_.kind).mediumClass == MediumClass::DVD
                                 ? atOnce_ && isRequired(Strategy::DVDAtOnce)
                                 : isRequired(Strategy::BDAtOnce);
        if (required.empty() || isTaken) return;
        fail(ErrorCode::StrategyNotAvailable, "The " + std::string(factsOf(medium_.kind).name) + " in " +
                                                  name() +
                                                  " can't be written in the way that was asked for; choose "
                                                  "another one, or let the drive choose.");
    }

    // What only a session written at once can have.
    void checkTrackAtOnce(const BurnPlan& plan) const {
        const std::string why = ", but " + name() + " writes this session track by track; burn it without.";
        if (!plan.cdText.empty()) fail(ErrorCode::CantWriteCDText, "There is CD-Text" + why);
        for (const auto& session : plan.sessions)
            for (const PlannedTrack& track : session) {
                const std::string which = "Track " + std::to_string(track.info.number);
                if (!track.info.isrc.empty())
                    fail(ErrorCode::CantWriteISRC, which + " has a recording code (ISRC)" + why);
                if (!track.info.indexPoints.empty())
                    fail(ErrorCode::CantWriteIndexPoints, which + " has index points" + why);
                if (track.preGapIsRequired &&
                    (track.preGapIsProduced || track.info.preGapBlocks != usualPreGap))
                    fail(ErrorCode::PreGapLengthNotAvailable, which + " has a pre-gap of its own" + why);
            }
    }

    void prepareMedium() {
        isPreparing_ = true;
        burn_drive* drive = hold_->get();
        if (erases_ || erasesAll_) {
            eraseMedium(drive, medium_, erasesAll_ ? EraseType::Complete : EraseType::Quick, [this](double) {
                if (signal_) signal_->check();
                return true;
            });
            hold_->drive().reassess();
        }
        formatMedium();
        // Before anything else is overwritten: the old descriptors must not lead into what is new.
        if (clearsStart_ && !isTest_) start_.clear();
        isPreparing_ = false;
    }

    void formatMedium() {
        burn_drive* drive = hold_->get();
        int status = 0, formats = 0;
        off_t size = 0;
        unsigned more = 0;
        const bool needsFormat = medium_.kind == MediumKind::DVDRAM || medium_.kind == MediumKind::BDRE;
        if (!needsFormat || burn_disc_get_formats(drive, &status, &size, &more, &formats) <= 0 ||
            status != BURN_FORMAT_IS_UNFORMATTED)
            return;
        dropLibraryMessages();
        burn_disc_format(drive, 0, 3 << 1 | 1 << 6); // to its usual size, without a check of every block
        waitUntilIdle(drive, [] {});
        if (burn_drive_wrote_well(drive) == 0)
            throw Failure(
                libraryError(ErrorCode::MediaWriteFailure, "The disc in " + name() + " can't be formatted."));
        hold_->drive().reassess();
    }

    void findTrack(const std::optional<MediumInfo>& medium, TrackInfo& track) const {
        if (medium)
            for (const SessionInfo& session : medium->sessions)
                for (const TrackInfo& each : session.tracks)
                    if (each.number == track.number && each.form == track.form) {
                        track.startBlock = each.startBlock;
                        return;
                    }
        fail(ErrorCode::MediaWriteFailure, "The drive " + name() + " does not show track " +
                                               std::to_string(track.number) + ", which it has just written.");
    }

    std::shared_ptr<PhysicalDrive::Hold> hold_;
    MediumInfo medium_;
    const bool isCD_, anyOrder_;
    std::vector<SessionInfo> before_;
    MediumStart start_;
    bool renewsStart_ = false, clearsStart_ = false, erases_ = false, erasesAll_ = false, atOnce_ = false,
         isTest_ = false, takesPreGap_ = false, isPreparing_ = false;
    SignalRef signal_;
    std::shared_ptr<WriteJob> job_;
    size_t track_ = 0;      ///< of the session
    uint64_t position_ = 0; ///< of the block that is written next; on media that take them in any order
    std::vector<std::vector<TrackInfo>> written_;
};

} // namespace

std::unique_ptr<BurnTarget> makePhysicalTarget(std::shared_ptr<PhysicalDrive::Hold> hold,
                                               const MediumInfo& medium) {
    return std::make_unique<PhysicalTarget>(std::move(hold), medium);
}

} // namespace engine
