// Work that a job can walk away from: an abort must not wait for a slow disk or a sleeping producer.
#pragma once

#include "Signal.hpp"

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace engine {

/// Runs `work` on a thread of its own, which blocks all signals (the program's handlers run on the program's
/// threads). `work` must own, or share, everything it touches, and must not throw. Throws BurnNotAllowed when the
/// computer starts no thread any more.
void runInBackground(const std::string& threadName, std::function<void()> work);

/// What takes long to go, such as the last descriptor of a large file, goes on a thread of its own; here, when there is
/// none.
void dropInBackground(std::shared_ptr<void> what) noexcept;

/// Waits until nothing runs in the background, at most `limit`; true when so.
bool waitForBackground(std::chrono::milliseconds limit);

/// Runs `work` in the background and waits for its answer, but only until the signal is canceled: then it
/// throws UserCanceled, and the work goes on alone. What `work` throws is thrown here.
template <typename Work>
auto runAbandonable(const SignalRef& signal, const std::string& threadName, Work work) -> decltype(work()) {
    using Answer = decltype(work());
    struct State {
        std::optional<Answer> answer;
        std::exception_ptr problem;
        bool done = false;
    };
    const auto state = std::make_shared<State>();
    runInBackground(threadName, [signal, state, work = std::move(work)]() mutable {
        std::optional<Answer> answer;
        std::exception_ptr problem;
        try {
            answer = work();
        } catch (...) {
            problem = std::current_exception();
        }
        const std::lock_guard lock(signal->mutex);
        state->answer = std::move(answer);
        state->problem = problem;
        state->done = true;
        signal->changed.notify_all();
    });
    std::unique_lock lock(signal->mutex);
    signal->changed.wait(lock, [&] { return state->done || signal->isCanceled(); });
    signal->check();
    if (state->problem) std::rethrow_exception(state->problem);
    return std::move(*state->answer);
}

} // namespace engine
