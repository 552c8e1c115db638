// Pending.hpp: what waits to be thrown when the call into a plug-in ends; for the call machinery itself.
#pragma once

#include "host/runtime/Exceptions.hpp"

#include <exception>

namespace host {

// A thread is in a foreign call while a plug-in function that the host called has not returned.
bool isInForeignCall();
class ForeignCallScope {
  public:
    ForeignCallScope();
    ~ForeignCallScope();
    ForeignCallScope(const ForeignCallScope&) = delete;
    ForeignCallScope& operator=(const ForeignCallScope&) = delete;
};

// What leaves an event handler: pending when a foreign call of this thread waits for it, else stray. Anything
// that is no host exception (a program that ends itself, no memory) is kept as it is and thrown on.
void keepForLater(std::exception_ptr thrown);
// Makes a pending exception a stray one.
void strayPendingException();

// Puts the pending exception aside while BASIC code runs inside a plug-in's call (an event handler, a destructor), so that
// it is not thrown there. Stray ones are not thrown there either: they are the program's, and a handler that another one's
// exception left would be cut off before its first statement.
class PendingAside {
  public:
    PendingAside();
    ~PendingAside();
    PendingAside(const PendingAside&) = delete;
    PendingAside& operator=(const PendingAside&) = delete;

  private:
    std::exception_ptr aside_;
};

} // namespace host
