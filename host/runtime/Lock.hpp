// Lock.hpp: one thread in BASIC at a time.
//
// A thread that runs a program holds the lock and calls giveWay() at statements; a thread that the platform
// started takes it while it is in an event handler. The lock is recursive. Waiting threads are served in
// order.
#pragma once

namespace host {

void acquireLock();
void releaseLock();
bool holdsLock(); // the calling thread
// Lets waiting threads run first, if there are any; cheap otherwise. Does nothing where the lock is not held.
void giveWay();

class Locked {
  public:
    Locked() { acquireLock(); }
    ~Locked() { releaseLock(); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
};

// Gives the lock up altogether, however often it is held, while waiting for something.
class Unlocked {
  public:
    Unlocked();
    ~Unlocked();
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

  private:
    unsigned depth_;
};

} // namespace host
