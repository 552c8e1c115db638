// The steps of a burn.
#include "BurnRun.hpp"
#include "Background.hpp"
#include "BurnChecks.hpp"
#include "Failure.hpp"
#include "MediumBlocks.hpp"
#include "Pipeline.hpp"
#include "sectors/SectorCoding.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

namespace engine {
namespace {

constexpr size_t pacedBytes =
    64u << 10; // written at once when the speed is held down, so that the status moves
constexpr auto reportInterval = std::chrono::milliseconds(100);
constexpr auto cleanUpAfterAbort = std::chrono::milliseconds(20);

// The most whole blocks in that many bytes; whole pages, too, when that is possible.
size_t wholeBlocks(size_t blockBytes, size_t bytes) {
    const size_t both = std::lcm(blockBytes, size_t{4096});
    return both <= bytes ? bytes / both * both : bytes / blockBytes * blockBytes;
}

} // namespace

BurnRun::BurnRun(DriveRef drive, std::shared_ptr<const Layout> layout, const BurnOptions& options,
                 SignalRef signal, Report report)
    : drive_(std::move(drive)), layout_(std::move(layout)), options_(options), signal_(std::move(signal)),
      report_(std::move(report)) {}

BurnRun::~BurnRun() { cleanUp(); }

// Every source that was prepared is cleaned up, once and in order; a producer's call that sleeps is not waited for
// after an abort. Answers what went wrong first.
std::optional<Error> BurnRun::cleanUp() noexcept {
    struct Done {
        std::mutex mutex;
        std::condition_variable changed;
        bool done = false;
        std::optional<Error> problem;
    };
    if (items_.empty()) return std::nullopt;
    const auto state = std::make_shared<Done>();
    try {
        runInBackground("disc-clean", [state, items = std::exchange(items_, {})]() mutable {
            std::optional<Error> first;
            for (const Item& item : items) {
                auto problem = item.source->cleanUp();
                if (!first) first = std::move(problem);
            }
            items.clear();
            const std::lock_guard lock(state->mutex);
            state->problem = std::move(first);
            state->done = true;
            state->changed.notify_all();
        });
        std::unique_lock lock(state->mutex);
        const auto isDone = [&] { return state->done; };
        while (!signal_->isCanceled() && !isDone())
            state->changed.wait_for(lock, cleanUpAfterAbort, isDone);
        state->changed.wait_for(lock, cleanUpAfterAbort, isDone);
        return state->problem;
    } catch (...) {
        // Without a thread there is no one to wait for.
        return std::nullopt;
    }
}

// Deliberate: what a producer throws when it is to clean up fails a burn, as anywhere else, though the medium is whole by
// then and stays so: whoever asks is told that the program went wrong.
void BurnRun::run() {
    burn();
    if (auto problem = cleanUp()) throw Failure(std::move(*problem));
}

void BurnRun::burn() {
    enter(BurnState::Preparing);
    signal_->check();
    if (!drive_) fail(ErrorCode::DeviceInvalid, "There is no drive to burn with; choose one.");
    plan_ = planOf(*layout_, options_);
    auto began = drive_->beginBurn();
    if (!began) throw Failure(began.error());
    const std::unique_ptr<BurnTarget> target = std::move(*began);
    fitPlan(plan_, options_, *drive_, target->medium());
    singleSpeed_ = singleSpeedOf(factsOf(target->medium().kind).mediumClass);
    paces_ = target->needsPacing();
    target->watch(signal_);
    target->begin(plan_);
    prepare(*target);
    checkSpace(plan_, *drive_, target->medium());
    writeSessions(*target);
    enter(BurnState::Finishing);
    signal_->check();
    target->flush(signal_);
    verify(*target);
    signal_->check();
    target->commit(true);
}

void BurnRun::prepare(BurnTarget& target) {
    const ImagePlace previous = previousFileSystem(target.medium());
    for (size_t session = 0; session < plan_.sessions.size(); ++session) {
        bool goesOn = session == 0; // only a session's first file system goes on from the medium's
        for (size_t track = 0; track < plan_.sessions[session].size(); ++track) {
            const Track& wanted = layout_->sessions[session].tracks[track];
            Item item{session, track, wanted.verification, nullptr, 0, {}};
            item.source = makeTrackSource(layout_, wanted, planned(item));
            item.verification = item.source->verification(wanted.verification);
            items_.push_back(item);
            const bool isData = std::holds_alternative<DataTrack>(wanted.content);
            prepareTrack(target, items_.back(), isData && goesOn ? previous : ImagePlace{});
            goesOn = goesOn && !isData;
        }
    }
}

void BurnRun::prepareTrack(BurnTarget& target, Item& item, const ImagePlace& wanted) {
    target.place(plan_, item.session, item.track);
    ImagePlace place = wanted;
    place.startBlock = planned(item).info.startBlock;
    place.wantsStart = target.wantsStart();
    TrackInfo& info = planned(item).info;
    checkPlace(layout_->sessions[item.session].tracks[item.track], info, *drive_, target.medium());
    info.blocks = runAbandonable(signal_, "disc-plan",
                                 [source = item.source, medium = target.medium(), place, signal = signal_] {
                                     return source->prepare(medium, place, *signal);
                                 });
    checkIndexPoints(info);
}

// The newest file system that is on a medium which is appended to.
ImagePlace BurnRun::previousFileSystem(const MediumInfo& medium) const {
    if (medium.blank || plan_.startsAgain) return {};
    auto reader = drive_->openMedium();
    if (!reader) throw Failure(reader.error());
    return newestFileSystem(medium, std::shared_ptr<MediumReader>(std::move(*reader)));
}

void BurnRun::writeSessions(BurnTarget& target) {
    status_.totalSessions = static_cast<uint32_t>(plan_.sessions.size());
    auto item = items_.begin();
    for (size_t session = 0; session < plan_.sessions.size(); ++session) {
        status_.currentSession = static_cast<uint32_t>(session + 1);
        status_.totalTracks = static_cast<uint32_t>(plan_.sessions[session].size());
        enter(BurnState::SessionOpen);
        signal_->check();
        target.openSession(plan_, session);
        for (size_t track = 0; track < plan_.sessions[session].size(); ++track) {
            status_.currentTrack = static_cast<uint32_t>(track + 1);
            enter(BurnState::TrackOpen);
            signal_->check();
            target.openTrack(planned(*item));
            writeTrack(target, *item++);
        }
        status_.currentTrack = 0;
        enter(BurnState::SessionClose);
        signal_->check();
        target.closeSession();
    }
    status_.currentSession = 0;
}

void BurnRun::writeTrack(BurnTarget& target, Item& item) {
    const PlannedTrack& track = planned(item);
    const size_t blockBytes = track.blockBytes();
    const uint64_t total = track.info.blocks * blockBytes;
    enter(BurnState::TrackWrite, total);
    signal_->check();
    if (track.preGapIsProduced) writePreGap(target, item);
    const bool isSummed = options_.verify && !plan_.isTest && item.verification == Verification::Checksum;
    const auto sum = std::make_shared<TrackSum>();
    Pipeline pipeline(signal_, "disc-read", wholeBlocks(blockBytes, pieceBytes), isSummed,
                      [source = item.source, sum](std::span<std::byte> buffer) {
                          const size_t count = source->read(buffer);
                          sum->add(buffer.first(count)); // here, where it keeps no drive waiting
                          return count;
                      });
    const size_t step = isPaced() ? wholeBlocks(blockBytes, pacedBytes) : pieceBytes;
    uint64_t written = 0;
    while (auto piece = pipeline.take()) {
        if (isSummed) item.checksums.push_back(piece->checksum);
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
    item.bytes = written;
    if (auto start = item.source->start(); !start.empty()) target.writeStart(std::move(start));
    // A track that ends early makes room only when nothing follows it: the rest has its addresses already.
    if (written < total && !plan_.isLast(item.session, item.track)) {
        fillUp(target, track, written / blockBytes, *sum);
        written = total;
    }
    status_.bytesTotal = written;
    enter(BurnState::TrackClose);
    signal_->check();
    target.closeTrack(written / blockBytes, sum->value());
}

void BurnRun::writePreGap(BurnTarget& target, const Item& item) {
    const PlannedTrack& track = planned(item);
    Pipeline pipeline(signal_, "disc-pregap", wholeBlocks(track.blockBytes(), pieceBytes), false,
                      [source = item.source, blocks = track.info.preGapBlocks](std::span<std::byte> buffer) {
                          return source->readPreGap(buffer, blocks);
                      });
    uint64_t written = 0;
    while (auto piece = pipeline.take()) {
        target.writePreGap(piece->content());
        written += piece->filled;
        pipeline.giveBack(std::move(piece));
    }
    if (written < track.info.preGapBlocks * track.blockBytes())
        fail(ErrorCode::DataProduction, "The producer of track " + std::to_string(track.info.number) +
                                            " ended before the track's pre-gap was full.");
}

// The blocks of a track from that one on are empty ones.
void BurnRun::fillUp(BurnTarget& target, const PlannedTrack& track, uint64_t from, TrackSum& sum) const {
    const size_t blockBytes = track.blockBytes();
    const size_t most = wholeBlocks(blockBytes, pieceBytes) / blockBytes;
    const std::unique_ptr<std::byte, Piece::Free> memory(
        static_cast<std::byte*>(std::aligned_alloc(4096, pieceBytes)));
    if (!memory) throw std::bad_alloc();
    while (from < track.info.blocks) {
        signal_->check();
        const auto count = static_cast<size_t>(std::min<uint64_t>(track.info.blocks - from, most));
        const std::span blocks(memory.get(), count * blockBytes);
        std::fill(blocks.begin(), blocks.end(), std::byte{}); // a target may change what it is given
        for (size_t each = 0; each < count; ++each)
            makeEmptyBlock(track.info.form, static_cast<int64_t>(track.info.startBlock + from + each),
                           blocks.subspan(each * blockBytes, bytesPerBlock(track.info.form)));
        sum.add(blocks);
        target.write(blocks);
        from += count;
    }
}

void BurnRun::verify(BurnTarget& target) {
    uint64_t total = 0;
    for (const Item& item : items_)
        if (item.verification != Verification::None) total += item.bytes;
    if (!options_.verify || plan_.isTest || total == 0) return;
    enter(BurnState::Verifying, total);
    signal_->check();
    const std::shared_ptr<MediumReader> reader = target.reader();
    const auto written = target.written();
    uint64_t before = 0;
    for (const Item& item : items_) {
        if (item.verification == Verification::None) continue;
        const TrackInfo& track = written[item.session][item.track];
        const uint64_t preGap =
            planned(item).preGapIsProduced ? target.keptPreGap(track, item.track == 0) : 0;
        TrackVerifier verifier(reader, track, item.source, item.verification, item.checksums, item.bytes,
                               preGap);
        verifyTrack(item, verifier, before, target);
        before += item.bytes;
    }
}

void BurnRun::verifyTrack(const Item& item, TrackVerifier& verifier, uint64_t before, BurnTarget& target) {
    try {
        Pipeline pipeline(signal_, "disc-verify", wholeBlocks(planned(item).blockBytes(), pieceBytes), false,
                          [verifier](std::span<std::byte> buffer) mutable { return verifier.next(buffer); });
        uint64_t checked = 0;
        while (auto piece = pipeline.take()) {
            checked += piece->filled;
            pipeline.giveBack(std::move(piece));
            progress(before + checked);
        }
    } catch (const Mismatch& mismatch) {
        target.commit(false);
        fail(ErrorCode::VerificationFailed,
             "The disc in " + inQuotes(drive_->displayName()) + " is not what was written, from block " +
                 std::to_string(mismatch.block) + " on; don't trust it, and burn again.",
             mismatch.how);
    }
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

bool BurnRun::isPaced() const { return paces_ && plan_.speed < maximumSpeed; }

// Holds the burn to the requested speed; an abort ends the wait.
void BurnRun::pace(uint64_t bytesDone) {
    if (!isPaced()) return;
    const std::chrono::duration<double> due(static_cast<double>(bytesDone) / (plan_.speed * 1000));
    const auto until = stateBegan_ + std::chrono::duration_cast<Clock::duration>(due);
    std::unique_lock lock(signal_->mutex);
    signal_->changed.wait_until(lock, until, [&] { return signal_->isCanceled(); });
    lock.unlock();
    signal_->check();
}

} // namespace engine
