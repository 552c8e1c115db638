// Exceptions.m: the host class NSExceptionQRX, and what is added to the platform's exception class.
#import "companion/Exceptions.h"

#import "companion/Classes.h"
#import "companion/Holders.h"
#import "companion/Registry.h"
#import "companion/Values.h"
#import <objc/runtime.h>

static const char HostClass[] = "NSExceptionQRX";

REALobject newHostException(NSException* exception) {
    // What may raise is asked before anything is made.
    REALstring message = hostString([exception reason]);
    REALobject made = newHolder(HostClass, exception);
    if (made == NULL)
        made = host.PluginNewInstance("RuntimeException");
    if (made != NULL)
        host.REALSetPropValueString(made, "Message", message);
    if (message != NULL)
        host.REALUnlockString(message);
    return made;
}

void raiseInHost(NSException* exception) {
    REALobject made = newHostException(exception);
    if (made == NULL)
        return;
    host.RuntimeRaiseException(made);
    host.REALUnlockObject(made);
}

// ---- the host class ------------------------------------------------------------------------------------

static REALstring name(REALobject self) { GUARDED(REALstring, hostString([(NSException*)held(self) name])) }
static REALstring reason(REALobject self) {
    GUARDED(REALstring, hostString([(NSException*)held(self) reason]))
}
static REALdictionary userInfo(REALobject self) {
    GUARDED(REALdictionary, newHostDictionary([(NSException*)held(self) userInfo]))
}

static REALmethodDefinition methods[] = {
    METHOD(name, "Name as string"),
    METHOD(reason, "Reason as string"),
    METHOD(userInfo, "UserInfo as dictionary"),
};

// "Message" is inherited; the conversion sets it. The superclass is the host's own and has no plug-in data.
REALclassDefinition NSExceptionQRXClass = {CLASS_BASICS,
                                           .name = HostClass,
                                           .superName = "RuntimeException",
                                           .dataSize = sizeof(id),
                                           .destructor = destroyHolder,
                                           .methods = methods,
                                           .methodCount = COUNT_OF(methods)};

// ---- what NSException learns ---------------------------------------------------------------------------

// Holds the code of the class methods until they are added.
@interface CompanionExceptionMethods : NSObject
@end

@implementation CompanionExceptionMethods

+ (CFMutableDictionaryRef)GetInstancesDictionaryQRX {
    return instancesDictionary();
}

// Nothing is left to prepare: the host class is registered when the companion is loaded. Plug-ins send it once
// and remember that it was answered.
+ (void)PrepareNSExceptionQRX {
}

+ (REALobject)NewNSExceptionQRX:(NSException*)exception {
    return newHostException(exception);
}

@end

static void addToNSException(SEL selector) {
    Method method = class_getClassMethod([CompanionExceptionMethods class], selector);
    class_addMethod(object_getClass([NSException class]), selector, method_getImplementation(method),
                    method_getTypeEncoding(method));
}

// At load and not as a category: a companion that can't work with its host must not seem to be there.
void addExceptionMethods(void) {
    addToNSException(@selector(GetInstancesDictionaryQRX));
    addToNSException(@selector(PrepareNSExceptionQRX));
    addToNSException(@selector(NewNSExceptionQRX:));
}
