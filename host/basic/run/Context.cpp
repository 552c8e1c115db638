// Threads that run BASIC: stack limits, turns, and stopping.
#include "Context.hpp"

#include "host/runtime/Lock.hpp"

#include <algorithm>
#include <pthread.h>

namespace host::basic {

namespace {

// Raising, unwinding and what a plug-in does below the last BASIC call need room.
constexpr size_t kReserve = size_t{384} << 10;
constexpr double kCleanUpSeconds = 5;

// The last exception that left BASIC by an event handler, and where it was raised. Guarded by the lock of
// BASIC.
struct HandedOver {
    REALobject exception = nullptr; // only compared, never used
    Place place;
} handedOver;

const char* stackLimitOfThisThread() {
    pthread_attr_t attributes;
    if (::pthread_getattr_np(::pthread_self(), &attributes) != 0) return nullptr;
    void* lowest = nullptr;
    size_t size = 0;
    ::pthread_attr_getstack(&attributes, &lowest, &size);
    ::pthread_attr_destroy(&attributes);
    // A stack without a limit is still used up to a sensible size only.
    const auto* top = static_cast<const char*>(lowest) + size;
    const size_t used = std::min<size_t>(size, size_t{64} << 20);
    return top - used + std::min(kReserve, used / 2);
}

} // namespace

Context::Context() : stackLimit_(stackLimitOfThisThread()) {}

Context& Context::ofThisThread() {
    thread_local Context context;
    return context;
}

void Context::pollNow() {
    giveWay();
    if (turnsLeft == 1) throw Stopped{}; // again and again: nothing runs on
    if (turnsLeft > 1) --turnsLeft;
    if (stop::requested() && (!leaving || stop::secondsSinceRequest() > kCleanUpSeconds)) {
        leaving = true;
        throw Stopped{};
    }
    if (!leaving) throwStrayException();
}

void Context::overflow() { raise("StackOverflowException", "the program calls itself too deeply"); }

void Context::noteRaised(const Exception& exception) {
    if (raised_.object() == exception.object().object() && raised_.object()) return;
    const bool fromElsewhere = handedOver.exception == exception.object().object() && handedOver.exception;
    keepRaised(exception.object(), fromElsewhere ? handedOver.place : place);
    handedOver.exception = nullptr;
}

void Context::handOver(const Exception& exception) {
    handedOver = {exception.object().object(), raisedPlace_};
    forgetRaised();
}

} // namespace host::basic
