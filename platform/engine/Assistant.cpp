// A second thread for work that can be halved.
#include "Assistant.hpp"
#include "Background.hpp"
#include "Failure.hpp"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

namespace engine {

struct Assistant::Shared {
    std::mutex mutex;
    std::condition_variable changed;
    const std::function<void()>* work = nullptr; ///< given and not begun yet
    bool isBusy = false, dismissed = false;
};

Assistant::~Assistant() {
    if (!shared_) return;
    const std::lock_guard lock(shared_->mutex);
    shared_->dismissed = true;
    shared_->changed.notify_all();
}

void Assistant::run(Shared& shared) {
    std::unique_lock lock(shared.mutex);
    while (true) {
        shared.changed.wait(lock, [&] { return shared.work != nullptr || shared.dismissed; });
        if (shared.work == nullptr) return;
        const std::function<void()>& work = *std::exchange(shared.work, nullptr);
        shared.isBusy = true;
        lock.unlock();
        work();
        lock.lock();
        shared.isBusy = false;
        shared.changed.notify_all();
    }
}

bool Assistant::hire() {
    auto made = std::make_shared<Shared>();
    try {
        runInBackground("disc-assist", [made] { run(*made); });
    } catch (const Failure&) {
        return false;
    }
    shared_ = std::move(made);
    return true;
}

void Assistant::share(const std::function<void()>& own, const std::function<void()>& other) {
    if (!shared_ && !hire()) return own();
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->work = &other;
        shared_->changed.notify_all();
    }
    own();
    std::unique_lock lock(shared_->mutex);
    shared_->work = nullptr;
    shared_->changed.wait(lock, [&] { return !shared_->isBusy; });
}

void doBoth(size_t items, const std::function<void()>& first, const std::function<void()>& second) {
    constexpr size_t worthAThread = 1000;
    if (items < worthAThread) {
        first();
        return second();
    }
    std::exception_ptr thrown[2];
    const auto keeping = [](const std::function<void()>& work, std::exception_ptr& to) {
        try {
            work();
        } catch (...) {
            to = std::current_exception();
        }
    };
    bool isDone = false;
    const auto other = [&] {
        keeping(second, thrown[1]);
        isDone = true;
    };
    Assistant assistant;
    assistant.share([&] { keeping(first, thrown[0]); }, other);
    if (!isDone && !thrown[0]) other();
    for (const std::exception_ptr& each : thrown)
        if (each) std::rethrow_exception(each);
}

} // namespace engine
