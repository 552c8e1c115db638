// State.hpp: what tests change of the services, and what the services note for them.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "host/runtime/Type.hpp"

namespace host {

struct ServiceState {
    std::mutex mutex;
    std::set<std::string, std::less<>> withdrawn;
    std::set<std::string, NameLess> hidden;
    std::map<std::string, int, NameLess> failing; // how many creations until one fails
    std::vector<std::string> lookups, registrations;
    double version = 2013.0;
    int32_t announced = 0;
    bool failsBlocks = false;
};

ServiceState& serviceState();

} // namespace host
