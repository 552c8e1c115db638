// The map's entries are 512 bytes each and count in such units, also on discs, because readers look for them there.
#include "PartitionMap.hpp"

#include <array>

namespace engine::hfsplus {
namespace {

constexpr size_t unitBytes = 512;
constexpr uint32_t unitsInBlock = blockBytes / unitBytes;
constexpr uint64_t firstDataBlock = 16; // ISO 9660's own

// Of an entry's status.
enum : uint32_t { isValid = 1, isAllocated = 2, isReadable = 16, isMounted = 0x40000000 };

void putEntry(std::span<std::byte> unit, uint32_t entries, uint64_t start, uint64_t units,
              std::string_view name, std::string_view type, uint32_t status) {
    const auto count = static_cast<uint32_t>(units);
    Fields fields(unit);
    fields.raw("PM").u16(0).u32(entries).u32(static_cast<uint32_t>(start)).u32(count);
    fields.raw(name).skip(32 - name.size()).raw(type).skip(32 - type.size()).u32(0).u32(count).u32(status);
}

} // namespace

void putPartitionMap(uint32_t index, const PartitionMap& map, std::span<std::byte, blockBytes> block) {
    std::array<std::byte, partitionMapBlocks * blockBytes> whole{};
    const auto unit = [&](size_t number) { return std::span(whole).subspan(number * unitBytes, unitBytes); };
    const uint64_t start = map.volumeStart * unitsInBlock, end = map.volumeEnd * unitsInBlock;
    const uint64_t total = map.mediumBlocks * unitsInBlock, first = firstDataBlock * unitsInBlock;
    const uint32_t entries = total > end ? 4 : 3;
    constexpr uint32_t forData = isValid | isAllocated | isReadable;
    Fields(unit(0)).raw("ER").u16(unitBytes).u32(static_cast<uint32_t>(total));
    putEntry(unit(1), entries, 1, entries, "Apple", "Apple_partition_map", isValid | isAllocated);
    putEntry(unit(2), entries, first, start - first, "Gap0", "ISO9660_data", forData);
    putEntry(unit(3), entries, start, end - start, "HFSPLUS_Hybrid", "Apple_HFS", forData | isMounted);
    if (entries == 4) putEntry(unit(4), entries, end, total - end, "Gap1", "ISO9660_data", forData);
    std::ranges::copy(std::span(whole).subspan(index * blockBytes, blockBytes), block.begin());
}

} // namespace engine::hfsplus
