// Signals and Quit: the flag that running programs look at, and the pipe that wakes those who wait.
#include "Stop.hpp"

#include "host/runtime/Lock.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace host::basic::stop {

std::atomic<int> request{0};

namespace {

constexpr int kPatience = 4; // the signal that ends even the clean-up

std::atomic<int> signals{0};
std::atomic<int> code{0};
std::atomic<double> requestedAt{0};
int wakePipe[2] = {-1, -1};

double monotonicSeconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// Only async-signal-safe calls here and below.
void ask(StopCause cause) {
    int none = 0;
    if (request.compare_exchange_strong(none, static_cast<int>(cause))) requestedAt = monotonicSeconds();
    if (wakePipe[1] >= 0) {
        const char byte = 1;
        [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, 1);
    }
}

void onSignal(int number) {
    const int before = errno;
    if (signals.fetch_add(1) + 1 >= kPatience) ::_exit(128 + number);
    ask(number == SIGTERM ? StopCause::terminated : StopCause::interrupted);
    errno = before;
}

} // namespace

StopCause cause() { return static_cast<StopCause>(request.load()); }
int exitCode() { return code; }
double secondsSinceRequest() { return requested() ? monotonicSeconds() - requestedAt : 0; }

void quit(int status) {
    if (requested()) return;
    code = status;
    ask(StopCause::quit);
}

void installSignalHandlers() {
    if (wakePipe[0] < 0 && ::pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) wakePipe[0] = wakePipe[1] = -1;
    struct sigaction action {};
    action.sa_handler = onSignal;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    ::signal(SIGPIPE, SIG_IGN); // writing to a closed pipe is an error that is told, not a silent death
}

bool wait(double milliseconds, int file) {
    const Unlocked unlocked;
    const double end = monotonicSeconds() + milliseconds / 1000;
    for (;;) {
        if (requested()) return false;
        const double left = end - monotonicSeconds();
        if (left <= 0 && milliseconds >= 0) return false;
        pollfd watched[2] = {{wakePipe[0], POLLIN, 0}, {file, POLLIN, 0}};
        const int limit = milliseconds < 0 ? -1 : static_cast<int>(std::min(left * 1000 + 1, 1e9));
        const int ready = ::poll(watched, file < 0 ? 1 : 2, limit);
        if (ready > 0 && file >= 0 && watched[1].revents != 0) return !requested();
    }
}

} // namespace host::basic::stop
