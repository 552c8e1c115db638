// Makes libburn's model of a session and lets the library write it.
#include "WriteJob.hpp"
#include "../Failure.hpp"
#include "BurnLibrary.hpp"
#include "PhysicalTarget.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <libburn/libburn.h>
#include <thread>

namespace engine {
namespace {

int modeOf(const TrackInfo& track) {
    if (track.form == BlockForm::Data) return BURN_MODE1;
    int mode = BURN_AUDIO;
    if (track.fourChannel) mode |= BURN_4CH;
    if (track.preEmphasis) mode |= BURN_PREEMPHASIS;
    if (track.copyPermitted)
        mode |= BURN_COPY;
    else if (track.isCopy)
        mode |= BURN_SCMS;
    return mode;
}

} // namespace

WriteJob::WriteJob(std::shared_ptr<PhysicalDrive::Hold> hold, const BurnPlan& plan, size_t session,
                   bool anyOrder, bool atOnce)
    : hold_(std::move(hold)), disc_(burn_disc_create()), session_(burn_session_create()),
      options_(burn_write_opts_new(hold_->get())) {
    burn_disc_add_session(disc_.get(), session_.get(), BURN_POS_END);
    const std::vector<PlannedTrack>& tracks = plan.sessions[session];
    for (size_t index = 0; index < tracks.size(); ++index)
        addTrack(tracks[index], index, index == 0);
    setOptions(plan, session, anyOrder, atOnce);
    dropLibraryMessages();
    std::array<char, BURN_REASONS_LEN> reasons{};
    // A refused burn looks like a good one afterwards, so it must not begin.
    if (burn_precheck_write(options_.get(), disc_.get(), reasons.data(), 1) <= 0) {
        Error error =
            libraryError(ErrorCode::BurnNotAllowed, "The drive " + inQuotes(hold_->drive().displayName()) +
                                                        " can't write this on the disc that is in it.");
        if (error.info.empty()) error.info = reasons.data();
        throw Failure(error);
    }
    burn_drive_set_speed(hold_->get(), 0, plan.speed < maximumSpeed ? static_cast<int>(plan.speed) : 0);
    dropLibraryMessages();
    burn_disc_write(options_.get(), disc_.get());
}

WriteJob::~WriteJob() { cancel(); }

void WriteJob::addTrack(const PlannedTrack& planned, size_t index, bool isFirst) {
    const TrackInfo& info = planned.info;
    const Handle<burn_track> own(burn_track_create());
    burn_track* const track = own.get();
    burn_track_define_data(track, 0, 0, 1, modeOf(info));
    uint64_t blocks = info.blocks;
    const bool isAtOnce = info.form == BlockForm::Audio || info.preGapBlocks != usualPreGap;
    if (!isFirst && planned.preGapIsProduced) {
        blocks += info.preGapBlocks;
        burn_track_set_index(track, 0, 0, 0);
        burn_track_set_index(track, 1, static_cast<unsigned>(info.preGapBlocks), 0);
    } else if (isAtOnce || !info.indexPoints.empty()) {
        if (info.preGapBlocks > 0) burn_track_set_pregap_size(track, static_cast<int>(info.preGapBlocks), 0);
        if (!info.indexPoints.empty()) burn_track_set_index(track, 1, 0, 0);
    }
    const uint64_t before = !isFirst && planned.preGapIsProduced ? info.preGapBlocks : 0;
    for (size_t point = 0; point < info.indexPoints.size(); ++point)
        burn_track_set_index(track, static_cast<int>(point + 2),
                             static_cast<unsigned>(before + info.indexPoints[point]), 0);
    if (!info.isrc.empty()) {
        std::array<char, 13> code{};
        std::memcpy(code.data(), info.isrc.data(), std::min<size_t>(info.isrc.size(), 12));
        burn_track_set_isrc_string(track, code.data(), 0);
    }
    const uint64_t bytes = blocks * bytesPerBlock(info.form);
    bytes_ += bytes;
    const Handle<burn_source> source(feed_->sourceOf(index, bytes));
    burn_track_set_source(track, source.get());
    burn_session_add_track(session_.get(), track, BURN_POS_END);
}

void WriteJob::setOptions(const BurnPlan& plan, size_t session, bool anyOrder, bool atOnce) {
    const std::vector<PlannedTrack>& tracks = plan.sessions[session];
    const bool isLast = session + 1 == plan.sessions.size();
    const bool staysOpen = !isLast || plan.appendable;
    // Written at once a DVD is complete: of one that is to stay open only a test is.
    const bool closes = atOnce && isSequentialDVDMinus(hold_->get());
    const bool isSheet = std::any_of(tracks.begin(), tracks.end(), [](const PlannedTrack& each) {
        return each.info.form == BlockForm::Audio;
    });
    if (atOnce)
        burn_write_opts_set_write_type(options_.get(), BURN_WRITE_SAO, BURN_BLOCK_SAO);
    else
        burn_write_opts_set_write_type(options_.get(), BURN_WRITE_TAO, BURN_BLOCK_MODE1);
    burn_write_opts_set_perform_opc(options_.get(), 0);
    burn_write_opts_set_multi(options_.get(), staysOpen && !anyOrder && !closes ? 1 : 0);
    burn_write_opts_set_simulate(options_.get(), plan.isTest ? 1 : 0);
    burn_write_opts_set_underrun_proof(options_.get(), plan.underrunProtection ? 1 : 0);
    if (anyOrder)
        burn_write_opts_set_start_byte(options_.get(),
                                       static_cast<off_t>(tracks.front().info.startBlock * blockSize));
    if (plan.mediaCatalogNumber.size() == mediaCatalogNumberCharacters) {
        std::array<unsigned char, mediaCatalogNumberCharacters> digits{};
        std::copy(plan.mediaCatalogNumber.begin(), plan.mediaCatalogNumber.end(), digits.begin());
        burn_write_opts_set_mediacatalog(options_.get(), digits.data());
        burn_write_opts_set_has_mediacatalog(options_.get(), 1);
    }
    if (atOnce && isSheet && session == 0 && !plan.cdText.empty()) {
        std::vector<unsigned char> packs(plan.cdText.begin(), plan.cdText.end());
        if (burn_write_opts_set_leadin_text(options_.get(), packs.data(), static_cast<int>(packs.size() / 18),
                                            0) <= 0)
            throw Failure(libraryError(ErrorCode::CantWriteCDText, "The CD-Text can't be written."));
    }
}

bool WriteJob::isIdle() const { return burn_drive_get_status(hold_->get(), nullptr) == BURN_DRIVE_IDLE; }

bool WriteJob::give(size_t track, std::span<const std::byte> bytes, const Signal* signal) {
    return feed_->give(track, bytes, signal, [this] { return isIdle(); });
}

void WriteJob::finish(const Signal* signal) {
    waitUntilIdle(hold_->get(), [&] {
        if (signal != nullptr) signal->check();
    });
    if (burn_drive_wrote_well(hold_->get()) == 0 || feed_->bytesTaken() < bytes_) throw Failure(problem());
}

void WriteJob::cancel() noexcept {
    feed_->stop();
    while (!isIdle()) {
        burn_drive_cancel(hold_->get());
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    // A drive that goes away is called idle while the library's thread still reads the session.
    feed_->waitForTaker();
}

Error WriteJob::problem() const {
    const PhysicalDrive& drive = hold_->drive();
    if (!drive.isValid())
        return {ErrorCode::DeviceInvalid,
                "The drive " + inQuotes(drive.displayName()) + " went away while it wrote.",
                drive.path(),
                {}};
    // Drives are known that promise more of a DVD-RW that was blanked quickly than it takes.
    if (burn_drive_was_feat21_failure(hold_->get()) > 0)
        return libraryError(
            ErrorCode::MediaWriteFailure,
            "The DVD-RW in " + inQuotes(drive.displayName()) +
                " takes no disc that stays open, because it was only erased quickly; erase it "
                "completely, or burn it so that nothing can be appended.");
    return libraryError(ErrorCode::MediaWriteFailure, "The disc in " + inQuotes(drive.displayName()) +
                                                          " could not be written; try another disc.");
}

} // namespace engine
