// Host.m: looks the host's services up, and makes its strings.
#import "companion/Host.h"

struct HostServices host;

// Every service that the companion uses.
#define COMPANION_USES(X)                                                                                    \
    X(RegisterPluginVersion)                                                                                 \
    X(PluginRegisterClass)                                                                                   \
    X(PluginNewInstance)                                                                                     \
    X(pluginObjectType)                                                                                      \
    X(RuntimeObjectIsa)                                                                                      \
    X(REALLockObject)                                                                                        \
    X(REALUnlockObject)                                                                                      \
    X(REALBuildString)                                                                                       \
    X(REALSetStringEncoding)                                                                                 \
    X(REALUnlockString)                                                                                      \
    X(REALGetStringCFString)                                                                                 \
    X(RuntimeRaiseException)                                                                                 \
    X(REALLoadObjectMethod)                                                                                  \
    X(REALSetPropValueInt)                                                                                   \
    X(newMemoryBlock)                                                                                        \
    X(memoryBlockGetPtr)                                                                                     \
    X(REALSetPropValueString)                                                                                \
    X(StringToVariant)                                                                                       \
    X(Int32ToVariant)                                                                                        \
    X(Int64ToVariant)                                                                                        \
    X(UInt64ToVariant)                                                                                       \
    X(DoubleToVariant)                                                                                       \
    X(BooleanToVariant)                                                                                      \
    X(RuntimeArrayCreateSingleDimBoundedArray)                                                               \
    X(RuntimeArrayDirectGetInsertProc)

static BOOL found = NO;

BOOL findHostServices(REALresolver resolver) {
    struct HostServices services = {0};
#define FIND(entry)                                                                                          \
    services.entry = (__typeof__(services.entry))resolver(#entry);                                           \
    if (services.entry == NULL)                                                                              \
        return NO;
    COMPANION_USES(FIND)
#undef FIND
    host = services;
    return found = YES;
}

BOOL hasHost(void) { return found; }

REALstring hostString(NSString* text) {
    if (text == nil)
        return NULL;
    NSData* bytes = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    // The host counts bytes with 31 bits.
    if (bytes == nil || [bytes length] > INT32_MAX)
        return NULL;
    REALstring made = host.REALBuildString([bytes bytes], (int32_t)[bytes length]);
    if (made != NULL)
        host.REALSetStringEncoding(made, kREALEncodingUTF8);
    return made;
}

NSString* platformString(REALstring text) {
    // The reference that the host gives is the caller's; its strings are Foundation's.
    NSString* made = (NSString*)host.REALGetStringCFString(text, 0);
    return made == nil ? @"" : [made autorelease];
}

void raiseHostException(const char* className, NSString* message) {
    REALobject exception = host.PluginNewInstance(className);
    if (exception == NULL)
        exception = host.PluginNewInstance("RuntimeException");
    if (exception == NULL)
        return;
    REALstring text = hostString(message);
    host.REALSetPropValueString(exception, "Message", text);
    host.RuntimeRaiseException(exception);
    host.REALUnlockObject(exception);
    if (text != NULL)
        host.REALUnlockString(text);
}

void raiseConstructedTwice(void) {
    raiseHostException("UnsupportedOperationException",
                       @"Constructor called too often. Object is already initialized.");
}
