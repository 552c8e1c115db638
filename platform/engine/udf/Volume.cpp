// The descriptors of the volume: what is there besides folders and files.
#include "Volume.hpp"
#include "Fields.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace engine::udf {
namespace {

// In the volume descriptor sequence, in this order; the rest of its 16 blocks stays empty.
enum { primary, implementationUse, partition, logicalVolume, unallocatedSpace, terminating };
constexpr uint32_t sequenceBlocks = 16;
constexpr uint32_t mainSequence = firstVolumeBlock;
constexpr uint32_t reserveSequence = mainSequence + sequenceBlocks;
constexpr uint32_t integritySequence = reserveSequence + sequenceBlocks;
constexpr uint32_t integrityBlocks = 2; // the descriptor and its end
static_assert(integritySequence + integrityBlocks - 1 == lastVolumeBlock);

std::string revisionSuffix(Revision revision) {
    const auto number = static_cast<uint16_t>(revision);
    return {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8)};
}

// 16 characters that differ from volume to volume, 8 digits of a time and 8 for the program's use, then the name (UDF 1.02,
// 2.2.2.5).
std::string volumeSetIdentifier(const VolumeSettings& settings) {
    const VolumeIdentity& identity = settings.identity;
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08lX",
                  static_cast<unsigned long>(identity.setTime.value_or(settings.recorded) & 0xFFFFFFFF));
    std::string result = digits;
    for (const uint8_t character : identity.setUse) { // as UTF-8
        if (character >= 0x80) result += static_cast<char>(0xC0 | character >> 6);
        result += static_cast<char>(character < 0x80 ? character : 0x80 | (character & 0x3F));
    }
    return result + (!identity.setName.empty()         ? identity.setName
                     : !settings.volumeSetName.empty() ? settings.volumeSetName
                                                       : settings.volumeName);
}

} // namespace

void putRecognition(uint32_t index, std::span<std::byte, blockBytes> block) {
    constexpr std::string_view names[recognitionBlocks] = {"BEA01", "NSR02", "TEA01"};
    std::ranges::fill(block, std::byte{0});
    std::memcpy(block.data() + 1, names[index].data(), names[index].size());
    block[6] = std::byte{1}; // the version
}

bool Volume::has(uint64_t number) const noexcept {
    return (number >= firstVolumeBlock && number <= lastVolumeBlock) || number == anchorBlock ||
           (number >= partitionStart && number - partitionStart < structureBlocks_) ||
           (totalBlocks_ > 0 && number == totalBlocks_ - 1);
}

void Volume::block(uint64_t number, std::span<std::byte, blockBytes> block) const {
    std::ranges::fill(block, std::byte{0});
    const auto at = static_cast<uint32_t>(number);
    const uint32_t onMedium = settings_.sessionStart + at;
    if (at == anchorBlock || (totalBlocks_ > 0 && at == totalBlocks_ - 1)) return anchor(onMedium, block);
    if (at < reserveSequence) return volumeDescriptor(at - mainSequence, onMedium, block);
    if (at < integritySequence) return volumeDescriptor(at - reserveSequence, onMedium, block);
    if (at == integritySequence) return integrity(block);
    if (at == integritySequence + 1) return Fields(block).skip(496).finish(TagKind::Terminating, onMedium);
    const uint32_t structure = at - partitionStart;
    if (structure == 0) return fileSet(block);
    if (structure == 1) return Fields(block).skip(496).finish(TagKind::Terminating, inPartition(structure));
    if (structure - firstEntryBlock < tree_.nodes.size())
        return fileEntry(structure - firstEntryBlock, block);
    const auto after = std::ranges::upper_bound(streams_, structure, {}, &Stream::firstBlock);
    streamBlock(*std::prev(after), structure - std::prev(after)->firstBlock, block);
}

