// What ends a program from outside its own statements: signals, and Quit.
#pragma once

#include <atomic>

namespace host::basic {

/// Thrown to leave a program. It is no exception of the dialect: no Catch sees it, but Finally blocks run.
struct Stopped {};

/// Why a program is to stop; set once by the first cause.
enum class StopCause : int { none = 0, quit, interrupted, terminated };

namespace stop {

extern std::atomic<int> request; // a StopCause

inline bool requested() { return request.load(std::memory_order_relaxed) != 0; }
StopCause cause();
/// Quit(code): the exit status that the program asks for.
void quit(int code);
int exitCode();

/// SIGINT and SIGTERM request a stop. Three more of them during the clean-up end the process at once.
void installSignalHandlers();
/// Waits until a stop is requested, `milliseconds` have passed, or (when `file` is not negative) the file can
/// be read. Gives the lock of BASIC away meanwhile. Answers true when the file can be read.
bool wait(double milliseconds, int file = -1);
/// Seconds since the request; the clean-up is bounded by it.
double secondsSinceRequest();

} // namespace stop
} // namespace host::basic
