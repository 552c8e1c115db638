// PluginMain.m: the companion's front door.
#import "companion/Classes.h"
#import "companion/Exceptions.h"

__attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver);

void REALPluginMain(REALresolver resolver) {
    if (!findHostServices(resolver))
        return;
    host.RegisterPluginVersion(kREALPluginVersion);
#define REGISTER(name) host.PluginRegisterClass(&name##Class);
    COMPANION_CLASSES(REGISTER)
#undef REGISTER
    // Last: from here on other plug-ins rely on the classes.
    addExceptionMethods();
}
