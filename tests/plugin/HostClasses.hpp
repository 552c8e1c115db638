// HostClasses.hpp: host classes that companions would register, known to the plug-in by name alone.
#pragma once

#include "plugin/bridge/Wrappers.hpp"
#include "plugin/frame/HostServices.hpp"

#include <deque>

namespace test {

// The host keeps the record, and the name, for the life of the process.
inline void registerHostClass(const char* name, std::size_t dataSize,
                              void (*destructor)(REALobject) = nullptr,
                              REALmethodDefinition* methods = nullptr, std::size_t methodCount = 0) {
    static std::deque<REALclassDefinition> records;
    REALclassDefinition& record = records.emplace_back();
    record.version = kREALPluginVersion;
    record.name = name;
    record.dataSize = dataSize;
    record.flags = kREALClassFlags;
    record.destructor = destructor;
    record.methods = methods;
    record.methodCount = methodCount;
    REALRegisterClass(&record);
}

// A class whose objects hold a platform object as the plug-in's own wrappers do.
inline void registerHolderClass(const char* name) { registerHostClass(name, 16, releaseHeld); }

} // namespace test
