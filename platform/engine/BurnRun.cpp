// The steps of a burn.
#include "BurnRun.hpp"
#include "Background.hpp"
#include "DataImage.hpp"
#include "Failure.hpp"
#include "Pipeline.hpp"

#include <algorithm>

namespace engine {
namespace {

constexpr size_t pacedBytes =
    64u << 10; // written at once when the speed is held down, so that the status moves
constexpr auto reportInterval = std::chrono::milliseconds(100);
static_assert(pieceBytes % checkedBytes == 0);

[[noreturn]] void unsupported(const char* what) {
    fail(ErrorCode::FunctionNotSupported, std::string(what) + " is not supported yet; burn without it.");
}

} // namespace

BurnRun::BurnRun(DriveRef drive, std::shared_ptr<const Layout> layout, const BurnOptions& options,
                 SignalRef signal, Report report)
    : drive_(std::move(drive)), layout_(std::move(layout)), options_(options), signal_(std::move(signal)),
      report_(std::move(report)) {}

void BurnRun::run() {
    enter(BurnState::Preparing);
    signal_->check();
    if (!drive_) fail(ErrorCode::DeviceInvalid, "There is no drive to burn with; choose one.");
    const DataTrack& track = checkedTrack();
    checkOptions();
    auto began = drive_->beginBurn();
    if (!began) throw Failure(began.error());
    const std::unique_ptr<BurnTarget> target = std::move(*began);
    checkMedium(target->medium());
    singleSpeed_ = singleSpeedOf(factsOf(target->medium().kind).mediumClass);

    const auto image = runAbandonable(signal_, "disc-plan", [layout = layout_, signal = signal_, &track] {
        return DataImage::plan(track, *signal); // `track` lies in the layout
    });
    checkSpace(target->medium(), image->blocks());

    status_.currentSession = status_.totalSessions = 1;
    status_.totalTracks = 1;
    enter(BurnState::SessionOpen);
    signal_->check();
    status_.currentTrack = 1;
    enter(BurnState::TrackOpen);
    signal_->check();
    TrackInfo info;
    info.blocks = image->blocks();
    info.volumeName = track.root.name;
    target->openTrack(info);
    const bool isVerified =
        options_.verify && layout_->sessions.front().tracks.front().verification != Verification::None;
    writeTrack(*target, image, isVerified);
    enter(BurnState::TrackClose);
    signal_->check();
    status_.currentTrack = 0;
    enter(BurnState::SessionClose);
    signal_->check();
    status_.currentSession = 0;
    enter(BurnState::Finishing);
    signal_->check();
    target->flush(signal_);
    if (isVerified) verify(*target);
    signal_->check();
    target->commit(true);
}

const DataTrack& BurnRun::checkedTrack() const {
    if (layout_->sessions.empty() || layout_->sessions.front().tracks.empty())
        fail(ErrorCode::BadLayout, "There is nothing to burn: the layout has no track.");
    if (layout_->sessions.size() > 1) unsupported("A disc of several sessions");
    if (layout_->sessions.front().tracks.size() > 1) unsupported("A session of several tracks");
    const auto* track = std::get_if<DataTrack>(&layout_->sessions.front().tracks.front().content);
    if (track == nullptr) unsupported("A track from a producer");
    const auto name = checkVolumeName(track->root.name);
    if (!name) throw Failure(name.error());
    return *track;
}

void BurnRun::checkOptions() const {
    if (options_.appendable) unsupported("Leaving the disc open for another session");
    if (options_.testing) unsupported("A test burn");
}

void BurnRun::checkMedium(const MediumInfo& medium) const {
    const std::string kind(factsOf(medium.kind).name);
    const std::string where = "The " + kind + " in " + inQuotes(drive_->displayName());
    if (!factsOf(medium.kind).writable)
        fail(ErrorCode::MediaNotWritable, where + " can only be read; put in a disc that can be written.");
    if (!drive_->capabilities().canWrite(medium.kind))
        fail(ErrorCode::MediaNotSupported,
             where + " is of a kind that the drive can't write; put in another disc.");
    if (medium.blank) return;
    if (!medium.overwritable)
        fail(ErrorCode::MediaNotBlank,
             where + " is not blank and can't be overwritten; put in a blank disc.");
    if (!options_.overwrite)
        fail(ErrorCode::MediaNotBlank,
             where + " is not blank; put in a blank disc, or ask for it to be overwritten.");
}

void BurnRun::checkSpace(const MediumInfo& medium, uint64_t blocks) const {
    const uint64_t room = medium.blank ? medium.blocksFree : medium.blocksOverwritable;
    if (blocks <= room) return;
    fail(ErrorCode::BurnNotAllowed,
         "The data needs " + megabytes(blocks * blockSize) + ", but the " +
             std::string(factsOf(medium.kind).name) + " in " + inQuotes(drive_->displayName()) +
             " has only " + megabytes(room * blockSize) + " free; take fewer files or a larger disc.",
         std::to_string(blocks) + " blocks needed, " + std::to_string(room) + " free");
}

void BurnRun::writeTrack(BurnTarget& target, const std::shared_ptr<DataImage>& image, bool isVerified) {
    const uint64_t total = image->blocks() * blockSize;
    enter(BurnState::TrackWrite, total);
    signal_->check();
    checksums_.reserve(static_cast<size_t>(total / checkedBytes + 1));
    Pipeline pipeline(signal_, "disc-read", isVerified, [image, keep = layout_](std::span<std::byte> buffer) {
        const size_t count = image->read(buffer);
        if (count == 0) image->checkSources();
        return count;
    });
    const size_t step = isPaced() ? pacedBytes : pieceBytes;
    uint64_t written = 0;
    while (auto piece = pipeline.take()) {
        checksums_.insert(checksums_.end(), piece->checksums.begin(), piece->checksums.end());
        for (size_t offset = 0; offset < piece->filled;) {
            const auto part = piece->content().subspan(offset).first(std::min(piece->filled - offset, step));
            target.write(part);
            offset += part.size();
            written += part.size();
            pace(written);
            progress(written);
        }
        pipeline.giveBack(std::move(piece));
    }
    if (written != total) fail(ErrorCode::Internal, "The disc's image ended too early.");
}

void BurnRun::verify(BurnTarget& target) {
    const uint64_t bytes = status_.bytesTotal;
    enter(BurnState::Verifying, bytes);
    signal_->check();
    Pipeline pipeline(signal_, "disc-verify", true,
                      [read = target.reader(), offset = uint64_t{0}](std::span<std::byte> buffer) mutable {
                          const size_t count = read(offset, buffer);
                          offset += count;
                          return count;
                      });
    const auto differs = [&](uint64_t from, const std::string& how) {
        target.commit(false);
        fail(ErrorCode::VerificationFailed,
             "The disc in " + inQuotes(drive_->displayName()) + " is not what was written, from block " +
                 std::to_string(from) + " on; don't trust it, and burn again.",
             how);
    };
    uint64_t checked = 0;
    size_t next = 0;
    while (auto piece = pipeline.take()) {
        for (const uint64_t checksum : piece->checksums) {
            const uint64_t from = next * (checkedBytes / blockSize);
            if (next >= checksums_.size() || checksum != checksums_[next])
                differs(from, "block " + std::to_string(from) + " to " +
                                  std::to_string(from + checkedBytes / blockSize - 1));
            ++next;
        }
        checked += piece->filled;
        pipeline.giveBack(std::move(piece));
        progress(checked);
    }
    if (checked != bytes)
        differs(checked / blockSize,
                std::to_string(checked) + " bytes read back of " + std::to_string(bytes));
}

void BurnRun::enter(BurnState state, uint64_t bytesTotal) {
    status_.state = state;
    status_.percent = bytesTotal > 0 ? 0 : -1;
    if (bytesTotal > 0 || state == BurnState::Preparing) status_.bytesTotal = bytesTotal;
    status_.bytesDone = 0;
    status_.speed = status_.xFactor = 0;
    stateBegan_ = lastReport_ = Clock::now();
    lastReportedBytes_ = 0;
    report_(status_);
}

void BurnRun::progress(uint64_t bytesDone) {
    const auto now = Clock::now();
    status_.bytesDone = bytesDone;
    status_.percent =
        status_.bytesTotal > 0 ? static_cast<double>(bytesDone) / static_cast<double>(status_.bytesTotal) : 1;
    const std::chrono::duration<double> passed = now - lastReport_;
    if (passed < reportInterval && bytesDone < status_.bytesTotal) return;
    if (passed.count() > 0) {
        status_.speed = static_cast<double>(bytesDone - lastReportedBytes_) / passed.count() / 1000;
        status_.xFactor = status_.speed / singleSpeed_;
    }
    lastReport_ = now;
    lastReportedBytes_ = bytesDone;
    report_(status_);
}

bool BurnRun::isPaced() const {
    return options_.requestedSpeed > 0 && options_.requestedSpeed < maximumSpeed;
}

// Holds the burn to the requested speed; an abort ends the wait.
void BurnRun::pace(uint64_t bytesDone) {
    if (!isPaced()) return;
    const std::chrono::duration<double> due(static_cast<double>(bytesDone) /
                                            (options_.requestedSpeed * 1000));
    const auto until = stateBegan_ + std::chrono::duration_cast<Clock::duration>(due);
    std::unique_lock lock(signal_->mutex);
    signal_->changed.wait_until(lock, until, [&] { return signal_->isCanceled(); });
    lock.unlock();
    signal_->check();
}

} // namespace engine
