// OwnResolver.hpp: a host in which single services are the test's own, and all others the host's.
#pragma once

#include "host/runtime/Harness.hpp"
#include "plugin/frame/Resolver.hpp"

#include <map>
#include <string>

namespace test {

// Must stand before the plug-in is loaded, with REALPluginMain(OwnServices::resolve): cells keep what they found.
class OwnServices {
  public:
    template <class Function>
    static void put(const char* entry, Function* function) {
        own()[entry] = reinterpret_cast<REALproc>(function);
    }
    static REALproc resolve(const char* entry) {
        const auto found = own().find(entry);
        return found == own().end() ? host::resolver()(entry) : found->second;
    }

  private:
    static std::map<std::string, REALproc>& own() {
        static std::map<std::string, REALproc> services;
        return services;
    }
};

// The host's own service under a name, as its entry's type.
template <class Entry>
Entry* hostsOwn(const char* entry) {
    return reinterpret_cast<Entry*>(host::harness::service(entry));
}

} // namespace test
