// EngineThread: lets a thread of the engine send messages for a while.
#pragma once

#import <Foundation/Foundation.h>

namespace discrecording {

/// Makes the thread known to the platform, until the thread ends, and has an autorelease pool as long as it lives.
/// Harmless on threads that the platform knows.
class EngineThread {
  public:
    EngineThread();
    EngineThread(const EngineThread&) = delete;
    EngineThread& operator=(const EngineThread&) = delete;
    ~EngineThread();

    /// Whether this thread is inside of one: it must not wait for the engine then.
    static bool isInside();

  private:
    NSAutoreleasePool* pool_;
};

} // namespace discrecording
