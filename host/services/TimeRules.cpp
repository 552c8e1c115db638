// TimeRules.cpp: asks the C library what local time is, day by day, and writes down when that changes.
#include "host/services/TimeRules.hpp"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr int64_t firstMoment = INT32_MIN, lastMoment = INT32_MAX; // what the format has room for
constexpr int64_t day = 86'400;

struct Kind {
    int32_t secondsEast;
    bool isSummer;
    std::string name;

    bool operator==(const Kind&) const = default;
};

Kind kindAt(int64_t moment) {
    const auto seconds = static_cast<std::time_t>(moment);
    std::tm parts{};
    if (!localtime_r(&seconds, &parts)) return {};
    return {static_cast<int32_t>(parts.tm_gmtoff), parts.tm_isdst > 0, parts.tm_zone ? parts.tm_zone : ""};
}

// The first moment of what is at `after` and not at `before`.
int64_t changeBetween(int64_t before, int64_t after) {
    const Kind kind = kindAt(before);
    while (after - before > 1) {
        const int64_t middle = before + (after - before) / 2;
        (kindAt(middle) == kind ? before : after) = middle;
    }
    return after;
}

void append(std::string& bytes, int64_t number) {
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(static_cast<uint64_t>(number) >> shift & 0xFF);
}

} // namespace

std::string timeRules() {
    tzset();
    std::vector<Kind> kinds{kindAt(firstMoment)};
    std::vector<std::pair<int64_t, uint8_t>> changes{{firstMoment, uint8_t{0}}};
    for (int64_t moment = firstMoment; moment < lastMoment;) {
        const int64_t next = std::min(moment + day, lastMoment);
        if (kindAt(next) != kinds[changes.back().second]) {
            const int64_t change = changeBetween(moment, next);
            const Kind kind = kindAt(change);
            auto known = std::ranges::find(kinds, kind);
            if (known == kinds.end() && kinds.size() < UINT8_MAX) known = kinds.insert(known, kind);
            if (known != kinds.end())
                changes.emplace_back(change, static_cast<uint8_t>(known - kinds.begin()));
        }
        moment = next;
    }

    std::string names, types;
    for (const Kind& kind : kinds) {
        const std::string name = kind.name + '\0';
        size_t at = names.find(name);
        if (at == std::string::npos && names.size() + name.size() <= UINT8_MAX) {
            at = names.size();
            names += name;
        }
        append(types, kind.secondsEast);
        types += static_cast<char>(kind.isSummer);
        types += static_cast<char>(at == std::string::npos ? 0 : at);
    }
    if (names.empty()) names += '\0'; // the only one is too long

    std::string file = "TZif" + std::string(16, '\0');
    for (const size_t count : {size_t{0}, size_t{0}, size_t{0}, changes.size(), kinds.size(), names.size()})
        append(file, static_cast<int64_t>(count));
    for (const auto& change : changes)
        append(file, change.first);
    for (const auto& change : changes)
        file += static_cast<char>(change.second);
    return file + types + names;
}

} // namespace host
