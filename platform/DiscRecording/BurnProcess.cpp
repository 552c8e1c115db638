// BurnProcess: a job of the engine, and what is done with the medium after it.
#include "BurnProcess.hpp"
#include "InUse.hpp"

#include <system_error>

namespace discrecording {
namespace {

constexpr std::chrono::milliseconds ejectStep{20};

// Whether the burn failed because the drive was not its own.
bool isForLackOfDrive(engine::ErrorCode code) noexcept {
    using engine::ErrorCode;
    return meansInUse(code) || code == ErrorCode::DeviceInvalid || code == ErrorCode::MediaNotPresent;
}

} // namespace

BurnProcess::BurnProcess(engine::DriveRef drive, BurnPlan plan, std::optional<engine::Error> refused,
                         engine::BurnJob::Observer observer)
    : observer_(std::move(observer)), job_(std::move(drive)), refused_(std::move(refused)),
      ejectWhenDone_(plan.ejectWhenDone), ejectWhenFailed_(plan.ejectWhenFailed),
      ejectPatience_(plan.ejectPatience) {
    if (observer_) {
        job_.setObserver([this](const engine::BurnStatus& status) {
            if (!status.isFinal()) observer_(status); // the end is told when it has settled
        });
    }
    if (!refused_) {
        if (auto started = job_.start(std::move(plan.layout), plan.options); !started.ok())
            refused_ = started.error();
    }
    try {
        finisher_ = std::thread([this] { finish(); });
    } catch (const std::system_error&) { // there are no threads left
        job_.abort();
        finish();
    }
}

BurnProcess::~BurnProcess() {
    job_.abort();
    wait();
    if (finisher_.joinable()) finisher_.join();
}

void BurnProcess::finish() {
    engine::BurnStatus end = job_.wait();
    if (refused_) {
        end.state = engine::BurnState::Failed;
        end.error = refused_;
    }
    if (ejectsAfter(end)) eject();
    settled_ = true;
    if (observer_) observer_(status());
    settled_.notify_all();
}

// Another program may be looking at the disc just now, and will be done in a moment. A medium that can't be ejected
// (someone else keeps the drive) stays inside: the burn itself went as it went.
void BurnProcess::eject() const {
    const auto until = std::chrono::steady_clock::now() + ejectPatience_;
    for (;;) {
        const auto ejected = job_.drive()->eject();
        if (ejected.ok() || ejected.error().code != engine::ErrorCode::DeviceBusy) return;
        if (std::chrono::steady_clock::now() >= until) return;
        std::this_thread::sleep_for(ejectStep);
    }
}

// Deliberate: a burn that was begun and failed does what it was told to do then, however early it failed; what is in the
// drive is not what was wanted. A drive that was never the burn's own, or that is empty, is left as it is.
bool BurnProcess::ejectsAfter(const engine::BurnStatus& end) const {
    if (job_.drive() == nullptr) return false;
    if (end.state == engine::BurnState::Done) return ejectWhenDone_;
    if (!ejectWhenFailed_ || (end.error && isForLackOfDrive(end.error->code))) return false;
    const auto medium = job_.drive()->readMedium();
    return !medium.ok() || medium->has_value();
}

engine::BurnStatus BurnProcess::status() const {
    const bool settled = settled_; // before the status: what is final then stays final
    engine::BurnStatus status = job_.status();
    if (refused_ && !status.isFinal()) {
        status.state = engine::BurnState::Failed;
        status.error = refused_;
    }
    if (!status.isFinal() || settled) return status;
    status.state = engine::BurnState::Finishing;
    status.percent = -1;
    status.error.reset();
    return status;
}

void BurnProcess::abort() { job_.abort(); }

void BurnProcess::wait() { settled_.wait(false); }

} // namespace discrecording
