// WaitingThread: a thread that waits for a burn's end runs what programs have to do with it.
#include "WaitingThread.hpp"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace discrecording {
namespace {

struct Call {
    const std::function<void()>& body;
    bool isDone = false;
};

struct Waiting {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Call*> calls;
    std::atomic<unsigned> threads{0}; ///< written with the mutex held
};

// Never destroyed: jobs may still run while the process exits.
Waiting& waiting() {
    static auto* instance = new Waiting;
    return *instance;
}

thread_local unsigned own = 0; // of this thread

} // namespace

WaitingThread::WaitingThread() {
    const std::lock_guard lock(waiting().mutex);
    ++waiting().threads;
    ++own;
}

// What came last is done here as well: who called waits for it. No lock is given up between the look that finds nothing and the
// end, so nothing is left behind.
WaitingThread::~WaitingThread() {
    std::unique_lock lock(waiting().mutex);
    isOver_ = true;
    serve(lock);
    --waiting().threads;
    --own;
}

void WaitingThread::run() {
    std::unique_lock lock(waiting().mutex);
    serve(lock);
}

void WaitingThread::serve(std::unique_lock<std::mutex>& lock) {
    Waiting& all = waiting();
    for (;;) {
        all.changed.wait(lock, [&] { return isOver_ || !all.calls.empty(); });
        if (all.calls.empty()) return;
        Call& call = *all.calls.front();
        all.calls.pop_front();
        lock.unlock();
        call.body();
        lock.lock();
        call.isDone = true;
        all.changed.notify_all();
    }
}

void WaitingThread::end() {
    const std::lock_guard lock(waiting().mutex);
    isOver_ = true;
    waiting().changed.notify_all();
}

void callWhereWaited(const std::function<void()>& body) {
    Waiting& all = waiting();
    // A burn's calls come after its thread said that it waits. What that thread itself calls, in an event or beside one, nobody
    // else would do.
    if (own == 0 && all.threads.load(std::memory_order_relaxed) > 0) {
        std::unique_lock lock(all.mutex);
        if (all.threads > 0) {
            Call call{body};
            all.calls.push_back(&call);
            all.changed.notify_all();
            all.changed.wait(lock, [&] { return call.isDone; });
            return;
        }
    }
    body();
}

} // namespace discrecording
