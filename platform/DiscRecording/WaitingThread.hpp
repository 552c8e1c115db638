// WaitingThread: a thread that waits for a burn's end runs what programs have to do with it.
#pragma once

#include <functional>
#include <mutex>

namespace discrecording {

/// A program's events may need what the thread holds that waits: they would wait for each other for ever. So as long as
/// one of these lives, callWhereWaited() calls there. Made before the burn begins, and gone on the thread that made it.
class WaitingThread {
  public:
    WaitingThread();
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;
    ~WaitingThread();

    /// Runs what comes, until end() was called and nothing is left.
    void run();
    /// By any thread; run() returns soon.
    void end();

  private:
    void serve(std::unique_lock<std::mutex>& lock);

    bool isOver_ = false;
};

/// Calls `body`, which must not throw, on a thread that waits, or here when none does; returns when it has returned.
void callWhereWaited(const std::function<void()>& body);

} // namespace discrecording
