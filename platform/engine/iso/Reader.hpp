// Reads a volume of ISO 9660 that is there already, with its Rock Ridge and Joliet names, for going on from it.
#pragma once

#include "Tree.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace engine::iso {

/// Reads one block of a medium by its address; false when it can't be read.
using BlockReader = std::function<bool(uint64_t address, std::span<std::byte, 2048> block)>;

struct ReadVolume {
    Tree tree; ///< with Rock Ridge names when rockRidge says so
    std::optional<Tree> joliet;
    bool rockRidge = false;
    std::string volumeName; ///< as it is stored, without the spaces at its end
    uint32_t volumeBlocks = 0;
};

/// The volume of the session that begins at `sessionStart`; empty when there is none of ISO 9660. Names come as they are
/// stored, Joliet's in UTF-8, versions and all; files whose bytes begin at the same place are one node. Folders that
/// Rock Ridge moved are back where they were. Throws MediaInvalid when a block can't be read, or says what can't be.
std::optional<ReadVolume> readVolume(const BlockReader& read, uint32_t sessionStart);

} // namespace engine::iso
