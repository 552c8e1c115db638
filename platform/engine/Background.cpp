// Work that a job can walk away from.
#include "Background.hpp"
#include "Failure.hpp"

#include <csignal>
#include <cstdio>
#include <pthread.h>
#include <thread>

namespace engine {
namespace {

struct Running {
    std::mutex mutex;
    std::condition_variable changed;
    size_t count = 0;
};

// Never destroyed: threads may outlive static objects.
Running& running() {
    static auto* instance = new Running;
    return *instance;
}

} // namespace

void runInBackground(const std::string& threadName, std::function<void()> work) {
    Running& all = running();
    {
        const std::lock_guard lock(all.mutex);
        ++all.count;
    }
    sigset_t every, before;
    sigfillset(&every);
    pthread_sigmask(SIG_SETMASK, &every, &before);
    try {
        std::thread([threadName, work = std::move(work), &all]() mutable {
            pthread_setname_np(pthread_self(), threadName.substr(0, 15).c_str());
            work();
            work = nullptr; // what it holds goes before this counts as ended
            const std::lock_guard lock(all.mutex);
            --all.count;
            all.changed.notify_all();
        }).detach();
    } catch (const std::exception& problem) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        const std::lock_guard lock(all.mutex);
        --all.count;
        fail(ErrorCode::BurnNotAllowed,
             "The computer starts no thread any more; end other programs, and try again.", problem.what());
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void dropInBackground(std::shared_ptr<void> what) noexcept {
    try {
        runInBackground("disc-close", [what = std::move(what)] {});
    } catch (...) {
    }
}

bool waitForBackground(std::chrono::milliseconds limit) {
    Running& all = running();
    std::unique_lock lock(all.mutex);
    return all.changed.wait_for(lock, limit, [&] { return all.count == 0; });
}

} // namespace engine
