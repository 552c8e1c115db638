// Resolver.hpp: how the plug-in finds a host service by name.
#pragma once

#include "plugin/frame/PluginInterface.h"

#include <atomic>

namespace frame {

// The signature of every entry, from the one list that host and plug-ins share.
namespace entry {
#define ENTRY_TYPE(Result, name, parameters) using name = Result parameters;
REAL_HOST_ENTRIES(ENTRY_TYPE)
#undef ENTRY_TYPE
} // namespace entry

// The host's resolver; null until REALPluginMain stored it.
inline constinit REALresolver resolver = nullptr;

// The host's version as a number such as 2013.0; 0 on a host that does not tell.
inline constinit double hostVersion = 0;

// One host service: its address, looked up by name at first use and kept for the life of the process. A
// look-up that fails is not remembered, so the next use asks again. Two threads that race store the same
// address.
template <class Function>
class HostCell {
  public:
    constexpr explicit HostCell(const char* entry) : entry_(entry) {}

    Function* get() {
        Function* found = cell_.load(std::memory_order_relaxed);
        if (!found && resolver) {
            found = reinterpret_cast<Function*>(resolver(entry_));
            if (found) cell_.store(found, std::memory_order_relaxed);
        }
        return found;
    }

    // Keeps a function of the plug-in's own where the host has none.
    void keep(Function* substitute) { cell_.store(substitute, std::memory_order_relaxed); }

  private:
    const char* entry_;
    std::atomic<Function*> cell_{nullptr};
};

} // namespace frame
