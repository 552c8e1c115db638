// Exceptions.hpp: host exceptions as C++ exceptions, and the one that waits until a plug-in function returns.
//
// Classes: RuntimeException (property "Message" As String; "ErrorNumber" As Int32) and below it
// NilObjectException, UnsupportedOperationException, OutOfMemoryException, OutOfBoundsException,
// TypeMismatchException, IllegalCastException, IOException, KeyNotFoundException, InvalidArgumentException,
// StackOverflowException, UnsupportedFormatException, FunctionNotFoundException, DivisionByZeroException,
// EndException. Programs may inherit from them.
#pragma once

#include "host/runtime/Value.hpp"

#include <exception>
#include <string>
#include <string_view>

namespace host {

// Carries an exception object from where it was raised to who catches it.
class Exception : public std::exception {
  public:
    explicit Exception(Value object);
    const Value& object() const { return object_; } // an object of RuntimeException or a subclass
    std::string className() const;
    std::string message() const;
    // "NilObjectException: device is nil"
    const char* what() const noexcept override { return what_.c_str(); }

  private:
    Value object_;
    std::string what_;
};

// Throws a new exception of the class (RuntimeException when there is no such class).
[[noreturn]] void raise(std::string_view className, std::string_view message);
Value newException(std::string_view className, std::string_view message);

// ---- the pending exception ---------------------------------------------------------------------------
// "RuntimeRaiseException" records; the call machinery throws it when the plug-in function has returned. Each
// thread has its own. The first one recorded stays.

void setPendingException(Value object);
bool hasPendingException();
Value takePendingException(); // nil when there is none
void throwPendingException(); // does nothing when there is none

// An exception that left an event handler on a thread that no program runs on. A program's next statement
// should raise it: call throwStrayException() at statements, which does nothing inside of handlers and destructors. Cheap
// when there is none.
void setStrayException(Value object);
void throwStrayException();

} // namespace host