void Volume::anchor(uint32_t location, std::span<std::byte> block) const {
    Fields(block)
        .extent(sequenceBlocks * blockBytes, settings_.sessionStart + mainSequence)
        .extent(sequenceBlocks * blockBytes, settings_.sessionStart + reserveSequence)
        .skip(480)
        .finish(TagKind::Anchor, location);
}

void Volume::volumeDescriptor(uint32_t index, uint32_t location, std::span<std::byte> block) const {
    const VolumeIdentity& identity = settings_.identity;
    Fields fields(block);
    switch (index) {
    case primary:
        fields.u32(index).u32(identity.primaryNumber).fixedText(32, settings_.volumeName);
        fields.u16(identity.sequenceNumber).u16(identity.maximumSequenceNumber);
        fields.u16(identity.interchangeLevel).u16(identity.maximumInterchangeLevel).u32(1).u32(1);
        fields.fixedText(128, volumeSetIdentifier(settings_)).characterSet().characterSet();
        // An identifier without characters identifies nothing, whatever stands behind it.
        fields.extent(0, 0).extent(0, 0).identifier(identity.applicationSuffix.empty() ? "" : developerName,
                                                    identity.applicationSuffix);
        fields.time(settings_.recorded).developer();
        return fields.skip(64).u32(0).u16(1).skip(22).finish(TagKind::PrimaryVolume, location);
    case implementationUse:
        fields.u32(index).identifier("*UDF LV Info", revisionSuffix(settings_.revision)).characterSet();
        fields.fixedText(128, settings_.volumeName).skip(3 * 36).developer();
        return fields.skip(128).finish(TagKind::ImplementationUse, location);
    case partition:
        // The one volume of the set, read only, from the block behind the anchor up to the last anchor.
        fields.u32(index).u16(1).u16(0).identifier("+NSR02").skip(128).u32(1).u32(partitionStart);
        fields.u32(partitionBlocks()).developer();
        return fields.skip(128 + 156).finish(TagKind::Partition, location);
    case logicalVolume:
        fields.u32(index).characterSet().fixedText(128, settings_.volumeName).u32(blockBytes);
        fields.domain(settings_.revision)
            .longAllocation(2 * blockBytes, inPartition(0))
            .u32(6)
            .u32(1)
            .developer();
        fields.skip(128).extent(integrityBlocks * blockBytes, settings_.sessionStart + integritySequence);
        // One partition map of type 1: this volume, partition 0.
        return fields.u8(1)
            .u8(6)
            .u16(identity.sequenceNumber)
            .u16(0)
            .finish(TagKind::LogicalVolume, location);
    case unallocatedSpace:
        return fields.u32(index).u32(0).finish(TagKind::UnallocatedSpace, location);
    case terminating:
        return fields.skip(496).finish(TagKind::Terminating, location);
    default:
        return;
    }
}

void Volume::integrity(std::span<std::byte> block) const {
    const auto revision = static_cast<uint16_t>(settings_.revision);
    Fields fields(block);
    fields.time(settings_.recorded).u32(1).extent(0, 0); // closed, and no further descriptor
    fields.u64(uniqueIdOf(static_cast<uint32_t>(tree_.nodes.size()))).skip(24);
    fields.u32(1).u32(46).u32(0).u32(partitionBlocks()); // one partition, nothing free
    fields.developer().u32(fileCount_).u32(folderCount_).u16(revision).u16(revision).u16(revision);
    fields.finish(TagKind::LogicalVolumeIntegrity, settings_.sessionStart + integritySequence);
}

void Volume::fileSet(std::span<std::byte> block) const {
    Fields fields(block);
    fields.time(settings_.recorded).u16(3).u16(3).u32(1).u32(1).u32(0).u32(0);
    fields.characterSet().fixedText(128, settings_.volumeName).characterSet();
    fields.fixedText(32, settings_.volumeName).skip(64).longAllocation(blockBytes, entryBlockOf(0));
    fields.domain(settings_.revision).skip(16 + 48).finish(TagKind::FileSet, inPartition(0));
}

} // namespace engine::udf
