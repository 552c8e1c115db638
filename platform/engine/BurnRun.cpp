// The steps of a burn.
#include "BurnRun.hpp"
#include "Background.hpp"
#include "BurnChecks.hpp"
#include "Failure.hpp"
#include "MediumBlocks.hpp"

#include <utility>

namespace engine {
namespace {

constexpr auto reportInterval = std::chrono::milliseconds(100);
constexpr auto cleanUpAfterAbort = std::chrono::milliseconds(20);

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
        const auto work = [state, items = std::make_shared<decltype(items_)>(std::exchange(items_, {}))] {
            std::optional<Error> first;
            for (const Item& item : *items) {
                auto problem = item.source->cleanUp();
                if (!first) first = std::move(problem);
            }
            items->clear();
            const std::lock_guard lock(state->mutex);
            state->problem = std::move(first);
            state->done = true;
            state->changed.notify_all();
        };
        try {
            runInBackground("disc-clean", work);
        } catch (const Failure&) { // no thread, so it is done here, as long as it may take its time
            if (!signal_->isCanceled()) work();
        }
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

void BurnRun::wrote(uint64_t bytesDone) {
    pace(bytesDone);
    progress(bytesDone);
}

} // namespace engine
