// Startup.cpp: platform start-up, three steps that happen once.
#include "plugin/bridge/Startup.hpp"

#include "plugin/bridge/CoreFoundation.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/objc/Message.hpp"

namespace {

bool applicationLoaded = false;
bool exceptionsPrepared = false;

} // namespace

void CocoaInit() {
    const objc::Id exceptionClass = objc::classNamed<"NSException">();

    // A companion that comes later is asked then: both of its steps are tried again until it answers.
    if (!instances && objc::respondsTo<"GetInstancesDictionaryQRX">(exceptionClass))
        instances = objc::send<"GetInstancesDictionaryQRX", CFMutableDictionaryRef>(exceptionClass);

    if (!applicationLoaded) {
        NSApplicationLoad();
        objc::sendClass<"NSApplication", "sharedApplication">();
        applicationLoaded = true;
    }

    if (!exceptionsPrepared && objc::respondsTo<"PrepareNSExceptionQRX">(exceptionClass)) {
        objc::send<"PrepareNSExceptionQRX", void>(exceptionClass);
        exceptionsPrepared = true;
    }
}
