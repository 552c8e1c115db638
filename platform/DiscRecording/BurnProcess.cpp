// BurnProcess: a job of the engine, and what is done with the medium after it.
#include "BurnProcess.hpp"

namespace discrecording {

BurnProcess::BurnProcess(engine::DriveRef drive, BurnPlan plan, engine::BurnJob::Observer observer)
    : observer_(std::move(observer)), job_(std::move(drive)), ejectWhenDone_(plan.ejectWhenDone),
      ejectWhenFailed_(plan.ejectWhenFailed) {
    if (observer_) {
        job_.setObserver([this](const engine::BurnStatus& status) {
            if (!status.isFinal()) observer_(status); // the end is told when it has settled
        });
    }
    if (auto started = job_.start(std::move(plan.layout), plan.options); !started.ok())
        refused_ = started.error();
    finisher_ = std::thread([this] { finish(); });
}

BurnProcess::~BurnProcess() {
    job_.abort();
    wait();
    if (finisher_.joinable()) finisher_.join();
}

void BurnProcess::finish() {
    const engine::BurnStatus end = job_.wait();
    const bool eject = end.state == engine::BurnState::Done ? ejectWhenDone_ : ejectWhenFailed_;
    // A medium that can't be ejected (someone else keeps the drive) stays inside: the burn itself went as it
    // went.
    if (eject && job_.drive() != nullptr) (void)job_.drive()->eject();
    settled_ = true;
    if (observer_) observer_(status());
    settled_.notify_all();
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
