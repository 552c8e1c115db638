// Fuzz.hpp: what every fuzz target needs.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace fuzz {

inline std::string_view textOf(const uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// What must hold for any input; the fuzzer keeps the input that breaks it.
inline void require(bool holds, const char* sentence) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", sentence);
    std::abort();
}

} // namespace fuzz
