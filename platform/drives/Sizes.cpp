// Sizes as people write and read them.
#include "Sizes.hpp"
#include "Failure.hpp"
#include "MediumKind.hpp"

#include <array>
#include <charconv>
#include <cstdio>
#include <strings.h>

namespace drives {
namespace {

constexpr std::pair<std::string_view, double> units[] = {
    {"", engine::blockSize},
    {"blocks", engine::blockSize},
    {"KB", 1e3},
    {"MB", 1e6},
    {"GB", 1e9},
    {"KiB", 1024.0},
    {"MiB", 1048576.0},
    {"GiB", 1073741824.0},
};
constexpr double largestBytes = 128e9;

} // namespace

std::string sizeText(uint64_t bytes) {
    std::array<char, 40> text{};
    const double value = static_cast<double>(bytes);
    if (bytes >= 1'000'000'000) {
        std::snprintf(text.data(), text.size(), "%.2f GB", value / 1e9);
    } else if (bytes >= 1'000'000) {
        std::snprintf(text.data(), text.size(), "%.1f MB", value / 1e6);
    } else {
        std::snprintf(text.data(), text.size(), "%llu KB",
                      static_cast<unsigned long long>((bytes + 999) / 1000));
    }
    return text.data();
}

uint64_t blocksFrom(std::string_view text) {
    const auto bad = [&](const std::string& why) {
        engine::fail(engine::ErrorCode::BadLayout,
                     engine::inQuotes(text) + ' ' + why +
                         "; give one such as 700MB, 4.7GB, 650MiB, or a number of blocks of 2048 bytes.");
    };
    double number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (problem != std::errc{} || !(number >= 0)) bad("is no capacity");
    std::string_view unit = text.substr(static_cast<size_t>(end - text.data()));
    while (unit.starts_with(' '))
        unit.remove_prefix(1);
    for (const auto& [name, factor] : units) {
        if (name.size() != unit.size() || ::strncasecmp(name.data(), unit.data(), unit.size()) != 0) continue;
        const double bytes = number * factor;
        if (bytes > largestBytes) bad("is more than any disc holds");
        const auto blocks = static_cast<uint64_t>(bytes / static_cast<double>(engine::blockSize));
        if (blocks == 0) bad("is less than a block");
        return blocks;
    }
    bad("is no capacity");
    return 0;
}

} // namespace drives
