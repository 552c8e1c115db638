// An Apple partition map in the first two blocks of a disc that also has ISO 9660, which leaves them free. It leads
// readers to the HFS+ volume. Everything in front of the volume and behind it is "ISO9660_data".
#pragma once

#include "Fields.hpp"

namespace engine::hfsplus {

inline constexpr uint32_t partitionMapBlocks = 2;

struct PartitionMap {
    uint64_t volumeStart = 0, volumeEnd = 0,
             mediumBlocks = 0; ///< blocks of 2048 bytes from the medium's start
};

/// Block 0 or 1 of the medium.
void putPartitionMap(uint32_t index, const PartitionMap& map, std::span<std::byte, blockBytes> block);

} // namespace engine::hfsplus
