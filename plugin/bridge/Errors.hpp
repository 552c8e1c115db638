// Errors.hpp: the two kinds of failure that reach a program, argument faults and platform exceptions.
#pragma once

#include "plugin/frame/PluginInterface.h"
#include "plugin/objc/Runtime.hpp"

// Raises a host exception of that class with that message. It takes effect when the plug-in function returns,
// so callers return straight after. A host that lacks the class raises "RuntimeException" instead; one that
// lacks that too raises nothing. The encoding is accepted and deliberately not used: messages are ASCII.
void RaiseException(const char* className, const char* message, uint32_t encoding);

// Writes the exception to the platform's log and raises it in the host, as the exception object of the
// companion plug-in where there is one, else as a "RuntimeException" with the reason as message.
void RaiseNSExceptionQRX(objc::Id exception);

// The messages that more than one class raises.
inline constexpr const char* constructorCalledTooOften =
    "Constructor called too often. Object is already initialized.";
inline constexpr const char* deviceIsNil = "device is nil";

inline void raiseConstructorCalledTooOften() {
    RaiseException("UnsupportedOperationException", constructorCalledTooOften, kREALEncodingASCII);
}
inline void raiseDeviceIsNil() { RaiseException("NilObjectException", deviceIsNil, kREALEncodingASCII); }
