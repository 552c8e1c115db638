// The erase's thread, its status for others, and what becomes of it when the process exits.
#include "EraseJob.hpp"
#include "Background.hpp"
#include "Failure.hpp"

#include <cstdlib>
#include <mutex>

namespace engine {
namespace {

constexpr auto reportInterval = std::chrono::milliseconds(100);

std::atomic<bool> processExits{false};

// A large medium takes longer than anybody waits for a process to exit.
void cutOffAtExit() {
    static const int registered = std::atexit([] {
        processExits = true;
        waitForBackground(std::chrono::seconds(5));
    });
    (void)registered;
}

} // namespace

struct EraseJob::Shared {
    DriveRef drive;
    DriveHold hold; ///< the thread's once that runs

    mutable std::mutex mutex;
    std::condition_variable ended;
    EraseStatus status;
    bool started = false;
    bool finished = true; ///< no thread is at work

    std::recursive_mutex calling; ///< held while the observer is called, which may drop the job
    Observer observer;

    void publish(const EraseStatus& now) {
        {
            const std::lock_guard lock(mutex);
            status = now;
        }
        {
            const std::lock_guard lock(calling);
            // A copy: a call that drops the job takes the observer away.
            if (const Observer call = observer) call(now);
        }
        if (!now.isFinal()) return;
        // Last, so that nobody who waited is still being called.
        const std::lock_guard lock(mutex);
        finished = true;
        ended.notify_all();
    }
    void run() noexcept;
    void end(EraseStatus& now, const Result<void>& result) noexcept;
    void erase(EraseStatus& now);
};

std::string_view nameOf(EraseState state) noexcept {
    switch (state) {
    case EraseState::None:
        return "None";
    case EraseState::Preparing:
        return "Preparing";
    case EraseState::Erasing:
        return "Erasing";
    case EraseState::Finishing:
        return "Finishing";
    case EraseState::Done:
        return "Done";
    case EraseState::Failed:
        return "Failed";
    }
    return "";
}

void EraseJob::Shared::erase(EraseStatus& now) {
    using Clock = std::chrono::steady_clock;
    if (!drive) fail(ErrorCode::DeviceInvalid, "There is no drive to erase in; choose one.");
    Clock::time_point reported;
    const auto progress = [&](double done) {
        now.percent = done;
        if (now.state != EraseState::Erasing || Clock::now() - reported >= reportInterval) {
            now.state = EraseState::Erasing;
            reported = Clock::now();
            publish(now);
        }
        return !processExits;
    };
    const auto erased = drive->erase(now.type, progress);
    if (!erased) throw Failure(erased.error());
    now.state = EraseState::Finishing;
    now.percent = -1;
    publish(now);
    const auto medium = drive->readMedium();
    if (!medium) throw Failure(medium.error());
    if (*medium && !(**medium).blank)
        fail(ErrorCode::MediaWriteFailure, "The disc in " + inQuotes(drive->displayName()) +
                                               " was erased, but it is not blank; try again, completely.");
}

void EraseJob::Shared::run() noexcept {
    EraseStatus now = status; // nobody else writes it
    publish(now);
    end(now, guarded([&] { erase(now); }));
}

void EraseJob::Shared::end(EraseStatus& now, const Result<void>& result) noexcept {
    now.state = result ? EraseState::Done : EraseState::Failed;
    now.percent = result ? 1 : -1;
    if (!result) now.error = result.error();
    hold = DriveHold();
    publish(now);
}

EraseJob::EraseJob(DriveRef drive) : shared_(std::make_shared<Shared>()) {
    shared_->drive = std::move(drive);
}

EraseJob::~EraseJob() {
    const std::lock_guard lock(shared_->calling);
    shared_->observer = nullptr;
}

void EraseJob::setObserver(Observer observer) {
    const std::lock_guard lock(shared_->calling);
    shared_->observer = std::move(observer);
}

void EraseJob::keep(DriveHold hold) { shared_->hold = std::move(hold); }

Result<void> EraseJob::start(EraseType type) {
    return guarded([&] {
        cutOffAtExit();
        {
            const std::lock_guard lock(shared_->mutex);
            if (shared_->started)
                fail(ErrorCode::BurnNotAllowed, "This erase was already started; make a new one.");
            shared_->started = true;
            shared_->finished = false;
            shared_->status.state = EraseState::Preparing;
            shared_->status.type = type;
        }
        const auto begun =
            guarded([&] { runInBackground("disc-erase", [shared = shared_] { shared->run(); }); });
        if (begun) return;
        EraseStatus last = status();
        shared_->end(last, begun);
    });
}

EraseStatus EraseJob::status() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->status;
}

EraseStatus EraseJob::wait() {
    std::unique_lock lock(shared_->mutex);
    shared_->ended.wait(lock, [&] { return shared_->finished; });
    return shared_->status;
}

bool EraseJob::waitFor(std::chrono::milliseconds time) {
    std::unique_lock lock(shared_->mutex);
    return shared_->ended.wait_for(lock, time, [&] { return shared_->finished; });
}

const DriveRef& EraseJob::drive() const noexcept { return shared_->drive; }

} // namespace engine
