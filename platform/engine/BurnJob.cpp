// The job: its thread, its status for others, and what happens when it is dropped or the process exits.
#include "BurnJob.hpp"
#include "Background.hpp"
#include "BurnRun.hpp"
#include "Failure.hpp"

#include <cstdlib>
#include <set>
#include <thread>

namespace engine {

struct BurnJob::Shared : std::enable_shared_from_this<BurnJob::Shared> {
    DriveRef drive;
    SignalRef signal = std::make_shared<Signal>();

    mutable std::mutex mutex;
    mutable std::condition_variable ended;
    BurnStatus status;
    Observer observer;
    bool started = false;
    bool finished = true; ///< no thread is at work
    std::thread::id thread;

    void publish(const BurnStatus& now);
    void run(const std::shared_ptr<const Layout>& layout, const BurnOptions& options) noexcept;
    void end(const Result<void>& result) noexcept;
};

namespace {

// All jobs that run, so that none is cut off in the middle when the process exits. Never destroyed.
struct RunningJobs {
    std::mutex mutex;
    std::set<SignalRef> signals;
};

RunningJobs& runningJobs() {
    static auto* instance = new RunningJobs;
    return *instance;
}

void endAllJobs() {
    {
        RunningJobs& all = runningJobs();
        const std::lock_guard lock(all.mutex);
        for (const SignalRef& signal : all.signals)
            signal->cancel();
    }
    // Jobs end within milliseconds; a producer that sleeps for ever must not keep the process.
    waitForBackground(std::chrono::seconds(5));
}

void endAllJobsAtExit() {
    static const int registered = std::atexit(endAllJobs);
    (void)registered;
}

} // namespace

std::string_view nameOf(BurnState state) noexcept {
    switch (state) {
    case BurnState::None:
        return "None";
    case BurnState::Preparing:
        return "Preparing";
    case BurnState::SessionOpen:
        return "SessionOpen";
    case BurnState::TrackOpen:
        return "TrackOpen";
    case BurnState::TrackWrite:
        return "TrackWrite";
    case BurnState::TrackClose:
        return "TrackClose";
    case BurnState::SessionClose:
        return "SessionClose";
    case BurnState::Finishing:
        return "Finishing";
    case BurnState::Verifying:
        return "Verifying";
    case BurnState::Done:
        return "Done";
    case BurnState::Failed:
        return "Failed";
    }
    return "";
}

void BurnJob::Shared::publish(const BurnStatus& now) {
    Observer call;
    {
        const std::lock_guard lock(mutex);
        status = now;
        call = observer;
    }
    if (call) call(now);
    if (!now.isFinal()) return;
    // Last, so that nobody who waited is still being called.
    const std::lock_guard lock(mutex);
    observer = nullptr;
    finished = true;
    ended.notify_all();
}

// What fails with a drive that is no longer there fails because of that.
static Error withoutDrive(Error error, const DriveRef& drive) {
    if (drive == nullptr || drive->isValid()) return error;
    if (error.code == ErrorCode::DeviceInvalid || error.code == ErrorCode::UserCanceled) return error;
    return {ErrorCode::DeviceInvalid,
            "The drive " + inQuotes(drive->displayName()) + " went away while it wrote.", error.message,
            error.sense};
}

void BurnJob::Shared::run(const std::shared_ptr<const Layout>& layout, const BurnOptions& options) noexcept {
    {
        const std::lock_guard lock(mutex);
        thread = std::this_thread::get_id();
    }
    end(guarded([&] {
        BurnRun(drive, layout, options, signal, [this](const BurnStatus& now) { publish(now); }).run();
    }));
}

void BurnJob::Shared::end(const Result<void>& result) noexcept {
    BurnStatus last;
    {
        const std::lock_guard lock(mutex);
        last = status;
    }
    last.currentSession = last.currentTrack = 0;
    last.speed = last.xFactor = 0;
    last.state = result ? BurnState::Done : BurnState::Failed;
    last.percent = result ? 1 : -1;
    if (!result) last.error = withoutDrive(result.error(), drive);
    {
        RunningJobs& all = runningJobs();
        const std::lock_guard lock(all.mutex);
        all.signals.erase(signal);
    }
    publish(last);
}

BurnJob::BurnJob(DriveRef drive) : shared_(std::make_shared<Shared>()) { shared_->drive = std::move(drive); }

BurnJob::~BurnJob() {
    abort();
    wait();
}

void BurnJob::setObserver(Observer observer) {
    const std::lock_guard lock(shared_->mutex);
    if (!shared_->started) shared_->observer = std::move(observer);
}

Result<void> BurnJob::start(Layout layout, BurnOptions options) {
    return guarded([&] {
        endAllJobsAtExit();
        {
            const std::lock_guard lock(shared_->mutex);
            if (shared_->started)
                fail(ErrorCode::BurnNotAllowed,
                     "This burn was already started; make a new one for another disc.");
            shared_->started = true;
            shared_->finished = false;
            shared_->status.state = BurnState::Preparing;
        }
        {
            RunningJobs& all = runningJobs();
            const std::lock_guard lock(all.mutex);
            all.signals.insert(shared_->signal);
        }
        const auto begun = guarded([&] {
            runInBackground("disc-burn",
                            [shared = shared_, kept = std::make_shared<const Layout>(std::move(layout)),
                             options] { shared->run(kept, options); });
        });
        if (!begun) shared_->end(begun);
    });
}

BurnStatus BurnJob::status() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->status;
}

void BurnJob::abort() {
    {
        const std::lock_guard lock(shared_->mutex);
        if (!shared_->started || shared_->finished) return;
    }
    shared_->signal->cancel();
}

BurnStatus BurnJob::wait() {
    std::unique_lock lock(shared_->mutex);
    if (shared_->thread != std::this_thread::get_id())
        shared_->ended.wait(lock, [&] { return shared_->finished; });
    return shared_->status;
}

bool BurnJob::waitFor(std::chrono::milliseconds time) {
    std::unique_lock lock(shared_->mutex);
    return shared_->ended.wait_for(lock, time, [&] { return shared_->finished; });
}

const DriveRef& BurnJob::drive() const noexcept { return shared_->drive; }

} // namespace engine
