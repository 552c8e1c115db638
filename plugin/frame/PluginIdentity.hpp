// PluginIdentity.hpp: the plug-in's name and version, and the steps that declare it to the host.
#pragma once

#include "plugin/frame/PluginInterface.h"

namespace frame {

struct PluginIdentity {
    const char* name = nullptr;
    const char* version = nullptr;
};
extern PluginIdentity pluginIdentity;

void MyPluginStart(const char* name, const char* version);
void MyREALRegisterClass(REALclassDefinition* definition);
void MyPluginEnde();
void PluginEntry();

} // namespace frame
