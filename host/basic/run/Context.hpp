// What a thread that runs BASIC keeps: where it is, how much stack is left, what is being handled.
#pragma once

#include "Stop.hpp"
#include "host/basic/syntax/Source.hpp"
#include "host/runtime/Exceptions.hpp"

#include <vector>

namespace host::basic {

class Context {
  public:
    static Context& ofThisThread();

    Place place; // of the statement or call that runs

    /// At every statement: lets other threads have their turn, and leaves when a stop is requested.
    void poll() {
        if ((++ticks_ & 31u) == 0 || stop::requested()) pollNow();
    }
    void pollNow();

    /// Raises StackOverflowException when a call would come too near to the end of the thread's stack.
    void checkStack() const {
        if (static_cast<const char*>(__builtin_frame_address(0)) < stackLimit_) overflow();
    }

    /// Remembers where an exception was first seen on its way out; later calls for the same one change
    /// nothing.
    void noteRaised(const Exception& exception);
    /// The exception goes to code outside of BASIC, and perhaps to another thread: its place goes with it.
    void handOver(const Exception& exception);
    void forgetRaised() { raised_ = Value(); }
    Place raisedPlace() const { return raisedPlace_; }
    void keepRaised(const Value& exception, Place place) {
        raised_ = exception;
        raisedPlace_ = place;
    }

    std::vector<std::pair<Value, Place>> handling; // exceptions of the Catch blocks that run, innermost last

    /// Set while a stop is on its way out: statements of Finally blocks and destructors run in spite of it.
    bool leaving = false;

    /// How often pollNow() may still be called before the program is left; 0: as often as it likes. For those who
    /// run programs that nobody has looked at.
    uint32_t turnsLeft = 0;

    /// A destructor may run while an exception is on its way out, which is still found where it was raised.
    class RaisedAside {
      public:
        explicit RaisedAside(Context& context)
            : context_(context), place_(context.place), raised_(context.raised_),
              raisedPlace_(context.raisedPlace_) {}
        ~RaisedAside() {
            context_.place = place_;
            context_.keepRaised(raised_, raisedPlace_);
        }
        RaisedAside(const RaisedAside&) = delete;
        RaisedAside& operator=(const RaisedAside&) = delete;

      private:
        Context& context_;
        Place place_;
        Value raised_;
        Place raisedPlace_;
    };

  private:
    Context();
    [[noreturn]] static void overflow();

    uint32_t ticks_ = 0;
    const char* stackLimit_;
    Value raised_;
    Place raisedPlace_;
};

} // namespace host::basic
