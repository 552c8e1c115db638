// Entries.hpp: the host's services, one function for every entry of REAL_HOST_ENTRIES and with exactly its
// signature.
//
// They may be called on any thread and with the BASIC lock held or not. No C++ exception leaves them.
#pragma once

#include "plugin/frame/PluginInterface.h"

namespace host::entries {

#define HOST_DECLARE_ENTRY(Result, name, parameters) Result name parameters;
REAL_HOST_ENTRIES(HOST_DECLARE_ENTRY)
#undef HOST_DECLARE_ENTRY

// What an entry does when the host itself fails: nothing of it reaches the plug-in but the empty result.
template <class Result, class Work>
Result guarded(Work work) noexcept {
    try {
        return work();
    } catch (...) {
        return Result();
    }
}

} // namespace host::entries
