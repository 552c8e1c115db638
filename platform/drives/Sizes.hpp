// Sizes as people write and read them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace drives {

/// "4.70 GB", "12.3 MB", "2 KB", "0 KB"; a KB is 1000 bytes.
std::string sizeText(uint64_t bytes);

/// Blocks of 2048 bytes from "700MB", "4.7 GB", "650MiB", or a plain number of blocks ("359847"). Throws Failure
/// for what is no size, for less than a block, and for more than 128 GB, the most that any disc holds.
uint64_t blocksFrom(std::string_view text);

} // namespace drives
