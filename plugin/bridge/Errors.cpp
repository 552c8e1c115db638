// Errors.cpp: raises host exceptions.
#include "plugin/bridge/Errors.hpp"

#include "plugin/bridge/CoreFoundation.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/Message.hpp"
#include "plugin/objc/Ownership.hpp"

#include <cstring>

namespace {

// Takes over the message string.
void raiseWithMessage(const char* className, REALstring message) {
    REALobject exception = REALnewInstance(className);
    if (!exception) exception = REALnewInstance("RuntimeException");
    if (exception) {
        REALSetPropValueString(exception, "Message", message);
        REALRaiseException(exception);
        REALUnlockObject(exception);
    }
    if (message) REALUnlockString(message);
}

} // namespace

void RaiseException(const char* className, const char* message, [[maybe_unused]] uint32_t encoding) {
    raiseWithMessage(className,
                     message ? REALBuildUnicodeString(message, static_cast<int64_t>(std::strlen(message)),
                                                      kREALEncodingASCII)
                             : nullptr);
}

void RaiseNSExceptionQRX(objc::Id exception) {
    const objc::Id reason = objc::send<"reason">(exception);
    // The line feed is part of the format.
    const objc::Adopted format(
        CFStringCreateWithCString(nullptr, "A %@: %@, Info: %@\n", kREALEncodingASCII));
    NSLog(asObject(format.get()), objc::send<"name">(exception), reason, objc::send<"userInfo">(exception));

    const objc::Id exceptionClass = objc::classNamed<"NSException">();
    // Asked deliberately: without a companion plug-in nobody answers, and a program must hear of the failure all the
    // same. The reason is then all that it gets.
    if (!objc::respondsTo<"NewNSExceptionQRX:">(exceptionClass)) {
        raiseWithMessage("RuntimeException", NSStringRB(reason));
        return;
    }
    const auto hostException = objc::send<"NewNSExceptionQRX:", REALobject>(exceptionClass, exception);
    if (!hostException) return;
    REALRaiseException(hostException);
    REALUnlockObject(hostException);
}
