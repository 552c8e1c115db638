// Lock.cpp: the recursive lock that lets one thread at a time run BASIC, served in the order of asking.
#include "host/runtime/Lock.hpp"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace host {
namespace {

// A ticket lock: without tickets a program that runs statement after statement would starve every event
// handler.
std::mutex mutex;
std::condition_variable changed;
uint64_t nextTicket = 0;
uint64_t nowServing = 0;
std::atomic<uint32_t> waiting{0};
thread_local unsigned depth = 0;

void take() {
    std::unique_lock guard(mutex);
    const uint64_t ticket = nextTicket++;
    if (ticket == nowServing) return;
    ++waiting;
    changed.wait(guard, [=] { return ticket == nowServing; });
    --waiting;
}

void give() {
    {
        std::lock_guard guard(mutex);
        ++nowServing;
    }
    changed.notify_all();
}

} // namespace

void acquireLock() {
    if (depth++ == 0) take();
}

void releaseLock() {
    if (depth > 0 && --depth == 0) give();
}

bool holdsLock() { return depth > 0; }

void giveWay() {
    if (depth == 0 || waiting.load(std::memory_order_relaxed) == 0) return;
    give();
    take();
}

Unlocked::Unlocked() : depth_(depth) {
    depth = 0;
    if (depth_ > 0) give();
}

Unlocked::~Unlocked() {
    if (depth_ > 0) take();
    depth = depth_;
}

} // namespace host
