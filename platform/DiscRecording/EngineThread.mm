// EngineThread: lets a thread of the engine send messages for a while.
#include "EngineThread.hpp"

namespace discrecording {
namespace {

// A thread is registered at its first message and forgotten at its end: once, and not for each call.
struct Registration {
    const bool isOurs = GSRegisterCurrentThread();
    int depth = 0;
    ~Registration() {
        if (isOurs)
            GSUnregisterCurrentThread();
    }
};

Registration& registration() {
    thread_local Registration ofThread;
    return ofThread;
}

} // namespace

EngineThread::EngineThread() {
    ++registration().depth;
    pool_ = [NSAutoreleasePool new];
}

EngineThread::~EngineThread() {
    [pool_ release];
    --registration().depth;
}

bool EngineThread::isInside() { return registration().depth > 0; }

} // namespace discrecording
