// Resolver.cpp: entry names to services.
#include "host/runtime/Harness.hpp"
#include "host/services/Entries.hpp"
#include "host/services/State.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace host {
namespace {

struct NamedEntry {
    std::string_view name;
    REALproc service;
};

const NamedEntry kEntries[] = {
#define HOST_NAME_ENTRY(Result, name, parameters) {#name, reinterpret_cast<REALproc>(&entries::name)},
    REAL_HOST_ENTRIES(HOST_NAME_ENTRY)
#undef HOST_NAME_ENTRY
};

// Tests look at the first look-ups; a plug-in that asks for a missing entry again and again shall not fill
// the memory.
constexpr std::size_t kMostLookups = 10000;

REALproc resolve(const char* entry) {
    if (!entry) return nullptr;
    auto& state = serviceState();
    std::lock_guard guard(state.mutex);
    if (state.lookups.size() < kMostLookups) state.lookups.emplace_back(entry);
    if (state.withdrawn.contains(entry)) return nullptr;
    if (state.version == 0 && std::string_view(entry) == "REALGetRBVersion") return nullptr;
    return harness::service(entry);
}

} // namespace

ServiceState& serviceState() {
    static auto& state = *new ServiceState;
    return state;
}

REALresolver resolver() { return resolve; }

REALproc harness::service(std::string_view entry) {
    const auto* found = std::find_if(std::begin(kEntries), std::end(kEntries),
                                     [=](const auto& known) { return known.name == entry; });
    return found == std::end(kEntries) ? nullptr : found->service;
}

} // namespace host
