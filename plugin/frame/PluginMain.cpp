// PluginMain.cpp: the plug-in's front door. The host calls REALPluginMain once, and fourteen classes are
// declared.
#include "plugin/frame/Classes.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/PluginIdentity.hpp"
#include "plugin/frame/Resolver.hpp"

namespace frame {

PluginIdentity pluginIdentity;

// Records name and version text, which live as long as the process.
void MyPluginStart(const char* name, const char* version) { pluginIdentity = {name, version}; }

// Hands one class to the host. The data size is rounded up to a multiple of 16, deliberately: the host then
// reserves 16 bytes for each object whose plug-in data is one reference.
void MyREALRegisterClass(REALclassDefinition* definition) {
    while (definition->dataSize % 16 != 0)
        ++definition->dataSize;
    REALRegisterClass(definition);
}

// The end of the declaration; there is nothing left to do, and the step is kept.
void MyPluginEnde() {}

void PluginEntry() {
    MyPluginStart("DiscRecording", "$$ Plugin version: 13.2 (2013) $$");
#define REGISTER(name) MyREALRegisterClass(&name##Class);
    PLUGIN_CLASSES(REGISTER)
#undef REGISTER
    MyPluginEnde();
}

} // namespace frame

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver) {
    frame::resolver = resolver;

    // Called without a check: a host that lacks this entry is not supported.
    reinterpret_cast<void (*)(int32_t)>(resolver("RegisterPluginVersion"))(kREALPluginVersion);

    if (const auto version = reinterpret_cast<double (*)()>(resolver("REALGetRBVersion")))
        frame::hostVersion = version();

    frame::PluginEntry();
}
